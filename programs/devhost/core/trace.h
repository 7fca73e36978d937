// What the development host prints: one line for everything that happens, in the order it happens, in a
// form that two runs can be compared by.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/automation.h"

namespace vordane::devhost {

// A value as the trace writes it: texts in double quotes with \\ \" \r \n \t \xNN, numbers in decimal,
// True, False, Null, Empty, Missing, Nothing, object.
std::u16string written(const automation::Value& value);
std::u16string written(std::span<const automation::Argument> arguments);  // separated by blanks

// "0x800A01BD", then the error's text if it has one.
std::u16string written(const automation::AutomationError& error);

class Trace {
 public:
  // `print` gets each line as UTF-8 without an end.
  explicit Trace(std::function<void(std::string_view)> print) : print_(std::move(print)) {}

  void line(std::u16string_view text);
  // A call from outside; kept, so that a script can wait for it.
  void notification(std::u16string_view member, std::u16string_view arguments);
  // While quiet, nothing is printed; notifications are kept all the same.
  void setQuiet(bool quiet) { quiet_ = quiet; }

  // Position behind the first notification from `from` on whose text begins with `text` as whole words;
  // 0 when there is none.
  std::size_t find(std::u16string_view text, std::size_t from) const;
  std::size_t size() const { return notifications_.size(); }

 private:
  std::function<void(std::string_view)> print_;
  bool quiet_ = false;
  std::vector<std::u16string> notifications_;  // as printed: the member, then its arguments
};

}  // namespace vordane::devhost
