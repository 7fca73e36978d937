// An answer as it was copied, with what its request was sent with: all that taking a list in needs to know of
// the conversation.
#pragma once

#include <string>

#include "pbx/cListRequest.h"

namespace vordane::pbx {

struct ReceivedList {
  const cListRequest& entries;  // owned by the conversation
  std::u16string exchange;
  bool wide = true;        // the processor texts of the exchange
  bool truncated = false;  // the answer had more entries than the copy can hold
  bool cut = false;        // one of its texts was longer than is kept
};

}  // namespace vordane::pbx
