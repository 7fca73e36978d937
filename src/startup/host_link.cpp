#include "startup/host_link.h"

#include "text/text.h"

namespace vordane::startup {
namespace {

using automation::byRef;
using automation::byVal;

// "path,name": the directory in front of the name, and the name, when there is such a directory and the name
// is that of a comma-separated file.
std::vector<std::u16string> filePathPieces(const Workstation& station, const std::u16string& value) {
  if (value.empty()) return {station.program.directory};
  const auto entries = text::split(value, u',');
  if (entries.size() < 2 || entries[1].empty()) return {};
  const std::u16string path = text::toUpper(entries[0]) + u"\\";
  const std::size_t cut = path.find(text::toUpper(entries[1]) + u"\\");
  if (cut == std::u16string::npos || cut == 0) return {};
  const std::u16string directory = entries[0].substr(0, cut);
  const bool isList = text::right(text::toUpper(entries[1]), 4) == u".CSV";
  if (directory.back() != u'\\' || !isList || !station.files.directoryExists(directory)) return {};
  return {directory, entries[1]};
}

}  // namespace

void HostLink::call(std::u16string_view member, std::initializer_list<automation::Argument> arguments) {
  const automation::ObjectRef host = host_;  // it may let go of us while it is called
  if (!host || state_.StandAlone) return;
  try {
    automation::call(*host, member, arguments);
  } catch (const std::exception&) {
    // Whatever a host lacks or does, every further step still runs.
  }
}

std::vector<std::u16string> GetJobParameter(const Workstation& station, const automation::ObjectRef& host,
                                            std::u16string_view name) {
  if (!host) return {};
  automation::Argument arguments[] = {byVal(std::u16string(programName)), byRef(std::u16string(name)),
                                      byRef(std::u16string{})};
  std::u16string value;
  try {
    automation::call(*host, u"GetComData", arguments);
    value = automation::toText(arguments[2].value);
  } catch (const automation::AutomationError&) {
    return {};  // a host that keeps no data is put up with
  }
  if (name == u"MOVE") return text::split(value, u',');
  if (name == u"FilePath") return filePathPieces(station, value);
  return {};
}

void StoreJobParameter(HostLink& host, std::u16string_view first, const std::u16string& second) {
  host.call(u"REGComData", {byVal(std::u16string(programName)), byRef(std::u16string(first)), byRef(second)});
}

}  // namespace vordane::startup
