// Each new fault and lamp is told once, whatever fails on the way.
#include "following.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <random>
#include <sstream>

#include "lasting_file.h"
#include "outlets.h"
#include "platform/database.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// A fault database that is only faults and exchanges, read as readFeed does it.
struct MemoryFeed {
  std::vector<StoredFault> faults;
  std::vector<StoredExchange> exchanges;
  std::int64_t highest = 0;
  int most = 2;
  bool gone = false;

  void add(const char16_t* exchange, const char16_t* description) {
    faults.push_back({++highest, exchange, u"01", u"MJ", u"2026/11/20 10:00", u"LP 1", description});
  }
  FeedPiece read(std::int64_t behind, std::int64_t witness) const {
    if (gone) throw database::DatabaseError(3024, u"gone");
    FeedPiece piece;
    piece.reached = behind;
    for (const StoredFault& fault : faults) {
      if (fault.number == witness) piece.witness = fault;
      if (fault.number <= behind || static_cast<int>(piece.faults.size()) == most) continue;
      piece.faults.push_back(fault);
      piece.reached = fault.number;
    }
    piece.more = static_cast<int>(piece.faults.size()) == most;
    piece.highest = highest;
    piece.exchanges = exchanges;
    return piece;
  }
};

// "1:a" for a fault, "PBX-1#2:10" for lamps told for the second time.
std::string brief(const Event& event) {
  if (const auto* fault = std::get_if<StoredFault>(&event))
    return std::to_string(fault->number) + ':' +
           std::string(fault->description.begin(), fault->description.end());
  const auto& lamps = std::get<LampsTold>(event);
  return std::string(lamps.exchange.begin(), lamps.exchange.end()) + '#' + std::to_string(lamps.sequence) +
         ':' + (lamps.lamps.major ? '1' : '0') + (lamps.lamps.minor ? '1' : '0');
}

struct MemoryOutlet : Outlet {
  void tell(std::span<const Event> events, FollowMark&) override {
    for (const Event& event : events) {
      told.push_back(brief(event));
      documents.push_back(jsonOf(event));
    }
    if (breaks) throw NotTold("broken");
  }
  Lines told, documents;
  bool breaks = false;
};

class FollowingTest : public testing::Test {
 protected:
  FollowingTest() {
    feed.add(u"PBX-1", u"a");
    feed.add(u"PBX-1", u"b");
    feed.add(u"PBX-1", u"c");
    feed.exchanges = {{1, u"PBX-1", u"today", {true, false}}};
  }
  Following follow(Outlet& to) {
    return {"FAULT.MDB",
            [this](std::int64_t behind, std::int64_t witness) { return feed.read(behind, witness); },
            [this](const FollowMark& mark) {
              if (full) throw UnwritableFile("full");
              kept = mark;
            },
            to};
  }
  // As a process that is started does it: until there is no more.
  void tellAll(Outlet& to) {
    Following following = follow(to);
    following.begin(kept.value_or(newMark()));
    while (following.round()) continue;
  }
  Lines take() { return std::exchange(outlet.told, {}); }

  MemoryFeed feed;
  std::optional<FollowMark> kept;
  bool full = false;
  MemoryOutlet outlet;
};

TEST_F(FollowingTest, EveryFaultAndEachLampIsToldOnce) {
  tellAll(outlet);
  EXPECT_EQ(take(), (Lines{"1:a", "2:b", "3:c", "PBX-1#1:10"}));
  tellAll(outlet);
  EXPECT_EQ(take(), Lines{});
  feed.add(u"PBX-2", u"d");
  feed.exchanges.push_back({2, u"PBX-2", u"now", {}});
  tellAll(outlet);
  EXPECT_EQ(take(), (Lines{"4:d", "PBX-2#1:00"}));
}

TEST_F(FollowingTest, LampsAreToldAsTheyAreWhenTheyHaveChanged) {
  Following following = follow(outlet);
  following.begin(newMark());
  while (following.round()) continue;
  take();
  feed.exchanges[0].lamps = {false, true};
  feed.exchanges[0].lamps = {true, true};
  feed.exchanges[0].received = u"later";
  EXPECT_FALSE(following.round());
  EXPECT_EQ(take(), Lines{"PBX-1#2:11"});
  feed.exchanges[0].received = u"still later";  // no change of a lamp
  EXPECT_FALSE(following.round());
  EXPECT_EQ(take(), Lines{});
}

