// The database as the system uses it: statements as text, recordsets, fields by name. Implemented by the
// embedded engine (platform/sqlite) and by DAO (platform/dao); both pass tests/database's
// contract. One thread; every failure is a DatabaseError, after which the database is as before the step.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/arrivals.h"
#include "platform/automation.h"
#include "platform/notes.h"
#include "platform/receipts.h"
#include "platform/statement.h"
#include "platform/survey.h"

namespace vordane::database {

using Value = automation::Value;  // Null, bool (Yes/No), byte, Integer, Long, Single, Double or text

class DatabaseError : public std::exception {
 public:
  // `number` is the engine's own (3024 file not found, 3022 ...), `description` what box 102 shows.
  DatabaseError(int number, std::u16string description);
  const char* what() const noexcept override { return what_.c_str(); }
  int number() const { return number_; }
  const std::u16string& description() const { return description_; }

 private:
  int number_;
  std::u16string description_;
  std::string what_;
};

// Rows of one statement with a current row. A new recordset stands on its first row, if it has any. Which
// rows it holds, and in what order, does not change when its own rows are edited on the way.
class Recordset {
 public:
  virtual ~Recordset() = default;
  virtual bool atEnd() = 0;    // EOF
  virtual bool isEmpty() = 0;  // BOF and EOF
  // 0 when there is no row, else at least 1: nobody needs more, and counting would read them all.
  virtual std::int32_t recordCount() = 0;
  virtual void moveFirst() = 0;
  virtual void moveNext() = 0;
  virtual Value get(std::u16string_view column) = 0;  // of the current row, or of the row being added
  virtual Value get(std::size_t column) = 0;          // by position, for statements without column names
  // A date column holds and takes "YYYY-MM-DD HH:MM:SS", local time; any other the text as it stands.
  virtual bool isDate(std::u16string_view) { return false; }
  virtual void set(std::u16string_view column, Value value) = 0;  // between addNew/edit and update
  virtual void addNew() = 0;                                      // auto-numbers can be read from here on
  virtual void edit() = 0;
  virtual void update() = 0;
  virtual void close() = 0;  // drops an add or edit that was not updated
};

// The rows of a statement in its order, for a grid that shows any part of them: only keys are held.
enum class Walk { forwards, backwards };

class RowList {
 public:
  virtual ~RowList() = default;
  virtual std::size_t size() const = 0;

  // A long list may be there before all of it is read. What is not read yet is read when somebody asks for it
  // below, which takes its time; `readOn` does a piece of a few milliseconds beforehand and holds nothing of
  // the file afterwards. `size` is right from the beginning, but for a file that was wrong about it: then it
  // changes when all is read. Rows keep their positions.
  virtual bool isRead() const { return true; }
  virtual void readOn() {}

  // The columns of row `position`, in the order of `columns` as they were given to openRowList; nothing
  // when the row has gone since.
  virtual bool fetch(std::size_t position, std::vector<Value>& out) = 0;
  // While it lives the rows are those of one moment, and the locks of the file are taken once for them all.
  // For a piece of work: nothing can be written meanwhile. Null where rows come together anyhow,
  // or can't yet.
  class Together {
   public:
    virtual ~Together() = default;
  };
  virtual std::unique_ptr<Together> readTogether() { return nullptr; }

  // The auto-number of a row where the list holds it; nothing where the row would have to be read for it, and
  // of one that is not read yet.
  virtual std::optional<std::int64_t> number(std::size_t) const { return std::nullopt; }

  // The first row from `first` on (backwards: from `first` towards the first row), round the end once, that
  // has `needle` in the text of any column, case not regarded; numbers count as their decimal text. `needle`
  // is in lower case and not empty; `progress` may be empty and is called now and then with the number of
  // rows looked at.
  using Progress = std::function<void(std::size_t done)>;
  virtual std::optional<std::size_t> find(std::u16string_view needle, std::size_t first,
                                          const Progress& progress, Walk walk = Walk::forwards);

  // Appends those of `positions`, in their order, whose row has `needle` as `find` looks for it.
  virtual void choose(std::u16string_view needle, std::span<const std::uint32_t> positions,
                      std::vector<std::uint32_t>& chosen);
  virtual std::unique_ptr<Survey> survey(const SurveyedColumns& columns) {
    return surveyRows(*this, columns);
  }
  // Of a list that is newest first.
  virtual std::unique_ptr<TimeWalk> times(std::size_t column) { return walkTimes(*this, column); }
  virtual std::unique_ptr<Survey> surveyBetween(const SurveyedColumns& columns, TimesBetween times) {
    return surveyRows(*this, columns, std::move(times));
  }

