#include "bench/store/made_faults.h"

#include <cstdio>
#include <random>
#include <string>

#include "text/utf8.h"

namespace vordane::bench {
namespace {

std::u16string findSame(const Fault& fault) {
  return u"Select * FROM FaultDisplay WHERE ID = " + decimal(static_cast<std::size_t>(fault.id)) +
         u" AND Fault = '" + fault.fault + u"' AND CPU = '" + fault.cpu + u"' AND Alarm = '" + fault.alarm +
         u"' AND Date = '" + fault.date + u"' AND Description = \"" + fault.description + u"\"";
}

}  // namespace

std::u16string decimal(std::size_t number) {
  return text::fromUtf8(std::to_string(number));
}

std::vector<Fault> makeFaults(std::int16_t id, std::size_t count, std::size_t first) {
  constexpr const char16_t* kinds[] = {u"01", u"05", u"0A", u"13", u"17", u"2B", u"48", u"58"};
  std::mt19937 random(static_cast<unsigned>(first + 1));
  std::vector<Fault> faults;
  for (std::size_t i = first; i < first + count; ++i) {
    const auto* kind = kinds[random() % 8];
    std::u16string description = std::u16string(u"Fault of the line circuit, kind ") + kind +
                                 u"\r\n Module group: 01, unit: 02\r\n Port number: " +
                                 decimal(random() % 4096) + u"\r\n Data: ";
    while (description.size() < 250) description += decimal(random());
    faults.push_back({id, kind, i % 3 == 0 ? u"MJ" : u"MN", i % 2 == 0 ? u"MP   " : u"LP 12",
                      minuteText(i / 4), description});
  }
  return faults;
}

std::u16string minuteText(std::size_t minute) {
  char date[32];
  std::snprintf(date, sizeof date, "20%02zu/%02zu/%02zu %02zu:%02zu", 10 + minute / 483840 % 80,
                1 + minute / 40320 % 12, 1 + minute / 1440 % 28, minute / 60 % 24, minute % 60);
  return text::fromUtf8(date);
}

void ingest(database::Database& database, const std::vector<Fault>& faults) {
  const auto rows = database.openRecordset(u"Select * from FaultDisplay");
  database.beginBatch();
  for (const Fault& fault : faults) {
    if (database.openRecordset(findSame(fault))->recordCount() > 0) continue;
    rows->addNew();
    rows->set(u"ID", fault.id);
    rows->set(u"Fault", fault.fault);
    rows->set(u"Alarm", fault.alarm);
    rows->set(u"CPU", fault.cpu);
    rows->set(u"Date", fault.date);
    rows->set(u"Description", fault.description);
    rows->update();
  }
  database.endBatch();
}

}  // namespace vordane::bench
