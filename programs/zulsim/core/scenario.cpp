#include "zulsim/core/scenario.h"

#include "text/text.h"
#include "zulsim/core/generator.h"

namespace vordane::zulsim {

const Exchange* findExchange(const Scenario& scenario, std::u16string_view name) {
  const Exchange* any = nullptr;
  for (const Exchange& exchange : scenario.exchanges) {
    if (exchange.name == name) return &exchange;
    if (exchange.name == u"*") any = &exchange;
  }
  return any;
}

const Command* findCommand(const Exchange& exchange, std::u16string_view key) {
  for (const Command& command : exchange.commands)
    if (text::equalIgnoringCase(command.key, key)) return &command;
  return nullptr;
}

std::vector<Entry> entriesOf(const Answer& answer, std::uint64_t seedOffset) {
  std::vector<Entry> entries;
  for (const auto& part : answer.parts) {
    if (const auto* entry = std::get_if<Entry>(&part))
      entries.push_back(*entry);
    else
      generate(std::get<Generation>(part), seedOffset, entries);
  }
  const auto drop = static_cast<std::size_t>(answer.dropLast);
  entries.resize(entries.size() > drop ? entries.size() - drop : 0);
  return entries;
}

}  // namespace vordane::zulsim