  // The notes to its faults, meant by their numbers; null where none are kept, for the reason that `noNotes`
  // says. Not to outlive the list. `find` and `choose` look into the notes too.
  virtual Notes* notes() { return nullptr; }
  virtual NoNotes noNotes() const { return NoNotes::foreignTable; }
  // Appends those of `positions`, in their order, whose fault has a note.
  virtual void chooseNoted(std::span<const std::uint32_t>, std::vector<std::uint32_t>&) {}

 protected:
  // Whether the note to the row's fault holds it: `find` and `choose` ask so where the list has none of its
  // own.
  virtual bool noteHolds(std::size_t, std::u16string_view) { return false; }
  static constexpr std::size_t rowsBetweenProgress = 1024;
  // The row that is looked at as number `done` of a search.
  std::size_t walked(std::size_t first, std::size_t done, Walk walk) const {
    return (walk == Walk::forwards ? first + done : first + size() - done) % size();
  }
};

// What all that write into one store must have in common: a name for people, and a mark that decides.
struct Agreement {
  std::u16string name, mark;
  bool operator==(const Agreement&) const = default;
};

class Database {
 public:
  virtual ~Database() = default;
  virtual std::unique_ptr<Recordset> openRecordset(const Statement& statement) = 0;
  virtual std::unique_ptr<RowList> openRowList(const Statement& statement,
                                               std::span<const std::u16string_view> columns) = 0;
  virtual void execute(const Statement& statement) = 0;

  // A run of additions that belong together. The embedded engine makes what came since the last
  // `checkpoint` safe at the next one, at the latest every 500 ms, and at the end; an engine without it
  // saves each row. Never open across an outgoing automation call or a box: call checkpoint first.
  virtual void beginBatch() = 0;
  virtual void checkpoint() = 0;
  virtual void endBatch() = 0;

  // These statements are about to be opened one after the other, inside a batch: an engine may look at once,
  // and in the order that suits it, for what they will answer. Each answers as if this had not been said,
  // whatever was added meanwhile. Throws when the batch has lost what was not safe yet.
  virtual void expect(std::span<const Statement>) {}
  // How many of them are worth being said at once: few where each is cheap, since what was found on the way
  // must still be so.
  virtual std::size_t mostExpected() const { return 256; }

  // Called from inside long steps (now and then, never inside a short one); may only paint. `of` is 0 where
  // the engine doesn't know how much there is to do.
  using Progress = std::function<void(std::size_t done, std::size_t of)>;
  virtual void setProgress(Progress progress) = 0;

  // What is agreed on about `subject`: what the store keeps of it, or `own`, which a store that keeps nothing
  // yet keeps from then on. In a batch that is saved with it. A file has one writer's agreements: `own`.
  virtual Agreement agree(std::u16string_view, const Agreement& own) { return own; }

  // What a file keeps about `subject`, from whoever wrote into it last; nothing where nothing is kept, and in
  // a store whose writers agree. `keep` puts `own` in its place, at once. For use outside batches.
  virtual std::optional<Agreement> kept(std::u16string_view) { return {}; }
  virtual void keep(std::u16string_view, const Agreement&) {}

  // What has come since somebody looked; null where events are not numbered as they come.
  virtual std::shared_ptr<Arrivals> arrivals() { return nullptr; }
  // The receipts of resets; null where none are kept. For use at once: it keeps the store open.
  virtual std::shared_ptr<Receipts> receipts() { return nullptr; }

  // The file lies on a network drive, where storing takes longer.
  virtual bool isOnNetwork() const { return false; }

  // Lets go of the file before this object goes, as soon as no recordset or row list of it is left; a step
  // that still waits further down the stack finds the object, and an error (3420). Closing again does
  // nothing.
  virtual void close() noexcept = 0;
};

class Engine {
 public:
  virtual ~Engine() = default;
  // Opens an existing file, never creates one. Throws DatabaseError: 3024 when there is no such file, 3051
  // when it is asked for writing and can't be written (whoever only reads then asks again read-only), 3260
  // when others keep it locked for about 5 s, 3343 when it is no database, 3049 when it is damaged.
  virtual std::unique_ptr<Database> open(std::u16string_view path, bool readOnly) = 0;
};

}  // namespace vordane::database
