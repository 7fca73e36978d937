// The contract of a database engine, as tests that any engine can be run through: instantiate
// DatabaseContract with its factory.
#pragma once

#include <gtest/gtest.h>

#include "database/maker.h"

namespace vordane::database {

// Gives a readable failure for texts that gtest would print as numbers.
std::string shown(const Value& value);
inline Value text(std::u16string_view characters) {
  return std::u16string(characters);
}

class DatabaseContract : public testing::TestWithParam<EngineFactory> {
 protected:
  DatabaseContract() : under_(GetParam().make()) {}

  std::unique_ptr<Database> open(Layout layout, const std::vector<Row>& rows = {}, bool readOnly = false) {
    path_ = under_->make(layout, rows);
    return under_->engine().open(path_, readOnly);
  }
  Engine& engine() { return under_->engine(); }

  std::unique_ptr<EngineUnderTest> under_;
  std::u16string path_;
};

// One column of every row, as texts.
std::vector<std::string> column(Database& database, std::u16string_view statement, std::u16string_view name);
int numberOfError(const std::function<void()>& step);  // 0 when nothing was thrown

struct Fault {
  std::int16_t id = 1;
  std::u16string fault = u"01", alarm = u"MJ", cpu = u"MP   ", date = u"2006/11/27 10:15", description = u"x";
};
void addExchange(Database& database, std::u16string_view name,
                 std::u16string_view time = u"2006-11-27 10:15:00");
void addFault(Database& database, const Fault& fault);
std::u16string findSame(const Fault& fault);
bool isStored(Database& database, const Fault& fault);

}  // namespace vordane::database
