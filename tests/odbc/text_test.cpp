// The rules of text on the server, whatever its own collation is, and the documented tables as any client
// sees them.
#include <gtest/gtest.h>

#include "database/contract.h"
#include "odbc/server_store.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::addExchange;
using database::addFault;
using database::column;
using database::Fault;
using database::isStored;
using database::Layout;
using database::numberOfError;

std::vector<std::string> shown(const std::vector<Fields>& rows) {
  std::vector<std::string> lines;
  for (const Fields& row : rows) {
    std::string line;
    for (const Field& field : row)
      line += (line.empty() ? "" : "|") + (field ? text::toUtf8(*field) : "Null");
    lines.push_back(line);
  }
  return lines;
}

class ServerStore : public testing::Test {
 protected:
  ServerStore() { path_ = under_.make(Layout::faults), database_ = under_.engine().open(path_, false); }
  // Another program's client.
  std::vector<std::string> ask(const std::string& statement) {
    return shown(connectTo(under_.database())->query(statement));
  }
  void run(const std::string& statement) { runOn(under_.database(), statement); }

  ServerUnderTest under_;
  std::u16string path_;
  std::unique_ptr<database::Database> database_;
};

TEST_F(ServerStore, ReadsAsDocumentedFromAnyClient) {
  addExchange(*database_, u"PBX-1");
  const auto exchange = database_->openRecordset(u"Select * FROM PBXList");
  exchange->edit();
  exchange->set(u"MJ", true);
  exchange->update();
  addFault(*database_, {1, u"01", u"MJ", u"MP   ", u"2006/11/27 10:15", u"Title"});
  EXPECT_EQ(ask("select \"ID\", \"PBXName\", \"TimeStamp\", \"MJ\", \"MN\" from vordane.\"PBXList\""),
            (std::vector<std::string>{"1|PBX-1|2006-11-27 10:15:00|-1|0"}));
  EXPECT_EQ(ask("select * from vordane.\"FaultDisplay\""),
            (std::vector<std::string>{"1|01|MJ|MP   |2006/11/27 10:15|1|Title"}));
}

TEST_F(ServerStore, FindsWhatAnotherClientWroteChangedAndRemoved) {
  run("insert into vordane.\"FaultDisplay\" (\"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", "
      "\"Description\") values "
      "(1, '01', 'mj', 'MP', '2006/11/27', 'One'), (1, '02', 'MJ', 'MP', '2006/11/28', 'Two')");
  EXPECT_TRUE(isStored(*database_, {1, u"01", u"MJ", u"MP   ", u"2006/11/27", u"ONE"}));
  run("update vordane.\"FaultDisplay\" set \"Description\" = 'Three' where \"Fault\" = '01'");
  EXPECT_FALSE(isStored(*database_, {1, u"01", u"MJ", u"MP   ", u"2006/11/27", u"ONE"}));
  EXPECT_TRUE(isStored(*database_, {1, u"01", u"MJ", u"MP   ", u"2006/11/27", u"three"}));
  run("delete from vordane.\"FaultDisplay\" where \"Fault\" = '01'");
  EXPECT_FALSE(isStored(*database_, {1, u"01", u"MJ", u"MP   ", u"2006/11/27", u"three"}));
  EXPECT_EQ(ask("select count(*) from vordane.\"VordaneEventIndex\""), std::vector<std::string>{"1"});
  run("truncate vordane.\"FaultDisplay\"");
  EXPECT_EQ(ask("select count(*) from vordane.\"VordaneEventIndex\""), std::vector<std::string>{"0"});
}

TEST_F(ServerStore, RemovesRowsThatHaveNoTimeOrNoOwner) {
  run("insert into vordane.\"FaultDisplay\" (\"ID\", \"Date\") values (1, null), (null, '2006/11/27'), (2, "
      "'x')");
  run("delete from vordane.\"FaultDisplay\" where \"Date\" is null or \"ID\" is null");
  EXPECT_EQ(ask("select \"Owner\" from vordane.\"VordaneEventIndex\""), std::vector<std::string>{"2"});
}

