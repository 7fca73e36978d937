// Between the portable window and whatever draws it. `WindowInput` implements ViewEvents, the window talks to
// a View; the Win32 view (and the tests' in-memory one) implements View and calls ViewEvents. One thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/notes.h"
#include "platform/window.h"

namespace vordane::database {
class Arrivals;
class RowList;
}  // namespace vordane::database

namespace vordane::window {

// One fault as the grid shows it.
struct GridRow {
  std::u16string fault, alarm, date, cpu, description;
  std::int64_t count = 0;

  bool operator==(const GridRow&) const = default;
};

// The rows behind the virtual grid; the view fetches what it shows and keeps nothing.
class GridSource {
 public:
  virtual ~GridSource() = default;
  virtual std::size_t size() const = 0;
  virtual std::optional<GridRow> row(std::size_t position) = 0;  // nothing when it has gone since
  // The data characters [begin, end) of the description's data part that character `position` of the
  // description came from; nothing when there is no proof of it.
  struct Range {
    std::size_t begin, end;
  };
  virtual std::vector<Range> provenance(std::size_t row, std::size_t position) = 0;
  // Where the data part stands in the row's description; nothing when the source does not know, and the
  // view then takes the longest run of hexadecimal digits and blanks of the last line.
  virtual std::optional<Range> dataPart(std::size_t) { return std::nullopt; }
  // For whoever has to look at all rows: its columns are the members of GridRow in their order. Null where
  // there is none, and while a long step runs.
  virtual database::RowList* list() { return nullptr; }
  // What a person has written to the fault with this number; nothing where nobody looks, and while there is
  // no `list`.
  virtual std::optional<database::Note> note(std::int64_t) { return std::nullopt; }
  // A row's description as a person reads it: in the words of another language while one is chosen and the
  // row can be told in it, else as it is stored. `dataPart` and `provenance` speak of this text.
  virtual std::u16string asRead(const GridRow& row) { return row.description; }
};

// The words that belong to the drawing and to no control. They come from the language database like all
// others; whoever makes the view hands them in.
enum class ViewText {
  majorLit,  // the lamps' state in words, name included
  majorClear,
  minorLit,
  minorClear,
  lookUpLabel,        // before the box for the text to look up; with its access key
  lookUpNext,         // the button that goes to the next fault holding the text; with its access key
  lookUpClose,        // tool tip of the button that closes the look-up bar
  lookUpNotFound,     // no shown fault holds the text
  lookUpWrapped,      // the search went on from the first row
  lookUpWrappedBack,  // backwards: from the last row
  copyFault,          // context menu of the grid; with its access key
  selectedFault,      // the name of the pane below the grid, for screen readers
  noSelection,        // what the pane below says while no fault is selected
  clipboardHeld,      // nothing was copied, since another program holds the clipboard
  openGuide,          // entry of the window's system menu; with its access key
  // The filter bar; labels, ticks and buttons with their access keys.
  filterText,          // before the box for a text that shown faults hold
  filterMajor,         // tick: major faults
  filterMinor,         // tick: minor faults
  filterKindsAll,      // the button that opens the list of kinds, all of them shown
  filterKindsSome,     // {1} of {2} kinds are shown
  filterKindsName,     // the name of that list, for screen readers
  filterProcessor,     // before the list of processors
  filterAnyProcessor,  // its entry for all of them
  filterSince,         // before the box for the first date shown
  filterUntil,         // before the box for the last
  filterDateStyle,     // what an empty one of them says
  filterClear,         // the button that shows all faults again
  filterClose,         // tool tip of the button that closes the bar
  filterOtherDates,    // tick: {1} faults whose date has another form
  filterNote,          // while a filter is on: printing and deleting go by all {1} faults
  filterBadDate,       // a date is written in another style
  filterBadOrder,      // the first date is behind the last
  filterAtWork,        // {1} of {2} faults looked at; Esc gives it up
  filterFailed,        // the database said {1}
  filterHidesAll,      // in the empty grid's place: none of {1} faults passes
  shownCount,          // the status line's number: {1} of {2} shown
  onlyKind,            // context menu of the grid: only faults of kind {1}
  withoutKind,         // none of kind {1}
  onlyProcessor,       // only of processor {1}
  onlyDay,             // only of day {1}
  // Of finding: what the bar says behind its buttons.
  findPlace,   // the selected fault is number {1} of {2} that hold the text
  findCount,   // {1} hold it; the selected one does not
  findAtWork,  // {1} of {2} faults looked at
  // Of several selected faults, of copying and saving.
  rowsSelected,  // the status line's number: {1} as it is otherwise, {2} faults selected
  copyCsv,       // context menu of the grid: copies the selected faults as CSV
  copyMessage,   // their descriptions
  copyData,      // their data
  copyAtWork,    // {1} of {2} faults copied; Esc stops it
  copyTooMany,   // {1} are selected, {2} can be copied
  copyNoData,    // the selected faults hold no data
  saveShown,     // context menu of the grid: saves all faults shown
  saveTitle,     // of the dialog that asks for the file
  saveAsCsv,     // the kinds of files that it offers
  saveAsPage,
  saveAsJson,
  saveAtWork,     // {1} of {2} faults saved; Esc stops it
  saved,          // {1} faults saved as {2}
  savedButGone,   // the same; {3} had gone meanwhile
  saveNoFile,     // no file can be made as {1}
  saveNoRoom,     // {1} could not be written to its end
  saveHeld,       // {1} can't be replaced
  outputFailed,   // copying or saving: the database said {1}
  outputStopped,  // by the person: nothing was written
  outputGivenUp,  // the list was renewed meanwhile: nothing was written
  // Above the rows, when faults came that the person has not looked at.
  newerFault,   // one
  newerFaults,  // {1} of them
  // Above the rows, of the latest flood of faults.
  floodMinutes,  // {1} faults in {2} minutes, from {3} to {4}
  floodMinute,   // {1} faults in the minute {2}
  floodEnds,     // {1} was the first of them, {2} the last
  floodKind,     // {1} of them were {2}
  floodOthers,   // {1} were of other kinds
  floodShow,     // what a press does: shows no others
  // For screen readers: what the action of a part of the window does, and how the rows are sorted.
  actPress,
  actTick,
  actUntick,
  actOpen,
  actSelect,
  actSort,
  sortedUpwards,
  sortedDownwards,
  alarmSound,  // entry of the window's system menu, ticked while it is on; with its access key
  // Of faults that came after the person looked last.
  newFault,    // for screen readers: what a row is
  newFaults,   // for screen readers: {1} of them are stored of an exchange
  noNewFault,  // the list holds none
  nextNew,     // context menu of the grid: goes to the next one; with its access key
  // Of notes that people write to faults.
  noteText,          // heading of a saved list: what a person has written to a fault
  noteAuthor,        // who wrote it
  noteTime,          // when
  noteBegin,         // before a note: by {1}, at {2}
  noteMenu,          // context menu of the grid; with its access key
  noteEdit,          // before the box in which a note is written to fault number {1}
  noteHow,           // below it: how it is kept
  filterNoted,       // tick of the filter bar: faults with a note
  noteTooLong,       // not kept: {1} characters, {2} are the most
  noteBlanks,        // of what was pasted
  noteFaultGone,     // not kept
  noteChanged,       // not kept: {1} has written {2} meanwhile
  noteTakenAway,     // not kept: somebody has taken the former one away meanwhile
  noteFailed,        // the database said {1}
  notesNotInAccess,  // why there are no notes: an Access file
  notesNotOnServer,  // a server
  notesNotInFile,    // tables that somebody else has declared otherwise
  storedTexts,       // context menu of the grid, ticked while faults show as stored; with its access key
};

class ViewTexts {
 public:
  virtual ~ViewTexts() = default;
  virtual std::u16string text(ViewText which) = 0;
};

// What a notice is about, and so how it looks.
enum class NoticeKind { hint, waiting, failure };

enum class LookUpWay { forwards, backwards };

// Whether a person may look at the list in ways of the window's own now: never where nobody sits, and not
// while an answer is waited for or a box stands.
enum class ListUse { never, later, now };

// The languages that the window can be read in, as their speakers call them; the first is the one that faults
// are stored in.
struct Languages {
  std::vector<std::u16string> names;
  std::size_t chosen = 0;
};

// What may have the focus besides the form's controls.
inline constexpr std::u16string_view lookUpBarPart = u"lookUpBar", filterBarPart = u"filterBar",
                                     panePart = u"pane";

// What a person does.
class ViewEvents {
 public:
  virtual ~ViewEvents() = default;
  virtual void buttonPressed(int action) = 0;   // the number of an Action
  virtual void headingClicked(int column) = 0;  // the column's own index, wherever it was moved
  // drpPBXList. The form's list still has its former choice: whoever takes the new one sets it there, whoever
  // does not sets the former again.
  virtual void exchangeChosen(int listIndex) = 0;
  virtual void closeAsked() = 0;                                // the title bar
  virtual void keyPressed(int keyCode) = 0;                     // F1 is 112, F5 116
  virtual void mousePressed(Control& control, int button) = 0;  // 2 is the right one
  virtual void whatsThisChosen() = 0;                           // itmWhatThis of the pop-up menu
  // The guide's entry of the window's system menu: whether it can be chosen, asked whenever the menu opens,
  // and the choice. `part` is the name of what has the focus, a control or one of the parts above; empty when
  // nothing of the window has.
  virtual bool guideOffered() = 0;
  virtual void guideAsked(std::u16string_view part) = 0;
  // The row that holds `text` next after `from` (exclusive; -1: none is selected) or, backwards, before it,
  // without regard to case, wrapping round once; nothing when none does.
  virtual std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from, LookUpWay way) = 0;
  virtual ListUse listUse() { return ListUse::never; }
  // Asked whenever the window's system menu opens: looks for the languages anew.
  virtual Languages languages() { return {}; }
  virtual void languageChosen(std::size_t) {}  // its place among those of the last `languages`
  // Faults show as they are stored, or translated again. Nothing while the first language is read.
  virtual bool storedTextsOffered() { return false; }
  virtual bool storedTextsShown() { return false; }
  virtual void storedTextsAsked() {}
  // What has come into the store; null where it can't be told. For use at once: the database may be closed.
  virtual std::shared_ptr<database::Arrivals> arrivals() { return nullptr; }
  // The moment to look whether others have stored something newer than is shown; nothing may be waited for
  // long. Answers with when it should come again. Called soon after each setRows, and only while the window
  // can be seen and `listUse` says now.
  virtual std::chrono::milliseconds lookAtStore() { return std::chrono::minutes(1); }
  virtual void tick() = 0;  // tmrEvent
};

