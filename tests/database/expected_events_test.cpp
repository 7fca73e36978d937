// Events that are announced before they are looked for: what each of them answers is what it would have
// answered without, whatever comes between.
#include "database/fault_index.h"
#include "platform/sqlite/event_keys.h"
#include "store/fault_database.h"

namespace vordane::sqlite {
namespace {

using database::Statement;

Statement asking(const Fault& fault) {
  return store::statement::findFault.with(
      {fault.id, fault.fault, fault.cpu, fault.alarm, fault.date, fault.description});
}

class ExpectedEventsTest : public FaultIndexTest {
 protected:
  // Two files with the same content; what is to come is announced in the first alone.
  ExpectedEventsTest() {
    for (const std::u16string& path : {path_, second_}) {
      files_.push_back(under_.engine().open(path, false));
      besides_.push_back(under_.engine().open(path, false));
      files_.back()->beginBatch();
    }
  }
  // Mostly one of a few, some alike but for case and blanks, some that break their statement.
  Fault any() {
    constexpr std::u16string_view texts[] = {u"a", u"A", u"a ", u"b", u"ж", u"Ж", u"'", u"\""};
    const auto text = [&] { return std::u16string(texts[random_() % (random_() % 8 == 0 ? 8 : 6)]); };
    return {static_cast<std::int16_t>(1 + random_() % 2),
            text(),
            u"MJ",
            u"MP",
            u"2006/01/0" + std::u16string(1, char16_t(u'1' + random_() % 9)),
            text()};
  }
  // The keys of the rows, or the error.
  static std::vector<std::string> keys(database::Database& file, const Fault& fault) {
    try {
      std::vector<std::string> all;
      for (const auto rows = file.openRecordset(asking(fault)); !rows->atEnd(); rows->moveNext())
        all.push_back(shown(rows->get(u"Count")));
      return all;
    } catch (const database::DatabaseError& error) {
      return {"error " + std::to_string(error.number())};
    }
  }
  void between() {
    switch (random_() % 60) {
      case 0:
        for (const auto& file : files_) file->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
        break;
      case 1: {
        const std::u16string date = any().date;
        for (const auto& file : files_) {
          const auto rows = file->openRecordset(u"Select * from FaultDisplay");
          if (rows->atEnd()) continue;
          rows->edit();
          rows->set(u"Date", date);
          rows->update();
        }
        break;
      }
      case 2:
      case 3: {  // the list is made safe, and another process is quicker
        const Fault fault = any();
        for (std::size_t i = 0; i < files_.size(); ++i) {
          files_[i]->checkpoint();
          addFault(*besides_[i], fault);
        }
        break;
      }
      case 4: {
        const Fault fault = any();  // nobody announced it
        for (const auto& file : files_) addFault(*file, fault);
        break;
      }
      default:
        break;
    }
  }

  std::u16string second_ = under_.make(Layout::faults);
  std::vector<std::unique_ptr<database::Database>> files_, besides_;
  std::mt19937 random_{11};
};

TEST_F(ExpectedEventsTest, AnswerAsIfNobodyHadAnnouncedThem) {
  int known = 0, fresh = 0;
  for (int list = 0; list < 120; ++list) {
    std::vector<Fault> faults(random_() % 40);
    std::vector<Statement> coming;
    for (Fault& fault : faults) fault = any();
    for (const Fault& fault : faults) coming.push_back(asking(fault));
    files_[0]->expect(coming);
    for (const Fault& fault : faults) {
      if (random_() % 20 == 0) continue;  // announced and not asked for
      between();
      const auto found = keys(*files_[0], fault);
      ASSERT_EQ(found, keys(*files_[1], fault));
      ++(found.empty() ? fresh : known);
      if (!found.empty()) continue;
      for (const auto& file : files_) addFault(*file, fault);
    }
  }
  EXPECT_GT(known, 500);
  EXPECT_GT(fresh, 200);
  for (const auto& file : files_) file->endBatch();
  for (const auto clause : clauses) ASSERT_EQ(counts(*files_[0], clause[0]), counts(*files_[1], clause[0]));
}

TEST_F(ExpectedEventsTest, OnesThatAreAlikeAreStoredOnce) {
  const Fault one{1, u"a", u"MJ", u"MP", u"2006", u"x"}, alike{1, u"A", u"MJ ", u"MP", u"2006", u"X "};
  const Statement coming[] = {asking(one), asking(alike), asking(one)};
  files_[0]->expect(coming);
  ASSERT_EQ(keys(*files_[0], one), std::vector<std::string>{});
  addFault(*files_[0], one);
  EXPECT_EQ(keys(*files_[0], alike), std::vector<std::string>{"1"});
  EXPECT_EQ(keys(*files_[0], one), std::vector<std::string>{"1"});
}

// The index has something where the entry of the second fault would stand.
TEST_F(ExpectedEventsTest, AFaultThatTheIndexCannotTakeLeavesNothing) {
  files_[0]->endBatch();
  const Fault faults[] = {{1, u"01", u"MJ", u"MP", u"2006", u"one"},
                          {1, u"02", u"MJ", u"MP", u"2007", u"two"},
                          {1, u"03", u"MJ", u"MP", u"2008", u"three"}};
  counts(*files_[0], clauses[2][0]);  // lays out the index
  const auto& [id, fault, alarm, cpu, date, description] = faults[1];
  const EventTexts texts{fault, alarm, cpu, date, description};
  OtherTool other(path_);
  ASSERT_EQ(other.run(("INSERT INTO VordaneFaultIndex VALUES (1, x'0132303037', " +
                       std::to_string(hashOf(texts)) + ", 2, x'01')")
                          .c_str()),
            "");
  files_[0]->beginBatch();
  addFault(*files_[0], faults[0]);
  EXPECT_NE(database::numberOfError([&] { addFault(*files_[0], faults[1]); }), 0);
  addFault(*files_[0], faults[2]);
  files_[0]->endBatch();
  EXPECT_EQ(other.run("SELECT Description FROM FaultDisplay ORDER BY Count"), "one\nthree\n");
  EXPECT_EQ(other.run("DELETE FROM VordaneFaultIndex WHERE Count NOT IN (SELECT Count FROM FaultDisplay)"),
            "");
  EXPECT_EQ(other.run("SELECT count(*) FROM VordaneFaultIndex JOIN FaultDisplay USING (Count)"), "2\n");
  files_[0]->beginBatch();
  addFault(*files_[0], faults[1]);  // goes now
  EXPECT_TRUE(isStored(*files_[0], faults[1]));
}

}  // namespace
}  // namespace vordane::sqlite
