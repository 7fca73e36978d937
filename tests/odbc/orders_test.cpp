// Every order of the rows, held against the embedded engine over the same rows.
#include <gtest/gtest.h>

#include "database/contract.h"
#include "database/embedded.h"
#include "odbc/server_store.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::addFault;
using database::column;
using database::Fault;
using database::Layout;
using database::Value;

TEST(ServerOrders, AreThoseOfTheEmbeddedEngine) {
  ServerUnderTest server;
  const auto store = server.engine().open(server.make(Layout::faults), false);
  sqlite::EmbeddedUnderTest embedded;
  const auto other = embedded.engine().open(embedded.make(Layout::faults), false);
  const std::u16string_view texts[] = {u"b",          u"A",      u"a ",      u"Z", u"z",      u"_",
                                       u"-",          u"\u00E9", u"\u00C9b", u"e", u"\u0416", u"\u0436a",
                                       u"\U0001F600", u"\uFF21", u"",        u" ", u"10",     u"9"};
  std::size_t n = 0;
  for (const std::u16string_view one : texts) {
    const std::u16string it(one);
    for (const Fault& fault :
         {Fault{1, it, u"MJ", u"MP", u"d", u"x"}, Fault{1, u"01", it, u"MP", u"d", u"x"},
          Fault{1, u"01", u"MJ", it, u"e", u"x"}, Fault{1, u"01", u"MJ", u"MP", it, u"x"},
          Fault{1, u"01", u"MJ", u"MP", u"d", it}}) {
      addFault(*store, fault);
      addFault(*other, fault);
      ++n;
    }
  }
  for (database::Database* each : {store.get(), other.get()}) {
    const auto rows = each->openRecordset(u"Select * from FaultDisplay");
    rows->addNew();
    rows->set(u"ID", std::int16_t{1});
    rows->update();
  }
  const std::u16string_view counts[] = {u"Count"};
  for (const std::u16string_view clause : store::sortClauses) {
    const std::u16string statement = u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause);
    const auto order = [&](database::Database& each) {
      const auto rows = each.openRowList(statement, counts);
      std::vector<std::string> met;
      std::vector<Value> values;
      for (std::size_t i = 0; i < rows->size() && rows->fetch(i, values); ++i)
        met.push_back(database::shown(values[0]));
      return met;
    };
    EXPECT_EQ(order(*store).size(), n + 1);
    EXPECT_EQ(order(*store), order(*other)) << text::toUtf8(clause);
    EXPECT_EQ(column(*store, statement, u"Count"), order(*other)) << text::toUtf8(clause);
  }
  EXPECT_EQ(column(*store, store::statement::faultsNewestFirst, u"Count"),
            column(*other, store::statement::faultsNewestFirst, u"Count"));
}

}  // namespace
}  // namespace vordane::odbc
