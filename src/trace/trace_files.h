// The files of a trace: begun anew when one is long or old, the oldest removed, so that all of them together
// keep to a size and an age. Used by the thread that writes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "trace/folder.h"
#include "trace/json_text.h"

namespace vordane::trace {

struct Limits {
  std::uint64_t bytes = 64'000'000;  // of all files of the folder together
  int days = 7;                      // older files go when the next one is begun
  std::uint64_t room = 128'000'000;  // what stays free on the disk, for whom it is needed more
};

class TraceFiles {
 public:
  static constexpr std::uint64_t partsOfLimit = 8;  // a file takes an eighth of what all may take
  static constexpr Moment longestPart = 86'400'000'000;

  // `mark` tells the files of this process from those of others: eight hexadecimal digits.
  TraceFiles(std::unique_ptr<Folder> folder, const Limits& limits, std::string mark)
      : folder_(std::move(folder)), limits_(limits), mark_(std::move(mark)) {}

  // Appends `count` whole lines. What finds no room is counted, and told in a line of its own as soon as
  // something can be written again. Never throws.
  void write(std::string_view lines, std::size_t count, Moment now) noexcept;

  // Whether a file of this name is one of a trace: no other is ever removed.
  static bool isOne(std::string_view name);

 private:
  bool append(std::string_view lines, Moment now);
  void beginPart(Moment now);
  void removeOld(Moment now);

  std::unique_ptr<Folder> folder_;
  Limits limits_;
  std::string mark_;
  std::string name_;  // of the file that is written; empty: the next line begins one
  int part_ = 0;
  std::uint64_t written_ = 0;
  Moment begun_ = 0;
  std::size_t leftOut_ = 0;
};

}  // namespace vordane::trace
