#include "platform/registration.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "text/utf8.h"

namespace vordane::registration {
namespace {

Server exchange() {
  return {
      u"C:\\SIM dir\\Zulsim.exe", {{u"CalderinProj30001.cPBXOLE", u"{A}", u"An exchange.", u"", u""}}, {}};
}

Server addIn() {
  return {u"C:\\Q\\VORDANE.EXE",
          {{u"Vordane10013.cListRequest", u"{C}", u"A record.", u"_cListRequest", u"{I}"}},
          Library{u"{L}", u"1.0", u"Displays and Manages PBX Fault Lists."}};
}

TEST(Registration, AClassAloneNeedsFewKeys) {
  const std::vector<Entry> expected{
      {u"AppID\\{A}", u"", u"An exchange."},
      {u"AppID\\Zulsim.exe", u"AppID", u"{A}"},
      {u"CalderinProj30001.cPBXOLE", u"", u"An exchange."},
      {u"CalderinProj30001.cPBXOLE\\CLSID", u"", u"{A}"},
      {u"CLSID\\{A}", u"", u"An exchange."},
      {u"CLSID\\{A}", u"AppID", u"{A}"},
      {u"CLSID\\{A}\\LocalServer32", u"", u"\"C:\\SIM dir\\Zulsim.exe\""},
      {u"CLSID\\{A}\\ProgID", u"", u"CalderinProj30001.cPBXOLE"},
      {u"CLSID\\{A}\\Programmable", u"", u""},
  };
  EXPECT_EQ(entries(exchange()), expected);
}

TEST(Registration, ALibraryBringsInterfacesAndBothWordSizes) {
  const std::vector<Entry> all = entries(addIn());
  const auto holds = [&](const Entry& entry) { return std::count(all.begin(), all.end(), entry) == 1; };
  EXPECT_TRUE(holds({u"CLSID\\{C}\\TypeLib", u"", u"{L}"}));
  EXPECT_TRUE(holds({u"CLSID\\{C}\\Version", u"", u"1.0"}));
  EXPECT_TRUE(holds({u"Interface\\{I}", u"", u"_cListRequest"}));
  EXPECT_TRUE(holds({u"Interface\\{I}\\ProxyStubClsid32", u"", u"{00020420-0000-0000-C000-000000000046}"}));
  EXPECT_TRUE(holds({u"Interface\\{I}\\TypeLib", u"", u"{L}"}));
  EXPECT_TRUE(holds({u"Interface\\{I}\\TypeLib", u"Version", u"1.0"}));
  EXPECT_TRUE(holds({u"TypeLib\\{L}\\1.0", u"", u"Displays and Manages PBX Fault Lists."}));
  EXPECT_TRUE(holds({u"TypeLib\\{L}\\1.0\\0\\win32", u"", u"C:\\Q\\VORDANE.EXE"}));
  EXPECT_TRUE(holds({u"TypeLib\\{L}\\1.0\\0\\win64", u"", u"C:\\Q\\VORDANE.EXE"}));
  EXPECT_TRUE(holds({u"TypeLib\\{L}\\1.0\\FLAGS", u"", u"0"}));
  EXPECT_TRUE(holds({u"TypeLib\\{L}\\1.0\\HELPDIR", u"", u"C:\\Q"}));
}

TEST(Registration, ASourceOfTheEventLogIsNamedOnceForBothWordSizes) {
  Server server = addIn();
  EXPECT_EQ(eventSource(server), std::nullopt);
  server.eventSource = u"Vordane";
  const EventSource expected{u"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\Vordane",
                             u"C:\\Q\\VORDANE.EXE", 3};
  EXPECT_EQ(eventSource(server), expected);
  EXPECT_EQ(entries(server), entries(addIn())) << "beside the classes";
}

TEST(Registration, AllClassesShareTheFirstOnesRights) {
  Server server = addIn();
  server.classes.push_back({u"Vordane10013.cSLVRequest", u"{S}", u"Another.", u"_cSLVRequest", u"{J}"});
  EXPECT_EQ(applicationKey(server), u"AppID\\{C}");
  const std::vector<Entry> all = entries(server);
  for (const char16_t* key : {u"CLSID\\{C}", u"CLSID\\{S}", u"AppID\\VORDANE.EXE"})
    EXPECT_EQ(std::count(all.begin(), all.end(), Entry{key, u"AppID", u"{C}"}), 1);
}

TEST(Registration, OnlyAnAccountMayBeNamedBehindTheSwitch) {
  EXPECT_EQ(parseRequest(u"")->jobAccount, u"");
  EXPECT_FALSE(parseRequest(u"")->thisUser);
  for (const char16_t* text : {u"/ThisUser", u" -thisuser ", u"\"/THISUSER\""})
    EXPECT_TRUE(parseRequest(text).value_or(Request{}).thisUser) << text::toUtf8(text);
  EXPECT_FALSE(parseRequest(u"/ThisUser:x"));
  EXPECT_FALSE(parseRequest(u"/ThisUser /JobAccount:x"));
  EXPECT_EQ(parseRequest(u"  ")->jobAccount, u"");
  for (const char16_t* text :
       {u"/JobAccount:NT AUTHORITY\\jobs", u"-jobaccount:NT AUTHORITY\\jobs",
        u"\"/JobAccount:NT AUTHORITY\\jobs\"", u" /JobAccount:\"NT AUTHORITY\\jobs\" "})
    EXPECT_EQ(parseRequest(text).value_or(Request{}).jobAccount, u"NT AUTHORITY\\jobs");
  for (const char16_t* text : {u"/JobAccount:", u"/JobAccount", u"/JobAccount: ", u"jobs", u"/Account:jobs",
                               u"/", u"/JobAccount:\"\"", u"/JobAccount:\"a\" \"b\""})
    EXPECT_FALSE(parseRequest(text)) << text::toUtf8(text);
}

TEST(Registration, EveryWrittenKeyIsRemovedAndEvidenceGoesLast) {
  for (const Server& server : {exchange(), addIn()}) {
    const std::vector<Removal> gone = removals(server);
    for (const Entry& entry : entries(server))
      EXPECT_TRUE(std::any_of(gone.begin(), gone.end(), [&](const Removal& removal) {
        return entry.key == removal.tree || entry.key.starts_with(removal.tree + u"\\");
      }));
    for (std::size_t i = 0; i < gone.size(); ++i)
      for (std::size_t later = i + 1; later < gone.size(); ++later)
        EXPECT_FALSE(gone[later].evidence.key.starts_with(gone[i].tree + u"\\")) << i << " before " << later;
  }
}

TEST(Registration, PathsCompareWithoutQuotesAndCase) {
  EXPECT_TRUE(samePath(u"\"C:\\Q\\VORDANE.EXE\"", u"c:\\q\\vordane.exe"));
  EXPECT_TRUE(samePath(u"C:\\Q\\VORDANE.EXE", u"C:\\Q\\VORDANE.EXE"));
  EXPECT_FALSE(samePath(u"\"C:\\R\\VORDANE.EXE\"", u"C:\\Q\\VORDANE.EXE"));
  EXPECT_FALSE(samePath(u"", u"C:\\Q\\VORDANE.EXE"));
}

}  // namespace
}  // namespace vordane::registration
