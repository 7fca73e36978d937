// What has come into a file since somebody looked. Its identity stands in a table beside the documented ones:
//
//   VordaneStore  one row: Identity, random, made when somebody asks for it first. A copy of the file has the
//                 same one.
//
// Numbers and owners are read along the events' own key, so looking for what came last costs one seek.
#pragma once

#include <memory>

#include "platform/arrivals.h"
#include "platform/sqlite/plan.h"

namespace vordane::sqlite {

// Null where the file holds no table of events as files of our own declare it. Throws DatabaseError.
std::shared_ptr<database::Arrivals> makeArrivals(std::shared_ptr<Opened> opened);

}  // namespace vordane::sqlite
