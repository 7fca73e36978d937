// The stand-in refuses what DAO refuses: else the tests that use it would prove nothing.
#include "dao/dao_under_test.h"
#include "database/contract.h"

namespace vordane::fakes {
namespace {

using automation::AutomationError;
using automation::byVal;
using automation::ObjectRef;

class DaoFake : public testing::Test {
 protected:
  static ObjectRef object(const ObjectRef& from, std::u16string_view member,
                          std::initializer_list<Argument> arguments = {}) {
    return automation::toObject(automation::get(*from, member, arguments));
  }
  static Argument words(std::u16string_view text) { return byVal(std::u16string(text)); }
  // The error's number, or its whole code where automation itself refuses.
  static std::int32_t failure(const std::function<void()>& step) {
    try {
      step();
    } catch (const AutomationError& error) {
      const auto code = static_cast<std::uint32_t>(error.code());
      return (code >> 16) == 0x800A ? static_cast<std::int32_t>(code & 0xFFFF) : error.code();
    }
    return 0;
  }
  ObjectRef field(const ObjectRef& rows, std::u16string_view name) {
    return object(object(rows, u"Fields"), u"Item", {words(name)});
  }
  ObjectRef rowsOf(std::int16_t type = 2) {
    return object(database, u"OpenRecordset", {words(u"Select * FROM PBXList"), byVal(type)});
  }
  void add(std::u16string name) {
    const ObjectRef rows = rowsOf();
    automation::call(*rows, u"AddNew");
    automation::put(*field(rows, u"PBXName"), u"Value", std::move(name));
    automation::call(*rows, u"Update");
  }

  sqlite::EmbeddedUnderTest files;
  DaoWorldRef world = std::make_shared<DaoWorld>();
  ObjectRef engine = makeDaoEngine(world);
  ObjectRef workspace = object(object(engine, u"Workspaces"), u"Item", {byVal(std::int16_t{0})});
  ObjectRef database = object(workspace, u"OpenDatabase", {words(files.make(database::Layout::faults))});
};

TEST_F(DaoFake, TakesNoChangeThatWasNotBegun) {
  add(u"A");
  const ObjectRef rows = rowsOf();
  EXPECT_EQ(failure([&] { automation::call(*rows, u"Update"); }), 3020);
  EXPECT_EQ(failure([&] { automation::put(*field(rows, u"PBXName"), u"Value", std::u16string(u"B")); }),
            3020);
  automation::call(*rows, u"Edit");
  automation::call(*rows, u"MoveFirst");
  EXPECT_EQ(failure([&] { automation::call(*rows, u"Update"); }), 3020) << "a move drops the change";
}

TEST_F(DaoFake, ReadsNothingPastTheEnd) {
  const ObjectRef rows = rowsOf();
  EXPECT_EQ(failure([&] { automation::call(*rows, u"MoveFirst"); }), 3021);
  EXPECT_EQ(failure([&] { automation::call(*rows, u"MoveLast"); }), 3021);
  EXPECT_EQ(failure([&] { automation::call(*rows, u"MoveNext"); }), 3021);
  EXPECT_EQ(failure([&] { automation::get(*field(rows, u"ID"), u"Value"); }), 3021);
  EXPECT_EQ(failure([&] { automation::call(*rows, u"Edit"); }), 3021);
}

TEST_F(DaoFake, CountsTheRowsItHasSeen) {
  for (const char16_t* name : {u"A", u"B", u"C"}) add(name);
  const ObjectRef rows = rowsOf();
  const auto count = [&] { return automation::toLong(automation::get(*rows, u"RecordCount")); };
  EXPECT_EQ(count(), 1);
  automation::call(*rows, u"MoveNext");
  EXPECT_EQ(count(), 2);
  automation::call(*rows, u"MoveLast");
  EXPECT_EQ(count(), 3);
  EXPECT_EQ(automation::toText(automation::get(*field(rows, u"PBXName"), u"Value")), u"C");
  automation::put(*rows, u"AbsolutePosition", std::int32_t{0});
  EXPECT_EQ(automation::toText(automation::get(*field(rows, u"PBXName"), u"Value")), u"A");
  EXPECT_EQ(failure([&] { automation::put(*rows, u"AbsolutePosition", std::int32_t{3}); }), 3001);
}

TEST_F(DaoFake, NeverWritesAnAutoNumber) {
  const ObjectRef rows = rowsOf();
  automation::call(*rows, u"AddNew");
  EXPECT_EQ(failure([&] { automation::put(*field(rows, u"ID"), u"Value", std::int32_t{7}); }), 3164);
}

TEST_F(DaoFake, ASnapshotIsOnlyRead) {
  add(u"A");
  const ObjectRef rows = rowsOf(4);
  EXPECT_EQ(failure([&] { automation::call(*rows, u"AddNew"); }), 3027);
  EXPECT_EQ(failure([&] { automation::call(*rows, u"Edit"); }), 3027);
  EXPECT_EQ(failure([&] { rowsOf(77); }), 3001);
}

TEST_F(DaoFake, AClosedObjectIsNoLongerSet) {
  const ObjectRef rows = rowsOf(), other = rowsOf();
  const ObjectRef id = field(rows, u"ID");
  automation::call(*rows, u"Close");
  EXPECT_EQ(failure([&] { automation::call(*rows, u"Close"); }), 3420);
  EXPECT_EQ(failure([&] { automation::get(*id, u"Value"); }), 3420);
  automation::call(*database, u"Close");
  EXPECT_EQ(failure([&] { automation::get(*other, u"EOF"); }), 3420);
  EXPECT_EQ(failure([&] { automation::call(*database, u"Close"); }), 3420);
}

TEST_F(DaoFake, KeepsWhatNoDaoTakes) {
  EXPECT_EQ(world->misuse, std::vector<std::string>{});
  EXPECT_EQ(failure([&] { automation::call(*workspace, u"OpenDatabase", {byVal(std::int16_t{5})}); }),
            automation::error::typeMismatch);
  EXPECT_EQ(failure([&] { automation::call(*workspace, u"OpenDatabase"); }),
            automation::error::badParameterCount);
  EXPECT_EQ(failure([&] { automation::call(*database, u"OpenRecords"); }), automation::error::unknownName);
  EXPECT_EQ(failure([&] { automation::put(*database, u"Updatable", true); }),
            automation::error::memberNotFound);
  EXPECT_FALSE(database->hasMember(u"OpenRecords"));
  EXPECT_EQ(world->misuse.size(), 5U);
}

TEST_F(DaoFake, FindsNoItemThatIsNotThere) {
  EXPECT_EQ(failure([&] { field(rowsOf(), u"Nothing"); }), 3265);
  EXPECT_EQ(failure([&] { object(object(engine, u"Workspaces"), u"Item", {byVal(std::int16_t{1})}); }), 3265);
}

}  // namespace
}  // namespace vordane::fakes
