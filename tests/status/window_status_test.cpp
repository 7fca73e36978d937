// What the status line and the notice say: what happened goes in, texts and the look of the notice come out.
#include "status/window_status.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "language/message_numbers.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::status {

void PrintTo(const Notice& notice, std::ostream* out) {
  *out << static_cast<int>(notice.kind) << " \"" << text::toUtf8(notice.text) << '"';
}

namespace {

using pbx::Failure;
using window::NoticeKind;

const Notice none{};

SharedState textsOfTheTest() {
  SharedState state;
  for (std::size_t i = 0; i < message::count; ++i)
    state.Messages.push_back(u"M" + text::decimal(static_cast<std::int64_t>(i)));
  const std::pair<std::size_t, std::u16string_view> words[] = {
      {message::statusNoList, u"no list"},
      {message::statusStored, u"{1} stored {2}"},
      {message::statusStoredUndated, u"{1} stored some time"},
      {message::statusListComplete, u"{2} of {6}"},
      {message::statusListIncomplete, u"{2} of {6}, not all"},
      {message::statusAttemptFailed, u"{1} {3} failed: {2}"},
      {message::statusAckFailed, u"{1} {3} not acknowledged: {2}"},
      {message::statusResetFailed, u"{1} {3} not reset: {2}"},
      {message::statusNotDeleted, u"not deleted {1}"},
      {message::statusTextsIncomplete, u"incomplete: {1}"},
      {message::statusNetworkDrive, u"network."},
      {message::noticeWaitingList, u"list of {1}"},
      {message::noticeWaitingAlarms, u"alarms of {1}"},
      {message::noticeWaitingReset, u"reset of {1}"},
      {message::noticeScheduledRun, u"run {1}/{2}"},
      {message::noticeRequestFailed, u"{1}: {2}"},
      {message::noticeListFailed, u"{1} not whole: {2}"},
      {message::noticeChooseJob, u"choose"},
      {message::noticeNoFaults, u"{1} has none"},
      {message::noticeFirstList, u"ask {1}"},
      {message::noticeNoExchange, u"no exchange"},
      {message::noticeDatabaseClosed, u"closed"},
      {message::statusGuideMissing, u"no guide at {1}"},
      {message::statusGuideNotShown, u"nothing shows {1}"},
      {message::reasonDatabase, u"database: {1}"},
      {message::reasonCutShort, u"cut short"},
      {message::reasonBusy, u"busy"},
      {message::reasonRefused, u"refused"},
      {message::reasonUnreachable, u"unreachable {1}"},
      {message::reasonErrorCode, u"code {1}"},
      {message::reasonNoServer, u"no server"},
      {message::reasonSendFailed, u"not sent"},
      {message::reasonServerGone, u"gone"},
      {message::reasonTooLarge, u"too large"},
      {message::reasonNoMemory, u"no memory"},
      {message::reasonCancelled, u"cancelled"},
  };
  for (const auto& [number, text] : words) state.Messages[number] = text;
  return state;
}

// Five received, all new, of PBX-1.
ListAccount account(ListEnd end) {
  ListAccount account;
  account.when = u"now";
  account.end = end;
  account.received = account.added = 5;
  account.exchange = u"PBX-1";
  return account;
}

std::u16string busy(const SharedState& words) {
  return messageText(words, message::reasonBusy);
}

using Events = std::function<void(WindowStatus&)>;
void exchangeShown(WindowStatus& s) {
  s.exchangeShown(u"PBX-1", u"yesterday");
}
void listFails(WindowStatus& s) {
  s.waits(step::faultListRequest, u"PBX-1");
  s.attemptFailed(step::faultListRequest, u"PBX-1", u"now", busy);
}
void listComes(WindowStatus& s) {
  s.waits(step::faultListRequest, u"PBX-1");
  s.listTaken(account(ListEnd::complete));
}
void partOfAListComes(WindowStatus& s) {
  s.waits(step::faultListRequest, u"PBX-1");
  s.listTaken(account(ListEnd::cutShort));
}

struct Case {
  const char* what;
  std::vector<Events> events;
  std::u16string_view line;
  Notice aboveRows;
};

const Case cases[] = {
    {"nothing yet", {}, u"", none},
    {"loaded without an exchange", {[](auto& s) { s.loaded(); }}, u"no list", none},
    {"an exchange with a time",
     {exchangeShown, [](auto& s) { s.loaded(); }},
     u"PBX-1 stored yesterday",
     none},
    {"one without", {[](auto& s) { s.exchangeShown(u"PBX-1", u""); }}, u"PBX-1 stored some time", none},
    {"none", {exchangeShown, [](auto& s) { s.exchangeShown(u"", u""); }}, u"no list", none},
    {"a guide that is missing, above a failure",
     {exchangeShown, listFails, [](auto& s) { s.guideMissing(u"G"); }},
     u"no guide at G\nnow PBX-1 failed: busy\nPBX-1 stored yesterday",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"a guide that opens in the end",
     {exchangeShown, [](auto& s) { s.guideNotShown(u"G"); }, [](auto& s) { s.guideShown(); }},
     u"PBX-1 stored yesterday",
     none},
    {"a guide that nothing shows, and another exchange",
     {exchangeShown, [](auto& s) { s.guideNotShown(u"G"); }, [](auto& s) { s.otherExchange(); }},
     u"PBX-1 stored yesterday",
     none},
    {"a guide that nothing shows, before the next request",
     {exchangeShown, [](auto& s) { s.guideNotShown(u"G"); }, listComes},
     u"5 of PBX-1",
     none},
    {"a slow drive",
     {[](auto& s) { s.databaseOpened(true); }, exchangeShown},
     u"network. PBX-1 stored yesterday",
     none},
    {"a slow drive that is closed again",
     {[](auto& s) { s.databaseOpened(true); }, exchangeShown, [](auto& s) { s.databaseClosed(); }},
     u"PBX-1 stored yesterday",
     none},
    {"a slow drive after a failure",
     {[](auto& s) { s.databaseOpened(true); }, exchangeShown, listFails},
     u"now PBX-1 failed: busy\nPBX-1 stored yesterday",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"texts that stopped, after a failure",
     {[](auto& s) { s.textsStopped(u"tA"); }, exchangeShown, listFails},
     u"now PBX-1 failed: busy\nPBX-1 stored yesterday",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"a list that was not waited for, after a failure",
     {listFails, [](auto& s) { s.listTaken(account(ListEnd::complete)); }},
     u"5 of PBX-1",
     none},
    {"a slow drive after news", {[](auto& s) { s.databaseOpened(true); }, listComes}, u"5 of PBX-1", none},
    {"texts that stopped",
     {exchangeShown, [](auto& s) { s.textsStopped(u"tA"); }, [](auto& s) { s.textsStopped(u"tB"); }},
     u"incomplete: tA, tB",
     none},
    {"texts that stopped, after news",
     {[](auto& s) { s.textsStopped(u"tA"); }, listComes},
     u"5 of PBX-1",
     none},
    {"a list is waited for",
     {exchangeShown, [](auto& s) { s.waits(step::faultListRequest, u"PBX-2"); }},
     u"PBX-1 stored yesterday",
     {NoticeKind::waiting, u"list of PBX-2"}},
    {"an acknowledgement",
     {[](auto& s) { s.waits(step::alarmStateRequest, u"PBX-2"); }},
     u"",
     {NoticeKind::waiting, u"alarms of PBX-2"}},
    {"a reset",
     {[](auto& s) { s.waits(step::alarmClearRequest, u"PBX-2"); }},
     u"",
     {NoticeKind::waiting, u"reset of PBX-2"}},
    {"a run", {[](auto& s) { s.runs(2, 3); }}, u"", {NoticeKind::waiting, u"run 2/3"}},
    {"the wait is over",
     {[](auto& s) { s.waits(step::faultListRequest, u"P"); }, [](auto& s) { s.idle(); }},
     u"",
     none},
    {"a failed list",
     {exchangeShown, listFails},
     u"now PBX-1 failed: busy\nPBX-1 stored yesterday",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"a failed acknowledgement",
     {[](auto& s) { s.attemptFailed(step::alarmStateRequest, u"P", u"now", busy); }},
     u"now P not acknowledged: busy\n",
     {NoticeKind::failure, u"P: busy"}},
    {"a failed reset",
     {[](auto& s) { s.attemptFailed(step::alarmClearRequest, u"P", u"now", busy); }},
     u"now P not reset: busy\n",
     {NoticeKind::failure, u"P: busy"}},
    {"a failure before anything was asked",
     {[](auto& s) { s.attemptFailed(step::loaded, u"P", u"now", busy); }},
     u"now P failed: busy\n",
     {NoticeKind::failure, u"P: busy"}},
    {"a wait goes before a failure",
     {listFails, [](auto& s) { s.waits(step::alarmStateRequest, u"P"); }},
     u"now PBX-1 failed: busy\n",
     {NoticeKind::waiting, u"alarms of P"}},
    {"an acknowledgement's wait leaves the list's failure",
     {listFails, [](auto& s) { s.waits(step::alarmStateRequest, u"P"); }, [](auto& s) { s.idle(); }},
     u"now PBX-1 failed: busy\n",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"a new request makes it old",
     {listFails, [](auto& s) { s.waits(step::faultListRequest, u"P"); }, [](auto& s) { s.idle(); }},
     u"now PBX-1 failed: busy\n",
     none},
    {"a reset does too",
     {listFails, [](auto& s) { s.waits(step::alarmClearRequest, u"P"); }, [](auto& s) { s.idle(); }},
     u"now PBX-1 failed: busy\n",
     none},
    {"another exchange is not blamed",
     {listFails, [](auto& s) { s.otherExchange(); }},
     u"now PBX-1 failed: busy\n",
     none},
    {"a good answer makes the line old",
     {exchangeShown, listFails, [](auto& s) { s.attemptSucceeded(); }},
     u"PBX-1 stored yesterday",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"a list", {exchangeShown, listComes}, u"5 of PBX-1", none},
    {"a list after a failure", {listFails, listComes}, u"5 of PBX-1", none},
    {"a failure after a list",
     {listComes, listFails},
     u"now PBX-1 failed: busy\n5 of PBX-1",
     {NoticeKind::failure, u"PBX-1: busy"}},
    {"another exchange after a list",
     {listComes, [](auto& s) { s.exchangeShown(u"P", u"then"); }},
     u"5 of PBX-1",
     none},
    {"part of a list",
     {partOfAListComes},
     u"5 of PBX-1, not all",
     {NoticeKind::failure, u"PBX-1 not whole: cut short"}},
    {"a whole list after it", {partOfAListComes, listComes}, u"5 of PBX-1", none},
    {"a deletion given up",
     {exchangeShown, [](auto& s) { s.deletionGivenUp(u"now"); }},
     u"not deleted now\nPBX-1 stored yesterday",
     none},
};

TEST(WindowStatus, SaysWhatHappened) {
  const SharedState state = textsOfTheTest();
  for (const Case& row : cases) {
    SCOPED_TRACE(row.what);
    WindowStatus status(state);
    for (const Events& event : row.events) event(status);
    EXPECT_EQ(text::toUtf8(status.line()), text::toUtf8(row.line));
    EXPECT_EQ(status.aboveRows(), row.aboveRows);
    EXPECT_EQ(status.conversation().value_or(none), row.aboveRows);
  }
}

// What is told is told again in the words that are shown from now on, with the values that it had.
TEST(WindowStatus, EverySentenceIsToldInTheLanguageThatIsRead) {
  SharedState state = textsOfTheTest();
  SharedState other = state;
  for (std::u16string& text : other.Messages) text = u"<" + text + u">";
  for (const Case& row : cases) {
    SCOPED_TRACE(row.what);
    WindowStatus status(state), expected(other);
    for (const Events& event : row.events) event(status), event(expected);
    state.ShownMessages = other.Messages;
    if (row.events.empty()) continue;
    EXPECT_EQ(text::toUtf8(status.line()), text::toUtf8(expected.line()));
    EXPECT_EQ(status.aboveRows(), expected.aboveRows());
    state.ShownMessages.clear();
    EXPECT_EQ(text::toUtf8(status.line()), text::toUtf8(row.line));
    EXPECT_EQ(status.aboveRows(), row.aboveRows);
  }
}

TEST(WindowStatus, ALanguageThatCantBeReadIsSaidAboveAllUntilAnotherIsOrTheNextRequest) {
  SharedState state = textsOfTheTest();
  state.Messages[message::statusNoLanguage] = u"{1}: {2}";
  WindowStatus status(state);
  exchangeShown(status);
  const auto fails = [&] { status.languageUnusable(u"VORDANE.ru.LNG", u"damaged"); };
  fails();
  EXPECT_EQ(text::toUtf8(status.line()), "VORDANE.ru.LNG: damaged\nPBX-1 stored yesterday");
  status.languageRead();
  EXPECT_EQ(text::toUtf8(status.line()), "PBX-1 stored yesterday");
  fails();
  status.otherExchange();
  EXPECT_EQ(text::toUtf8(status.line()), "PBX-1 stored yesterday");
  fails();
  status.waits(step::faultListRequest, u"PBX-1");
  EXPECT_EQ(text::toUtf8(status.line()), "PBX-1 stored yesterday");
}

TEST(WindowStatus, AnEmptyGridSaysWhatToDoUnlessThereIsMoreToSay) {
  const SharedState state = textsOfTheTest();
  WindowStatus status(state);
  const std::optional<std::u16string> nothing, chosen(u"PBX-1");
  EXPECT_EQ(status.inEmptyGrid(nothing, u""), (Notice{NoticeKind::hint, u"no exchange"}));
  EXPECT_EQ(status.inEmptyGrid(nothing, u"PBX-2"), (Notice{NoticeKind::hint, u"ask PBX-2"}));
  EXPECT_EQ(status.inEmptyGrid(chosen, u"PBX-2"), (Notice{NoticeKind::hint, u"PBX-1 has none"}));
  EXPECT_EQ(status.inEmptyGrid(chosen, u""), (Notice{NoticeKind::hint, u"PBX-1 has none"}));
  listFails(status);
  EXPECT_EQ(status.inEmptyGrid(chosen, u""), (Notice{NoticeKind::failure, u"PBX-1: busy"}));
  status.displayFailed(u"disk full");
  EXPECT_EQ(status.inEmptyGrid(chosen, u""), (Notice{NoticeKind::failure, u"database: disk full"}));
  EXPECT_EQ(status.aboveRows(), (Notice{NoticeKind::failure, u"PBX-1: busy"})) << "there are rows";
  status.displayed();
  EXPECT_EQ(status.inEmptyGrid(chosen, u""), (Notice{NoticeKind::failure, u"PBX-1: busy"}));
  EXPECT_EQ(status.withoutDatabase(), (Notice{NoticeKind::failure, u"closed"}));
}

TEST(WindowStatus, AJobsCreationAsksWhenThereIsNothingElse) {
  SharedState state = textsOfTheTest();
  WindowStatus status(state);
  state.runMode = RunMode::creatingSchedule;
  EXPECT_EQ(status.conversation(), (Notice{NoticeKind::hint, u"choose"}));
  EXPECT_EQ(status.inEmptyGrid({}, u"PBX-1"), (Notice{NoticeKind::hint, u"choose"}));
  listFails(status);
  EXPECT_EQ(status.conversation(), (Notice{NoticeKind::failure, u"PBX-1: busy"}));
  status.otherExchange();
  state.runMode = RunMode::scheduledRun;
  EXPECT_EQ(status.conversation(), std::nullopt);
}

TEST(WindowStatus, EveryFailureHasItsClause) {
  const SharedState state = textsOfTheTest();
  const struct {
    Failure failure;
    std::int32_t code;
    const char* text;
  } clauses[] = {
      {Failure::declined, 0, "cancelled"},   {Failure::loginBusy, 0, "busy"},
      {Failure::loginRefused, 0, "refused"}, {Failure::unreachable, -2147352573, "unreachable 0x80020003"},
      {Failure::noServer, 0, "no server"},   {Failure::sendFailed, 0, "not sent"},
      {Failure::errorCode, -61, "code -61"}, {Failure::unreadable, 5, "gone"},
      {Failure::tooLarge, 5, "too large"},   {Failure::noMemory, 0, "no memory"},
      {Failure::cancelled, 61, "cancelled"},
  };
  for (const auto& clause : clauses)
    EXPECT_EQ(text::toUtf8(reasonText(state, clause.failure, clause.code)), clause.text);
}

}  // namespace
}  // namespace vordane::status
