#include "setup_language.h"

#include <algorithm>
#include <map>
#include <set>

#include "text/numbers.h"

namespace vordane::tools {
namespace {

// By number, or by list and number: what a row is known by.
using Key = std::u16string;

std::int32_t numberOf(const SourceRow& row) {
  return text::parseInteger(row.fields[0]).value_or(-1);
}

// Rows of `installed` go first, each key of `fresh` that is not among them follows.
template <typename KeyOf>
SourceRows joined(const SourceRows& installed, const SourceRows& fresh, KeyOf keyOf) {
  SourceRows rows = installed;
  std::set<Key> known;
  for (const SourceRow& row : installed) known.insert(keyOf(row));
  for (const SourceRow& row : fresh)
    if (!known.contains(keyOf(row))) rows.push_back(row);
  return rows;
}

Key firstField(const SourceRow& row) {
  return row.fields[0];
}

template <typename Wanted>
SourceRows chosen(const SourceRows& rows, Wanted wanted) {
  SourceRows out;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(out), wanted);
  return out;
}

void sortByNumber(SourceRows& rows) {
  std::stable_sort(rows.begin(), rows.end(),
                   [](const SourceRow& a, const SourceRow& b) { return numberOf(a) < numberOf(b); });
}

}  // namespace

LanguageSource mergedLanguage(const LanguageSource& installed, const LanguageSource& fresh) {
  LanguageSource merged = fresh;
  const auto keptMessage = [](const SourceRow& row) {
    return numberOf(row) >= 0 && numberOf(row) <= lastKeptMessage;
  };
  const auto keptBox = [](const SourceRow& row) { return numberOf(row) < firstOwnBox; };
  merged.messages = joined(chosen(installed.messages, keptMessage), fresh.messages, firstField);
  merged.boxes = joined(chosen(installed.boxes, keptBox), fresh.boxes, firstField);
  // A list is one thing: an item that somebody took out stays out.
  merged.lists = joined(installed.lists,
                        chosen(fresh.lists,
                               [&](const SourceRow& row) {
                                 return std::none_of(
                                     installed.lists.begin(), installed.lists.end(),
                                     [&](const SourceRow& own) { return own.fields[0] == row.fields[0]; });
                               }),
                        [](const SourceRow& row) { return row.fields[0] + u'\t' + row.fields[1]; });
  sortByNumber(merged.messages);
  sortByNumber(merged.boxes);
  return merged;
}

std::optional<std::string> languageOf(const LanguageSource& installed,
                                      std::span<const LanguageSource> shipped) {
  std::map<Key, std::u16string_view> texts;
  for (const SourceRow& row : installed.messages)
    if (!row.fields[1].empty()) texts[row.fields[0]] = row.fields[1];
  const auto same = [&](const LanguageSource& language) {
    return std::count_if(language.messages.begin(), language.messages.end(), [&](const SourceRow& row) {
      const auto found = texts.find(row.fields[0]);
      return found != texts.end() && found->second == row.fields[1];
    });
  };
  const auto best = std::max_element(shipped.begin(), shipped.end(),
                                     [&](const auto& a, const auto& b) { return same(a) < same(b); });
  if (best == shipped.end() || 2 * static_cast<std::size_t>(same(*best)) <= texts.size()) return std::nullopt;
  return best->name;
}

}  // namespace vordane::tools
