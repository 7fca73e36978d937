#include "startup/window_help.h"

#include <algorithm>

#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/guide_topics.h"
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
  const auto& texts = reading_ != nullptr ? *reading_ : texts_;
  const auto help = texts.find(target_->name());
  application_.station().view.showWhatsThis(
      *target_, help == texts.end() ? shownText(application_.state(), message::noHelpText) : help->second);
}

bool WindowHelp::guideOffered() {
  return life_.alive() && !application_.unattended();
}

void WindowHelp::openGuide(std::u16string_view part) {
  const WindowLife::Entry entry(life_);
  if (!guideOffered()) return;
  const Workstation& station = application_.station();
  const std::u16string_view topic = guideTopicOf(part);
  const auto page = application_.guidePage(topic);
  if (!page || !station.files.exists(*page))
    status_.guideMissing(page.value_or(std::u16string(topic) + u".html"));
  else if (station.documents.open(*page))
    status_.guideShown();
  else
    status_.guideNotShown(*page);
  if (life_.alive()) status::showLine(station.view, status_);
}

}  // namespace vordane::startup
