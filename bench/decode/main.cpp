// How fast fault records become descriptions, against the least that could be done: appending the same
// characters from pieces that lie ready. Prints the ratio of the two rates, measured one after the other in
// the same process: the share of a perfect decoder's speed. Texts have the lengths that real ones have.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "faults/cFaultDisplay.h"
#include "faults/kind_table.h"
#include "faults/random_records.h"

namespace vordane::faults {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int recordCount = 1060;  // few enough to stay in the cache: memory is not what is measured
constexpr int runs = 9;

std::u16string words(std::size_t length) {
  constexpr std::u16string_view some = u"line trunk station processor failure restart number equipped ";
  std::u16string text;
  while (text.size() < length) text += some.substr(0, std::min(some.size(), length - text.size()));
  return text;
}

FaultTextTable texts() {
  FaultTextTable table;
  for (int number = 0; number <= 164; ++number)
    table.setMessage(number, words(8 + static_cast<std::size_t>(number) % 25));
  table.setMessage(6, u"[");
  table.setMessage(7, u"]");
  for (const FaultKind& row : faultKinds)
    for (int code = 0; row.list != noList && code < 17; ++code)
      table.addItem(row.list, words(10 + static_cast<std::size_t>(code)));
  return table;
}

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
      for (const cFaultDisplay::Piece& piece : display.Explain(record.kind, record.first, record.second))
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

template <class Work>
double seconds(Work work) {
  const auto begin = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

double median(std::vector<double>& values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

struct Measured {
  double ratio, decodeNanoseconds, appendNanoseconds;
};

class Bench {
 public:
  // Turn about, and the median of many short turns, so that a disturbed moment counts for neither.
  Measured measure() {
    constexpr std::size_t turns = 301;
    std::vector<double> decodeTimes, appendTimes;
    for (std::size_t i = 0; i < turns; ++i) {
      std::size_t decoded = 0, appended = 0;
      decodeTimes.push_back(seconds([&] { decoded = decodeAll(); }));
      appendTimes.push_back(seconds([&] { appended = ready_.appendAll(result_); }));
      if (decoded == appended) continue;
      std::fputs("the baseline does not write what the decoder writes\n", stderr);
      std::exit(1);
    }
    const double decodeTime = median(decodeTimes), appendTime = median(appendTimes);
    return {appendTime / decodeTime, decodeTime * 1e9 / recordCount, appendTime * 1e9 / recordCount};
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
  const FaultTextTable texts_ = texts();
  const cFaultDisplay display_{texts_, wide_};
  const std::vector<RandomRecord> records_ = records();
  const ReadyPieces ready_{display_, records_};
  std::u16string result_;
};

int run() {
  Bench bench;
  bench.measure();  // warms caches up
  std::array<Measured, runs> measured;
  for (Measured& one : measured) one = bench.measure();
  std::sort(measured.begin(), measured.end(),
            [](const Measured& a, const Measured& b) { return a.ratio < b.ratio; });
  const Measured& middle = measured[runs / 2];
  std::printf("decode: %d runs of %d records, every kind alike\n", runs, recordCount);
  std::printf("  ratio to appending ready pieces: min %.2f, median %.2f, max %.2f (goal: at least 0.50)\n",
              measured.front().ratio, middle.ratio, measured.back().ratio);
  std::printf("  median run: decode %.0f ns a record, append %.0f ns\n", middle.decodeNanoseconds,
              middle.appendNanoseconds);
  return 0;
}

}  // namespace
}  // namespace vordane::faults

int main() {
  return vordane::faults::run();
}