TEST_F(FollowingTest, AnExchangeThatWasDeletedIsForgotten) {
  tellAll(outlet);
  feed.exchanges.clear();
  feed.faults.clear();
  tellAll(outlet);
  EXPECT_TRUE(kept->lamps.empty());
  feed.exchanges = {{2, u"PBX-1", u"today", {true, false}}};
  feed.add(u"PBX-1", u"e");
  take();
  tellAll(outlet);
  EXPECT_EQ(take(), (Lines{"4:e", "PBX-1#1:10"}));
}

TEST_F(FollowingTest, WhatMayNotHaveArrivedIsToldAgainWithTheSameIdentifiers) {
  outlet.breaks = true;
  EXPECT_THROW(tellAll(outlet), NotTold);
  EXPECT_EQ(take(), (Lines{"1:a", "2:b"}));
  EXPECT_EQ(kept->reached, beforeAllFaults);
  const Lines before = std::exchange(outlet.documents, {});
  outlet.breaks = false;
  tellAll(outlet);
  EXPECT_EQ(take(), (Lines{"1:a", "2:b", "3:c", "PBX-1#1:10"}));
  EXPECT_EQ(Lines(outlet.documents.begin(), outlet.documents.begin() + 2), before);
}

TEST_F(FollowingTest, LampsToldAgainHaveTheSameIdentifierAndAnotherStateAnother) {
  feed.faults.clear();
  outlet.breaks = true;
  EXPECT_THROW(tellAll(outlet), NotTold);
  EXPECT_THROW(tellAll(outlet), NotTold);
  ASSERT_EQ(outlet.documents.size(), 2U);
  EXPECT_EQ(outlet.documents[0], outlet.documents[1]);
  EXPECT_NE(outlet.documents[0].find("\"id\":\"" + kept->source + "-1-1-10\""), std::string::npos);
  feed.exchanges[0].lamps = {false, false};
  EXPECT_THROW(tellAll(outlet), NotTold);
  EXPECT_NE(outlet.documents[2].find("\"id\":\"" + kept->source + "-1-1-00\""), std::string::npos);
}

TEST_F(FollowingTest, AMarkThatCantBeKeptMakesNothingToldTwiceInTheSameProcess) {
  Following following = follow(outlet);
  following.begin(newMark());
  full = true;
  EXPECT_THROW(following.round(), UnwritableFile);
  EXPECT_THROW(following.round(), UnwritableFile);
  EXPECT_EQ(take(), (Lines{"1:a", "2:b"}));
  full = false;
  while (following.round()) continue;
  EXPECT_EQ(take(), (Lines{"3:c", "PBX-1#1:10"}));
  EXPECT_EQ(kept->reached, 3);
}

TEST_F(FollowingTest, ANewMarkMayLeaveOutWhatIsStored) {
  Following following = follow(outlet);
  following.beginFromNow(newMark());
  feed.add(u"PBX-1", u"d");
  while (following.round()) continue;
  EXPECT_EQ(take(), (Lines{"4:d", "PBX-1#1:10"}));
}

TEST_F(FollowingTest, ADatabaseThatIsAwayIsFollowedWhenItIsBack) {
  Following following = follow(outlet);
  following.begin(newMark());
  feed.gone = true;
  EXPECT_THROW(following.round(), database::DatabaseError);
  feed.gone = false;
  while (following.round()) continue;
  EXPECT_EQ(take().size(), 4U);
}

TEST_F(FollowingTest, AMarkOfAnotherFileIsRefused) {
  const auto refusal = [&]() -> std::string {
    try {
      tellAll(outlet);
    } catch (const ForeignMark& failure) {
      return failure.what();
    }
    return "no refusal";
  };
  tellAll(outlet);
  take();
  feed.faults[2].description = u"other";
  EXPECT_EQ(
      refusal(),
      "FAULT.MDB: fault 3 is another one than the mark says. The mark is of another file. Name another mark");
  feed.faults[2].description = u"c";
  feed.faults[2].time = u"a year that was widened";
  EXPECT_EQ(refusal(), "no refusal");
  feed.highest = 2;
  feed.faults.pop_back();
  EXPECT_EQ(refusal(),
            "FAULT.MDB: the mark stands behind fault 3, and this file never had more than 2. The mark is of "
            "another "
            "file, or an older copy was brought back. Name another mark");
  feed.highest = 3;  // the last fault's exchange was deleted
  EXPECT_EQ(refusal(), "no refusal");
  EXPECT_EQ(take(), Lines{});
}

