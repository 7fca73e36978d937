#include "bench/ingest/lists.h"

#include "bench/common/measure.h"
#include "faults/random_records.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "store/fault_record.h"
#include "text/text.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::bench {
namespace {

std::u16string two(std::size_t number) {
  return text::decimalPadded(static_cast<std::int64_t>(number), 2);
}

std::u16string kindAt(std::size_t i) {
  const int kind = faults::faultKinds[i * 29 % std::size(faults::faultKinds)].kind;
  return {u"0123456789ABCDEF"[kind / 16], u"0123456789ABCDEF"[kind % 16]};
}

}  // namespace

BenchFile::BenchFile(const char* name)
    : path_(std::filesystem::temp_directory_path() / (std::string("vordane-ingest-") + name)),
      engine_(sqlite::makeEngine(startup::databases)) {
  tools::createDatabase(path_.u16string(), store::faultTables, true);
  // The engine's first opening lays out its index.
  open()->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc")->isEmpty();
}

BenchFile::~BenchFile() {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path_.string() + suffix, ignored);
}

std::u16string dateOf(std::size_t fault) {
  const std::size_t minute = fault / 4;
  return u"2026/" + two(1 + minute / 40320 % 12) + u"/" + two(1 + minute / 1440 % 28) + u" " +
         two(minute / 60 % 24) + u":" + two(minute % 60);
}

Answer answerOf(std::size_t list, std::size_t length) {
  faults::RandomRecords random(static_cast<unsigned>(list) + 1);
  Answer answer;
  for (std::size_t i = 0; i < length; ++i) {
    const std::u16string date = dateOf(list * length + i);
    const faults::RandomRecord fault = random.next();
    for (const auto& entry :
         {kindAt(i) + (i % 3 == 0 ? u" MJ LP 0C" : u" MN MP "), date, fault.first, fault.second})
      answer.push_back(entry);
  }
  return answer;
}

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

double takeIn(fakes::MemoryStoreForm& form, store::FaultStore& store, const std::vector<Answer>& answers) {
  double time = 0;
  for (const Answer& answer : answers) {
    form.answer.Clear();
    for (const std::u16string& entry : answer) form.answer.AddToList(u"LEA0", entry);
    time += processorSeconds([&] { form.ingest(store); });
  }
  form.takeTrace();
  return time;
}

}  // namespace vordane::bench
