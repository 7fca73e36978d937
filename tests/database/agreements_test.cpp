// What a file keeps of its last writer, beside the documented tables.
#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

using database::Agreement;

class AgreementsTest : public FaultIndexTest {};

TEST_F(AgreementsTest, TheLastOneIsKept) {
  const Agreement english{u"English", u"0123"}, russian{u"русский", u"4567"};
  {
    const auto database = open();
    EXPECT_EQ(database->kept(u"Language"), std::nullopt);
    database->keep(u"Language", english);
    EXPECT_EQ(database->kept(u"Language"), english);
    EXPECT_EQ(database->kept(u"Another"), std::nullopt);
    database->keep(u"Another", russian);
    database->keep(u"Language", russian);
    EXPECT_EQ(database->kept(u"Language"), russian);
  }
  database::Agreement again = *open()->kept(u"Language");
  EXPECT_EQ(again, russian);
  EXPECT_EQ(
      OtherTool(path_).run("SELECT Subject || '|' || Name || '|' || Mark FROM VordaneAgreements ORDER BY "
                           "Subject DESC"),
      "Language|русский|4567\nAnother|русский|4567\n");
}

TEST_F(AgreementsTest, WhoOnlyAsksMakesNoTable) {
  open()->kept(u"Language");
  EXPECT_EQ(OtherTool(path_).run("SELECT count(*) FROM sqlite_schema WHERE name = 'VordaneAgreements'"),
            "0\n");
}

TEST_F(AgreementsTest, WhatAnotherKeepsUnderTheNameStaysAsItIs) {
  OtherTool(path_).run("CREATE TABLE vordaneagreements (Subject TEXT, Name TEXT, Mark TEXT)");
  OtherTool(path_).run("INSERT INTO vordaneagreements VALUES ('Language', 'theirs', 'x')");
  const auto database = open();
  const auto code = [&](const std::function<void()>& step) {
    try {
      step();
    } catch (const database::DatabaseError& error) {
      return error.number();
    }
    return 0;
  };
  EXPECT_EQ(code([&] { database->kept(u"Language"); }), 3204);
  EXPECT_EQ(code([&] { database->keep(u"Language", {u"English", u"0123"}); }), 3204);
  EXPECT_EQ(OtherTool(path_).run("SELECT Name FROM vordaneagreements"), "theirs\n");
}

TEST_F(AgreementsTest, TheFileOnlyReadKeepsNothingAndTellsWhatIsThere) {
  open()->keep(u"Language", {u"English", u"0123"});
  const auto database = open(true);
  EXPECT_EQ(database->kept(u"Language")->name, u"English");
  EXPECT_THROW(database->keep(u"Language", {u"русский", u"4567"}), database::DatabaseError);
  EXPECT_EQ(database->kept(u"Language")->name, u"English");
}

}  // namespace
}  // namespace vordane::sqlite