TEST(FollowMarks, AreReadAsTheyWereWritten) {
  FollowMark mark;
  mark.source = "0123456789abcdef";
  EXPECT_EQ(markFrom(textOf(mark), "m"), mark);
  mark.reached = 1204;
  mark.told = {1203, "1203-00"};
  mark.lamps = {{-1, {{true, false}, 3}}, {32767, {{false, true}, 1}}};
  mark.length = 5'000'000'000;
  EXPECT_EQ(
      textOf(mark),
      R"({"format":"vordane follow mark","version":1,"source":"0123456789abcdef","reached":1204,)"
      R"("told":{"number":1203,"id":"1203-00"},)"
      R"("lamps":{"-1":{"major":true,"minor":false,"sequence":3},"32767":{"major":false,"minor":true,"sequence":1}},)"
      R"("length":5000000000})"
      "\n");
  EXPECT_EQ(markFrom(textOf(mark), "m"), mark);
  EXPECT_NE(newMark().source, newMark().source);
}

std::string refusalOf(const std::string& text) {
  try {
    markFrom(text, "m");
  } catch (const ToolError& failure) {
    return std::string(failure.what()).substr(0, 40);
  }
  return "none";
}

TEST(FollowMarks, WhatIsNoWholeMarkIsRefused) {
  FollowMark mark;
  mark.source = "0123456789abcdef";
  mark.told = {1, "x"};
  mark.lamps = {{1, {{true, false}, 3}}};
  const std::string text = textOf(mark);
  for (std::size_t length = 0; length + 2 < text.size(); ++length)
    EXPECT_EQ(refusalOf(text.substr(0, length)), "m: this is no mark of 'follow', or only ") << length;
  const auto changed = [&](const std::string& from, const std::string& to) {
    return std::string(text).replace(text.find(from), from.size(), to);
  };
  EXPECT_EQ(refusalOf(changed("\"version\":1", "\"version\":2")), "m: this mark was made by a later version");
  for (const auto& [from, to] :
       std::initializer_list<std::pair<const char*, const char*>>{{"\"reached\"", "\"reach\""},
                                                                  {"abcdef", "ABCDEF"},
                                                                  {"\"1\":", "\"1x\":"},
                                                                  {"\"1\":", "\"99999999999999999999\":"},
                                                                  {"\"sequence\":3", "\"sequence\":\"3\""},
                                                                  {"\"length\":0", "\"length\":null"},
                                                                  {"\"told\":{", "\"told\":[],\"x\":{"}})
    EXPECT_EQ(refusalOf(changed(from, to)), "m: this mark is damaged. Bring it back, ") << to;
}

class FileOutletTest : public FollowingTest {
 protected:
  FileOutletTest() { fs::create_directories(folder); }
  ~FileOutletTest() override { fs::remove_all(folder); }
  void tellIntoFile() {
    FileOutlet lines(file);
    tellAll(lines);
  }
  std::string bytes() const { return fs::exists(file) ? readFile(file) : "none"; }
  void write(const std::string& all) const { writeFile(file, all); }
  std::string refusal() {
    try {
      tellIntoFile();
    } catch (const ToolError& failure) {
      return std::string(failure.what()).substr(file.string().size());
    }
    return "none";
  }

  fs::path folder = fs::temp_directory_path() / ("vordane-follow-" + std::to_string(std::random_device()()));
  fs::path file = folder / "out.jsonl";
};

TEST_F(FileOutletTest, WhereverTheProcessEndsEachEventStandsInTheFileOnce) {
  tellIntoFile();
  const std::string whole = bytes();
  const FollowMark end = *kept;
  EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 4);
  FollowMark start;
  start.source = end.source;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    write(whole.substr(0, length));
    kept = start;
    tellIntoFile();
    ASSERT_EQ(bytes(), whole) << length;
    ASSERT_EQ(*kept, end) << length;
  }
}

TEST_F(FileOutletTest, AFileThatWasMovedAwayIsBegunAgain) {
  tellIntoFile();
  fs::remove(file);
  feed.add(u"PBX-1", u"d");
  tellIntoFile();
  std::string first = bytes();
  EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 1);
  // Moved away, begun again and longer than before, without the mark knowing.
  const FollowMark before = *kept;
  write(std::string(static_cast<std::size_t>(before.length) + 10, 'x').replace(before.length - 1, 1, "y"));
  EXPECT_EQ(refusal(), ": it holds a line that 'follow' has not written. Name a file that is for this alone");
}

