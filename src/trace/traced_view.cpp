#include "trace/traced_view.h"

namespace vordane::trace {
namespace {

std::string_view nameOf(Action action) {
  switch (action) {
    case Action::request:
      return "request";
    case Action::reset:
      return "reset";
    case Action::print:
      return "print";
    case Action::clear:
      return "clear";
    case Action::close:
      return "close";
    case Action::followUp:
      return "follow up";
    case Action::ingest:
      return "ingest";
    case Action::alarmsCleared:
      return "alarms cleared";
    case Action::alarmState:
      return "alarm state";
    case Action::runStep:
      return "run step";
    case Action::stopRun:
      return "stop run";
  }
  return "none";
}

}  // namespace

void TracedView::attach(window::Form& form, window::ViewEvents& events) {
  events_ = &events;
  view_.attach(form, *this);
}

void TracedView::setVisible(bool visible) {
  recorder_->tell("window", [&](Line& line) { line.flag("visible", visible); });
  view_.setVisible(visible);
}

void TracedView::startTimer(int milliseconds) {
  recorder_->tell("timer", [&](Line& line) { line.number("milliseconds", milliseconds); });
  view_.startTimer(milliseconds);
}

// A tick that comes while a call is served does nothing and comes again.
void TracedView::tick() {
  const std::optional<Action> action = due_ ? due_() : std::nullopt;
  const std::int64_t number = recorder_->next();
  const Moment began = recorder_->now();
  recorder_->tell("tick", [&](Line& line) {
    line.number("number", number).word("action", action ? nameOf(*action) : "none");
  });
  const auto recorder = recorder_;
  events_->tick();
  recorder->tell("done",
                 [&](Line& line) { line.number("number", number).number("took", recorder->now() - began); });
}

void TracedView::person(std::string_view what, std::int64_t which) {
  recorder_->tell("person", [&](Line& line) { line.word("what", what).number("which", which); });
}

void TracedView::buttonPressed(int action) {
  person("button", action);
  events_->buttonPressed(action);
}

void TracedView::headingClicked(int column) {
  person("heading", column);
  events_->headingClicked(column);
}

void TracedView::exchangeChosen(int listIndex) {
  person("exchange", listIndex);
  events_->exchangeChosen(listIndex);
}

void TracedView::closeAsked() {
  person("close", 0);
  events_->closeAsked();
}

void TracedView::languageChosen(std::size_t which) {
  person("language", static_cast<std::int64_t>(which));
  events_->languageChosen(which);
}

void TracedView::keyPressed(int keyCode) {
  person("key", keyCode);
  events_->keyPressed(keyCode);
}

}  // namespace vordane::trace
