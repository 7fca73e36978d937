// What a database engine must bring along to be run through the contract tests: itself, and a way to lay
// out a file with the documented tables.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"

namespace vordane::database {

enum class Layout { faults, ownLanguage, commonLanguage, registration, schedule };

struct Row {
  std::u16string table;
  std::vector<Value> values;  // one for each documented column, in order
};

class EngineUnderTest {
 public:
  virtual ~EngineUnderTest() = default;
  virtual Engine& engine() = 0;
  // A new file with the documented tables of `layout` and these rows; its path.
  virtual std::u16string make(Layout layout, const std::vector<Row>& rows = {}) = 0;
  // False for one that refuses texts with U+0000 or half a pair, as servers must.
  virtual bool keepsEveryCharacter() const { return true; }
};

struct EngineFactory {
  std::string name;
  std::function<std::unique_ptr<EngineUnderTest>()> make;

  // What a failing test calls it.
  friend void PrintTo(const EngineFactory& factory, std::ostream* out) { *out << factory.name; }
};

}  // namespace vordane::database
