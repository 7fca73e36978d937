#include "devhost/core/report_order.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "text/blanks.h"
#include "text/text.h"

namespace vordane::devhost {
namespace {

using Column = SortKey::Column;

constexpr std::pair<Column, std::u16string_view> columns[] = {
    {Column::fault, u"Fault"}, {Column::alarm, u"Alarm"}, {Column::date, u"Date"},
    {Column::count, u"Count"}, {Column::cpu, u"CPU"},     {Column::description, u"Description"}};

constexpr std::u16string_view table = u"FaultDisplay.";
constexpr std::u16string_view selectedField = u"{PbxList.PBXName}";

using Folded = std::optional<std::u16string>;

Folded folded(const std::optional<std::u16string>& text) {
  if (!text) return std::nullopt;
  return text::toLower(text::withoutTrailingBlanks(*text));
}

// Surrogates stand for the code points behind all others.
char32_t rank(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF ? unit + 0x10000U : unit;
}

int compare(const Folded& a, const Folded& b) {
  if (!a || !b) return (a ? 1 : 0) - (b ? 1 : 0);
  const auto [left, right] = std::mismatch(a->begin(), a->end(), b->begin(), b->end());
  if (left == a->end() || right == b->end())
    return a->size() == b->size() ? 0 : a->size() < b->size() ? -1 : 1;
  return rank(*left) < rank(*right) ? -1 : 1;
}

// What a fault is ordered by: its texts folded once, by column.
struct Keys {
  explicit Keys(const Fault& fault)
      : texts{folded(fault.fault), folded(fault.alarm),      folded(fault.date), {},
              folded(fault.cpu),   folded(fault.description)},
        count(fault.count) {}

  std::array<Folded, 6> texts;
  std::int32_t count;
};

int compare(const Keys& a, const Keys& b, const SortKey& key) {
  const auto column = static_cast<std::size_t>(key.column);
  const int order = key.column == Column::count ? (a.count > b.count) - (a.count < b.count)
                                                : compare(a.texts[column], b.texts[column]);
  return key.descending ? -order : order;
}

}  // namespace

std::u16string_view columnName(Column column) {
  return columns[static_cast<std::size_t>(column)].second;
}

std::optional<SortKey> parseSortFormula(std::u16string_view formula) {
  if (formula.size() < 3 || (formula[0] != u'+' && formula[0] != u'-') || formula[1] != u'{' ||
      formula.back() != u'}')
    return std::nullopt;
  const std::u16string_view field = formula.substr(2, formula.size() - 3);
  if (!text::equalIgnoringCase(text::left(field, table.size()), table)) return std::nullopt;
  for (const auto& [column, name] : columns)
    if (text::equalIgnoringCase(field.substr(table.size()), name)) return SortKey{column, formula[0] == u'-'};
  return std::nullopt;
}

std::optional<std::u16string> parseSelectionFormula(std::u16string_view formula) {
  if (!text::equalIgnoringCase(text::left(formula, selectedField.size()), selectedField)) return std::nullopt;
  std::u16string_view rest = text::trim(formula.substr(selectedField.size()));
  if (rest.empty() || rest.front() != u'=') return std::nullopt;
  rest = text::trim(rest.substr(1));
  if (rest.size() < 2 || rest.front() != u'\'' || rest.back() != u'\'') return std::nullopt;
  rest = rest.substr(1, rest.size() - 2);
  std::u16string name;
  for (std::size_t i = 0; i < rest.size(); ++i) {
    name += rest[i];
    if (rest[i] == u'\'' && (++i == rest.size() || rest[i] != u'\'')) return std::nullopt;
  }
  return name;
}

void sortFaults(std::vector<Fault>& faults, std::span<const SortKey> keys) {
  std::vector<Keys> folded(faults.begin(), faults.end());
  std::vector<std::size_t> order(faults.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    for (const SortKey& key : keys)
      if (const int result = compare(folded[a], folded[b], key); result != 0) return result < 0;
    return false;
  });
  std::vector<Fault> sorted;
  sorted.reserve(faults.size());
  for (const std::size_t position : order) sorted.push_back(std::move(faults[position]));
  faults = std::move(sorted);
}

}  // namespace vordane::devhost
