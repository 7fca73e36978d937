#include "startup/window_input.h"

#include "startup/form_model.h"
#include "startup/scheduled_runs.h"
#include "startup/window_actions.h"
#include "startup/window_parts.h"

namespace vordane::startup {
namespace {

constexpr int keyF1 = 112, keyF5 = 116;

}  // namespace

// One that comes while a call is served is dropped too.
bool WindowInput::pressCounts(int action) {
  if (!parts_.alive() || parts_.life.callUnderWay() || parts_.state().busy || parts_.timer.enabled())
    return false;
  if (parts_.state().runMode == RunMode::scheduledRun) return false;
  const auto name = buttonOfAction(static_cast<Action>(action));
  return !name.empty() && parts_.form.control(name).flag(u"Enabled");
}

void WindowInput::buttonPressed(int action) {
  if (!pressCounts(action)) return;
  const WindowLife::Entry entry(parts_.life);
  const auto pressed = static_cast<Action>(action);
  if (parts_.state().runMode != RunMode::creatingSchedule) return parts_.timer.enable(pressed);
  // The request button stands for the one job there is.
  if (pressed == Action::request) parts_.timer.enable(Action::followUp);
  if (pressed == Action::close) parts_.runs.CancelSchedule();
}

void WindowInput::closeAsked() {
  const WindowLife::Entry entry(parts_.life);
  if (!parts_.alive()) return;
  if (!parts_.runs.QueryCancelRun() || !parts_.alive()) return;
  if (parts_.state().runMode == RunMode::creatingSchedule)
    parts_.runs.CancelSchedule();
  else
    parts_.actions.close();
}

void WindowInput::headingClicked(int column) {
  if (!parts_.alive() || parts_.life.callUnderWay()) return;
  const WindowLife::Entry entry(parts_.life);
  parts_.store.headingClicked(column);
  if (parts_.alive()) parts_.showNotice();
}

void WindowInput::exchangeChosen(int listIndex) {
  if (!parts_.alive()) return;
  window::Control& list = parts_.form.control(u"drpPBXList");
  if (parts_.life.callUnderWay() || parts_.state().busy || parts_.timer.enabled())
    return list.setListIndex(list.listIndex());
  const WindowLife::Entry entry(parts_.life);
  list.setListIndex(listIndex);
  parts_.status.otherExchange();
  parts_.store.exchangeListClicked();
  if (!parts_.alive()) return;
  parts_.status.idle();
  parts_.showNotice();
}

std::optional<std::size_t> WindowInput::lookUp(std::u16string_view text, std::ptrdiff_t from,
                                               window::LookUpWay way) {
  if (!parts_.alive() || parts_.life.callUnderWay()) return std::nullopt;
  const WindowLife::Entry entry(parts_.life);
  return parts_.store.lookUp(text, from, way);
}

void WindowInput::keyPressed(int keyCode) {
  if (keyCode == keyF5) return renew();
  const WindowLife::Entry entry(parts_.life);
  if (keyCode == keyF1 && parts_.alive()) help_.askHost();
}

// What is shown is read anew, as if it had been chosen now; an empty drop-down is filled.
void WindowInput::renew() {
  if (listUse() != window::ListUse::now || parts_.faults.faultDatabase() == nullptr) return;
  const WindowLife::Entry entry(parts_.life);
  if (parts_.form.control(u"drpPBXList").listIndex() < 0)
    parts_.store.RefreshDisplay();
  else
    parts_.store.exchangeListClicked();
  if (parts_.alive()) parts_.showNotice();
}

void WindowInput::mousePressed(window::Control& control, int button) {
  help_.mousePressed(control, button);
}

void WindowInput::whatsThisChosen() {
  help_.whatsThisChosen();
}

window::ListUse WindowInput::listUse() {
  if (!parts_.alive() || parts_.state().runMode != RunMode::interactive) return window::ListUse::never;
  const bool waits = parts_.life.callUnderWay() || parts_.state().busy || parts_.timer.enabled();
  return waits ? window::ListUse::later : window::ListUse::now;
}

window::Languages WindowInput::languages() {
  return listUse() != window::ListUse::never ? reading_.languages() : window::Languages{};
}

void WindowInput::languageChosen(std::size_t language) {
  if (listUse() != window::ListUse::now) return;
  const WindowLife::Entry entry(parts_.life);
  reading_.choose(language);
}

void WindowInput::storedTextsAsked() {
  if (listUse() != window::ListUse::now) return;
  const WindowLife::Entry entry(parts_.life);
  reading_.switchStored();
}

std::shared_ptr<database::Arrivals> WindowInput::arrivals() {
  database::Database* database = parts_.alive() ? parts_.faults.faultDatabase() : nullptr;
  return database != nullptr ? database->arrivals() : nullptr;
}

std::chrono::milliseconds WindowInput::lookAtStore() {
  if (listUse() != window::ListUse::now) return store::NewerList::betweenQuestions;
  const WindowLife::Entry entry(parts_.life);
  return parts_.store.lookForNewerList();
}

void WindowInput::tick() {
  parts_.actions.tick();
}

}  // namespace vordane::startup
