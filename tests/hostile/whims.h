// What hostile peers answer: values of every type and size, errors of every kind, by a generator that says
// the same for the same seed on every system.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "platform/automation.h"

namespace vordane::hostile {

class Whims {
 public:
  explicit Whims(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next();
  // A number from 0 to `count` - 1.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(next() % count); }
  bool once(std::size_t in) { return below(in) == 0; }
  template <class Type>
  Type oneOf(std::initializer_list<Type> list) {
    return list.begin()[below(list.size())];
  }

  // Anything but an object.
  automation::Value value();
  std::u16string text();
  std::int32_t number();
  std::int32_t errorCode();
  [[noreturn]] void fail();
  // The texts that lead somewhere: refusals, tags, record kinds, lamp states.
  std::u16string knownText();

 private:
  std::u16string strangeText();
  std::u16string longText();
  std::uint64_t state_;
};

}  // namespace vordane::hostile
