#include "platform/windows/com/imported_object.h"

#include <new>
#include <vector>

#include "platform/windows/com/errors.h"
#include "platform/windows/com/exported_object.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/com/values.h"

namespace vordane::com {

namespace {

using automation::AutomationError;
using automation::CallKind;

// What another program's object answers when it is called as a method but is a property, or the other way.
constexpr HRESULT functionExpected = static_cast<HRESULT>(0x800A138A);

// A plain value that is asked for as a method or a value: it is to be asked for as a value alone. Wine's
// script engine says no more than E_FAIL then; a method with arguments that fails so has run and must not run
// again.
bool isPlainValue(const AutomationError& failure, bool hasArguments) {
  return failure.code() == functionExpected || failure.code() == DISP_E_MEMBERNOTFOUND ||
         (failure.code() == E_FAIL && !hasArguments);
}

// One argument on its way out: the value, and the VARIANT that is passed (the value, or a reference to it).
struct Outgoing {
  Variant value;
  VARIANT passed;
};

VARIANT referenceTo(Variant& value) {
  VARIANT reference;
  VariantInit(&reference);
  const VARTYPE type = value.type();
  const bool untyped = type == VT_EMPTY || type == VT_NULL || type == VT_ERROR;
  reference.vt = static_cast<VARTYPE>(VT_BYREF | (untyped ? static_cast<VARTYPE>(VT_VARIANT) : type));
  if (untyped)
    reference.pvarVal = &value;
  else
    reference.byref = &value.get().lVal;  // every plain field begins at the same place
  return reference;
}

class Arguments {
 public:
  Arguments(std::span<automation::Argument> arguments, bool byValueOnly) : arguments_(arguments) {
    outgoing_.reserve(arguments.size());
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
      Outgoing& out = outgoing_.emplace_back(Outgoing{toVariant(argument->value), {}});
      const bool reference = argument->byReference && !byValueOnly;
      out.passed = reference ? referenceTo(out.value) : out.value.get();
      passed_.push_back(out.passed);
      references_ = references_ || reference;
    }
  }

  DISPPARAMS parameters(DISPID* newValue, bool put) {
    return {passed_.data(), put ? newValue : nullptr, static_cast<UINT>(passed_.size()), put ? 1U : 0U};
  }
  bool hasReferences() const { return references_; }

  void takeBack() {
    for (std::size_t i = 0; i < outgoing_.size(); ++i) {
      automation::Argument& argument = arguments_[arguments_.size() - 1 - i];
      if (argument.byReference && (outgoing_[i].passed.vt & VT_BYREF) != 0)
        argument.value = toValue(outgoing_[i].value.get());
    }
  }

 private:
  std::span<automation::Argument> arguments_;
  std::vector<Outgoing> outgoing_;
  std::vector<VARIANT> passed_;
  bool references_ = false;
};

bool refusesReferences(HRESULT result) {
  return result == E_NOTIMPL || result == DISP_E_TYPEMISMATCH || result == DISP_E_BADVARTYPE;
}

// Other programs' objects that are in use, by COM identity: the same object is the same automation object,
// so that its names' numbers are asked for once.
std::unordered_map<const IUnknown*, std::weak_ptr<ImportedObject>>& imports() {
  static auto& all = *new std::unordered_map<const IUnknown*, std::weak_ptr<ImportedObject>>;
  return all;
}

}  // namespace

ImportedObject::ImportedObject(ComPtr<IDispatch> dispatch, ComPtr<IUnknown> identity)
    : dispatch_(std::move(dispatch)), identity_(std::move(identity)) {}

ImportedObject::~ImportedObject() {
  const auto found = imports().find(identity_.get());
  if (found != imports().end() && found->second.expired()) imports().erase(found);
}

DISPID ImportedObject::numberOf(std::u16string_view member) const {
  const std::u16string name(member);
  if (const auto known = numbers_.find(name); known != numbers_.end()) return known->second;
  LPOLESTR names[] = {const_cast<LPOLESTR>(wide(name.c_str()))};
  DISPID id = DISPID_UNKNOWN;
  const HRESULT result = dispatch_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(result)) throw AutomationError(result);
  return numbers_[name] = id;
}

bool ImportedObject::hasMember(std::u16string_view member) const {
  const auto alive = shared_from_this();
  try {
    numberOf(member);
    return true;
  } catch (const AutomationError&) {
    return false;
  }
}

automation::Value ImportedObject::invokeEitherWay(DISPID id, WORD flags,
                                                  std::span<automation::Argument> arguments) {
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  for (bool byValue = byValueOnly_;; byValue = true) {
    Arguments outgoing(arguments, byValue);
    DISPID newValue = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = outgoing.parameters(&newValue, put);
    Variant result;
    EXCEPINFO info{};
    UINT position = 0;
    const HRESULT answered = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                               put ? nullptr : &result, &info, &position);
    if (outgoing.hasReferences() && refusesReferences(answered)) continue;
    if (FAILED(answered))
      throwFailure(answered, info, static_cast<int>(arguments.size()) - 1 - static_cast<int>(position));
    byValueOnly_ = byValue;
    outgoing.takeBack();
    return toValue(result.get());
  }
}

automation::Value ImportedObject::invoke(std::u16string_view member, CallKind kind,
                                         std::span<automation::Argument> arguments) {
  const auto alive = shared_from_this();
  const DISPID id = numberOf(member);
  try {
    return invokeEitherWay(id, static_cast<WORD>(kind), arguments);
  } catch (const std::bad_alloc&) {
    // What another program sends may be too large to take over: its failure, like any other of its calls.
    throw AutomationError(E_OUTOFMEMORY);
  } catch (const AutomationError& failure) {
    if (kind != CallKind::methodOrGet || !isPlainValue(failure, !arguments.empty())) throw;
    return invokeEitherWay(id, DISPATCH_PROPERTYGET, arguments);
  }
}

automation::ObjectRef importObject(IDispatch* dispatch) {
  if (dispatch == nullptr) return {};
  if (ExportedObject* face = findFace(dispatch)) return face->object();
  ComPtr<IDispatch> held(dispatch);
  ComPtr<IUnknown> identity = held.as<IUnknown>(IID_IUnknown);
  if (ExportedObject* face = findFace(identity.get())) return face->object();
  std::weak_ptr<ImportedObject>& known = imports()[identity.get()];
  if (auto object = known.lock()) return object;
  auto object = std::make_shared<ImportedObject>(std::move(held), std::move(identity));
  known = object;
  return object;
}

ComPtr<IDispatch> exportObject(const automation::ObjectRef& object, LifeToken token) {
  if (!object) return {};
  if (const auto* imported = dynamic_cast<const ImportedObject*>(object.get()))
    return ComPtr<IDispatch>(imported->dispatch());
  return faceOf(object, std::move(token));
}

}  // namespace vordane::com