TEST_F(FileOutletTest, AMarkThatWasLostIsFoundInTheFile) {
  tellIntoFile();
  const std::string whole = bytes();
  kept.reset();
  tellIntoFile();
  EXPECT_EQ(bytes(), whole);
}

TEST_F(FileOutletTest, WhatAnotherHasWrittenIsNeitherCutNorWrittenBehind) {
  for (const char* text : {"hello", "hello\n", "{}\n", "{\"event\":\"fault\"}\n",
                           "{\"event\":\"other\",\"number\":1}\n", "\n"}) {
    write(text);
    EXPECT_EQ(refusal(),
              ": it holds a line that 'follow' has not written. Name a file that is for this alone")
        << text;
    EXPECT_EQ(bytes(), text);
  }
}

TEST_F(FileOutletTest, NobodyElseHasTheMarkMeanwhile) {
  auto first = takeSoleUse(file);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(takeSoleUse(file), nullptr);
  first.reset();
  EXPECT_NE(takeSoleUse(file), nullptr);
}

TEST(StreamOutlets, AStreamThatTakesNothingMoreIsAnError) {
  std::ostringstream stream;
  StreamOutlet outlet(stream, [](const Event& event) { return brief(event); });
  const Event event = StoredFault{1, u"PBX-1", u"", u"", u"", u"", u"a"};
  FollowMark mark;
  outlet.tell({&event, 1}, mark);
  EXPECT_EQ(stream.str(), "1:a\n");
  stream.setstate(std::ios::badbit);
  EXPECT_THROW(outlet.tell({&event, 1}, mark), ToolError);
}

// A server that takes some bytes, and then does what it is told to.
struct MemoryNetwork : Network {
  struct Line : Socket {
    explicit Line(MemoryNetwork& to) : network(to) {}
    void send(std::string_view bytes) override {
      if (network.slow) throw NetworkError("it answers too slowly");
      network.sent.emplace_back(bytes);
    }
    void finish() override {
      network.sent.emplace_back(network.breaks ? "(broken)" : "(read)");
      if (network.breaks) throw NetworkError("Connection reset");
    }
    MemoryNetwork& network;
  };
  std::unique_ptr<Socket> connect(const Address& address, Transport, std::chrono::seconds) override {
    if (gone) throw NetworkError("Connection refused");
    sent.push_back("(" + address.host + ")");
    return std::make_unique<Line>(*this);
  }
  std::string hostName() override { return "ws01"; }
  Lines sent;
  bool gone = false, slow = false, breaks = false;
};

SyslogOrigin ws01() {
  return {"ws01", 32473, "2026-11-22T19:11:03Z"};
}

const Event someFault = StoredFault{1204,
                                    u"Büro \"1\"",
                                    u"0A",
                                    u"MJ",
                                    u"2026/11/20 20:41",
                                    u"LP 2 ",
                                    u"Line down\r\n\r\n  Unit ]3\\\x1B\r\n[0C]\r\n"};
const Event someLamps =
    LampsTold{"0123456789abcdef-1-3-01", u"PBX-1", 1, 3, {false, true}, u"2026-11-20 10:00:00"};

TEST(SyslogMessages, AreOfRfc5424) {
  EXPECT_EQ(
      syslogOf(someFault, ws01(), 8192),
      "<131>1 2026-11-22T19:11:03Z ws01 vordane - fault [fault@32473 id=\"" +
          identifierOf(std::get<StoredFault>(someFault)) +
          R"(" exchange="Büro \"1\"" number="1204" kind="0A" class="MJ" time="2026/11/20 20:41" processor="LP 2 "] )"
          "\xEF\xBB\xBF"
          R"(Büro "1": 2026/11/20 20:41 MJ LP 2  0A Line down - Unit ]3\\x1B - [0C])");
  EXPECT_EQ(
      syslogOf(someLamps, {"", 9, "-"}, 8192),
      R"(<132>1 - - vordane - lamps [lamps@9 id="0123456789abcdef-1-3-01" exchange="PBX-1" sequence="3" major="0" )"
      "minor=\"1\" received=\"2026-11-20 10:00:00\"] \xEF\xBB\xBFPBX-1: lamps, major clear, minor alarm");
}

