#include "crash/lists.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_record.h"
#include "store/fault_store.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::crash {
namespace {

struct Received {
  std::u16string record, date, first, second;
};

// Several kinds and processors; no two faults are alike.
Received received(int number) {
  constexpr std::u16string_view kinds[] = {u"01", u"02", u"08", u"21", u"40"};
  constexpr std::u16string_view places[] = {u" MJ MP   ", u" MN AB 0C"};
  std::u16string record(kinds[number % 5]);
  record.append(places[number % 2]);
  std::u16string date = u"26/" + text::decimalPadded(number / 40000 % 12 + 1, 2) + u"/";
  date += text::decimalPadded(number / 1440 % 28 + 1, 2) + u" " + text::decimalPadded(number / 60 % 24, 2);
  date += u":" + text::decimalPadded(number % 60, 2);
  const std::u16string data =
      text::decimalPadded(number / 10000, 4) + u" " + text::decimalPadded(number % 10000, 4);
  return {record, date, data, u"00 01 02 03 04 05 06 07"};
}

// A clock that takes its time, so that a list is taken in over several commits.
class SlowClock : public fakes::SetClock {
 public:
  explicit SlowClock(bool slow) : slow_(slow) {}
  double secondsSinceMidnight() override {
    if (slow_ && ++looks_ % 5 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return SetClock::secondsSinceMidnight();
  }

 private:
  bool slow_;
  int looks_ = 0;
};

}  // namespace

Row expectedRow(fakes::MemoryStoreForm& form, int number) {
  const Received fault = received(number);
  return {std::u16string(store::faultKind(fault.record)), std::u16string(store::alarmClass(fault.record)),
          store::processor(fault.record), store::WidenYear(fault.date),
          form.faultDecoder(true).GetFaultMessage(fault.record, fault.first, fault.second)};
}

void receiveList(fakes::MemoryStoreForm& form, int list) {
  form.answer.Clear();
  form.exchange = exchangeName;
  for (int i = 0; i < faultsInList; ++i) {
    const Received fault = received(list * faultsInList + i);
    form.receive(fault.record, fault.date, fault.first, fault.second);
  }
}

std::vector<std::string> toArguments(const Order& order) {
  return {"--take-lists",
          order.file,
          order.report,
          std::to_string(order.firstList),
          std::to_string(order.lists),
          order.slow ? "slow" : "quick",
          order.onNetwork ? "share" : "disk",
          order.stays ? "stays" : "ends"};
}

Order fromArguments(const std::vector<std::string>& arguments) {
  return {arguments.at(1),
          arguments.at(2),
          std::stoi(arguments.at(3)),
          std::stoi(arguments.at(4)),
          arguments.at(5) == "slow",
          arguments.at(6) == "share",
          arguments.at(7) == "stays"};
}

void takeLists(const Order& order) {
  sqlite::Options options;
  options.onNetwork = [&](std::u16string_view) { return order.onNetwork; };
  takeLists(order, *sqlite::makeEngine(startup::databases, options));
}

void takeLists(const Order& order, database::Engine& engine) {
  std::ofstream report(std::filesystem::path(text::fromUtf8(order.report)), std::ios::binary | std::ios::app);
  report << "ready" << std::endl;
  SlowClock clock(order.slow);
  fakes::MemoryStoreForm form;
  form.clock = &clock;
  form.meanwhile = [&](const std::string& line) { report << line << std::endl; };
  form.database = engine.open(text::fromUtf8(order.file), false);
  store::FaultStore faults(form, form.around());
  faults.setSortFlags();
  for (int list = order.firstList; list < order.firstList + order.lists; ++list) {
    receiveList(form, list);
    form.ingest(faults);
  }
  faults.close();
  if (order.stays) report << "done" << std::endl;
}

}  // namespace vordane::crash
