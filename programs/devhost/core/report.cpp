#include "devhost/core/report.h"

#include <vector>

#include "devhost/core/report_order.h"
#include "devhost/core/report_template.h"
#include "platform/stored_values.h"
#include "store/statements.h"
#include "text/blanks.h"
#include "text/file_names.h"
#include "text/numbers.h"
#include "text/text.h"
#include "zulsim/core/files.h"

namespace vordane::devhost {
namespace {

// Why a report is not printed, as the person reads it.
struct Refusal {
  std::u16string reason;
};

struct ExchangeRow {
  std::int32_t id = 0;
  std::u16string name, timeStamp;
  bool major = false, minor = false;
};

std::optional<std::u16string> textOf(const database::Value& value) {
  if (automation::isNull(value)) return std::nullopt;
  return automation::toText(value);
}

ExchangeRow findExchange(database::Database& database, std::u16string_view name) {
  // The whole list is read, so that a name may hold any character.
  const auto rows = database.openRecordset(store::exchangesNewestFirst);
  for (; !rows->atEnd(); rows->moveNext()) {
    const std::u16string found = textOf(rows->get(u"PBXName")).value_or(std::u16string{});
    if (text::equalAsStored(found, name))
      return {automation::toLong(rows->get(u"ID")), found,
              textOf(rows->get(u"TimeStamp")).value_or(std::u16string{}), database::flagOf(rows->get(u"MJ")),
              database::flagOf(rows->get(u"MN"))};
  }
  throw Refusal{u"There is no exchange \"" + std::u16string(name) + u"\" in the fault database."};
}

std::vector<Fault> faultsOf(database::Database& database, std::int32_t id) {
  const auto rows = database.openRecordset(store::faultsOfExchange(id, store::newestFirst));
  std::vector<Fault> faults;
  for (; !rows->atEnd(); rows->moveNext())
    faults.push_back({textOf(rows->get(u"Fault")), textOf(rows->get(u"Alarm")), textOf(rows->get(u"Date")),
                      textOf(rows->get(u"CPU")), textOf(rows->get(u"Description")),
                      automation::toLong(rows->get(u"Count"))});
  return faults;
}

std::vector<SortKey> sortKeysOf(const ReportRequest& request) {
  std::vector<SortKey> keys;
  for (const std::u16string& formula : request.sort) {
    if (formula.empty()) continue;  // a report may be sorted by fewer
    const auto key = parseSortFormula(formula);
    if (!key) throw Refusal{u"The sort formula " + formula + u" is not understood."};
    keys.push_back(*key);
  }
  return keys;
}

const char16_t* directionSign(const SortKey& key) {
  return key.descending ? u"\u2193" : u"\u2191";
}

std::u16string orderText(const std::vector<SortKey>& keys) {
  std::u16string text;
  for (const SortKey& key : keys) {
    if (!text.empty()) text += u", ";
    text += std::u16string(columnName(key.column)) + u" " + directionSign(key);
  }
  return text;
}

// The description's title line, what stands between, and the line that repeats the data.
void splitDescription(const std::u16string& description, Layout::Values& values) {
  const std::size_t first = description.find(text::crlf), last = description.rfind(text::crlf);
  const bool whole = first == std::u16string::npos;
  values.texts[u"Title"] = description.substr(0, first);
  values.texts[u"Detail"] =
      whole || first == last ? std::u16string{} : description.substr(first + 2, last - first - 2);
  values.texts[u"Data"] = whole ? std::u16string{} : description.substr(last + 2);
}

Layout::Values valuesOf(const Fault& fault, std::size_t number) {
  Layout::Values values;
  values.texts = {{u"Number", text::decimal(static_cast<std::int64_t>(number))},
                  {u"Fault", fault.fault.value_or(std::u16string{})},
                  {u"Alarm", fault.alarm.value_or(std::u16string{})},
                  {u"Date", fault.date.value_or(std::u16string{})},
                  {u"CPU", fault.cpu.value_or(std::u16string{})},
                  {u"Count", text::decimal(fault.count)},
                  {u"Description", fault.description.value_or(std::u16string{})}};
  splitDescription(fault.description.value_or(std::u16string{}), values);
  return values;
}

using Section = std::function<void(const std::function<void(const Layout::Values&)>&)>;

Section onlyWhen(bool condition) {
  return [condition](const std::function<void(const Layout::Values&)>& show) {
    if (condition) show({});
  };
}

// A column of the order; a section of its name stands for it, so that a layout can call it as it likes.
Layout::Values valuesOf(const SortKey& key, bool further) {
  Layout::Values values;
  values.texts[u"Direction"] = directionSign(key);
  values.sections[u"further"] = onlyWhen(further);
  using Column = SortKey::Column;
  for (const Column column :
       {Column::fault, Column::alarm, Column::date, Column::count, Column::cpu, Column::description})
    values.sections[u"by" + std::u16string(columnName(column))] = onlyWhen(column == key.column);
  return values;
}

Layout::Values valuesOf(const ExchangeRow& exchange, const std::vector<Fault>& faults,
                        const std::vector<SortKey>& keys, const std::u16string& printed) {
  Layout::Values values;
  values.texts = {{u"PBXName", exchange.name},
                  {u"TimeStamp", exchange.timeStamp},
                  {u"Order", orderText(keys)},
                  {u"Faults", text::decimal(static_cast<std::int64_t>(faults.size()))},
                  {u"Printed", printed}};
  values.sections[u"MJ"] = onlyWhen(exchange.major);
  values.sections[u"noMJ"] = onlyWhen(!exchange.major);
  values.sections[u"MN"] = onlyWhen(exchange.minor);
  values.sections[u"noMN"] = onlyWhen(!exchange.minor);
  values.sections[u"none"] = onlyWhen(faults.empty());
  values.sections[u"some"] = onlyWhen(!faults.empty());
  values.sections[u"order"] = [&keys](const std::function<void(const Layout::Values&)>& show) {
    for (const SortKey& key : keys) show(valuesOf(key, &key != keys.data()));
  };
  values.sections[u"faults"] = [&faults](const std::function<void(const Layout::Values&)>& show) {
    for (std::size_t i = 0; i < faults.size(); ++i) show(valuesOf(faults[i], i + 1));
  };
  return values;
}

PrintedReport print(database::Engine& engine, const ReportRequest& request, const ReportOutput& output) {
  const auto name = parseSelectionFormula(request.selection);
  if (!name) throw Refusal{u"The selection formula " + request.selection + u" is not understood."};
  const std::vector<SortKey> keys = sortKeysOf(request);
  const auto layoutText = files::readFile(request.reportFile);
  if (!layoutText) throw Refusal{u"The report file " + request.reportFile + u" can't be read."};
  const Layout layout(*layoutText);
  const auto database = engine.open(request.database, true);
  const ExchangeRow exchange = findExchange(*database, *name);
  std::vector<Fault> faults = faultsOf(*database, exchange.id);
  sortFaults(faults, keys);
  const std::u16string file = files::besideFile(request.reportFile, output.directory,
                                                u"FAULT-" + text::asFileName(exchange.name) + u".html");
  if (!files::writeFile(file, layout.render(valuesOf(exchange, faults, keys, output.printed))))
    throw Refusal{u"The report " + file + u" can't be written."};
  return {file, {}, faults.size()};
}

}  // namespace

PrintedReport printReport(database::Engine& engine, const ReportRequest& request,
                          const ReportOutput& output) {
  try {
    return print(engine, request, output);
  } catch (const Refusal& refusal) {
    return {{}, refusal.reason, 0};
  } catch (const TemplateError& failure) {
    return {{}, failure.text(), 0};
  } catch (const database::DatabaseError& failure) {
    return {{},
            failure.description().empty() ? std::u16string(u"The fault database can't be read.")
                                          : failure.description(),
            0};
  } catch (const automation::AutomationError&) {
    return {{}, u"The fault database holds a value that can't be read.", 0};
  }
}

}  // namespace vordane::devhost
