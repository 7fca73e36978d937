#include "fault_json.h"

#include <nlohmann/json.hpp>

#include "text/utf8.h"

namespace vordane::tools {
namespace {

using Object = nlohmann::ordered_json;

// FNV-1a over the characters, each text with an end of its own.
class Mark {
 public:
  void add(std::u16string_view text) {
    for (const char16_t character : text) addByte(character & 0xFFU), addByte(character >> 8U);
    addByte(0xFF), addByte(0xFF);  // no character
  }
  std::string digits() const {
    std::string all;
    for (int shift = 60; shift >= 0; shift -= 4) all += "0123456789abcdef"[value_ >> shift & 15U];
    return all;
  }

 private:
  void addByte(unsigned byte) { value_ = (value_ ^ byte) * 0x100000001b3U; }
  std::uint64_t value_ = 0xcbf29ce484222325U;
};

}  // namespace

std::string identifierOf(const StoredFault& fault) {
  Mark mark;
  for (const std::u16string* text :
       {&fault.exchange, &fault.kind, &fault.alarm, &fault.processor, &fault.description})
    mark.add(*text);
  return std::to_string(fault.number) + '-' + mark.digits();
}

std::string jsonOf(const StoredFault& fault) {
  return Object{{"event", "fault"},
                {"id", identifierOf(fault)},
                {"exchange", text::toUtf8(fault.exchange)},
                {"number", fault.number},
                {"kind", text::toUtf8(fault.kind)},
                {"class", text::toUtf8(fault.alarm)},
                {"time", text::toUtf8(fault.time)},
                {"processor", text::toUtf8(fault.processor)},
                {"description", text::toUtf8(fault.description)}}
      .dump();
}

std::string jsonOf(const LampsTold& told) {
  return Object{{"event", "lamps"},
                {"id", told.id},
                {"exchange", text::toUtf8(told.exchange)},
                {"exchangeNumber", told.exchangeNumber},
                {"sequence", told.sequence},
                {"major", told.lamps.major},
                {"minor", told.lamps.minor},
                {"received", text::toUtf8(told.received)}}
      .dump();
}

std::string jsonText(std::u16string_view text) {
  return Object(text::toUtf8(text)).dump();
}

}  // namespace vordane::tools
