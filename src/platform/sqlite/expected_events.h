// Events that are about to be looked for one after the other. They are looked for together, in the order of
// the index, by one statement that reads them from here; whoever then asks for one of them gets what was
// found.
//
// What this buys: the engine's work around each look-up (binding, starting, ending) is as much as the look-up
// itself (docs/performance.md).
//
// The answers hold as long as the transaction in which they were found and nothing but the events themselves,
// each after it was asked for, is added meanwhile. The index keeps watch over that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite/event_keys.h"

namespace vordane::sqlite {

class ExpectedEvents {
 public:
  struct Keys {
    std::string_view moment;
    std::int64_t hash;
  };

  // The connection must live longer. Registers what the statement reads.
  explicit ExpectedEvents(Connection& connection);
  ExpectedEvents(const ExpectedEvents&) = delete;
  ExpectedEvents& operator=(const ExpectedEvents&) = delete;

  // The texts are copied; none is Null.
  void add(std::int64_t owner, const EventTexts& texts);
  // Inside a transaction. Throws DatabaseError when that has ended by it; where it has not, a failure leaves
  // each event to be asked for alone.
  void look(const Table& table);
  void forget() noexcept;

  // The keys of the rows that agree, oldest first, when this is the next of them and its answer is known.
  const std::vector<std::int64_t>* next(std::int64_t owner, const EventTexts& texts);
  // What the index keeps of the event that was asked for last, when it is this one.
  std::optional<Keys> lastAsked(std::int64_t owner, const EventTexts& texts) const;

 private:
  friend struct ExpectedTable;
  struct Event {
    std::int64_t owner = 0, hash = 0;
    std::size_t texts = 0;  // where they begin
    std::array<std::size_t, std::tuple_size_v<EventTexts>> sizes{};
    std::string moment;
    std::vector<std::int64_t> found;
    // Another one of them has the same keys: what is found depends on whether that was added.
    bool alone = false;
  };
  bool is(const Event& event, std::int64_t owner, const EventTexts& texts) const;
  bool inOrder(std::size_t a, std::size_t b) const;
  void sort();
  void prepare(const Table& table);
  bool read();

  Connection& connection_;
  std::vector<Event> events_;  // keep their memory; the first `count_` count
  std::size_t count_ = 0, next_ = 0;
  bool looked_ = false, asked_ = false;
  std::u16string texts_;
  std::vector<std::size_t> order_;  // of the index
  Statement rows_;
};

}  // namespace vordane::sqlite
