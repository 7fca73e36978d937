#include "store_import.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "lines.h"
#include "platform/stored_values.h"
#include "store/batch.h"
#include "store/data_control.h"
#include "store/statements.h"
#include "text/dates.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using database::textOf;

struct Exchange {
  std::u16string name, listed;
  bool major = false, minor = false;
};
struct Fault {
  std::int64_t exchange = 0, number = 0;
  std::u16string kind, alarm, cpu, date, description;
};

// A file may keep the time as a text of a workstation's own form; of those only one can be read without
// doubt.
std::u16string isoFrom(std::u16string text) {
  std::replace(text.begin(), text.end(), u'/', u'-');
  return text::isIsoText(text) ? text : std::u16string{};
}

// The columns of the table that is being read, by name.
class Row {
 public:
  void of(const access::Table& table) { table_ = &table; }
  void is(const std::vector<access::Value>& values) { values_ = &values; }
  bool isOf(std::u16string_view table) const { return text::equalIgnoringCase(table_->name, table); }

  // Null where there is no such column.
  access::Value value(std::u16string_view name) const {
    for (std::size_t i = 0; i < table_->columns.size(); ++i)
      if (text::equalIgnoringCase(table_->columns[i].name, name)) return values_->at(i);
    return automation::Null{};
  }
  std::u16string text(std::u16string_view name) const { return textOf(value(name)); }
  bool flag(std::u16string_view name) const { return database::flagOf(value(name)); }
  std::int64_t number(std::u16string_view name) const {
    const access::Value found = value(name);
    return automation::isNull(found) ? 0 : automation::toLong(found);
  }
  std::u16string moment(std::u16string_view name) const {
    const access::Value found = value(name);
    const auto* date = std::get_if<automation::Date>(&found);
    return date != nullptr ? text::isoMoment(date->days) : isoFrom(textOf(found));
  }

 private:
  const access::Table* table_ = nullptr;
  const std::vector<access::Value>* values_ = nullptr;
};

class ExchangeReader : public access::Visitor {
 public:
  void beginTable(const access::Table& table) override {
    table_ = table;
    row_.of(table_);
  }
  void row(const std::vector<access::Value>& values) override {
    if (!row_.isOf(store::faultTables[0].name)) return;
    row_.is(values);
    exchanges.insert_or_assign(row_.number(u"ID"), Exchange{row_.text(u"PBXName"), row_.moment(u"TimeStamp"),
                                                            row_.flag(u"MJ"), row_.flag(u"MN")});
  }
  void endTable() override {}

  std::map<std::int64_t, Exchange> exchanges;

 private:
  access::Table table_;
  Row row_;
};

class FaultReader : public access::Visitor {
 public:
  explicit FaultReader(std::function<void(Fault)> take) : take_(std::move(take)) {}
  void beginTable(const access::Table& table) override {
    table_ = table;
    row_.of(table_);
  }
  void row(const std::vector<access::Value>& values) override {
    if (!row_.isOf(store::faultEvents.table)) return;
    row_.is(values);
    take_({row_.number(u"ID"), row_.number(u"Count"), row_.text(u"Fault"), row_.text(u"Alarm"),
           row_.text(u"CPU"), row_.text(u"Date"), row_.text(u"Description")});
  }
  void endTable() override {}

 private:
  std::function<void(Fault)> take_;
  access::Table table_;
  Row row_;
};

std::u16string doubled(char16_t quote, std::u16string_view text) {
  std::u16string result;
  for (const char16_t character : text) result.append(character == quote ? 2 : 1, character);
  return result;
}

// Into an open batch of the store.
class Importing {
 public:
  explicit Importing(database::Database& store)
      : store_(store), faults_(store.openRecordset(store::addFaults)) {}

  void exchange(std::int64_t id, const Exchange& exchange) {
    places_[id] = {takeIn(exchange), done.exchanges.size()};
    done.exchanges.push_back({exchange.name});
  }
  void fault(Fault fault) {
    const auto place = places_.find(fault.exchange);
    if (place == places_.end()) {
      ++done.ownerless;
      return;
    }
    waiting_.push_back(std::move(fault));
    if (waiting_.size() >= store_.mostExpected()) flush();
  }
  void flush();

  StoreImport done;

 private:
  struct Place {
    std::int16_t id = 0;
    std::size_t at = 0;
  };
  std::int16_t takeIn(const Exchange& exchange);
  void add(std::int16_t id, Fault& fault);

