// A statement with its values asks for what its text says, with whatever the values hold: held against the
// text itself in every engine, whether it runs the text or the values.
#include <random>
#include <set>

#include "database/contract.h"
#include "store/fault_database.h"
#include "text/text.h"

namespace vordane::database {
namespace {

namespace statement = store::statement;

class Values {
 public:
  std::u16string text() {
    constexpr std::u16string_view pieces[] = {u"",
                                              u"a",
                                              u"A",
                                              u"b ",
                                              u"'",
                                              u"''",
                                              u"\"",
                                              u"\"\"",
                                              u"a'",
                                              u"{}",
                                              u"a\r\nb",
                                              u"-1",
                                              u"a' OR 'a'='a",
                                              u"x\" OR ID = 1",
                                              u"; ",
                                              u"a' AND ID = 2",
                                              u"Ж",
                                              u"[ID]"};
    std::u16string text(pieces[random_() % std::size(pieces)]);
    if (random_() % 4 == 0) text += pieces[random_() % std::size(pieces)];
    return text;
  }
  // What a store mostly holds: few of them, so that they meet again.
  std::u16string known() { return random_() % 4 == 0 ? text() : std::u16string(1, u"ab'\""[random_() % 4]); }
  std::size_t below(std::size_t limit) { return random_() % limit; }

 private:
  std::mt19937 random_{16};
};

// Every row, or the error.
std::vector<std::string> answer(Database& database, const Statement& asked, std::u16string_view key) {
  std::vector<std::string> all;
  try {
    for (const auto rows = database.openRecordset(asked); !rows->atEnd(); rows->moveNext())
      all.push_back(shown(rows->get(key)));
    const std::u16string_view columns[] = {key};
    const auto list = database.openRowList(asked, columns);
    std::vector<Value> values;
    for (std::size_t i = 0; i < list->size(); ++i)
      all.push_back(list->fetch(i, values) ? "listed " + shown(values[0]) : "gone");
  } catch (const DatabaseError& error) {
    return {"error " + std::to_string(error.number())};
  }
  return all;
}

class Met {
 public:
  void note(const std::vector<std::string>& rows) {
    if (rows.empty()) return;
    ++(rows[0].starts_with("error") ? refused : found);
  }
  int found = 0, refused = 0;
};

void fill(Database& database, Values values) {
  std::set<std::u16string> names;  // a server has one exchange of a name
  for (int i = 0; i < 12; ++i) {
    const std::u16string name = values.known();
    if (names.insert(text::toLower(text::trim(name))).second) addExchange(database, name);
  }
  for (int i = 0; i < 150; ++i)
    addFault(database, {static_cast<std::int16_t>(1 + values.below(3)), values.known(), u"a", u"a", u"a",
                        values.known()});
}

TEST_P(DatabaseContract, AValueAsksForWhatItsTextSays) {
  const auto database = open(Layout::faults);
  Values values;
  fill(*database, values);
  Met met;
  for (int i = 0; i < 300; ++i) {
    const std::u16string one = values.known(), other = values.known();
    const std::u16string third = values.below(4) == 0 ? values.text() : u"a";
    const auto id = static_cast<std::int16_t>(static_cast<int>(values.below(6)) - 1);
    const Statement fault = statement::findFault.with({id, one, u"a", third, u"a", other});
    const Statement name = statement::findExchange.with({one});
    const Statement both = statement::selectExchange.with({one, id});
    const Statement ordered = statement::orderedFaults[values.below(10)].with({id});
    // A value of the wrong kind makes whatever its text makes.
    const Statement strange = statement::selectExchange.with({id, one});
    for (const auto& [asked, key] :
         {std::pair(fault, u"Count"), std::pair(name, u"ID"), std::pair(both, u"ID"),
          std::pair(ordered, u"Count"), std::pair(strange, u"ID")}) {
      const auto rows = answer(*database, asked, key);
      met.note(rows);
      ASSERT_EQ(rows, answer(*database, asked.text(), key)) << shown(asked.text());
    }
  }
  EXPECT_GT(met.found, 100);
  EXPECT_GT(met.refused, 100);
}

TEST_P(DatabaseContract, AValueRemovesWhatItsTextRemoves) {
  const auto byValue = open(Layout::faults), byText = open(Layout::faults);
  for (Database* each : {byValue.get(), byText.get()}) fill(*each, Values());
  const auto left = [](Database& each) {
    auto all = column(each, store::statement::addFaults, u"Count");
    for (std::string& id : column(each, store::statement::allExchanges, u"ID")) all.push_back(std::move(id));
    return all;
  };
  for (const StatementPattern* remove : {&statement::deleteFaults, &statement::deleteExchange}) {
    for (const Statement& asked :
         {remove->with({std::int16_t{2}}), remove->with({std::int16_t{-1}}), remove->with({u"1 OR 1 = 1"}),
          remove->with({u"x"}), remove->with({u"'1'"}), remove->with({u"3"})}) {
      const int number = numberOfError([&] { byValue->execute(asked); });
      ASSERT_EQ(number, numberOfError([&] { byText->execute(asked.text()); })) << shown(asked.text());
      ASSERT_EQ(left(*byValue), left(*byText)) << shown(asked.text());
    }
  }
}

}  // namespace
}  // namespace vordane::database
