// Resets in whole conversations: each leaves one receipt, whatever the exchange, its server or the person
// does, and nothing else is done because of it.
#include "fakes/watched_database.h"
#include "startup/conversation.h"
#include "store/statements.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;
using database::Receipt;

class ResetReceipts : public Conversation {
 protected:
  ResetReceipts() {
    program.person = u"anna";
    program.workstation = u"STATION-3";
    engine.between = [this](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
      if (!path.ends_with(u"FAULT.MDB")) return file;
      auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
      watched->keepsReceipts = keeps;
      watched->before = [this](std::u16string_view step) { statements.emplace_back(step); };
      watched->beforeReceipts = [this] {
        if (refused) throw database::DatabaseError(3027, u"can't be written");
      };
      return watched;
    };
  }

  // The kept ones, the latest first, as "outcome(code) lamps lines".
  Lines receipts() {
    Lines lines;
    engine.between = [](std::u16string_view, auto file) { return file; };
    const auto file = engine.open(u"FAULT.MDB", true);
    file->receipts()->read([&](const Receipt& receipt) {
      EXPECT_EQ(receipt.person, u"anna");
      EXPECT_EQ(receipt.workstation, u"STATION-3");
      EXPECT_EQ(receipt.moment, u"2026-11-20 21:14:05");
      std::string line = text::toUtf8(receipt.exchange) + " " + text::toUtf8(receipt.outcome);
      if (receipt.code) line += "(" + std::to_string(*receipt.code) + ")";
      line += receipt.lamps ? receipt.lamps->major ? " lit" : " dark" : " unknown";
      for (const auto& entry : receipt.entries)
        line += " " + text::toUtf8(entry.command) + "/" + text::toUtf8(entry.first) + "/" +
                text::toUtf8(entry.second) + "/" + text::toUtf8(entry.extra);
      lines.push_back(line);
    });
    return lines;
  }
  void light() {
    pressAndTick(0);
    exchange().answer(0, oneFault());
    tick();
    exchange().answerLamps(u"10");
    tick();
  }
  void answerReset(std::u16string said, std::int32_t code = 0) {
    const auto answer = exchange().record(code);
    automation::call(*exchange().request, u"AddToList",
                     {automation::byVal(u"EA1"s), automation::byVal(u"00"s), automation::byVal(u"CCC"s),
                      automation::byVal(std::move(said))});
    exchange().callBack(answer);
  }

  bool keeps = true, refused = false;
  std::vector<std::u16string> statements;
};

TEST_F(ResetReceipts, AConfirmedResetHasOneWhenItsBoxStands) {
  startWithHost();
  light();
  pressAndTick(1);
  answerReset(u"OK");
  Lines during;
  boxes.meanwhile = [&] { during = receipts(); };
  tick();
  EXPECT_THAT(during, ElementsAre("PBX-1 confirmed lit EA1/00/CCC/OK"));
  EXPECT_EQ(view.lampNote, u"reset 20.11.2026 21:14:05 by anna on STATION-3");
}

TEST_F(ResetReceipts, AnAnswerThatSaysNoHasOne) {
  startWithHost();
  light();
  pressAndTick(1);
  answerReset(u"DATA ERROR");
  tick();
  EXPECT_THAT(receipts(), ElementsAre("PBX-1 not confirmed lit EA1/00/CCC/DATA ERROR"));
}

TEST_F(ResetReceipts, OneThatFailsAnywhereOnItsWayHasOne) {
  startWithHost();
  light();
  exchange().loginAnswer = u"BUSY"s;
  pressAndTick(1);
  exchange().loginAnswer = u"ERROR"s;
  pressAndTick(1);
  exchange().loginRaises = true;
  pressAndTick(1);
  exchange().loginRaises = false;
  exchange().loginAnswer = u"L1"s;
  exchange().sendAnswer = u"ERROR"s;
  pressAndTick(1);
  exchange().sendAnswer = u"ACCEPTED"s;
  pressAndTick(1);
  answerReset(u"WAIT", 61);
  pressAndTick(1);
  const auto answer = exchange().record();
  answer->broken = [](std::u16string_view member) { return member != u"LoginID"; };
  answer->brokenWith = static_cast<std::int32_t>(0x800706BAU);
  exchange().callBack(answer);
  EXPECT_FALSE(state.busy);
  EXPECT_THAT(receipts(), ElementsAre("PBX-1 answer unreadable lit",
                                      "PBX-1 error code(61) lit EA1/00/CCC/WAIT", "PBX-1 request refused lit",
                                      "PBX-1 exchange unreachable(" +
                                          std::to_string(automation::error::runTime(5)) + ") lit",
                                      "PBX-1 log-in refused lit", "PBX-1 exchange busy lit"));
}

TEST_F(ResetReceipts, AnAnswerToSomethingElseDoesNotConfirm) {
  startWithHost();
  light();
  for (const char16_t* tag : {u"10", u"12"}) {
    pressAndTick(1);
    automation::put(*exchange().request, u"Tag", std::u16string(tag));
    exchange().answerLamps(u"10");
    tick();
    if (tag == u"10"s) exchange().answerLamps(u"10");
    while (tick()) {
    }
  }
  EXPECT_THAT(receipts(),
              ElementsAre("PBX-1 not confirmed lit EA1/00/10/", "PBX-1 not confirmed lit EA1/00/10/"));
}

