#include "selection_words.h"

#include "text/utf8.h"

namespace vordane::tools {

void FaultSelectionWords::declare(options::Command& command) {
  command.option("--exchange", "NAME", exchange, "those of one exchange; upper and lower case are the same");
  command.option("--since", "TIME", since, "not older: YYYY/MM/DD HH:MM, or the beginning of it");
  command.option("--until", "TIME", until, "not newer, likewise: 2026/11 is the whole of that month");
  command.options("--class", "CLASS", classes, "only this alarm class, such as MJ; may be given again");
  command.options("--kind", "KIND", kinds, "only this fault kind, such as 3B; may be given again");
}

FaultSelection FaultSelectionWords::selection() const {
  FaultSelection wanted;
  if (exchange) wanted.exchange = text::fromUtf8(*exchange);
  for (const std::string& name : classes) wanted.classes.insert(list::keyOf(text::fromUtf8(name)));
  if (!kinds.empty()) wanted.filter.kinds.way = list::KindRule::Way::only;
  for (const std::string& kind : kinds) wanted.filter.kinds.kinds.insert(list::keyOf(text::fromUtf8(kind)));
  wanted.filter.since = text::fromUtf8(since.value_or(""));
  wanted.filter.until = text::fromUtf8(until.value_or(""));
  return wanted;
}

}  // namespace vordane::tools
