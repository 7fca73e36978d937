// Objects across the process boundary: ours as IDispatch for others, others' IDispatch as ours. An object
// that goes out and comes back is the same object again, and going out twice has the same identity.
// Everything here belongs to the user-interface thread, which must have initialised COM.
#pragma once

#include <memory>

#include "platform/automation.h"
#include "platform/windows/com/owned.h"

namespace vordane::com {

// Held by an exported object until the last outside reference has gone; its deleter hears of that.
using LifeToken = std::shared_ptr<void>;

// The COM face of `object`, which is kept alive by it; null for null. An object with a member table has a
// fixed name table; one whose table names an interface also has its type information, if the program
// carries the type library. Any other object takes the names it says it has (Object::hasMember).
ComPtr<IDispatch> exportObject(const automation::ObjectRef& object, LifeToken token = {});

// `dispatch` as an automation object, which holds one reference; null for null. Member numbers are asked
// for once. By-reference arguments go out typed first; an object that takes none gets them by value from
// then on. Failures are AutomationErrors: HRESULTs of the call, or the number in the exception.
automation::ObjectRef importObject(IDispatch* dispatch);

// Ends every outside hold on `object`, as if each holder had released it. For holders that have died.
void disconnectObject(automation::Object& object);

// From here on the members of public classes (those with an interface) answer RPC_E_DISCONNECTED.
void refusePublicCalls();

// What errors of objects without a public class name as their source; "" until set.
void setErrorSource(std::u16string_view source);

}  // namespace vordane::com
