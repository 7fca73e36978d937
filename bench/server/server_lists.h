// Fault lists that a server takes whole, and their way into the store.
#pragma once

#include "bench/ingest/lists.h"

namespace vordane::bench {

// As answerOf makes it, but for the garbage that no server keeps (U+0000): another fault's data stand in its
// place.
Answer keptAnswerOf(fakes::MemoryStoreForm& form, std::size_t list, std::size_t length);

// Takes the list in; the seconds by the clock, from the received answer to the refreshed window. Throws
// std::runtime_error when it is not acknowledged.
double takeByClock(fakes::MemoryStoreForm& form, store::FaultStore& store, const Answer& answer);

}  // namespace vordane::bench
