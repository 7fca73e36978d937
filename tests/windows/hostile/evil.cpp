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

bool EvilHost::order(std::u16string_view member, std::initializer_list<automation::Argument> given) {
  take();
  try {
    automation::call(*object_, member, given);
    return true;
  } catch (const AutomationError& failure) {
    died(member, failure);
    return false;
  }
}

// It may be gone before its answer is.
void EvilHost::end() {
  try {
    if (object_) automation::call(*object_, u"End");
  } catch (const AutomationError&) {
  }
  object_ = nullptr;
  endPrograms(hostProgram);
}

void EvilHost::take() {
  if (object_) return;
  object_ = createPatiently(directorsTable().progId);
  const auto running = test::processesOf(hostProgram);
  if (running.size() != 1) throw std::runtime_error(std::to_string(running.size()) + " hostile hosts");
  process_ = test::openProcess(running.front());
}

// It may be gone, by its own hand or the watcher's; anything else is a failure.
void EvilHost::died(std::u16string_view member, const AutomationError& failure) {
  DWORD code = 0;
  const bool ended = process_ && test::endsWithin(process_.get(), patience());
  GetExitCodeProcess(process_.get(), &code);
  if (!ended || (code != diedInACall && code != killedWhileItHung))
    throw std::runtime_error(text::toUtf8(member) + " of the hostile host failed: " + failure.what() +
                             ", it ended: " + std::to_string(ended) + " with " + std::to_string(code));
  object_ = nullptr;
}

void endPrograms(const wchar_t* program) {
  for (const DWORD id : test::processesOf(program))
    kit::endProgram(id, endsWhenAsked, static_cast<DWORD>(patience()), 0);
}

}  // namespace vordane::hostile
