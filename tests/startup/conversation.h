// A host, an exchange and the requests between them, for the tests of whole conversations.
#pragma once

#include <string>

#include "startup/story.h"

namespace vordane::startup {

class Conversation : public Story {
 protected:
  // A whole list, taken in and acknowledged.
  void fetch() {
    pressAndTick(0);
    exchange().answer(0, oneFault());
    tick();
    exchange().answerLamps(u"00");
    tick();
  }
};

inline const std::string listRequest = "SendRequest LEA0// tag 10 for PBX-1 as L1 busy True mode 0 key ";
inline const std::string acknowledgement =
    "SendRequest EA1/00/ tag 12 for PBX-1 as L1 busy False mode 0 key ";
inline const std::string resetRequest = "SendRequest EA1/00/CCC tag 11 for PBX-1 as L1 busy True mode 0 key ";

}  // namespace vordane::startup
