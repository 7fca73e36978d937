// Events that are about to be looked for one after the other: the server is asked for many of them at once.
//
// The answers hold as long as the transaction in which they were given, in which nobody else adds events of
// their owner, and nothing but the events themselves is added meanwhile. One thread.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/odbc/values.h"

namespace vordane::odbc {

class ExpectedEvents {
 public:
  // From here on these are expected, and none that was before.
  void clear();
  // `fields` are the parts by which it is looked for, in an order of the caller's; the first is its owner.
  void add(const std::u16string& identity, std::vector<Field> fields);

  // The keys of the events that agree, when that is known; null when the server has to be asked.
  const std::vector<std::int64_t>* known(const std::u16string& identity) const;
  // Whether it is one of them, to be asked for with those that come behind it and have the same owner: what
  // the question takes, an array of each field. The answers have rows (place in the arrays from 1, key).
  bool contains(const std::u16string& identity) const { return places_.contains(identity); }
  Fields ask(const std::u16string& identity);
  void take(const std::vector<Fields>& answers);
  void forgetAnswers() { asked_ = answered_ = 0; }

 private:
  struct Event {
    std::vector<Field> fields;
    std::vector<std::int64_t> keys;
  };
  std::vector<Event> events_;
  std::unordered_map<std::u16string, std::size_t> places_;
  std::size_t asked_ = 0, answered_ = 0,
              asking_ = 0;  // the first; behind the last that is known, and asked for
};

}  // namespace vordane::odbc
