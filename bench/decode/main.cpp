// How fast fault records become descriptions, against the least that could be done: appending the same
// characters from pieces that lie ready. Prints the ratio of the two rates, measured one after the other in
// the same process: the share of a perfect decoder's speed. Texts have the lengths that real ones have.
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "faults/cFaultDisplay.h"
#include "faults/kind_table.h"
#include "faults/random_records.h"

namespace vordane::faults {
namespace {

constexpr int recordCount = 1060;  // few enough to stay in the cache: memory is not what is measured
constexpr int runs = 9;

// The same number of records of each kind, and of unknown ones, in no order.
std::vector<RandomRecord> records() {
  std::vector<RandomRecord> all;
  RandomRecords random(1);
  while (all.size() < recordCount) {
    RandomRecord record = random.next();
    const std::size_t n = (all.size() * 29) % (std::size(faultKinds) + 1);
    const int kind = n < std::size(faultKinds) ? faultKinds[n].kind : 0x07;
    record.kind = {u"0123456789ABCDEF"[kind / 16], u"0123456789ABCDEF"[kind % 16]};
    all.push_back(std::move(record));
  }
  return all;
}

// What a decoder would do that knew its pieces before: views of texts that are each held once, the way
// the decoder finds its own, in one array for all records.
class ReadyPieces {
 public:
  ReadyPieces(const cFaultDisplay& display, const std::vector<RandomRecord>& all) {
    for (const RandomRecord& record : all) {
      for (const cFaultDisplay::Piece& piece : display.explain(record.kind, record.first, record.second))
        pieces_.push_back(*texts_.insert(piece.text).first);
      ends_.push_back(pieces_.size());
    }
  }

  std::size_t appendAll(std::u16string& result) const {
    std::size_t characters = 0, next = 0;
    for (const std::size_t end : ends_) {
      result.clear();
      for (; next < end; ++next) result.append(pieces_[next]);
      characters += result.size();
    }
    return characters;
  }

 private:
  std::set<std::u16string> texts_;
  std::vector<std::u16string_view> pieces_;
  std::vector<std::size_t> ends_;
};

class Bench {
 public:
  // Turn about, and the median of many short turns, so that a disturbed moment counts for neither.
  void measure(bench::Comparison& comparison) {
    constexpr std::size_t turns = 301;
    std::vector<double> decodeTimes, appendTimes;
    for (std::size_t i = 0; i < turns; ++i) {
      std::size_t decoded = 0, appended = 0;
      decodeTimes.push_back(bench::seconds([&] { decoded = decodeAll(); }));
      appendTimes.push_back(bench::seconds([&] { appended = ready_.appendAll(result_); }));
      if (decoded == appended) continue;
      std::fputs("the baseline does not write what the decoder writes\n", stderr);
      std::exit(1);
    }
    comparison.add(bench::median(decodeTimes), bench::median(appendTimes));
  }

 private:
  std::size_t decodeAll() {
    std::size_t characters = 0;
    for (const RandomRecord& record : records_) {
      display_.GetFaultMessage(record.kind, record.first, record.second, result_);
      characters += result_.size();
    }
    return characters;
  }

  const bool wide_ = true;
  const FaultTextTable texts_ = bench::decoderTexts();
  const cFaultDisplay display_{texts_, wide_};
  const std::vector<RandomRecord> records_ = records();
  const ReadyPieces ready_{display_, records_};
  std::u16string result_;
};

}  // namespace
}  // namespace vordane::faults

int main() {
  using namespace vordane;
  faults::Bench decoding;
  bench::Comparison warm("", "", bench::noGoal);
  decoding.measure(warm);
  bench::Comparison comparison("decode a fault, every kind alike", "appending the ready-made pieces",
                               bench::rateAtLeast(0.75));
  for (int run = 0; run < faults::runs; ++run) decoding.measure(comparison);
  comparison.print(faults::recordCount);
}
