// Taking fault lists in, from the received answer to the refreshed window: texts decoded, documented
// statements built, each fault looked up, kept or passed over, the exchange's row stamped, the account made,
// the grid shown anew. The baseline looks up and inserts with bare prepared statements whose values were all
// worked out beforehand: same engine, tables, indexes and durability. A second one also reads the keys of the
// exchange's rows after each list, as a grid needs them. A third one does everything bare: it decodes the
// answer's texts and works out the keys too, with the same functions, in a plain loop.
//
//   ingest_bench [--quick]     a tenth of the faults
#include <cstring>
#include <vector>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "bench/ingest/lists.h"
#include "bench/store/bare_store.h"

namespace vordane::bench {
namespace {

std::size_t faultsInList = 8000;

// Both sides of the comparison, from the same answers.
class Lists {
 public:
  Lists() {
    form_.texts = decoderTexts();
    for (std::size_t i = 0; i < lists; ++i) {
      answers_.push_back(answerOf(i, faultsInList));
      rows_.push_back(rowsOf(form_, answers_.back()));
      keys_.push_back(keysOf(rows_.back()));
    }
  }

  void measure() {
    Comparison added("take in 25 new lists", "bare look-up and INSERT", rateAtLeast(0.6));
    Comparison addedAndShown("take in 25 new lists", "look-up, INSERT, keys for the grid", noGoal);
    Comparison addedFromTexts("take in 25 new lists", "decoding, keys, look-up, INSERT, all bare",
                              rateAtLeast(0.8));
    Comparison known("take in the same lists again", "bare look-up", rateAtLeast(0.6));
    Comparison knownAndShown("take in the same lists again", "look-up, keys for the grid", noGoal);
    Comparison knownFromTexts("take in the same lists again", "decoding, keys, look-up, all bare",
                              rateAtLeast(0.8));
    for (int run = 0; run < runs; ++run) {
      BenchFile ourFile("ours"), bareFile("bare"), wholeFile("whole");
      form_.database = ourFile.open();
      store::FaultStore store(form_, form_.around());
      store.setSortFlags();
      BareStore bare(bareFile.path()), whole(wholeFile.path());
      const double adding = takeIn(form_, store, answers_);
      compare(adding, lookUpAndInsert(bare), added, addedAndShown);
      addedFromTexts.add(adding, fromTexts([&](const auto& rows) { whole.ingest(rows, keysOf(rows)); }));
      const double knowing = takeIn(form_, store, answers_);
      compare(knowing, lookUp(bare), known, knownAndShown);
      knownFromTexts.add(knowing, fromTexts([&](const auto& rows) { whole.lookUp(rows, keysOf(rows)); }));
      store.close();
      form_.database.reset();
    }
    const auto all = static_cast<double>(lists * faultsInList);
    for (const Comparison* comparison :
         {&added, &addedAndShown, &addedFromTexts, &known, &knownAndShown, &knownFromTexts})
      comparison->print(all);
  }

 private:
  struct BareTime {
    double loop, keys;
  };
  static void compare(double ours, BareTime bare, Comparison& loop, Comparison& shown) {
    loop.add(ours, bare.loop);
    shown.add(ours, bare.loop + bare.keys);
  }
  template <class Step>
  static BareTime eachList(BareStore& bare, Step step) {
    BareTime time{};
    for (std::size_t i = 0; i < lists; ++i) {
      time.loop += processorSeconds([&] { step(i); });
      time.keys += processorSeconds([&] { bare.scanKeys(1); });
    }
    return time;
  }
  template <class Step>
  double fromTexts(Step step) {
    double time = 0;
    for (const Answer& answer : answers_) time += processorSeconds([&] { step(rowsOf(form_, answer)); });
    return time;
  }
  BareTime lookUpAndInsert(BareStore& bare) {
    return eachList(bare, [&](std::size_t i) { bare.ingest(rows_[i], keys_[i]); });
  }
  BareTime lookUp(BareStore& bare) {
    return eachList(bare, [&](std::size_t i) { bare.lookUp(rows_[i], keys_[i]); });
  }

  fakes::MemoryStoreForm form_;
  std::vector<Answer> answers_;
  std::vector<std::vector<Fault>> rows_;
  std::vector<std::vector<FaultKeys>> keys_;
};

}  // namespace
}  // namespace vordane::bench

int main(int count, char** values) {
  if (count > 1 && std::strcmp(values[1], "--quick") == 0) vordane::bench::faultsInList = 800;
  vordane::bench::Lists().measure();
}
