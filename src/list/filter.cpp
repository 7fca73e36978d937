#include "list/filter.h"

#include "text/blanks.h"
#include "text/dates.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::list {
namespace {

constexpr std::u16string_view pattern = u"0000/00/00 00:00";
// What a stretch of time begins and ends with where a person has written less; the pattern is the earliest.
constexpr std::u16string_view last = u"9999/99/99 99:99";
constexpr std::u16string_view major = u"mj", minor = u"mn";

Minute numberOf(std::u16string_view whole) {
  Minute number = 0;
  for (const char16_t character : whole)
    if (text::isDecimalDigit(character)) number = number * 10 + (character - u'0');
  return number;
}

bool hasLimit(const Filter& filter) {
  return !text::trim(filter.since).empty() || !text::trim(filter.until).empty();
}

}  // namespace

Minute minuteOf(std::u16string_view stored) {
  const std::u16string_view text = text::withoutTrailingBlanks(stored);
  return text::hasForm(text, pattern) ? numberOf(text) : noMinute;
}

std::optional<Minute> readMinute(std::u16string_view written, End end) {
  const std::u16string_view text = text::trim(written);
  const bool whole = text.size() == 4 || text.size() == 7 || text.size() == 10 || text.size() == 13 ||
                     text.size() == pattern.size();
  if (!whole || !text::hasForm(text, pattern.substr(0, text.size()))) return {};
  return numberOf(std::u16string(text).append((end == End::since ? pattern : last).substr(text.size())));
}

std::u16string keyOf(std::u16string_view text) {
  return text::toLower(text::trim(text));
}

bool KindRule::shows(const std::u16string& key) const {
  return way == Way::all || kinds.contains(key) == (way == Way::only);
}

void KindRule::set(const std::u16string& key, bool shown) {
  if (way == Way::all && !shown) way = Way::without;
  if (way == Way::all) return;
  if (shown == (way == Way::only))
    kinds.insert(key);
  else
    kinds.erase(key);
  if (way == Way::without && kinds.empty()) way = Way::all;
}

Mistake mistakeIn(const Filter& filter) {
  const auto since = readMinute(filter.since, End::since), until = readMinute(filter.until, End::until);
  const bool noSince = text::trim(filter.since).empty(), noUntil = text::trim(filter.until).empty();
  if (!noSince && !since) return Mistake::since;
  if (!noUntil && !until) return Mistake::until;
  return since && until && *since > *until ? Mistake::order : Mistake::none;
}

Limits::Limits(const Filter& filter)
    : any_(hasLimit(filter)),
      since_(readMinute(filter.since, End::since).value_or(0)),
      until_(readMinute(filter.until, End::until).value_or(noMinute - 1)) {}

bool isOn(const Filter& filter) {
  return !filter.text.empty() || filter.noted || !filter.major || !filter.minor ||
         filter.kinds.way != KindRule::Way::all || filter.processor || hasLimit(filter);
}

bool showsClass(const Filter& filter, std::u16string_view alarm) {
  if (filter.major && filter.minor) return true;
  const std::u16string key = keyOf(alarm);
  return (filter.major && key == major) || (filter.minor && key == minor);
}

bool showsGroup(const Filter& filter, std::u16string_view kind, std::u16string_view alarm,
                std::u16string_view processor) {
  return showsClass(filter, alarm) && filter.kinds.shows(keyOf(kind)) &&
         (!filter.processor || *filter.processor == keyOf(processor));
}

}  // namespace vordane::list