// The status line's parts: the account of the lists, the number of faults shown, the processor texts.
inline constexpr int accountPart = 0, countPart = 1, processorPart = 2;

class View {
 public:
  virtual ~View() = default;
  virtual void attach(Form& form, ViewEvents& events) = 0;  // creates the window, hidden
  virtual void detach() = 0;                                // destroys it; no event comes afterwards

  // Shown means on top of all other windows and in the foreground, as far as the system lets it.
  virtual void setVisible(bool visible) = 0;
  virtual bool visible() = 0;
  virtual void refresh() = 0;
  virtual void setInputEnabled(bool enabled) = 0;  // controls and commands; the frame stays usable
  virtual void setHourglass(bool on) = 0;
  virtual void startTimer(int milliseconds) = 0;  // one tick, then off
  virtual void stopTimer() = 0;

  // Captions, tips, headings and fonts show from now on as this form's controls of the same name have them,
  // and the view's own words and the rows are read anew. It outlives the next call; null: the attached form's
  // own.
  virtual void setWords(Form*) {}
  virtual void setRows(GridSource* rows) = 0;                 // nullptr: empty grid
  virtual void setSortMark(int column, bool descending) = 0;  // -1: none
  virtual void setLamp(bool major, bool lit) = 0;             // drawn in words besides the label's colour
  // What is told of the lamps besides, on a person's asking only: their tool tip and their description for
  // screen readers. Empty: nothing.
  virtual void setLampNote(std::u16string_view) {}
  // The account may be of any length and hold line ends; the other parts are short.
  virtual void setStatus(int part, std::u16string_view text) = 0;
  // What stands in the empty grid's place: what is being waited for, what failed, what to press.
  virtual void setNotice(std::u16string_view text) = 0;
  virtual void setNoticeKind(NoticeKind) {}  // how the notice looks from now on; hint to begin with
  virtual void paintNow() = 0;               // inside a long step: painting only, no input

  virtual void popUpMenu(std::u16string_view menu) = 0;  // at the mouse; returns when it has closed
  virtual void showWhatsThis(Control& control, std::u16string_view help) = 0;

  // In 1/1440 inch: the screen's and the window's own size, and where it stands.
  struct Size {
    std::int32_t width, height;
  };
  virtual Size screenSize() = 0;
  virtual Size windowSize() = 0;
  virtual void moveTo(std::int32_t left,
                      std::int32_t top) = 0;  // pulled back where its title bar can't be reached
  virtual std::pair<std::int32_t, std::int32_t> position() = 0;
};

}  // namespace vordane::window
