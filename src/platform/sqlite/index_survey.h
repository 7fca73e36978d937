// A survey of an owner's events along their index, which holds all that a survey tells.
//
// What this buys: the events themselves, with their descriptions, are not read.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/sqlite/plan.h"
#include "platform/sqlite/time_order.h"
#include "platform/survey.h"

namespace vordane::sqlite {

// `counts` are the rows of the list, which begins with the last of them where it goes `backwards`. Where the
// index does not answer for the table any longer, or others have changed the tables since `tablesChanged`,
// the rows that have not been told yet count as gone.
std::unique_ptr<database::Survey> surveyIndex(std::shared_ptr<Opened> opened, SharedKeys counts,
                                              bool backwards, std::int64_t owner, std::uint64_t tablesChanged,
                                              const std::optional<database::TimesBetween>& times = {});

// The times of an owner's events, the newest first.
std::unique_ptr<database::TimeWalk> timesOfIndex(std::shared_ptr<Opened> opened, std::int64_t owner,
                                                 std::uint64_t tablesChanged);

}  // namespace vordane::sqlite
