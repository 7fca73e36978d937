#include "syslog_message.h"

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <utility>

#include "terminal_text.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

enum Severity { error = 3, warning = 4, notice = 5 };
constexpr int local0 = 16, severities = 8;
constexpr std::size_t longestName = 128;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string brief(std::u16string_view text) {
  return onOneLine(text::beginning(text, longestName));
}

// What stands in quotes in structured data.
std::string escaped(const std::string& value) {
  std::string out;
  for (const char c : value) {
    if (c == '"' || c == '\\' || c == ']') out += '\\';
    out += c;
  }
  return out;
}

using Parameters = std::initializer_list<std::pair<const char*, std::string>>;

std::string structured(const char* name, const SyslogOrigin& origin, const Parameters& parameters) {
  std::string out = std::string(" [") + name + '@' + std::to_string(origin.enterprise);
  for (const auto& [key, value] : parameters) out += std::string(" ") + key + "=\"" + escaped(value) + '"';
  return out + ']';
}

std::string head(Severity severity, const char* name, const SyslogOrigin& origin) {
  const bool plain =
      !origin.host.empty() && origin.host.size() <= 255 &&
      std::all_of(origin.host.begin(), origin.host.end(), [](char c) { return c > ' ' && c < '\x7F'; });
  return '<' + std::to_string(local0 * severities + severity) + ">1 " + origin.time + ' ' +
         (plain ? origin.host : "-") + " vordane - " + name;
}

// The words of a description in one line, without blank ones.
std::string words(std::u16string_view description) {
  std::string out;
  for (const std::u16string_view line : text::lines(description)) {
    const std::u16string_view part = text::trim(line);
    if (!part.empty()) out += (out.empty() ? "" : " - ") + onOneLine(part);
  }
  return out;
}

std::string whole(std::string start, std::string message, std::size_t longest) {
  start += ' ';
  start += byteOrderMark;
  const std::size_t room = start.size() < longest ? longest - start.size() : 0;
  if (message.size() > room) {
    std::size_t end = room;
    while (end > 0 && (static_cast<unsigned char>(message[end]) & 0xC0U) == 0x80U) --end;  // whole characters
    message.resize(end);
  }
  return start + message;
}

std::string messageOf(const StoredFault& fault, const SyslogOrigin& origin, std::size_t longest) {
  const std::u16string_view alarm = text::trim(fault.alarm);
  const Severity severity = alarm == u"MJ" ? error : alarm == u"MN" ? warning : notice;
  const std::string exchange = brief(fault.exchange), kind = brief(fault.kind),
                    processor = brief(fault.processor), time = brief(fault.time), name = brief(fault.alarm);
  return whole(
      head(severity, "fault", origin) + structured("fault", origin,
                                                   {{"id", identifierOf(fault)},
                                                    {"exchange", exchange},
                                                    {"number", std::to_string(fault.number)},
                                                    {"kind", kind},
                                                    {"class", name},
                                                    {"time", time},
                                                    {"processor", processor}}),
      exchange + ": " + time + ' ' + name + ' ' + processor + ' ' + kind + ' ' + words(fault.description),
      longest);
}

std::string messageOf(const LampsTold& told, const SyslogOrigin& origin, std::size_t longest) {
  const auto digit = [](bool lit) { return std::string(lit ? "1" : "0"); };
  const auto word = [](bool lit) { return std::string(lit ? "alarm" : "clear"); };
  const Severity severity = told.lamps.major ? error : told.lamps.minor ? warning : notice;
  return whole(
      head(severity, "lamps", origin) + structured("lamps", origin,
                                                   {{"id", told.id},
                                                    {"exchange", brief(told.exchange)},
                                                    {"sequence", std::to_string(told.sequence)},
                                                    {"major", digit(told.lamps.major)},
                                                    {"minor", digit(told.lamps.minor)},
                                                    {"received", brief(told.received)}}),
      brief(told.exchange) + ": lamps, major " + word(told.lamps.major) + ", minor " + word(told.lamps.minor),
      longest);
}

}  // namespace

std::string syslogOf(const Event& event, const SyslogOrigin& origin, std::size_t longest) {
  return std::visit([&](const auto& one) { return messageOf(one, origin, longest); }, event);
}

std::string utcNow() {
  using namespace std::chrono;
  const auto now = floor<seconds>(system_clock::now());
  const auto today = floor<days>(now);
  const year_month_day date(today);
  const hh_mm_ss time(now - today);
  const auto padded = [](auto value, int digits) {
    return text::toUtf8(text::decimalPadded(static_cast<std::int64_t>(value), digits));
  };
  return padded(static_cast<int>(date.year()), 4) + '-' + padded(static_cast<unsigned>(date.month()), 2) +
         '-' + padded(static_cast<unsigned>(date.day()), 2) + 'T' + padded(time.hours().count(), 2) + ':' +
         padded(time.minutes().count(), 2) + ':' + padded(time.seconds().count(), 2) + 'Z';
}

}  // namespace vordane::tools
