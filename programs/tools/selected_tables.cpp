#include "selected_tables.h"

#include <algorithm>
#include <set>

#include "lines.h"
#include "text/text.h"

namespace vordane::tools {
namespace {

constexpr std::u16string_view faultTable = u"FaultDisplay", exchangeTable = u"PBXList";

// One table after the other, its columns by name.
class Columns {
 public:
  void of(const access::Table& table) { table_ = table; }
  bool isIn(std::u16string_view name) const { return text::equalIgnoringCase(table_.name, name); }
  // Null where there is no such column.
  std::u16string text(const std::vector<access::Value>& values, std::u16string_view name) const {
    const auto found = std::find_if(table_.columns.begin(), table_.columns.end(), [&](const auto& column) {
      return text::equalIgnoringCase(column.name, name);
    });
    if (found == table_.columns.end()) return {};
    const access::Value& value = values.at(static_cast<std::size_t>(found - table_.columns.begin()));
    return automation::isNull(value) ? std::u16string{} : automation::toText(value);
  }

 private:
  access::Table table_;
};

// What there is to choose from.
class Contents : public access::Visitor {
 public:
  explicit Contents(const FaultSelection& selection) : selection_(selection) {}
  void beginTable(const access::Table& table) override {
    columns_.of(table);
    hasFaults = hasFaults || columns_.isIn(faultTable);
  }
  void row(const std::vector<access::Value>& values) override {
    if (!columns_.isIn(exchangeTable)) return;
    names.push_back(columns_.text(values, u"PBXName"));
    if (selection_.hasExchange(names.back())) chosen.insert(columns_.text(values, u"ID"));
  }
  void endTable() override {}

  bool hasFaults = false;
  std::vector<std::u16string> names;
  std::set<std::u16string> chosen;  // their IDs

 private:
  const FaultSelection& selection_;
  Columns columns_;
};

class Selected : public access::Visitor {
 public:
  Selected(const FaultSelection& selection, const Contents& contents, access::Visitor& visitor)
      : contents_(contents), named_(selection.exchange), wanted_(selection), visitor_(visitor) {}
  void beginTable(const access::Table& table) override {
    columns_.of(table);
    visitor_.beginTable(table);
  }
  void row(const std::vector<access::Value>& values) override {
    if (has(values)) visitor_.row(values);
  }
  void endTable() override { visitor_.endTable(); }

 private:
  bool has(const std::vector<access::Value>& values) const {
    const bool faults = columns_.isIn(faultTable);
    if (!faults && !columns_.isIn(exchangeTable)) return true;
    if (named_ && !contents_.chosen.contains(columns_.text(values, u"ID"))) return false;
    const auto text = [&](std::u16string_view name) { return columns_.text(values, name); };
    return !faults || wanted_.has(text(u"Fault"), text(u"Alarm"), text(u"CPU"), text(u"Date"));
  }

  const Contents& contents_;
  const bool named_;
  const WantedFaults wanted_;
  access::Visitor& visitor_;
  Columns columns_;
};

}  // namespace

void readSelected(const ReadTables& read, const std::string& file, const FaultSelection& selection,
                  access::Visitor& visitor) {
  requireTimes(selection.filter);
  if (!selection.isOn()) return read(visitor);
  Contents contents(selection);
  read(contents);
  if (!contents.hasFaults)
    throw ToolError(file + ": no faults are stored in it, so none of them can be chosen. Name a FAULT.MDB");
  if (selection.exchange && contents.chosen.empty())
    noSuchExchange(file, *selection.exchange, contents.names);
  Selected selected(selection, contents, visitor);
  read(selected);
}

}  // namespace vordane::tools