TEST_F(ServerStore, FoldsEveryCharacterAsTheProgramDoes) {
  const auto link = connectTo(under_.database());
  std::u16string all;
  for (char32_t c = 1; c <= 0xFFFF; ++c)
    if (c < 0xD800 || c > 0xDFFF) all.push_back(static_cast<char16_t>(c));
  all.push_back(u'x');
  constexpr std::size_t piece = 4096;
  for (std::size_t at = 0; at < all.size(); at += piece) {
    const Field some = all.substr(at, piece) + u"A";
    const auto folded = link->query("select vordane.fold(cast(? as text))", {&some, 1});
    ASSERT_EQ(folded.at(0).at(0), Field(text::toLower(*some))) << at;
  }
  const Field blanks = u"A B  ";
  EXPECT_EQ(link->query("select vordane.fold(cast(? as text))", {&blanks, 1}).at(0).at(0), Field(u"a b"));
}

// It stands in the index of every store that there is.
TEST_F(ServerStore, HashesAsEver) {
  EXPECT_EQ(ask("select encode(vordane.hash('15', 'MP   ', 'mj', 'Порт 4 '), 'hex')"),
            std::vector<std::string>{"d883fbc24d7d60f8"});
}

TEST_F(ServerStore, TwoRowsMayBecomeAlike) {
  addFault(*database_, {1, u"01", u"MJ", u"MP", u"06/11/27", u"x"});
  addFault(*database_, {1, u"01", u"MJ", u"MP", u"2006/11/27", u"x"});
  const auto rows = database_->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
  ASSERT_EQ(database::shown(rows->get(u"Date")), "2006/11/27");
  rows->moveNext();
  rows->edit();
  rows->set(u"Date", std::u16string(u"2006/11/27"));
  rows->update();
  EXPECT_EQ(column(*database_, u"Select * from FaultDisplay", u"Date"),
            (std::vector<std::string>{"2006/11/27", "2006/11/27"}));
  EXPECT_TRUE(isStored(*database_, {1, u"01", u"MJ", u"MP", u"2006/11/27", u"x"}));
}

TEST_F(ServerStore, TheNewestRowCanBeChangedBeforeAnyOtherIsRead) {
  addFault(*database_, {1, u"01", u"MJ", u"MP", u"06/11/27", u"x"});
  addFault(*database_, {1, u"02", u"MJ", u"MP", u"06/11/28", u"y"});
  const auto rows = database_->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
  rows->edit();
  rows->set(u"Date", std::u16string(u"2006/11/28"));
  rows->update();
  EXPECT_EQ(database::shown(rows->get(u"Date")), "2006/11/28");
  rows->moveNext();
  EXPECT_EQ(database::shown(rows->get(u"Description")), "x");
  EXPECT_EQ(column(*database_, u"Select * from FaultDisplay", u"Date"),
            (std::vector<std::string>{"06/11/27", "2006/11/28"}));
}

TEST_F(ServerStore, HoldsOneExchangeOfAName) {
  addExchange(*database_, u"PBX-1");
  EXPECT_EQ(numberOfError([&] { addExchange(*database_, u"pbx-1 "); }), 3022);
  addExchange(*database_, u"PBX-2");
  EXPECT_EQ(column(*database_, u"Select * FROM PBXList", u"PBXName"),
            (std::vector<std::string>{"PBX-1", "PBX-2"}));
  database_->execute(u"DELETE FROM PBXList WHERE ID = 1");
  addExchange(*database_, u"pbx-1 ");
}

TEST_F(ServerStore, ANumberThatFitsNoColumnFindsNothing) {
  addExchange(*database_, u"A");
  EXPECT_TRUE(
      database_->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'A' AND ID = 99999999999999999999")
          ->isEmpty());
  database_->execute(u"DELETE FROM FaultDisplay WHERE ID = 99999999999999999999");
}

}  // namespace
}  // namespace vordane::odbc
