// What is traced, on its way into lines: each event is one JSON object, but for entries of lists, of which
// many stand in one. Lines are made here and handed to a thread that writes them. Whatever fails, and
// whatever finds no room, is left out and counted; no member throws. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/automation.h"
#include "trace/json_text.h"
#include "trace/list_lines.h"
#include "trace/secrets.h"
#include "trace/writer.h"

namespace vordane::trace {

class Recorder;

// One line on its way: its fields in the order in which they are named. May throw bad_alloc.
class Line {
 public:
  Line(Recorder& recorder, std::string& out) : recorder_(recorder), out_(out) {}

  Line& word(std::string_view name, std::string_view value);  // ASCII without anything to escape
  Line& text(std::string_view name, std::u16string_view value);
  Line& number(std::string_view name, std::int64_t value);
  Line& flag(std::string_view name, bool value);
  Line& value(std::string_view name, const automation::Value& value);
  // The values as an array, and the positions of those that are passed by reference where there are any.
  Line& arguments(std::span<const automation::Argument> arguments);
  // The values that differ between the two, by their positions; nothing when none does.
  Line& changes(std::span<const automation::Argument> before, std::span<const automation::Argument> after);

 private:
  void name(std::string_view name);
  void append(std::u16string_view text);
  void append(const automation::Value& value);

  Recorder& recorder_;
  std::string& out_;
};

class Recorder {
 public:
  static constexpr std::size_t usualRing = 8 << 20;
  // Characters; of a longer one a line has the beginning.
  static constexpr std::size_t longestText = ListLines::longestText;

  Recorder(std::unique_ptr<Writer> writer, Clock clock, bool identifiersShown)
      : writer_(std::move(writer)), clock_(std::move(clock)), secrets_(identifiersShown) {}
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  Moment now() const { return clock_(); }
  // A number for what has a beginning and an end, and for each object.
  std::int64_t next() { return ++numbers_; }

  // Writes one line; `fill` names its fields.
  template <class Fill>
  void tell(std::string_view event, Fill fill) noexcept {
    try {
      Line line = begin(event);
      fill(line);
      end();
    } catch (const std::exception&) {
      ++leftOut_;
    }
  }

  // An entry of a list as it was read. `text` is at most `longestText` long.
  void entry(std::int64_t object, int column, std::int16_t index, std::u16string_view text) noexcept {
    if (list_.takes(object, column, index, text.size()) || beginList(object, index))
      list_.add(column, index, text);
  }

  // The log-in identifiers that no line shows.
  Secrets& secrets() { return secrets_; }

  // An object has this number from now on, and until it is forgotten.
  void name(const automation::Object& object, std::int64_t number) { objects_[&object] = number; }
  void forget(const automation::Object& object) { objects_.erase(&object); }
  std::int64_t numberOf(const automation::Object& object) const;  // 0: none

  // All that was told is written when it returns, if that takes no longer than a second.
  void flush() noexcept;

 private:
  static constexpr std::size_t unwokenAtMost = 1 << 20;  // bytes

  Line begin(std::string_view event);
  void end();
  bool beginList(std::int64_t object, std::int16_t index) noexcept;
  void endList() noexcept;
  // Whether the line has found room, and those that were left out before it have been told.
  bool put(std::string_view line) noexcept;

  std::unique_ptr<Writer> writer_;
  Clock clock_;
  Secrets secrets_;
  std::string line_;
  std::unordered_map<const automation::Object*, std::int64_t> objects_;
  std::int64_t numbers_ = 0;
  std::size_t leftOut_ = 0;
  ListLines list_;
  std::size_t unwoken_ = 0;  // bytes put since the other thread was last woken
};

// The system's own time.
Moment systemMoment();

}  // namespace vordane::trace
