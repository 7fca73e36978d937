// What a trace adds to taking fault lists in: reading the answer of the exchange entry by entry, copying it,
// and taking it in, with a trace and without, list by list in turn: from the record of the simulated
// exchange, and from one whose values cost next to nothing, so that nothing hides the trace. Between
// processes each value costs more than all of the trace does. The time of the processor is that of all
// threads, and goes on until the trace is written.
//
//   trace_bench [--quick]     a tenth of the faults
#include <cstring>
#include <filesystem>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "bench/ingest/lists.h"
#include "pbx/answer_reading.h"
#include "trace/traced_station.h"
#include "zulsim/core/answer_record.h"

namespace vordane::bench {
namespace {

std::size_t faultsInList = 8000;

// An answer whose values cost what copying them costs.
class QuickRecord final : public automation::Object {
 public:
  explicit QuickRecord(const Answer& answer) : answer_(answer) {}
  automation::Value invoke(std::u16string_view member, automation::CallKind,
                           std::span<automation::Argument> arguments) override {
    const auto index = static_cast<std::size_t>(std::get<std::int16_t>(arguments[0].value));
    if (member[0] == u'C') return std::u16string(u"LEA0");
    return member[0] == u'F' ? answer_[index] : std::u16string();
  }

 private:
  const Answer& answer_;
};

using MakeRecord = automation::ObjectRef (*)(const Answer& answer);

automation::ObjectRef quickRecord(const Answer& answer) {
  return std::make_shared<QuickRecord>(answer);
}

automation::ObjectRef simulatedRecord(const Answer& answer) {
  const auto record = std::make_shared<zulsim::AnswerRecord>();
  for (const std::u16string& text : answer) {
    zulsim::Entry entry;
    entry.FirstData = text;
    record->addEntry(u"LEA0", entry);
  }
  return record;
}

class Taking {
 public:
  Taking(const char* name, std::shared_ptr<trace::Recorder> recorder)
      : file_(name), recorder_(std::move(recorder)), store_(form_, form_.around()) {
    form_.texts = decoderTexts();
    if (recorder_) objects_ = std::make_shared<trace::TracedObjects>(recorder_);
    if (recorder_) engine_ = std::make_unique<trace::TracedEngine>(recorder_, file_.engine());
    form_.database = engine_ ? engine_->open(file_.path16(), false) : file_.open();
    store_.setSortFlags();
  }
  ~Taking() {
    store_.close();
    form_.database.reset();
  }

  double take(const Answer& answer, MakeRecord make) {
    const automation::ObjectRef record = make(answer);
    const double time = processorSeconds([&] {
      form_.answer.Clear();
      const automation::ObjectRef read = objects_ ? objects_->inwards(record) : record;
      pbx::copyEntries(*read, static_cast<std::int32_t>(answer.size()), form_.answer, [] { return true; });
      form_.ingest(store_);
      if (recorder_) recorder_->flush();
    });
    form_.takeTrace();
    return time;
  }

 private:
  BenchFile file_;
  std::shared_ptr<trace::Recorder> recorder_;
  std::shared_ptr<trace::TracedObjects> objects_;
  std::unique_ptr<trace::TracedEngine> engine_;
  fakes::MemoryStoreForm form_;
  store::FaultStore store_;
};

struct Line {
  MakeRecord record;
  Comparison added, known;
};

void measure() {
  std::vector<Answer> answers;
  for (std::size_t i = 0; i < lists; ++i) answers.push_back(answerOf(i, faultsInList));
  const char* const without = "the same without a trace";
  Line lines[] = {{simulatedRecord,
                   {"a trace: fetch and take in 25 new lists", without, timeAtMost(1.03)},
                   {"a trace: the same lists again", without, noGoal}},
                  {quickRecord,
                   {"a trace: 25 new lists whose reading is free", without, noGoal},
                   {"a trace: the same lists again", without, noGoal}}};
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vordane-trace-bench";
  for (int run = 0; run < runs; ++run)
    for (Line& line : lines) {
      trace::Wish wish;
      wish.limits = {10'000'000'000, 7, 0};
      Taking traced("traced", trace::record(trace::diskFolder(folder.u16string()), wish));
      Taking plain("plain", nullptr);
      for (Comparison* comparison : {&line.added, &line.known}) {
        double with = 0, bare = 0;
        for (std::size_t i = 0; i < lists; ++i) {
          // Neither always comes first.
          if (i % 2 == 0) with += traced.take(answers[i], line.record);
          bare += plain.take(answers[i], line.record);
          if (i % 2 != 0) with += traced.take(answers[i], line.record);
        }
        comparison->add(with, bare);
      }
      std::filesystem::remove_all(folder);
    }
  const auto all = static_cast<double>(lists * faultsInList);
  for (const Line& line : lines) {
    line.added.print(all);
    line.known.print(all);
  }
}

}  // namespace
}  // namespace vordane::bench

int main(int count, char** values) {
  if (count > 1 && std::strcmp(values[1], "--quick") == 0) vordane::bench::faultsInList = 800;
  vordane::bench::measure();
}
