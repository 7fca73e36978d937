// An owner's events in the order of time, read from the index as far as somebody has asked or time was left:
// the first of a million are shown before the others are known. Between two pieces nothing of the file is
// held.
//
// What has been read stays in its place, and what is read later gives the rows that there were when the list
// was opened: those that others add meanwhile are left out, and those that they move are neither lost nor
// shown twice. Rows that they delete before these were read leave as many empty places at the end of the
// list. This connection changes nothing before all is read.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite/connection.h"
#include "platform/sqlite/time_order.h"

namespace vordane::sqlite {

class TimeReading final : private Reader {
 public:
  // The keys of all the owner's rows in the order of the list, from the table alone.
  using FromTable = std::function<std::vector<std::int64_t>()>;

  // Reads the first rows, `most` or a few more. Null where the owner has no more than that,
  // or nobody can tell how many: then the rows have to be read at once. The index must be usable. Throws
  // DatabaseError.
  static std::unique_ptr<TimeReading> open(Connection& connection, const Table& table, std::int64_t owner,
                                           bool backwards, std::size_t most, FromTable fromTable);
  ~TimeReading();
  TimeReading(const TimeReading&) = delete;
  TimeReading& operator=(const TimeReading&) = delete;

  // Of the whole list. Where the file was wrong about it, it changes with the last piece.
  std::size_t size() const { return size_; }
  bool isDone() const { return keys_ != nullptr; }
  // Reads a further piece, of four times as many rows; or as far as the row at `position`; or all. Throws
  // DatabaseError, and can go on then.
  void next() { read(piece_); }
  void upTo(std::size_t position);
  void toEnd();

  // The key of a row that has been read, nothing for others; while it is not done.
  std::optional<std::int64_t> key(std::size_t position) const;
  // When it is done: the keys of all rows that are there, oldest first.
  const SharedKeys& keys() const { return keys_; }

 private:
  TimeReading(Connection& connection, const Table& table, std::int64_t owner, bool backwards,
              std::size_t first, FromTable fromTable);
  void finishReading() override { toEnd(); }
  bool knowsItsSize();
  void read(std::size_t most);
  bool holdState(std::optional<ReadScope>& state);
  void noteChanges();
  void walk(std::size_t most);
  void closeGroup();
  void endWalk();
  void readTable();
  void finish();
  void learnWhatIsRead();
  bool isWanted(std::int64_t key) const;

  Connection& connection_;
  const Table& table_;
  std::int64_t owner_;
  bool backwards_;
  std::size_t first_, piece_;
  FromTable fromTable_;
  std::uint64_t tablesChanged_;
  std::size_t size_ = 0;
  std::int64_t lastKey_ = 0;  // of all rows when the list was opened
  std::int64_t version_ = 0;  // of the file, as far as others have written it
  bool changed_ = false;      // by others, since the list was opened
  bool walkChanged_ = false;  // since this walk through the index began
  bool inPiece_ = false;      // what a piece needs may have to be written
  Statement rows_;
  std::vector<std::uint32_t> read_;   // in the order of the list
  std::vector<std::uint32_t> known_;  // sorted: what a changed index may name once more
  std::vector<std::uint32_t> group_;  // of one moment:
  std::string groupMoment_;
  std::optional<std::string> moment_;  // that was read last in this walk
  std::string newest_;
  SharedKeys keys_;
};

}  // namespace vordane::sqlite
