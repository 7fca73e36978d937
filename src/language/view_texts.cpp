#include "language/view_texts.h"

#include "language/message_numbers.h"

namespace vordane {

std::size_t messageNumber(window::ViewText which) {
  using window::ViewText;
  switch (which) {
    case ViewText::majorLit:
      return message::lampMajorAlarm;
    case ViewText::majorClear:
      return message::lampMajorClear;
    case ViewText::minorLit:
      return message::lampMinorAlarm;
    case ViewText::minorClear:
      return message::lampMinorClear;
    case ViewText::lookUpLabel:
      return message::lookUpLabel;
    case ViewText::lookUpNext:
      return message::lookUpNext;
    case ViewText::lookUpClose:
      return message::lookUpClose;
    case ViewText::lookUpNotFound:
      return message::lookUpNotFound;
    case ViewText::lookUpWrapped:
      return message::lookUpWrapped;
    case ViewText::lookUpWrappedBack:
      return message::lookUpWrappedBack;
    case ViewText::copyFault:
      return message::menuCopy;
    case ViewText::selectedFault:
      return message::paneName;
    case ViewText::noSelection:
      return message::paneEmpty;
    case ViewText::clipboardHeld:
      return message::clipboardHeld;
    case ViewText::openGuide:
      return message::menuGuide;
  }
  return message::count;  // no text has this number
}

}  // namespace vordane
