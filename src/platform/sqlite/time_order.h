// One exchange's faults by Date, then Count, as they were read last: an exchange that is shown again has
// mostly the faults it had, or newer ones behind them, and a million keys are not read once more for that.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::sqlite {

// `Count` of rows; whoever shows them shares them with the engine.
using SharedCounts = std::shared_ptr<const std::vector<std::uint32_t>>;

class TimeOrder {
 public:
  // Keeps `counts`, ascending; `lastMoment` is the sort key of the last one's Date, and `version` the number
  // of changes that others had made to the file before they were read.
  void keep(std::int64_t id, std::int64_t version, std::vector<std::uint32_t> counts, std::string lastMoment);
  void forget() noexcept;

  // Nothing when they have to be read again; then nothing is kept meanwhile.
  SharedCounts of(std::int64_t id, std::int64_t version);

  // A fault was added by this connection.
  void added(std::int64_t id, std::string_view moment, std::int64_t count);

 private:
  void append();

  std::optional<std::int64_t> id_;  // nothing is kept without it
  std::int64_t version_ = 0;
  std::shared_ptr<std::vector<std::uint32_t>> counts_;
  std::vector<std::uint32_t> added_;  // behind `counts_`, which may be shown
  std::string lastMoment_;
  std::int64_t lastCount_ = 0;
};

}  // namespace vordane::sqlite
