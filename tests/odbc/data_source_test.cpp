#include "platform/odbc/data_source.h"

#include <gtest/gtest.h>

#include "database/contract.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

std::string connection(std::string_view file, int wordSize = 64,
                       const std::vector<DataSource::Entry>& defaults = {}) {
  return text::toUtf8(DataSource::parse(file).connection(wordSize, defaults));
}

TEST(DataSource, HandsOnWhatItHolds) {
  EXPECT_EQ(connection("[ODBC]\r\nDRIVER=PostgreSQL Unicode\r\nSERVER=db.example\r\nDATABASE=faults\r\n"),
            "DRIVER={PostgreSQL Unicode};SERVER=db.example;DATABASE=faults;");
}

TEST(DataSource, MayBeginWithAMarkAndHoldBlanksCommentsAndOtherSections) {
  EXPECT_EQ(connection("\xEF\xBB\xBF\n; ours\n [odbc] \n driver = {PostgreSQL Unicode} \n\nUID=\xD0\x96 "
                       "\nX\n[Other]\nPORT=1"),
            "DRIVER={PostgreSQL Unicode};UID=\xD0\x96;");
}

TEST(DataSource, NamesADriverForEachWordSize) {
  const std::string file =
      "[ODBC]\nDRIVER=both\nDRIVER32=PostgreSQL Unicode\nDRIVER64=PostgreSQL Unicode(x64)\nUID=a\n";
  EXPECT_EQ(connection(file, 64), "DRIVER={PostgreSQL Unicode(x64)};UID=a;");
  EXPECT_EQ(connection(file, 32), "DRIVER={PostgreSQL Unicode};UID=a;");
  EXPECT_EQ(connection("[ODBC]\nDRIVER=both\nDRIVER32=other\nUID=a\n", 64), "DRIVER={both};UID=a;");
}

TEST(DataSource, LeavesOutWhatSaysWhereItLies) {
  EXPECT_EQ(connection("[ODBC]\nDRIVER=d\nFILEDSN=x\nSaveFile=y\nUID=a\n"), "DRIVER={d};UID=a;");
}

TEST(DataSource, GivesWhatItLeavesOpen) {
  EXPECT_EQ(connection("[ODBC]\nDRIVER=d\nport=5433\n", 64, {{u"PORT", u"5432"}, {u"Protocol", u"7.4-0"}}),
            "DRIVER={d};port=5433;Protocol=7.4-0;");
}

TEST(DataSource, AListOfSettingsStaysOneValue) {
  EXPECT_EQ(connection("[ODBC]\nDRIVER=d\nPQOPT={sslrootcert=/ca}\n", 64, {{u"pqopt", u"connect_timeout=8"}}),
            "DRIVER={d};PQOPT={connect_timeout=8 sslrootcert=/ca};");
  EXPECT_EQ(connection("[ODBC]\nDRIVER=d\npqopt={connect_timeout=5 keepalives=1}\n"),
            "DRIVER={d};pqopt={connect_timeout=5 keepalives=1};");
}

TEST(DataSource, AValueCannotBecomeAnotherKey) {
  EXPECT_EQ(connection("[ODBC]\nDRIVER=d\nDATABASE=a};PWD={b\n"), "DRIVER={d};DATABASE={a}};PWD={b};");
}

TEST(DataSource, HoldsNoPassword) {
  for (const char* file : {"[ODBC]\nDRIVER=d\nPWD=x\n", "[ODBC]\nDRIVER=d\npassword = x\n"})
    EXPECT_EQ(database::numberOfError([&] { DataSource::parse(file); }), 3151) << file;
}

TEST(DataSource, BeginsWithItsSection) {
  for (const char* file : {"", "DRIVER=d\n", "[Other]\nDRIVER=d\n", "SQLite format 3"})
    EXPECT_EQ(database::numberOfError([&] { DataSource::parse(file); }), 3343) << file;
}

TEST(DataSource, MustBeThere) {
  EXPECT_EQ(database::numberOfError([] { DataSource::read(u"/nowhere/at all.dsn"); }), 3024);
}

}  // namespace
}  // namespace vordane::odbc