  database::Database& store_;
  std::unique_ptr<database::Recordset> faults_;
  std::map<std::int64_t, Place> places_;  // by the former ID
  std::vector<Fault> waiting_;
};

void setList(database::Recordset& row, const Exchange& exchange) {
  if (!exchange.listed.empty()) row.set(u"TimeStamp", exchange.listed);
  row.set(u"MJ", exchange.major);
  row.set(u"MN", exchange.minor);
}

std::int16_t Importing::takeIn(const Exchange& exchange) {
  auto row = store_.openRecordset(store::findExchange(doubled(u'"', exchange.name)));
  const bool isNew = row->recordCount() < 1;
  if (isNew) {
    row->close();
    row = store_.openRecordset(store::allExchanges);
    row->addNew();
    row->set(u"PBXName", exchange.name);
    setList(*row, exchange);
  } else if (textOf(row->get(u"TimeStamp")) < exchange.listed) {
    row->edit();
    setList(*row, exchange);
  } else {
    return store::exchangeIdOf(row->get(u"ID"));
  }
  const std::int16_t id = store::exchangeIdOf(row->get(u"ID"));
  row->update();
  return id;
}

void Importing::add(std::int16_t id, Fault& fault) {
  faults_->addNew();
  faults_->set(u"ID", id);
  faults_->set(u"Fault", std::move(fault.kind));
  faults_->set(u"Alarm", std::move(fault.alarm));
  faults_->set(u"CPU", std::move(fault.cpu));
  faults_->set(u"Date", std::move(fault.date));
  faults_->set(u"Description", std::move(fault.description));
  faults_->update();
}

// A stored text may hold a quote, which ends a text in a statement unless it is doubled.
void Importing::flush() {
  std::vector<std::array<std::u16string, 5>> texts;
  texts.reserve(waiting_.size());
  std::vector<database::Statement> same;
  for (const Fault& fault : waiting_) {
    const auto& [kind, alarm, cpu, date, description] = texts.emplace_back(
        std::array{doubled(u'\'', fault.kind), doubled(u'\'', fault.alarm), doubled(u'\'', fault.cpu),
                   doubled(u'\'', fault.date), doubled(u'"', fault.description)});
    same.push_back(store::findFault(places_.at(fault.exchange).id, {kind, alarm, cpu, date, description}));
  }
  store_.expect(same);
  for (std::size_t i = 0; i < waiting_.size(); ++i) {
    const Place place = places_.at(waiting_[i].exchange);
    const auto found = store_.openRecordset(same[i]);
    const bool known = found->recordCount() > 0;
    found->close();
    if (!known) add(place.id, waiting_[i]);
    ++(known ? done.exchanges[place.at].known : done.exchanges[place.at].added);
  }
  waiting_.clear();
}

void requireLanguage(database::Database& store, const database::Agreement& language) {
  const database::Agreement kept = store.agree(store::languageSubject, language);
  if (kept.mark == language.mark) return;
  throw ToolError("the store is kept in " + text::toUtf8(kept.name) + " (" + text::toUtf8(kept.mark) +
                  "), the texts given here are " + text::toUtf8(language.name) + " (" +
                  text::toUtf8(language.mark) +
                  "): each fault would be stored once more. Nothing was brought over");
}

}  // namespace

StoreImport importIntoStore(const ReadTables& read, FaultOrder order, database::Database& store,
                            const database::Agreement& language) {
  ExchangeReader exchanges;
  read(exchanges);
  store::Batch batch(store);
  requireLanguage(store, language);
  Importing importing(store);
  for (const auto& [id, exchange] : exchanges.exchanges) importing.exchange(id, exchange);
  store.checkpoint();  // nothing is held while the faults are read
  std::vector<Fault> unordered;
  FaultReader faults([&](Fault fault) {
    if (order == FaultOrder::byNumber)
      importing.fault(std::move(fault));
    else
      unordered.push_back(std::move(fault));
  });
  read(faults);
  std::sort(unordered.begin(), unordered.end(),
            [](const Fault& a, const Fault& b) { return a.number < b.number; });
  for (Fault& fault : unordered) importing.fault(std::move(fault));
  importing.flush();
  batch.end();
  return std::move(importing.done);
}

}  // namespace vordane::tools