TEST_F(ResetReceipts, TheExchangeIsTheOneThatWasAsked) {
  startWithHost();
  light();
  registerPbx(u"PBX-2");
  pressAndTick(1);
  registerPbx(u"PBX-1");
  answerReset(u"OK");
  tick();
  EXPECT_THAT(receipts(), ElementsAre("PBX-2 confirmed unknown EA1/00/CCC/OK"));
}

TEST_F(ResetReceipts, OneThatNobodyAnswersHasOneWhenTheWindowGoes) {
  startWithHost();
  light();
  pressAndTick(1);
  layer.reset();
  EXPECT_TRUE(process.ended);
  EXPECT_THAT(receipts(), ElementsAre("PBX-1 no answer lit"));
}

TEST_F(ResetReceipts, OneWhoseWindowGoesWhileItIsSentHasOne) {
  startWithHost();
  light();
  exchange().duringLogin = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(1);
  EXPECT_THAT(receipts(), ElementsAre("PBX-1 no answer lit"));
}

TEST_F(ResetReceipts, StaysWithoutTheExchange) {
  startWithHost();
  light();
  pressAndTick(1);
  answerReset(u"OK");
  tick();
  boxes.answer = 6;
  pressAndTick(3);
  EXPECT_EQ(view.rows, nullptr);
  EXPECT_THAT(receipts(), ElementsAre("PBX-1 confirmed lit EA1/00/CCC/OK"));
}

TEST_F(ResetReceipts, AnUnattendedRunLeavesNone) {
  startWithHost();
  light();
  EXPECT_EQ(runSchedule(u"1"), 0);
  tick();
  automation::put(*exchange().request, u"Tag", u"11"s);
  answerReset(u"OK");
  while (tick()) {
  }
  EXPECT_THAT(receipts(), IsEmpty());
}

// The whole of it, with receipts, without and with some that can't be written: what the host, the exchange
// and the person notice, and every statement, stay the same.
struct Told : ResetReceipts {
  enum class Way { kept, none, refused };
  struct Seen {
    std::vector<std::u16string> statements;
    Lines trace;
    std::string documented;
    std::u16string line;
  };
  Seen run(Way way) {
    keeps = way != Way::none;
    refused = way == Way::refused;
    startWithHost();
    light();
    for (const char16_t* said : {u"OK", u"DATA ERROR", u"OK"}) {
      pressAndTick(1);
      answerReset(said);
      tick();
    }
    exchange().loginAnswer = u"BUSY"s;
    pressAndTick(1);
    exchange().loginAnswer = u"L1"s;
    pressAndTick(1);
    answerReset(u"WAIT", 61);
    light();
    form().input().headingClicked(0);
    pressAndTick(2);
    const std::u16string line = view.status[0];
    pressAndTick(1);
    layer.reset();
    Seen seen{statements, taken(), documented(), line};
    EXPECT_EQ(receipts().size(), way == Way::kept ? 6U : 0U);
    return seen;
  }
  // Every value of the documented tables.
  std::string documented() {
    engine.between = [](std::u16string_view, auto file) { return file; };
    const auto file = engine.open(u"FAULT.MDB", true);
    std::string all;
    const auto add = [&](std::u16string_view statement, std::initializer_list<std::u16string_view> columns) {
      for (const auto rows = file->openRecordset(statement); !rows->atEnd(); rows->moveNext())
        for (const auto column : columns) all += text::toUtf8(database::textOf(rows->get(column))) + "|";
    };
    add(u"SELECT * FROM PBXList Order by [TimeStamp] Desc", {u"ID", u"PBXName", u"TimeStamp", u"MJ", u"MN"});
    add(u"SELECT * FROM FaultDisplay Order by [Date] Desc",
        {u"ID", u"Fault", u"Alarm", u"CPU", u"Date", u"Count", u"Description"});
    return all;
  }
  void TestBody() override {}
};

TEST(ResetReceiptStories, NothingElseIsDoneForThem) {
  Told with, without, refused;
  const auto kept = with.run(Told::Way::kept);
  const auto none = without.run(Told::Way::none);
  const auto failed = refused.run(Told::Way::refused);
  EXPECT_GT(none.statements.size(), 30U);
  EXPECT_EQ(std::count(none.trace.begin(), none.trace.end(), "Box 108  "), 2);
  EXPECT_EQ(kept.statements, none.statements);
  EXPECT_EQ(kept.trace, none.trace);
  EXPECT_EQ(kept.documented, none.documented);
  EXPECT_EQ(kept.line, none.line);
  EXPECT_EQ(failed.statements, none.statements);
  EXPECT_EQ(failed.trace, none.trace);
  EXPECT_EQ(failed.documented, none.documented);
}

TEST_F(ResetReceipts, OneThatCantBeWrittenIsToldInTheStatusLineUntilTheNextRequest) {
  startWithHost();
  light();
  const std::u16string before = view.status[0];
  refused = true;
  pressAndTick(1);
  answerReset(u"OK");
  tick();
  EXPECT_EQ(view.status[0], u"no receipt: can't be written\n" + before);
  EXPECT_FALSE(view.majorLit) << "the reset went on";
  pressAndTick(0);
  exchange().answer(0, oneFault());
  tick();
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::Not(testing::HasSubstr("no receipt")));
}

}  // namespace
}  // namespace vordane::startup
