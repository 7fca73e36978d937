#include "capsule/capsule_pack.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "capsule/capsule.h"
#include "capsule/other_names.h"
#include "fault_selection.h"
#include "lines.h"
#include "options/options.h"
#include "platform/engine_choice.h"
#include "platform/receipts.h"
#include "receipt_list.h"
#include "selected_tables.h"
#include "text/text.h"
#include "text/utf8.h"
#include "trace/trace_files.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using Kind = OtherNames::Kind;

std::string nameOf(const fs::path& path) {
  return text::toUtf8(path.filename().u16string());
}

// The whole lines of a file of the trace. A process that was killed leaves half a line at its end.
template <typename Take>
std::size_t readLines(const fs::path& file, Take take) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw ToolError(nameOf(file) + ": can't be read");
  std::size_t half = 0;
  for (std::string line; std::getline(in, line);) {
    const bool whole = !in.eof() && line.starts_with('{') && line.ends_with('}');
    if (whole)
      take(line);
    else
      ++half;
  }
  return half;
}

// `"at":"..."`, which each line begins with.
std::string_view momentOf(std::string_view line) {
  constexpr std::string_view head = R"({"at":")";
  return line.starts_with(head) ? line.substr(head.size(), line.find('"', head.size()) - head.size())
                                : std::string_view{};
}

// The files of the trace by process, the processes in the order in which they began.
std::vector<std::vector<fs::path>> processesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder, none))
    if (trace::TraceFiles::isOne(nameOf(entry.path()))) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  constexpr std::size_t markAt = 22, markLength = 8;  // trace-YYYYMMDD-HHMMSS-xxxxxxxx-0001.jsonl
  std::vector<std::vector<fs::path>> processes;
  std::map<std::string, std::size_t> places;
  for (const fs::path& file : files) {
    const auto [place, isNew] = places.emplace(nameOf(file).substr(markAt, markLength), processes.size());
    if (isNew) processes.emplace_back();
    processes[place->second].push_back(file);
  }
  return processes;
}

// Hears PBXList alone: who is named there.
class ExchangeNames : public access::Visitor {
 public:
  explicit ExchangeNames(OtherNames& names) : names_(names) {}
  void beginTable(const access::Table& table) override {
    const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                    [](const access::Column& column) { return column.name == u"PBXName"; });
    column_ = found == table.columns.end() ? npos : static_cast<std::size_t>(found - table.columns.begin());
  }
  void row(const std::vector<access::Value>& values) override {
    if (column_ != npos && !automation::isNull(values.at(column_)))
      names_.add(Kind::exchange, automation::toText(values[column_]));
  }
  void endTable() override {}

 private:
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);
  OtherNames& names_;
  std::size_t column_ = npos;
};

// Tables in which names may stand; stored faults and texts hold none.
bool mayName(std::u16string_view table) {
  return table == u"PBXList" || table == u"Options" || table == u"Registry";
}

class Renamed : public access::Visitor {
 public:
  Renamed(const OtherNames& names, access::Visitor& to, std::size_t& faults)
      : names_(names), to_(to), faults_(faults) {}
  void beginTable(const access::Table& table) override {
    renames_ = names_.any() && mayName(table.name);
    counts_ = table.name == u"FaultDisplay";
    to_.beginTable(table);
  }
  void row(const std::vector<access::Value>& values) override {
    faults_ += counts_ ? 1 : 0;
    if (!renames_) return to_.row(values);
    values_ = values;
    for (access::Value& value : values_)
      if (const auto* text = std::get_if<std::u16string>(&value)) value = names_.in(*text);
    to_.row(values_);
  }
  void endTable() override { to_.endTable(); }

 private:
  const OtherNames& names_;
  access::Visitor& to_;
  std::size_t& faults_;
  std::vector<access::Value> values_;
  bool renames_ = false, counts_ = false;
};

class Packing {
 public:
  Packing(const PackRequest& request, database::Engine& engine, const fs::path& out)
      : request_(request), engine_(engine), writer_(out), processes_(wantedProcesses()) {}

  Packed pack() {
    if (request_.anonymous) gatherNames();
    readFaults();
    for (const fs::path& file : otherDatabases()) readDatabase(file);
    readReceipts();
    readTrace();
    for (const auto& [name, value] : request_.settings) writer_.setting(u"QUILMAR32", name, names_.in(value));
    for (const std::string& line : request_.report) writer_.reportLine(renamed(line));
    tellAbout();
    writer_.finish();
    return packed_;
  }

 private:
  // Those that ended before `since` have nothing to tell.
  std::vector<std::vector<fs::path>> wantedProcesses() {
    auto processes = processesIn(request_.trace);
    std::erase_if(processes, [&](const std::vector<fs::path>& files) {
      std::string last;
      try {
        readLines(files.back(), [&](const std::string& line) { last = momentOf(line); });
      } catch (const ToolError&) {
        return false;  // told when it is read
      }
      return last < request_.since;
    });
    return processes;
  }

