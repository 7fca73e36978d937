// What a person does in the window. A press counts only between requests; work runs from the timer. One
// thread.
#pragma once

#include "platform/view.h"
#include "startup/window_help.h"
#include "startup/window_reading.h"

namespace vordane::startup {

struct WindowParts;

class WindowInput final : public window::ViewEvents {
 public:
  WindowInput(const WindowParts& parts, WindowHelp& help, WindowReading& reading)
      : parts_(parts), help_(help), reading_(reading) {}

  void buttonPressed(int action) override;
  void headingClicked(int column) override;
  void exchangeChosen(int listIndex) override;
  void closeAsked() override;
  void keyPressed(int keyCode) override;
  void mousePressed(window::Control& control, int button) override;
  void whatsThisChosen() override;
  bool guideOffered() override { return help_.guideOffered(); }
  void guideAsked(std::u16string_view part) override { help_.openGuide(part); }
  std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from,
                                    window::LookUpWay way) override;
  window::ListUse listUse() override;
  window::Languages languages() override;
  void languageChosen(std::size_t language) override;
  bool storedTextsOffered() override { return reading_.isOn(); }
  bool storedTextsShown() override { return reading_.storedShown(); }
  void storedTextsAsked() override;
  std::shared_ptr<database::Arrivals> arrivals() override;
  std::chrono::milliseconds lookAtStore() override;
  void tick() override;

 private:
  bool pressCounts(int action);
  void renew();

  const WindowParts& parts_;
  WindowHelp& help_;
  WindowReading& reading_;
};

}  // namespace vordane::startup
