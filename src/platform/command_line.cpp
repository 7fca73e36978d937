#include "platform/command_line.h"

#include <algorithm>
#include <array>

#include "platform/event_log.h"
#include "text/text.h"

namespace vordane::platform {
namespace {

struct Switch {
  std::u16string_view name;
  Start start;
  bool takesMore;
};
constexpr std::array switches{Switch{u"Embedding", Start::byAutomation, false},
                              Switch{u"RegServer", Start::registerServer, true},
                              Switch{u"UnregServer", Start::unregisterServer, true}};

std::u16string_view withoutQuotes(std::u16string_view text) {
  const bool enclosed = text.size() >= 2 && text.front() == u'"' && text.back() == u'"';
  return enclosed ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

CommandLine parseCommandLine(std::u16string_view text) {
  const std::u16string_view trimmed = text::trim(text);
  if (!trimmed.empty() && (trimmed.front() == u'-' || trimmed.front() == u'/'))
    for (const Switch& known : switches) {
      const std::size_t length = 1 + known.name.size();
      const std::u16string_view rest = trimmed.substr(std::min(length, trimmed.size()));
      const bool fits = rest.empty() || (known.takesMore && rest.front() == u' ');
      if (fits && text::equalIgnoringCase(trimmed.substr(1, known.name.size()), known.name))
        return {known.start, std::u16string(text::trim(rest))};
    }
  return {Start::byHand, std::u16string(withoutQuotes(trimmed))};
}

std::u16string_view withoutProgramName(std::u16string_view commandLine) {
  const bool inQuotes = commandLine.starts_with(u'"');
  const std::size_t end = inQuotes ? commandLine.find(u'"', 1) : commandLine.find(u' ');
  if (end == std::u16string_view::npos) return {};
  return commandLine.substr(end + 1);
}

int exitCodeOfBroken(Start start) {
  return start == Start::byHand ? static_cast<int>(Event::startBroken) : 1;
}

}  // namespace vordane::platform
