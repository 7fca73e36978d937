// The texts that the program asks for by number. Numbers 0 to 164 belong to the exchange's fault texts and
// the host's messages; from 165 on the product's own and those of later fault kinds follow without a gap.
// Every language holds them all.
// A text with {1}, {2}, ... takes its values through fillText.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "text/fill.h"

namespace vordane::message {

// The host's messages; the fault texts between are named in the table of fault kinds.
inline constexpr std::size_t windowTitle = 0;
inline constexpr std::size_t serverAnswer = 1;  // before the log-in identifier or the send result
inline constexpr std::size_t requestDone = 2;   // an answer without a message of its own
inline constexpr std::size_t databaseNotOpen = 3;
inline constexpr std::size_t noNewFaults = 4;
inline constexpr std::size_t runNumber = 89;  // before the number of a scheduled repetition

// Numbers that no rule uses hold the empty text, since a text's position is its number.
constexpr bool isUnused(std::size_t number) {
  return (number >= 10 && number <= 13) || number == 52 || (number >= 91 && number <= 100) ||
         (number >= 102 && number <= 105) || number == 116 || number == 117 ||
         (number >= 151 && number <= 159) || number == 169 || number == 170 || number == 181 ||
         number == 182 || number == 187 || number == 213 || number == 222 || number == 223;
}

// Lamps, in words.
inline constexpr std::size_t lampMajorAlarm = 165;  // "MAJOR: alarm"
inline constexpr std::size_t lampMajorClear = 166;
inline constexpr std::size_t lampMinorAlarm = 167;
inline constexpr std::size_t lampMinorClear = 168;

// Status line. The account: {1} time, {2} received, {3} new, {4} already stored, {5} refused, {6} exchange.
inline constexpr std::size_t statusNoList = 171;
inline constexpr std::size_t statusListComplete = 172;
inline constexpr std::size_t statusListIncomplete = 173;
inline constexpr std::size_t statusAttemptFailed =
    174;  // {1} time, {2} reason, {3} exchange; what came last follows
inline constexpr std::size_t statusFaultCount = 175;       // {1} number of faults shown
inline constexpr std::size_t statusWide = 176;             // module numbers of 8 bits
inline constexpr std::size_t statusNarrow = 177;           // of 6 bits
inline constexpr std::size_t statusTextsIncomplete = 178;  // a loader stopped; {1} the tables
inline constexpr std::size_t statusNetworkDrive = 179;     // the database lies where writing is slower
inline constexpr std::size_t runOtherKind = 180;           // of a scheduled job that is not run here
inline constexpr std::size_t noticeDeleting = 183;

// In the place of an empty grid. {1} is the exchange.
inline constexpr std::size_t noticeNoExchange = 184;  // nothing stored, nothing registered
inline constexpr std::size_t noticeFirstList = 185;   // what to press to fetch the first list
inline constexpr std::size_t noticeNoFaults = 186;    // a list came and nothing is stored
inline constexpr std::size_t noticeWaitingList = 188;
inline constexpr std::size_t noticeWaitingAlarms = 189;
inline constexpr std::size_t noticeWaitingReset = 190;
inline constexpr std::size_t noticeStoring = 191;        // {1} done, {2} of
inline constexpr std::size_t noticeRequestFailed = 192;  // {1} exchange, {2} reason
inline constexpr std::size_t noticeDatabaseClosed = 193;
inline constexpr std::size_t noticeChooseJob = 194;     // while a scheduled job is being made
inline constexpr std::size_t noticeScheduledRun = 195;  // {1} run, {2} of
inline constexpr std::size_t noticeReading = 196;       // while the stored faults are read or sorted

// Why an attempt failed; each is a clause that follows a colon.
inline constexpr std::size_t reasonBusy = 197;     // "BUSY"
inline constexpr std::size_t reasonRefused = 198;  // "ERROR" or an empty answer at log-in
inline constexpr std::size_t reasonSendFailed = 199;
inline constexpr std::size_t reasonNoServer = 200;    // the exchange server could not be started
inline constexpr std::size_t reasonErrorCode = 201;   // {1} the answer's code
inline constexpr std::size_t reasonServerGone = 202;  // it vanished while its answer was read
inline constexpr std::size_t reasonAccess = 203;      // a "ZUL_" entry; {1} its text
inline constexpr std::size_t reasonDatabase = 204;    // {1} the engine's text
inline constexpr std::size_t reasonCancelled = 205;
inline constexpr std::size_t reasonLampAnswer = 206;   // the alarm state could not be read
inline constexpr std::size_t reasonClearAnswer = 207;  // the exchange did not confirm the reset
inline constexpr std::size_t reasonTooLong = 208;      // more entries than a record holds
inline constexpr std::size_t reasonNoExchange = 209;   // no exchange is registered

// The run log's account, in the numbers of the status line but without the time (the line has its own).
inline constexpr std::size_t runListComplete = 210;  // {1} received, {2} new, {3} stored, {4} refused
inline constexpr std::size_t runListIncomplete = 211;
inline constexpr std::size_t runListFailed = 212;  // {1} reason

// The bar that finds a text in the shown faults.
inline constexpr std::size_t lookUpLabel = 214;  // with access key
inline constexpr std::size_t lookUpNext = 215;   // with access key
inline constexpr std::size_t lookUpClose = 216;
inline constexpr std::size_t lookUpNotFound = 217;  // the text itself stands in the bar beside it
inline constexpr std::size_t lookUpWrapped = 218;   // went on from the top

// Names and hints for what has no caption.
inline constexpr std::size_t paneName = 219;    // the pane with the whole fault
inline constexpr std::size_t paneEmpty = 220;   // no fault selected
inline constexpr std::size_t menuCopy = 221;    // with access key
inline constexpr std::size_t noHelpText = 224;  // a control without a help text

// What came before this start, as the status line's account.
inline constexpr std::size_t statusStored = 225;         // {1} exchange, {2} when its last list came
inline constexpr std::size_t statusStoredUndated = 226;  // {1} exchange; that is not known

// More of what failed, and how a run ended before its end.
inline constexpr std::size_t noticeListFailed = 227;   // {1} exchange, {2} reason
inline constexpr std::size_t reasonCutShort = 228;     // the answer ends inside a fault
inline constexpr std::size_t reasonUnreachable = 229;  // {1} the error that the log-in raised
inline constexpr std::size_t runCancelled = 230;
inline constexpr std::size_t runLetGo = 231;  // nobody holds the add-in any more

// A list that came and was not acknowledged, and alarms that were not reset: {1} time, {2} reason, {3}
// exchange.
inline constexpr std::size_t statusAckFailed = 232;
inline constexpr std::size_t statusResetFailed = 233;
inline constexpr std::size_t runAckFailed = 234;  // {1} reason

// Long steps with {1} done, {2} of.
inline constexpr std::size_t noticeReadingOf = 235;
inline constexpr std::size_t noticeDeletingOf = 236;

// Of the window.
inline constexpr std::size_t clipboardHeld = 237;
inline constexpr std::size_t lookUpWrappedBack = 238;  // backwards, went on from the bottom

// Limits, and an answer to a question about something else.
inline constexpr std::size_t reasonTooLarge = 239;
inline constexpr std::size_t reasonTextCut = 240;  // longer than is kept
inline constexpr std::size_t reasonNoMemory = 241;
inline constexpr std::size_t statusNotDeleted = 242;  // {1} time; another exchange came to be shown

// The guide: its entry of the window's system menu, and why it does not open; {1} is the file.
inline constexpr std::size_t menuGuide = 243;  // with access key
inline constexpr std::size_t statusGuideMissing = 244;
inline constexpr std::size_t statusGuideNotShown = 245;

// Of the filter.
inline constexpr std::size_t filterText = 246;
inline constexpr std::size_t filterMajor = 247;
inline constexpr std::size_t filterMinor = 248;
inline constexpr std::size_t filterKindsAll = 249;
inline constexpr std::size_t filterKindsSome = 250;  // {1} of {2}
inline constexpr std::size_t filterKindsName = 251;
inline constexpr std::size_t filterProcessor = 252;
inline constexpr std::size_t filterAnyProcessor = 253;
inline constexpr std::size_t filterSince = 254;
inline constexpr std::size_t filterUntil = 255;
inline constexpr std::size_t filterDateStyle = 256;
inline constexpr std::size_t filterClear = 257;
inline constexpr std::size_t filterClose = 258;
inline constexpr std::size_t filterOtherDates = 259;  // {1} faults
inline constexpr std::size_t filterNote = 260;        // {1} faults
inline constexpr std::size_t filterBadDate = 261;
inline constexpr std::size_t filterBadOrder = 262;
inline constexpr std::size_t filterAtWork = 263;    // {1} of {2}
inline constexpr std::size_t filterFailed = 264;    // {1} the engine's text
inline constexpr std::size_t filterHidesAll = 265;  // {1} faults
inline constexpr std::size_t shownCount = 266;      // {1} of {2}
inline constexpr std::size_t onlyKind = 267;        // {1} kind
inline constexpr std::size_t withoutKind = 268;     // {1} kind
inline constexpr std::size_t onlyProcessor = 269;   // {1} processor
inline constexpr std::size_t onlyDay = 270;         // {1} day

// Before the account, as long as no real exchange answers.
inline constexpr std::size_t statusSimulated = 271;
// Of finding, of several selected faults, of copying and saving.
inline constexpr std::size_t findPlace = 272;     // {1} of {2}
inline constexpr std::size_t findCount = 273;     // {1}
inline constexpr std::size_t findAtWork = 274;    // {1} of {2}
inline constexpr std::size_t rowsSelected = 275;  // {1} the number otherwise, {2} selected
inline constexpr std::size_t copyCsv = 276;       // with access key
inline constexpr std::size_t copyMessage = 277;   // with access key
inline constexpr std::size_t copyData = 278;      // with access key
inline constexpr std::size_t copyAtWork = 279;    // {1} of {2}
inline constexpr std::size_t copyTooMany = 280;   // {1} selected, {2} at most
inline constexpr std::size_t copyNoData = 281;
inline constexpr std::size_t saveShown = 282;  // with access key
inline constexpr std::size_t saveTitle = 283;
inline constexpr std::size_t saveAsCsv = 284;
inline constexpr std::size_t saveAsPage = 285;
inline constexpr std::size_t saveAsJson = 286;
inline constexpr std::size_t saveAtWork = 287;    // {1} of {2}
inline constexpr std::size_t saved = 288;         // {1} faults, {2} file
inline constexpr std::size_t savedButGone = 289;  // {3} gone
inline constexpr std::size_t saveNoFile = 290;    // {1} file
inline constexpr std::size_t saveNoRoom = 291;    // {1} file
inline constexpr std::size_t saveHeld = 292;      // {1} file
inline constexpr std::size_t outputFailed = 293;  // {1} the engine's text
inline constexpr std::size_t outputStopped = 294;
inline constexpr std::size_t outputGivenUp = 295;

// The line above the rows.
inline constexpr std::size_t newerFault = 296;
inline constexpr std::size_t newerFaults = 297;  // {1} of them

// Of the language that stored faults are in.
inline constexpr std::size_t languageName = 298;          // as its speakers call it
inline constexpr std::size_t otherStoringLanguage = 299;  // {1} of the store, {2} of this station

// The line that tells of a flood.
inline constexpr std::size_t floodMinutes = 300;  // {1} faults, {2} minutes, {3} from, {4} to
inline constexpr std::size_t floodMinute = 301;   // {1} faults, {2} when
inline constexpr std::size_t floodEnds = 302;     // {1} the first, {2} the last
inline constexpr std::size_t floodKind = 303;     // {1} faults, {2} title and processors
inline constexpr std::size_t floodOthers = 304;   // {1} faults
inline constexpr std::size_t floodShow = 305;

// What screen readers are told of a part: what its action does, and how the rows are sorted.
inline constexpr std::size_t actPress = 306;
inline constexpr std::size_t actTick = 307;
inline constexpr std::size_t actUntick = 308;
inline constexpr std::size_t actOpen = 309;
inline constexpr std::size_t actSelect = 310;
inline constexpr std::size_t actSort = 311;
inline constexpr std::size_t sortedUpwards = 312;
inline constexpr std::size_t sortedDownwards = 313;

// The window's system menu.
inline constexpr std::size_t menuAlarmSound = 314;
inline constexpr std::size_t newFault = 315;
inline constexpr std::size_t newFaults = 316;
inline constexpr std::size_t noNewFault = 317;
inline constexpr std::size_t nextNew = 318;

// Notes that people write to faults.
inline constexpr std::size_t noteText = 319;  // heading of a saved list: what a person has written to a fault
inline constexpr std::size_t noteAuthor = 320;  // who wrote it
inline constexpr std::size_t noteTime = 321;    // when
inline constexpr std::size_t noteBegin = 322;   // before a note: by {1}, at {2}
inline constexpr std::size_t noteMenu = 323;    // context menu of the grid; with its access key
inline constexpr std::size_t noteEdit = 324;  // before the box in which a note is written to fault number {1}
inline constexpr std::size_t noteHow = 325;   // below it: how it is kept
inline constexpr std::size_t filterNoted = 326;    // tick of the filter bar: faults with a note
inline constexpr std::size_t noteTooLong = 327;    // not kept: {1} characters, {2} are the most
inline constexpr std::size_t noteBlanks = 328;     // of what was pasted
inline constexpr std::size_t noteFaultGone = 329;  // not kept
inline constexpr std::size_t noteChanged = 330;    // not kept: {1} has written {2} meanwhile
inline constexpr std::size_t noteTakenAway =
    331;                                        // not kept: somebody has taken the former one away meanwhile
inline constexpr std::size_t noteFailed = 332;  // the database said {1}
inline constexpr std::size_t notesNotInAccess = 333;  // why there are no notes: an Access file
inline constexpr std::size_t notesNotOnServer = 334;  // a server
inline constexpr std::size_t notesNotInFile = 335;    // tables that somebody else has declared otherwise

// Of resets, beside the lamps: {1} when, {2} who, {3} on which workstation, {4} why it failed.
inline constexpr std::size_t lampsReset = 336;
inline constexpr std::size_t lampsNotReset = 337;
inline constexpr std::size_t reasonNoAnswer = 338;   // the window went before the exchange answered
inline constexpr std::size_t statusNoReceipt = 339;  // {1} the engine's text

// Of a store that several stations write into.
inline constexpr std::size_t statusNewerList = 340;  // of {1} than the one shown

// Of a file whose faults are stored in two languages.
inline constexpr std::size_t statusOtherWords = 341;  // {1} of the faults before, {2} of these

// Of the language that a person reads the window in.
inline constexpr std::size_t statusNoLanguage = 342;  // {1} the file, {2} the engine's text or the table
inline constexpr std::size_t menuStoredTexts = 343;   // context menu of the grid; with its access key

// The product's own numbers, as [first, end). Behind the last stand the titles and labels of fault kinds that
// came later; own ones that come after those begin a range of their own.
struct Range {
  std::size_t first, end;
};
inline constexpr std::array ownTexts{Range{165, 344}};
inline constexpr std::size_t count = ownTexts.back().end;  // of all that are named here or stand before

constexpr bool isOwn(std::size_t number) {
  for (const Range& range : ownTexts)
    if (number >= range.first && number < range.end) return true;
  return false;
}

// The texts with an access key. Within one window, captions of controls included, a key opens one thing.
inline constexpr std::array windowKeys{lookUpLabel, lookUpNext,     filterText,      filterMajor,
                                       filterMinor, filterKindsAll, filterProcessor, filterSince,
                                       filterUntil, filterClear,    filterOtherDates};
// The captions that a control takes in turn: the second has the first one's key.
inline constexpr std::array captionsInTurn{std::pair{filterKindsAll, filterKindsSome}};
inline constexpr std::array paneMenuKeys{menuCopy};
inline constexpr std::array listMenuKeys{onlyKind, withoutKind, onlyProcessor,  onlyDay,
                                         copyCsv,  copyMessage, copyData,       saveShown,
                                         noteMenu, nextNew,     menuStoredTexts};
inline constexpr std::array frameMenuKeys{menuGuide, menuAlarmSound};

}  // namespace vordane::message

namespace vordane::box {

// Boxes that rules name.
inline constexpr std::int16_t stepFailed = 102;  // substitution: the engine's text
inline constexpr std::int16_t noNewFaults = 104;
inline constexpr std::int16_t confirmDelete = 105;
inline constexpr std::int16_t reportRefused = 107;  // substitution: the host's reason
inline constexpr std::int16_t alarmsReset = 108;
inline constexpr std::int16_t confirmRequest = 109;
// The product's own.
inline constexpr std::int16_t noHostToPrint = 900;
inline constexpr std::int16_t helpNotFound = 901;  // substitution: the file

inline constexpr std::array<std::int16_t, 8> all{102, 104, 105, 107, 108, 109, 900, 901};

}  // namespace vordane::box
