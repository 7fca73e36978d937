// Taking fault lists in, from the received answer to the refreshed window: texts decoded, documented
// statements built, each fault looked up, kept or passed over, the exchange's row stamped, the account made,
// the grid shown anew. The baseline looks up and inserts with bare prepared statements whose values were all
// worked out beforehand: same engine, tables, indexes and durability. A second one also reads the keys of the
// exchange's rows after each list, as a grid needs them. A third one does everything bare: it decodes the
// answer's texts and works out the keys too, with the same functions, in a plain loop.
//
//   ingest_bench [--quick]     a tenth of the faults
#include <array>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "bench/store/bare_store.h"
#include "fakes/memory_store_form.h"
#include "faults/random_records.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "store/fault_record.h"
#include "store/fault_store.h"
#include "text/text.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::bench {
namespace {

constexpr std::size_t lists = 25;
std::size_t faultsInList = 8000;

class BenchFile {
 public:
  explicit BenchFile(const char* name)
      : path_(std::filesystem::temp_directory_path() / (std::string("vordane-ingest-") + name)) {
    tools::createDatabase(path_.u16string(), store::faultTables, true);
    // The engine's first opening lays out its index.
    open()->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc")->isEmpty();
  }
  ~BenchFile() {
    std::error_code ignored;
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path_.string() + suffix, ignored);
  }
  BenchFile(const BenchFile&) = delete;
  BenchFile& operator=(const BenchFile&) = delete;

  std::unique_ptr<database::Database> open() { return engine_->open(path_.u16string(), false); }
  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
  std::unique_ptr<database::Engine> engine_ = sqlite::makeEngine(startup::databases);
};

std::u16string two(std::size_t number) {
  return text::decimalPadded(static_cast<std::int64_t>(number), 2);
}

using Answer = std::vector<std::u16string>;  // four entries for each fault

std::u16string kindAt(std::size_t i) {
  const int kind = faults::faultKinds[i * 29 % std::size(faults::faultKinds)].kind;
  return {u"0123456789ABCDEF"[kind / 16], u"0123456789ABCDEF"[kind % 16]};
}

// Faults of every kind, four in a minute, as an exchange sends them: oldest first.
Answer answerOf(std::size_t list) {
  faults::RandomRecords random(static_cast<unsigned>(list) + 1);
  Answer answer;
  for (std::size_t i = 0; i < faultsInList; ++i) {
    const std::size_t minute = (list * faultsInList + i) / 4;
    const std::u16string date = u"2026/" + two(1 + minute / 40320 % 12) + u"/" + two(1 + minute / 1440 % 28) +
                                u" " + two(minute / 60 % 24) + u":" + two(minute % 60);
    const faults::RandomRecord fault = random.next();
    for (const auto& entry :
         {kindAt(i) + (i % 3 == 0 ? u" MJ LP 0C" : u" MN MP "), date, fault.first, fault.second})
      answer.push_back(entry);
  }
  return answer;
}

// The columns of one list's rows.
std::vector<Fault> rowsOf(fakes::MemoryStoreForm& form, const Answer& answer) {
  std::vector<Fault> rows;
  for (std::size_t k = 0; k < answer.size(); k += 4) {
    const auto entry = [&](std::size_t i) { return text::trim(answer[k + i]); };
    Fault row{1,
              std::u16string(store::faultKind(entry(0))),
              std::u16string(store::alarmClass(entry(0))),
              store::processor(entry(0)),
              std::u16string(entry(1)),
              {}};
    row.description = form.faultDecoder(true).GetFaultMessage(entry(0), entry(2), entry(3));
    rows.push_back(std::move(row));
  }
  return rows;
}

// Both sides of the comparison, from the same answers.
class Lists {
 public:
  Lists() {
    form_.texts = decoderTexts();
    for (std::size_t i = 0; i < lists; ++i) {
      answers_.push_back(answerOf(i));
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
      const double adding = takeIn(store);
      compare(adding, lookUpAndInsert(bare), added, addedAndShown);
      addedFromTexts.add(adding, fromTexts([&](const auto& rows) { whole.ingest(rows, keysOf(rows)); }));
      const double knowing = takeIn(store);
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
  double takeIn(store::FaultStore& store) {
    double time = 0;
    for (const Answer& answer : answers_) {
      form_.answer.Clear();
      for (const std::u16string& entry : answer) form_.answer.AddToList(u"LEA0", entry);
      time += processorSeconds([&] { form_.ingest(store); });
    }
    form_.takeTrace();
    return time;
  }
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
