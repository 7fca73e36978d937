// One owner's events by moment, then key, as they were read last: an owner that is shown again has mostly the
// events it had, or newer ones behind them, and a million keys are not read once more for that.
//
// What this buys: reading the keys again after each list was a quarter of the time that taking lists in takes
// (docs/performance.md).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::sqlite {

// Keys of rows; whoever shows them shares them with the engine.
using SharedKeys = std::shared_ptr<const std::vector<std::uint32_t>>;

class TimeOrder {
 public:
  // Keeps `keys`, in order; `lastMoment` is the sort key of the last one's moment, and `version` the number
  // of changes that others had made to the file before they were read.
  void keep(std::int64_t owner, std::int64_t version, std::vector<std::uint32_t> keys,
            std::string lastMoment);
  void forget() noexcept;

  // Nothing when they have to be read again; then nothing is kept meanwhile.
  SharedKeys of(std::int64_t owner, std::int64_t version);

  // An event was added by this connection.
  void added(std::int64_t owner, std::string_view moment, std::int64_t key);

 private:
  void append();

  std::optional<std::int64_t> owner_;  // nothing is kept without it
  std::int64_t version_ = 0;
  std::shared_ptr<std::vector<std::uint32_t>> keys_;
  std::vector<std::uint32_t> added_;  // behind `keys_`, which may be shown
  std::string lastMoment_;
  std::int64_t lastKey_ = 0;
};

}  // namespace vordane::sqlite