TEST(SyslogMessages, SayHowBadItIs) {
  const auto priority = [](const Event& event) { return syslogOf(event, ws01(), 8192).substr(0, 5); };
  const auto fault = [](const char16_t* alarm) { return StoredFault{1, u"", u"", alarm, u"", u"", u""}; };
  const auto lamps = [](bool major, bool minor) { return LampsTold{"", u"", 1, 1, {major, minor}, u""}; };
  EXPECT_EQ(priority(fault(u"MJ")), "<131>");
  EXPECT_EQ(priority(fault(u"MN ")), "<132>");
  EXPECT_EQ(priority(fault(u"XX")), "<133>");
  EXPECT_EQ(priority(lamps(true, true)), "<131>");
  EXPECT_EQ(priority(lamps(false, true)), "<132>");
  EXPECT_EQ(priority(lamps(false, false)), "<133>");
}

TEST(SyslogMessages, AreCutBetweenCharacters) {
  const Event event =
      StoredFault{1, std::u16string(300, u'x'), u"01", u"MJ", u"", u"", std::u16string(9000, u'障')};
  const std::string whole = syslogOf(event, ws01(), 100'000);
  EXPECT_EQ(whole.find(std::string(129, 'x')), std::string::npos);
  for (std::size_t longest = 2048; longest < 2054; ++longest) {
    const std::string cut = syslogOf(event, ws01(), longest);
    EXPECT_LE(cut.size(), longest);
    EXPECT_GT(cut.size() + 3, longest);
    EXPECT_TRUE(whole.starts_with(cut));
    EXPECT_TRUE(cut.ends_with("障"));
  }
  EXPECT_EQ(syslogOf(someLamps, {std::string(256, 'h'), 1, "-"}, 8192).substr(0, 10), "<132>1 - -");
  EXPECT_EQ(syslogOf(someLamps, {"a b", 1, "-"}, 8192).substr(0, 10), "<132>1 - -");
}

TEST(SyslogOutlets, OverTcpEachPieceIsAConnectionThatTheServerHasReadToItsEnd) {
  MemoryNetwork network;
  SyslogOutlet outlet(network, {"log", "601"}, Transport::tcp, ws01);
  const std::vector<Event> events{someFault, someLamps};
  FollowMark mark;
  outlet.tell(events, mark);
  const std::string first = syslogOf(someFault, ws01(), 8192), second = syslogOf(someLamps, ws01(), 8192);
  EXPECT_EQ(network.sent,
            (Lines{"(log)",
                   std::to_string(first.size()) + ' ' + first + std::to_string(second.size()) + ' ' + second,
                   "(read)"}));
}

TEST(SyslogOutlets, OverUdpEachMessageIsADatagram) {
  MemoryNetwork network;
  SyslogOutlet outlet(network, {"log", "514"}, Transport::udp, ws01);
  const std::vector<Event> events{someFault, someLamps};
  FollowMark mark;
  outlet.tell(events, mark);
  EXPECT_EQ(network.sent,
            (Lines{"(log)", syslogOf(someFault, ws01(), 2048), syslogOf(someLamps, ws01(), 2048), "(read)"}));
}

TEST(SyslogOutlets, AServerThatIsGoneSlowOrBreaksOffHasNotHeard) {
  MemoryNetwork network;
  SyslogOutlet outlet(network, {"log", "601"}, Transport::tcp, ws01);
  const auto refusal = [&]() -> std::string {
    FollowMark mark;
    try {
      outlet.tell({&someFault, 1}, mark);
    } catch (const NotTold& failure) {
      return failure.what();
    }
    return "none";
  };
  network.gone = true;
  EXPECT_EQ(refusal(), "log port 601: Connection refused. 1 message(s) wait and are sent again");
  network.gone = false;
  network.slow = true;
  EXPECT_EQ(refusal(), "log port 601: it answers too slowly. 1 message(s) wait and are sent again");
  network.slow = false;
  network.breaks = true;
  EXPECT_EQ(refusal(), "log port 601: Connection reset. 1 message(s) wait and are sent again");
  network.breaks = false;
  EXPECT_EQ(refusal(), "none");
}

TEST(Addresses, AreHostAndPort) {
  EXPECT_EQ(addressOf("log.example.net:601"), (Address{"log.example.net", "601"}));
  EXPECT_EQ(addressOf("192.0.2.1:65535"), (Address{"192.0.2.1", "65535"}));
  EXPECT_EQ(addressOf("[2001:db8::1]:514"), (Address{"2001:db8::1", "514"}));
  for (const char* wrong : {"", "log", "log:", ":601", "log:0", "log:65536", "log:6o1", "log:-1",
                            "2001:db8::1:514", "[]:1", "log:000601"})
    EXPECT_EQ(addressOf(wrong), std::nullopt) << wrong;
}

}  // namespace
}  // namespace vordane::tools
