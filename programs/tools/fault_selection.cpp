#include "fault_selection.h"

#include "lines.h"
#include "terminal_text.h"
#include "text/blanks.h"

namespace vordane::tools {

bool FaultSelection::isOn() const {
  return exchange || !classes.empty() || list::isOn(filter);
}

bool FaultSelection::hasExchange(std::u16string_view name) const {
  return !exchange || text::equalAsStored(name, *exchange);
}

void requireTimes(const list::Filter& filter) {
  const char* const form =
      ": write the time as YYYY/MM/DD HH:MM, or its beginning as far as the year, the month, the day or the "
      "hour";
  switch (list::mistakeIn(filter)) {
    case list::Mistake::none:
      return;
    case list::Mistake::since:
      throw ToolError("--since " + onOneLine(filter.since) + form);
    case list::Mistake::until:
      throw ToolError("--until " + onOneLine(filter.until) + form);
    case list::Mistake::order:
      throw ToolError("--since " + onOneLine(filter.since) + " lies behind --until " +
                      onOneLine(filter.until) + ": no fault can lie between them");
  }
}

void noSuchExchange(const std::string& file, std::u16string_view name,
                    std::span<const std::u16string> known) {
  std::string message = file + ": there is no exchange \"" + onOneLine(name) + "\". ";
  if (known.empty()) throw ToolError(message + "No exchange is stored there");
  message += "Name one of those stored there:";
  for (const std::u16string& one : known)
    message += (&one == known.data() ? " \"" : ", \"") + onOneLine(one) + '"';
  throw ToolError(message);
}

bool WantedFaults::has(std::u16string_view kind, std::u16string_view alarm, std::u16string_view processor,
                       std::u16string_view time) const {
  const auto& classes = selection_.classes;
  return list::showsGroup(selection_.filter, kind, alarm, processor) &&
         (classes.empty() || classes.contains(list::keyOf(alarm))) &&
         (!limits_.any() || limits_.hold(list::minuteOf(time)));
}

}  // namespace vordane::tools
