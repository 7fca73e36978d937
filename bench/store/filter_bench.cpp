#include "bench/store/filter_bench.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "bench/common/measure.h"
#include "list/desk.h"
#include "list/flood_digest.h"
#include "list/saving.h"
#include "platform/grid_columns.h"
#include "platform/sqlite/event_keys.h"

namespace vordane::bench {
namespace {

// Rows of which nobody reads a line.
class Rows final : public window::GridSource {
 public:
  explicit Rows(database::RowList& rows) : rows_(rows) {}
  std::size_t size() const override { return rows_.size(); }
  std::optional<window::GridRow> row(std::size_t) override { return std::nullopt; }
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
  database::RowList* list() override { return &rows_; }

 private:
  database::RowList& rows_;
};

void finish(list::Desk& desk) {
  while (desk.busy()) desk.work([] { return true; });
}

// Major faults of three kinds in the middle half of the time.
list::Filter condition(const std::u16string& since, const std::u16string& until) {
  list::Filter filter;
  filter.minor = false;
  filter.kinds = {list::KindRule::Way::only, {u"01", u"0a", u"58"}};
  filter.since = since;
  filter.until = until;
  return filter;
}

std::vector<std::string> keysOfCondition() {
  std::vector<std::string> keys;
  for (const char16_t* kind : {u"01", u"0A", u"58"})
    for (const char16_t* processor : {u"MP   ", u"LP 12"})
      keys.push_back(sqlite::kindKey({kind, u"MJ", processor, {}, {}}));
  return keys;
}

std::u16string dateAt(database::RowList& rows, std::size_t position) {
  std::vector<database::Value> row;
  if (!rows.fetch(position, row)) throw std::runtime_error("a row has gone");
  return automation::toText(row.at(window::dateColumn));
}

std::string momentKeyOf(const std::u16string& date) {
  sqlite::EventTexts texts;
  texts[sqlite::EventColumns::moment] = date;
  return sqlite::momentKey(texts);
}

}  // namespace

void measureFilter(database::RowList& rows, BareStore& bare, const std::string& howMany) {
  Rows source(rows);
  const std::u16string until = dateAt(rows, rows.size() / 4), since = dateAt(rows, rows.size() * 3 / 4);
  const list::Filter filter = condition(since, until);
  const std::vector<std::string> kinds = keysOfCondition();
  const std::string from = momentKeyOf(since), to = momentKeyOf(until);
  const auto scan = [&] { return bare.filteredKeys(1, from, to, kinds); };
  Comparison facts("know class, kind and time of " + howMany, "bare walk along the index, every column",
                   noGoal);
  Comparison known("filter " + howMany + " by them, known", "the engine's own scan with the condition",
                   timeAtMost(1.3));
  Comparison anew("know and filter", "the same scan", noGoal);
  Comparison text("filter " + howMany + " by a text", "bare reading of the same rows", timeAtMost(1.3));
  for (int run = 0; run < runs; ++run) {
    list::Desk desk;
    desk.setStored(&source, u"1");
    desk.wantFacts(true);
    const double knowing = processorSeconds([&] { finish(desk); });
    facts.add(knowing, processorSeconds([&] { bare.walkIndex(1); }));
    desk.setFilter(filter);
    const double filtering = processorSeconds([&] { finish(desk); });
    std::size_t found = 0;
    const double scanning = processorSeconds([&] { found = scan().size(); });
    if (found == 0 || found != desk.size())
      throw std::runtime_error("the filter and the scan find different rows");
    known.add(filtering, scanning);
    anew.add(knowing + filtering, processorSeconds(scan));
    list::Desk texts;
    list::Filter nowhere;
    nowhere.text = u"nowhere";
    texts.setStored(&source, u"1");
    texts.setFilter(nowhere);
    const double reading = processorSeconds([&] { finish(texts); });
    text.add(reading, processorSeconds([&] { bare.readAll(1); }));
  }
  for (const Comparison* comparison : {&facts, &known, &anew, &text}) comparison->print();
}

void measureSaving(database::RowList& rows, BareStore& bare, const std::filesystem::path& folder,
                   const std::string& howMany) {
  Rows source(rows);
  const std::filesystem::path saved = folder / "saved.csv", copy = folder / "copy";
  Comparison comparison("save " + howMany + " shown faults as CSV",
                        "bare reading of the rows, as many bytes written", noGoal);
  for (int run = 0; run < runs; ++run) {
    list::Desk desk;
    desk.setStored(&source, u"1");
    finish(desk);
    list::Saving saving(desk, list::makeRowWriter(list::RowForm::csvFile, {}, desk.size()), saved);
    const double ours = processorSeconds([&] {
      while (saving.state() == list::Saving::State::atWork) saving.work([] { return true; });
    });
    if (saving.state() != list::Saving::State::saved) throw std::runtime_error("the rows can't be saved");
    const std::string block(256 * 1024, 'x');
    comparison.add(ours, processorSeconds([&] {
                     bare.readAll(1);
                     std::ofstream file(copy, std::ios::binary);
                     for (std::uintmax_t left = std::filesystem::file_size(saved); left > 0;) {
                       const auto piece = std::min<std::uintmax_t>(left, block.size());
                       file.write(block.data(), static_cast<std::streamsize>(piece));
                       left -= piece;
                     }
                   }));
  }
  comparison.print();
}

void measureFlood(database::RowList& rows, const std::function<void()>& select, const std::string& howMany) {
  Rows source(rows);
  Comparison digest("look for a flood in " + howMany, "selecting the exchange, newest first", timeAtMost(1));
  for (int run = 0; run < runs; ++run) {
    list::Desk desk;
    desk.setStored(&source, u"1");
    list::FloodDigest flood(desk);
    flood.begin();
    const double looking = processorSeconds([&] {
      while (flood.busy()) flood.work([] { return true; });
    });
    if (!flood.flood() || flood.flood()->faults != 12) throw std::runtime_error("the flood is not found");
    digest.add(looking, processorSeconds(select));
  }
  digest.print();
}

}  // namespace vordane::bench
