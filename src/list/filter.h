// What a person wants to see of the stored faults. A filter is a value; nothing here reads a row.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vordane::list {

// A stored date as one number, YYYYMMDDHHMM, so that its order is that of the text.
using Minute = std::uint64_t;
inline constexpr Minute noMinute = ~Minute{0};

// Of "YYYY/MM/DD HH:MM", trailing blanks aside; noMinute for any other text.
Minute minuteOf(std::u16string_view stored);

// What a person wrote: a year, a month or a day stands for its first minute at the one end of a stretch of
// time and for its last at the other. Nothing when it is written in another style.
enum class End { since, until };
std::optional<Minute> readMinute(std::u16string_view written, End end);

// How texts of kinds and processors are told apart: without case and the blanks around them.
std::u16string keyOf(std::u16string_view text);

// Which kinds are shown: all, only some, or all but some, those included that are not stored yet.
struct KindRule {
  enum class Way { all, only, without };
  Way way = Way::all;
  std::set<std::u16string> kinds;  // by their keys

  bool shows(const std::u16string& key) const;
  void set(const std::u16string& key, bool shown);
  bool operator==(const KindRule&) const = default;
};

struct Filter {
  std::u16string text;  // in any column or in the note, case not regarded
  bool noted = false;   // only faults with a note
  bool major = true, minor = true;
  KindRule kinds;
  std::optional<std::u16string> processor;  // by its key
  std::u16string since, until;              // as they were written; empty: no limit
  bool otherDates = false;                  // with a limit, rows whose date has another form are shown too

  bool operator==(const Filter&) const = default;
};

// What keeps a filter from being followed.
enum class Mistake { none, since, until, order };
Mistake mistakeIn(const Filter& filter);

// The time that a filter lets through, which may have no limit at either end or at both.
class Limits {
 public:
  explicit Limits(const Filter& filter);  // one without a mistake
  bool any() const { return any_; }
  bool hold(Minute minute) const { return minute >= since_ && minute <= until_; }  // false for noMinute

 private:
  bool any_;
  Minute since_, until_;
};

// Whether it asks for anything, so that it may hide a row.
bool isOn(const Filter& filter);

// Both classes ticked show every row, whatever its class.
bool showsClass(const Filter& filter, std::u16string_view alarm);
// Whether rows of this kind, class and processor are shown, as far as time and text let them.
bool showsGroup(const Filter& filter, std::u16string_view kind, std::u16string_view alarm,
                std::u16string_view processor);

}  // namespace vordane::list
