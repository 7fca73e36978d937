// A walk over all rows of a row list, in whatever order is quickest, piece by piece: what a filter has to
// know of every row. Between two pieces nothing of the file is held. One thread; not to outlive its list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
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

// The survey that every row list can be taken by: row after row.
std::unique_ptr<Survey> surveyRows(RowList& rows, const SurveyedColumns& columns);

}  // namespace vordane::database
