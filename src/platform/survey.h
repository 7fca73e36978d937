// A walk over all rows of a row list, in whatever order is quickest, piece by piece: what a filter has to
// know of every row. Between two pieces nothing of the file is held. One thread; not to outlive its list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace vordane::database {

class RowList;

class Survey {
 public:
  class Taker {
   public:
    virtual ~Taker() = default;
    // Rows of one kind share a number; kinds are numbered from 0 as they are met. `time` is without trailing
    // blanks, and its letters may be small ones.
    virtual void take(std::size_t position, std::uint32_t kind, std::u16string_view time) = 0;
  };

  virtual ~Survey() = default;
  // Hands over about `most` further rows, each row of the list at most once; those that have gone are left
  // out. True while there may be more. Throws DatabaseError.
  virtual bool next(std::size_t most, Taker& taker) = 0;
};

// Columns of a row list, by their places in it. Rows are of one kind that are equal in the first three as
// statements compare: case and trailing blanks do not count.
struct SurveyedColumns {
  std::size_t kind[3];
  std::size_t time;
};

// The times alone, of rows that are listed newest first. One thread; not to outlive its list.
class TimeWalk {
 public:
  virtual ~TimeWalk() = default;
  // So many rows of that time, as Survey tells it; a time may come several times in a row, and not all of
  // more than rowsOfOneTime count. Returns whether older ones are wanted.
  static constexpr std::size_t rowsOfOneTime = 1000;
  using Take = std::function<bool(std::u16string_view time, std::size_t rows)>;
  // Hands over about `most` further rows, from the newest on. True while there may be more that are wanted.
  // Throws DatabaseError.
  virtual bool next(std::size_t most, const Take& take) = 0;
};

// The times of the first and the last row that are meant, as TimeWalk tells them.
struct TimesBetween {
  std::u16string first, last;
};

// The survey that every row list can be taken by: row after row. With times the rows are listed newest first.
std::unique_ptr<Survey> surveyRows(RowList& rows, const SurveyedColumns& columns);
std::unique_ptr<Survey> surveyRows(RowList& rows, const SurveyedColumns& columns, TimesBetween times);
// Likewise the times; rows that have to be read for it are read as long as they are among the first
// `rowsReadForTimes`.
std::unique_ptr<TimeWalk> walkTimes(RowList& rows, std::size_t column);
inline constexpr std::size_t rowsReadForTimes = 10'000;

}  // namespace vordane::database
