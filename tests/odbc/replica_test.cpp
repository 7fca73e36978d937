// The window at a server that is a replica, and then none any more: the same objects go on.
#include <algorithm>
#include <cstdlib>

#include "odbc/server_story.h"
#include "places.h"

namespace vordane::startup {
namespace {

class AtReplica : public ServerStory {
 protected:
  // The second server of with-server.sh.
  std::string socket() const { return std::string(std::getenv("VORDANE_SECOND")) + "/socket"; }
  std::string askReplica(const std::string& question) {
    return text::toUtf8(
        odbc::connectThrough(socket(), store_)->query(question).at(0).at(0).value_or(u"Null"));
  }
  int boxesThatRefuse() {
    const Lines lines = taken();
    return static_cast<int>(
        std::count(lines.begin(), lines.end(),
                   "Box 102 No permission to open file 'the server is a replica, which takes no changes'."));
  }
  void press(int action, const std::vector<std::u16string>& answer) {
    pressAndTick(action);
    exchange().answer(0, answer);
    trace.clear();
    tick();
  }
};

TEST_F(AtReplica, WhatIsStoredIsShownAndStoringEndsInABoxUntilItIsPromoted) {
  ask("insert into vordane.\"PBXList\" (\"PBXName\", \"TimeStamp\", \"MJ\") values ('PBX-1', '2006-11-27 "
      "10:15:00', -1) returning 1");
  ask("insert into vordane.\"FaultDisplay\" (\"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", "
      "\"Description\") values (1, '15', 'MJ', 'MP   ', '2006/11/27 10:15', 'x') returning 1");
  ask("insert into vordane.\"VordaneAgreements\" values ('Identity', 'Identity', '0123') returning 1");
  ASSERT_EQ(std::system((test::sourceFolder() / "tests/odbc/make-replica.sh").string().c_str()), 0);
  useServer({}, sources_.writeThrough(socket(), store_));
  startWithHost();
  EXPECT_TRUE(taken().empty());
  ASSERT_NE(view.rows, nullptr);
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_TRUE(view.majorLit);

  for (int time = 0; time < 2; ++time) {
    press(0, faults(0, 5));
    EXPECT_EQ(boxesThatRefuse(), 1);
    EXPECT_FALSE(state.busy);
    EXPECT_EQ(view.rows->size(), 1U);
  }
  boxes.answer = 6;
  trace.clear();
  pressAndTick(3);  // delete
  EXPECT_EQ(boxesThatRefuse(), 1);
  EXPECT_EQ(askReplica("select count(*)::text from vordane.\"FaultDisplay\""), "1");

  askReplica("select pg_promote()::text");
  fetch(faults(0, 5));
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::HasSubstr("5 received, 5 new, 0 stored, 0 refused"));
  EXPECT_EQ(view.rows->size(), 6U);
  EXPECT_EQ(askReplica("select count(*)::text from vordane.\"FaultDisplay\""), "6");
  EXPECT_EQ(ask("select count(*)::text from vordane.\"FaultDisplay\""), "1");
}

}  // namespace
}  // namespace vordane::startup
