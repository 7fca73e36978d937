// What a reset of alarms leaves behind: who asked for it, where and when, what was lit, and what came of it.
// Receipts stand beside the documented tables, are added and never changed, and stay when their exchange is
// deleted. None of this is a documented statement, and no lock is held between two calls. One thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::database {

// One line of the exchange's answer, as it came.
struct ReceiptEntry {
  std::u16string command, first, second, extra;
  bool operator==(const ReceiptEntry&) const = default;
};

struct ReceiptLamps {
  bool major = false, minor = false;
  bool operator==(const ReceiptLamps&) const = default;
};

struct Receipt {
  std::int64_t number = 0;             // given when it is kept: a later one has a higher
  std::u16string moment;               // of the asking: "YYYY-MM-DD HH:MM:SS", the station's local time
  std::u16string exchange;             // as it was asked
  std::u16string person, workstation;  // their names
  std::optional<ReceiptLamps> lamps;   // nothing: the exchange was not stored
  std::u16string outcome;              // one word or a few, the same in every language
  std::optional<std::int32_t> code;    // of the answer or of the error, where the outcome has one
  std::int32_t answered = 0;           // lines that the answer had; 0 without one
  std::vector<ReceiptEntry> entries;   // the first of them
};

class Receipts {
 public:
  virtual ~Receipts() = default;
  // All of these throw DatabaseError, also when somebody else holds the store for longer than a moment.

  // Adds one. Its number is given here, and its lamps are those that the exchange's row has now.
  virtual void keep(const Receipt& receipt) = 0;
  // The latest of an exchange, without its entries. Names compare as texts do in statements.
  virtual std::optional<Receipt> last(std::u16string_view exchange) = 0;
  // All of them, the latest first, with their entries.
  virtual void read(const std::function<void(const Receipt&)>& take) = 0;
};

}  // namespace vordane::database
