#include "platform/event_log.h"

#include <windows.h>

#include <array>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

struct EventSourceTraits {
  using Type = HANDLE;
  static Type invalid() { return nullptr; }
  static void close(Type handle) { DeregisterEventSource(handle); }
};

WORD typeOf(platform::Event event) {
  return platform::weightOf(event) == platform::EventWeight::error ? EVENTLOG_ERROR_TYPE
                                                                   : EVENTLOG_WARNING_TYPE;
}

}  // namespace

bool SystemEventLog::write(const platform::EventEntry& entry) {
  const com::Owned<EventSourceTraits> log(
      RegisterEventSourceW(nullptr, com::toWide(platform::eventSource).c_str()));
  if (!log) return false;
  const auto values = platform::valuesOf(entry);
  std::array<LPCWSTR, values.size()> texts{};
  for (std::size_t i = 0; i < values.size(); ++i) texts[i] = com::wide(values[i].c_str());
  return ReportEventW(log.get(), typeOf(entry.event), 0, platform::eventIdentifier(entry.event), nullptr,
                      static_cast<WORD>(texts.size()), 0, texts.data(), nullptr) != FALSE;
}

}  // namespace vordane::windows
