#include "startup/window_help.h"

#include <algorithm>

#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/message_numbers.h"

namespace vordane::startup {
namespace {

constexpr int rightButton = 2;
constexpr std::u16string_view helpFile = u"VORDANE.HLP";

}  // namespace

void WindowHelp::load(window::Form& form, database::Database& language) {
  texts_ = comLanguage::loadHelpTexts(form, language);
}

void WindowHelp::askHost() {
  host_.call(u"DisplayHelp", {automation::byRef(std::u16string(helpFile))});
}

void WindowHelp::mousePressed(window::Control& control, int button) {
  if (button != rightButton || !life_.alive()) return;
  if (std::find(whatsThisControls.begin(), whatsThisControls.end(), control.name()) !=
      whatsThisControls.end())
    ShowWhatsThis(control);
}

void WindowHelp::ShowWhatsThis(window::Control& control) {
  const WindowLife::Entry entry(life_);
  if (!life_.alive()) return;
  target_ = &control;
  application_.station().view.popUpMenu(u"mnuWhatsThis");
  target_ = nullptr;
}

void WindowHelp::whatsThisChosen() {
  const WindowLife::Entry entry(life_);
  if (target_ == nullptr || !life_.alive()) return;
  const auto help = texts_.find(target_->name());
  application_.station().view.showWhatsThis(
      *target_, help == texts_.end() ? messageText(application_.state(), message::noHelpText) : help->second);
}

}  // namespace vordane::startup
