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
    case ViewText::filterText:
      return message::filterText;
    case ViewText::filterMajor:
      return message::filterMajor;
    case ViewText::filterMinor:
      return message::filterMinor;
    case ViewText::filterKindsAll:
      return message::filterKindsAll;
    case ViewText::filterKindsSome:
      return message::filterKindsSome;
    case ViewText::filterKindsName:
      return message::filterKindsName;
    case ViewText::filterProcessor:
      return message::filterProcessor;
    case ViewText::filterAnyProcessor:
      return message::filterAnyProcessor;
    case ViewText::filterSince:
      return message::filterSince;
    case ViewText::filterUntil:
      return message::filterUntil;
    case ViewText::filterDateStyle:
      return message::filterDateStyle;
    case ViewText::filterClear:
      return message::filterClear;
    case ViewText::filterClose:
      return message::filterClose;
    case ViewText::filterOtherDates:
      return message::filterOtherDates;
    case ViewText::filterNote:
      return message::filterNote;
    case ViewText::filterBadDate:
      return message::filterBadDate;
    case ViewText::filterBadOrder:
      return message::filterBadOrder;
    case ViewText::filterAtWork:
      return message::filterAtWork;
    case ViewText::filterFailed:
      return message::filterFailed;
    case ViewText::filterHidesAll:
      return message::filterHidesAll;
    case ViewText::shownCount:
      return message::shownCount;
    case ViewText::onlyKind:
      return message::onlyKind;
    case ViewText::withoutKind:
      return message::withoutKind;
    case ViewText::onlyProcessor:
      return message::onlyProcessor;
    case ViewText::onlyDay:
      return message::onlyDay;
    case ViewText::openGuide:
      return message::menuGuide;
  }
  return message::count;  // no text has this number
}

}  // namespace vordane