  void gatherNames() {
    ExchangeNames exchanges(names_);
    names_.add(Kind::exchange, request_.exchange);
    reading("", [&] { request_.read(text::toUtf8(toText(request_.layout.faults())), exchanges); });
    for (const std::u16string& name : request_.people) names_.add(Kind::person, name);
    for (const std::u16string& name : request_.workstations) names_.add(Kind::workstation, name);
    reading("", [&] {
      eachReceipt([&](const database::Receipt& receipt) {
        names_.add(Kind::exchange, receipt.exchange);
        names_.add(Kind::person, receipt.person);
        names_.add(Kind::workstation, receipt.workstation);
      });
    });
    for (const auto& files : processes_)
      for (const fs::path& file : files)
        reading("", [&] { readLines(file, [&](const std::string& line) { names_.addFromTrace(line); }); });
    for (const auto& setting : request_.settings) names_.addFolders(setting.second);
    for (const std::string& line : request_.report) names_.addFolders(text::fromUtf8(line));
  }

  // What can't be read is left out and told; `what` empty: it is told later.
  template <typename Step>
  void reading(const std::string& what, Step step) {
    try {
      step();
    } catch (const ToolError& failure) {
      if (!what.empty()) leaveOut(what, failure.what());
    } catch (const database::DatabaseError& failure) {
      if (!what.empty()) leaveOut(what, text::toUtf8(failure.description()));
    }
  }
  void leaveOut(const std::string& what, const std::string& why) {
    packed_.leftOut.push_back(what + ": " + why);
  }

  void readFaults() {
    FaultSelection selection;
    selection.exchange = request_.exchange;
    const std::string file = text::toUtf8(toText(request_.layout.faults()));
    reading("the stored faults", [&] {
      Renamed renamed(names_, writer_.tablesOf("FAULT.MDB"), packed_.faults);
      readSelected([&](access::Visitor& visitor) { request_.read(file, visitor); }, file, selection, renamed);
    });
  }

  std::vector<fs::path> otherDatabases() const {
    const SuiteLayout& layout = request_.layout;
    std::vector<fs::path> files{layout.texts()};
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(layout.ownDatabases(), none)) {
      const std::string name = nameOf(entry.path());
      if (name.starts_with("VORDANE.") && name.ends_with(".LNG") && name != "VORDANE.LNG")
        files.push_back(entry.path());
    }
    std::sort(files.begin() + 1, files.end());
    for (const fs::path& file : {layout.sharedTexts(), layout.registration(), layout.schedule()})
      files.push_back(file);
    return files;
  }
  void readDatabase(const fs::path& file) {
    std::size_t none = 0;
    reading(nameOf(file), [&] {
      Renamed renamed(names_, writer_.tablesOf(nameOf(file)), none);
      request_.read(text::toUtf8(toText(file)), renamed);
    });
  }

  template <typename Take>
  void eachReceipt(Take take) {
    const auto database = engine_.open(toText(request_.layout.faults()), true);
    if (const auto receipts = database->receipts()) receipts->read(take);
  }
  void readReceipts() {
    FaultSelection wanted;
    wanted.exchange = request_.exchange;
    reading("the receipts", [&] {
      eachReceipt([&](const database::Receipt& receipt) {
        if (wanted.hasExchange(receipt.exchange)) writer_.receipt(renamed(jsonOf(receipt)));
      });
    });
  }

  void readTrace() {
    if (processes_.empty()) leaveOut("the trace", "there is none in " + text::toUtf8(toText(request_.trace)));
    for (const auto& files : processes_)
      for (const fs::path& file : files)
        reading("the trace", [&] {
          packed_.halfLines += readLines(file, [&](const std::string& line) {
            writer_.traceLine(nameOf(file), renamed(line));
            ++packed_.traceLines;
          });
          ++packed_.traceFiles;
        });
  }

  std::string renamed(const std::string& line) const { return names_.any() ? names_.inJson(line) : line; }

  void tellAbout() {
    writer_.about("Version", options::version());
    writer_.about("Made", request_.made);
    writer_.about("Exchange", text::toUtf8(names_.in(request_.exchange)));
    writer_.about("Since", request_.since);
    writer_.about("Anonymous", request_.anonymous ? "1" : "0");
    writer_.about("Word size", std::to_string(8 * sizeof(void*)));
    writer_.about("Faults", std::to_string(packed_.faults));
    writer_.about("Lines of trace", std::to_string(packed_.traceLines));
    writer_.about("Half lines left out", std::to_string(packed_.halfLines));
    std::string all;
    for (const std::string& line : packed_.leftOut) all += (all.empty() ? "" : "\n") + renamed(line);
    writer_.about("Left out", all);
  }

  const PackRequest& request_;
  database::Engine& engine_;
  CapsuleWriter writer_;
  std::vector<std::vector<fs::path>> processes_;
  OtherNames names_;
  Packed packed_;
};

}  // namespace

Packed packCapsule(const PackRequest& request, database::Engine& engine, const fs::path& out) {
  return Packing(request, engine, out).pack();
}

}  // namespace vordane::tools
