// An object that a host lends to others, who call it late-bound: members by name, without regard to case,
// each a function of this program. It lives as long as somebody holds it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "early_bound.h"

namespace dispatch {

// The arguments of a call from outside.
class Arguments {
 public:
  explicit Arguments(const DISPPARAMS& parameters) : parameters_(parameters) {}
  // The value at that position (from 0), whether it came by value or by reference; Empty when it was left
  // out.
  Value at(UINT position) const { return position < parameters_.cArgs ? Value(raw(position)) : Value(); }
  template <class Type>
  Type as(UINT position) const {
    return at(position).as<Type>();
  }
  // Assigns to an argument that came by reference; nothing happens to any other.
  void put(UINT position, const Value& value) const;

 private:
  const VARIANT& raw(UINT position) const { return parameters_.rgvarg[parameters_.cArgs - 1 - position]; }
  const DISPPARAMS& parameters_;
};

struct LentMember {
  const wchar_t* name;
  std::function<Value(const Arguments&)> answer;  // an Error that it throws reaches the caller
};

// A new object with those members.
Object lend(std::vector<LentMember> members);

}  // namespace dispatch
