// The DAO engine under the contract tests, on a workstation of the tests' own. A call that no DAO takes fails
// the test, whatever came of it.
#pragma once

#include <gtest/gtest.h>

#include "dao/dao_fake.h"
#include "database/embedded.h"
#include "platform/dao/dao_engine.h"
#include "startup/databases.h"

namespace vordane::fakes {

class DaoUnderTest : public database::EngineUnderTest {
 public:
  ~DaoUnderTest() override { EXPECT_EQ(workstation.world->misuse, std::vector<std::string>{}); }
  database::Engine& engine() override { return *engine_; }
  std::u16string make(database::Layout layout, const std::vector<database::Row>& rows = {}) override {
    return files_.make(layout, rows);
  }

  DaoWorkstation workstation;

 private:
  sqlite::EmbeddedUnderTest files_;
  std::unique_ptr<database::Engine> engine_ =
      dao::makeEngine(startup::databases, workstation, std::chrono::milliseconds(40));
};

}  // namespace vordane::fakes
