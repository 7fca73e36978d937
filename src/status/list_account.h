// What became of one received fault list, in numbers that always add up.
#pragma once

#include <cstdint>
#include <string>

#include "settings/shared_state.h"

namespace vordane::status {

enum class ListEnd {
  complete,       // the end mark, or the end of a whole last group
  cutShort,       // the answer ends inside a group
  tooLong,        // the answer held more entries than can be taken over
  textCut,        // a text of the answer was longer than is kept
  accessError,    // an entry of the exchange-access component stood in place of data
  databaseError,  // the store refused a step
  noDatabase,     // FAULT.MDB is not open
};

struct ListAccount {
  std::u16string when;  // in the workstation's regional form
  ListEnd end = ListEnd::complete;
  std::u16string cause;  // the access component's entry or the engine's text; empty without one
  std::int32_t received = 0, added = 0, alreadyStored = 0;
  std::u16string exchange{};
  std::u16string wordsBefore{},
      words{};  // the languages of the faults stored before and of these; empty: one

  std::int32_t refused() const { return received - added - alreadyStored; }
  bool complete() const { return end == ListEnd::complete; }
};

// Why an incomplete list ended as it did; empty for a complete one.
std::u16string reasonText(const SharedState& state, const ListAccount& account);

// One line from the message texts: for the status line, and for the run log, whose lines have a time of
// their own.
std::u16string statusText(const SharedState& state, const ListAccount& account);
std::u16string runLogText(const SharedState& state, const ListAccount& account);

}  // namespace vordane::status
