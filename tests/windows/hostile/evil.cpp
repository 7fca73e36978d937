#include "evil.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "kit/windows/running_programs.h"
#include "patience.h"
#include "text/utf8.h"
#include "windows/rounds/measuring.h"

namespace vordane::hostile {

using automation::AutomationError;

namespace {

constexpr DWORD endsWhenAsked = 3000;  // milliseconds; one that hangs does not

}  // namespace

bool Evil::order(std::u16string_view member, std::initializer_list<automation::Argument> given) {
  take();
  try {
    automation::call(*object_, member, given);
    keepCalls();
    return true;
  } catch (const AutomationError& failure) {
    died(member, failure);
    return false;
  }
}

// It may be gone before its answer is.
void Evil::end() {
  try {
    if (object_) automation::call(*object_, u"End");
  } catch (const AutomationError&) {
  }
  object_ = nullptr;
  endAll();
}

void Evil::endAll() const {
  for (const DWORD id : test::processesOf(program_))
    kit::endProgram(id, endsWhenAsked, static_cast<DWORD>(patience()), 0);
}

void Evil::take() {
  if (object_) return;
  endAll();  // an exchange server that others created in place of a dead one
  object_ = createPatiently(directorsTable(role_).progId);
  const auto running = test::processesOf(program_);
  if (running.size() != 1)
    throw std::runtime_error(std::to_string(running.size()) + " hostile programs of one kind");
  process_ = test::openProcess(running.front());
  counted_ = 0;
}

void Evil::keepCalls() {
  const auto now = automation::toLong(automation::get(*object_, u"Calls"));
  calls_ += now - std::exchange(counted_, now);
  const std::u16string problem = automation::toText(automation::get(*object_, u"Problem"));
  if (!problem.empty()) throw std::runtime_error(text::toUtf8(problem));
}

// It may be gone, by its own hand or the watcher's; anything else is a failure.
void Evil::died(std::u16string_view member, const AutomationError& failure) {
  DWORD code = 0;
  const bool ended = process_ && test::endsWithin(process_.get(), patience());
  GetExitCodeProcess(process_.get(), &code);
  if (!ended || (code != diedInACall && code != killedWhileItHung))
    throw std::runtime_error(text::toUtf8(member) + " of a hostile program failed: " + failure.what() +
                             ", it ended: " + std::to_string(ended) + " with " + std::to_string(code));
  object_ = nullptr;
  ++deaths_;
}

}  // namespace vordane::hostile
