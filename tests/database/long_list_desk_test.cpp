// What a person does with a long list while it is read on: filter, copy, save and find show what they show
// over a list that was read at once.
#include <optional>
#include <set>

#include "database/fault_index.h"
#include "list/copying.h"
#include "list/desk.h"
#include "list/finder.h"
#include "platform/stored_rows.h"

namespace vordane::sqlite {
namespace {

class ShownRows final : public window::GridSource {
 public:
  explicit ShownRows(std::unique_ptr<database::RowList> rows) : rows_(std::move(rows)) {}
  std::size_t size() const override { return rows_->size(); }
  std::optional<window::GridRow> row(std::size_t position) override {
    std::vector<Value> values;
    if (!rows_->fetch(position, values)) return {};
    return database::gridRowOf(values);
  }
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
  database::RowList* list() override { return rows_.get(); }

 private:
  std::unique_ptr<database::RowList> rows_;
};

// One person at one list.
struct Person {
  explicit Person(std::unique_ptr<database::RowList> list) : rows(std::move(list)) {
    desk.setStored(&rows, u"PBX-1");
  }
  void rest() {
    while (desk.busy()) desk.work([] { return false; });
    while (finder.busy()) finder.work([] { return false; });
  }
  std::u16string copied(std::vector<list::Stretch> which) {
    list::Copying copying(desk, which, [](std::size_t, const window::GridRow& row) {
      return row.date + u" " + row.description + u" " + text::fromUtf8(std::to_string(row.count));
    });
    while (copying.work([] { return false; }) == list::Copying::State::atWork) {
    }
    return copying.text();
  }

  ShownRows rows;
  list::Desk desk;
  list::Finder finder{desk};
};

TEST_F(FaultIndexTest, APersonSeesOfALongListWhatIsInIt) {
  std::mt19937 random(23);
  const auto number = [](std::size_t value) { return text::fromUtf8(std::to_string(value)); };
  const auto add = [&](database::Database& to, unsigned faults) {
    to.beginBatch();
    for (; faults > 0; --faults)
      addFault(to, {std::int16_t(1 + random() % 7 / 6), random() % 3 == 0 ? u"0A" : u"17",
                    random() % 2 == 0 ? u"MJ" : u"MN", u"MP",
                    u"2026/11/" + number(10 + random() % 20) + u" 10:00", u"text " + number(random() % 30)});
    to.endBatch();
  };
  const auto opened = [&](std::size_t atOnce) {
    Options options;
    options.rowsReadAtOnce = atOnce;
    return makeEngine(startup::databases, options)->open(path_, false);
  };
  const auto listOf = [](database::Database& database) {
    return database.openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(sqlite::clauses[2][1]), allColumns);
  };
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    path_ = under_.make(Layout::faults);
    const auto others = open(), database = opened(1 + random() % 6), reference = opened(1'000'000);
    add(*others, 80 + random() % 150);
    Person person(listOf(*database)), other(listOf(*reference));
    ASSERT_TRUE(person.desk.reading());
    ASSERT_FALSE(other.desk.busy());
    for (int step = 0; step < 12; ++step) {
      SCOPED_TRACE(step);
      const std::size_t size = other.desk.size();
      switch (random() % 7) {
        case 0:
        case 1:
          person.desk.work([] { return false; });
          break;
        case 2:
          add(*others, 3);
          break;
        case 3: {
          list::Filter filter;
          if (random() % 2 == 0) filter.text = number(random() % 10);
          filter.major = random() % 3 != 0;
          if (random() % 2 == 0) filter.since = u"2026/11/" + number(10 + random() % 20);
          person.desk.setFilter(filter);
          other.desk.setFilter(filter);
          other.rest();
          if (random() % 2 == 0) person.rest();
          if (!person.desk.busy()) {
            ASSERT_EQ(person.desk.size(), other.desk.size());
          }
          break;
        }
        case 4: {
          const std::u16string text = number(random() % 30);
          person.finder.seek(text);
          other.finder.seek(text);
          person.finder.begin();
          other.finder.begin();
          person.rest();
          other.rest();
          ASSERT_EQ(person.finder.hits(), other.finder.hits());
          break;
        }
        case 5: {
          if (person.desk.choosing() || size == 0) break;
          const std::size_t begin = random() % size;
          const std::vector<list::Stretch> some{{begin, std::min(size, begin + random() % 30)}};
          ASSERT_EQ(person.copied(some), other.copied(some));
          break;
        }
        default:
          if (person.desk.choosing() || size == 0) break;
          ASSERT_EQ(person.desk.row(size - 1), other.desk.row(size - 1)) << "End";
      }
    }
    person.rest();
    other.rest();
    ASSERT_EQ(person.desk.size(), other.desk.size());
    ASSERT_EQ(person.copied({{0, person.desk.size()}}), other.copied({{0, other.desk.size()}}));
    person.desk.wantFacts(true);
    other.desk.wantFacts(true);
    person.rest();
    other.rest();
    ASSERT_NE(person.desk.facts(), nullptr);
    ASSERT_EQ(list::kindsOf(*person.desk.facts()).size(), list::kindsOf(*other.desk.facts()).size());
  }
}

}  // namespace
}  // namespace vordane::sqlite
