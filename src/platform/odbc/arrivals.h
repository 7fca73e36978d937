// What has come into a store on a server since somebody looked. The stations agree on the store's identity,
// as they do on its language: the first that asks makes one.
#pragma once

#include <memory>

#include "platform/arrivals.h"
#include "platform/odbc/session.h"

namespace vordane::odbc {

// The subject of that agreement.
inline constexpr std::u16string_view identitySubject = u"Identity";

// Null where the store holds no events.
std::shared_ptr<database::Arrivals> makeArrivals(std::shared_ptr<Session> session);

}  // namespace vordane::odbc
