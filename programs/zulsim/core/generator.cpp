#include "zulsim/core/generator.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

#include "text/numbers.h"
#include "text/text.h"

namespace vordane::zulsim {
namespace {

// The data bytes of a kind, for its first data text. A token is a byte (80), a range (00-0F), any byte
// (??), two decimal digits (bb) or two packed digits of a station number (DD, filled with F behind it).
// A kind with several shapes has several rows.
struct Shape {
  std::uint8_t kind;
  std::string_view bytes;
};

constexpr Shape shapes[] = {
    {0x01, "00-0F 00-3F"},
    {0x02, "00-3F"},
    {0x03, "00-02 00-3F"},
    {0x04, "00-01 00-63 00-FF"},
    {0x04, "00-02 64-FF 00-FF"},
    {0x05, "?? 00-3F"},
    {0x07, "?? ??"},  // no kind of the exchange's manual: shown with its data only
    {0x08, "00-FF"},
    {0x09, "00-10"},
    {0x0A, "00-10 00-0F ??"},
    {0x10, "00-0F 00-3F"},
    {0x11, "00-03"},
    {0x12, "00-10 00 00 bb"},
    {0x12, "00-10 00 01-03 bb"},
    {0x13, "00-0F 00 01 01"},
    {0x13, "00-0F 00 02 09-0D"},
    {0x13, "00-0F 00 81 01"},
    {0x13, "00-0F 00 81 11"},
    {0x13, "00-0F 00 81 21"},
    {0x14, "00-0F 00 80 01"},
    {0x14, "00-0F 00 00 00"},
    {0x15, "00-0F 00 00 01-08"},
    {0x16, "00-3F"},
    {0x17, "00-0F 00 00"},
    {0x17, "10 ?? 00-01"},
    {0x18, "00-FF"},
    {0x19, "00-10"},
    {0x1A, "00-10 00-0F ??"},
    {0x20, "00-0F"},
    {0x21, "??"},
    {0x22, "??"},
    {0x23, "00-04 ??"},
    {0x24, "00-3F"},
    {0x25, "00-3F"},
    {0x26, "00-10 00 00 DD DD DD DD"},
    {0x27, "00-01 DD DD DD DD"},
    {0x28, "00-0F 00-02"},
    {0x2B, "00-10 00 00 bb"},
    {0x2B, "00-10 00 01-03 bb"},
    {0x2C, "00-4F"},
    {0x30, "00-0F"},
    {0x31, "??"},
    {0x32, "??"},
    {0x33, "00-04 ??"},
    {0x34, "00"},
    {0x35, "00"},
    {0x36, "00-10 00 00 DD DD DD DD"},
    {0x37, "00-01 DD DD DD DD"},
    {0x38, "00-0F"},
    {0x3B, "00-10 00 00-01 bb 00 00 00 00-03"},
    {0x3C, "00-4F"},
    {0x40, "01-0C 01-1F"},
    {0x41, "01-0C 01-1F"},
    {0x42, "00-63"},
    {0x43, "00 20-24"},
    {0x43, "00 30-31"},
    {0x43, "00 40-43"},
    {0x48, "00 00-03 00-03 00-03 00-03"},
    {0x49, "00-05 00-05 00-05"},
    {0x50, "01-0C 01-1F"},
    {0x51, "01-0C 01-1F"},
    {0x52, "00-63"},
    {0x53, "00 20-24"},
    {0x53, "00 30-31"},
    {0x53, "00 40-44"},
    {0x58, "00 00-05"},
};

constexpr std::size_t dataBytes = 8;  // of each data text
constexpr std::int64_t minutesOfDay = 24 * 60;

std::u16string hexByte(std::int64_t value) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  return {digits[static_cast<std::size_t>(value >> 4 & 15)], digits[static_cast<std::size_t>(value & 15)]};
}

std::int64_t hexValue(std::string_view digits) {
  return std::stol(std::string(digits), nullptr, 16);
}

// A station number of three to eight digits, packed two to a byte.
std::u16string packedDigits(Random& random) {
  std::u16string digits(8, u'F');
  const auto length = static_cast<std::size_t>(random.between(3, 8));
  for (std::size_t i = 0; i < length; ++i) digits[i] = static_cast<char16_t>(u'0' + random.between(0, 9));
  return digits;
}

class DataWriter {
 public:
  explicit DataWriter(Random& random) : random_(random), digits_(packedDigits(random)) {}

  std::u16string write(std::string_view bytes) {
    std::u16string data;
    std::size_t written = 0;
    for (; !bytes.empty(); ++written) {
      const std::size_t end = std::min(bytes.find(' '), bytes.size());
      if (written > 0) data += u' ';
      data += byteOf(bytes.substr(0, end));
      bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    for (; written < dataBytes; ++written) data += u" 00";
    return data;
  }

 private:
  std::u16string byteOf(std::string_view token) {
    if (token == "??") return hexByte(random_.between(0, 255));
    if (token == "bb") return text::decimalPadded(random_.between(0, 99), 2);
    if (token == "DD") {
      std::u16string pair = digits_.substr(0, 2);
      digits_.erase(0, 2);
      return pair;
    }
    if (token.size() == 5)
      return hexByte(random_.between(hexValue(token.substr(0, 2)), hexValue(token.substr(3))));
    return std::u16string(token.begin(), token.end());
  }

  Random& random_;
  std::u16string digits_;
};

// Some exchanges send nothing in the second data text, some a time stamp or a trace of their own.
std::u16string furtherData(Random& random) {
  const std::int64_t bytes = random.between(0, 2) == 0 ? 0 : random.between(1, dataBytes);
  std::u16string data;
  for (std::int64_t i = 0; i < bytes; ++i) {
    if (i > 0) data += u' ';
    data += hexByte(random.between(0, 255));
  }
  return data;
}

// Kind, alarm class and processor as the exchange writes them: "11 MJ LP 0C".
std::u16string faultRecord(std::uint8_t kind, Random& random) {
  const bool major = random.between(0, 3) == 0;
  const bool mainProcessor = random.between(0, 2) == 0;
  std::u16string record = hexByte(kind);
  record += major ? u" MJ " : u" MN ";
  record += mainProcessor ? u"MP " : u"LP ";
  record += hexByte(mainProcessor ? 0 : random.between(0, 31));
  return record;
}

std::vector<const Shape*> shapesOf(const std::vector<std::uint8_t>& kinds) {
  std::vector<const Shape*> chosen;
  for (const Shape& shape : shapes)
    if (kinds.empty() || std::find(kinds.begin(), kinds.end(), shape.kind) != kinds.end())
      chosen.push_back(&shape);
  return chosen;
}

template <class Item>
void shuffle(std::vector<Item>& items, Random& random) {
  for (std::size_t i = items.size(); i > 1; --i)
    std::swap(items[i - 1],
              items[static_cast<std::size_t>(random.between(0, static_cast<std::int64_t>(i) - 1))]);
}

std::vector<std::int64_t> minutesOf(const Generation& generation, Random& random) {
  std::vector<std::int64_t> minutes(static_cast<std::size_t>(generation.count));
  for (std::int64_t& minute : minutes) minute = random.between(generation.fromMinute, generation.toMinute);
  if (generation.order == Generation::Order::newestLast) std::sort(minutes.begin(), minutes.end());
  if (generation.order == Generation::Order::newestFirst) std::sort(minutes.rbegin(), minutes.rend());
  return minutes;
}

// Two digits at `position` within a range; nothing when they are anything else.
std::optional<int> twoDigits(std::u16string_view text, std::size_t position, int low, int high) {
  if (position + 2 > text.size()) return std::nullopt;
  const char16_t tens = text[position], ones = text[position + 1];
  if (!text::isDecimalDigit(tens) || !text::isDecimalDigit(ones)) return std::nullopt;
  const int value = (tens - u'0') * 10 + (ones - u'0');
  if (value < low || value > high) return std::nullopt;
  return value;
}

}  // namespace

std::uint64_t Random::next() {
  state_ += 0x9E3779B97F4A7C15U;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

std::int64_t Random::between(std::int64_t low, std::int64_t high) {
  const auto span = static_cast<std::uint64_t>(high - low) + 1;
  return low + static_cast<std::int64_t>(next() % span);
}

void generate(const Generation& generation, std::uint64_t seedOffset, std::vector<Entry>& entries) {
  Random random(generation.seed + seedOffset);
  std::vector<const Shape*> chosen = shapesOf(generation.kinds);
  if (chosen.empty()) return;
  shuffle(chosen, random);
  const std::vector<std::int64_t> minutes = minutesOf(generation, random);
  entries.reserve(entries.size() + 4 * minutes.size());
  for (std::size_t i = 0; i < minutes.size(); ++i) {
    // Once through all shapes first, so that a list longer than they are shows every kind.
    const std::size_t pick = i < chosen.size() ? i : static_cast<std::size_t>(random.next() % chosen.size());
    entries.push_back({faultRecord(chosen[pick]->kind, random), {}, {}, {}});
    entries.push_back({formatMinute(minutes[i]), {}, {}, {}});
    entries.push_back({DataWriter(random).write(chosen[pick]->bytes), {}, {}, {}});
    entries.push_back({furtherData(random), {}, {}, {}});
  }
}

std::vector<std::uint8_t> knownKinds() {
  std::vector<std::uint8_t> kinds;
  for (const Shape& shape : shapes)
    if (kinds.empty() || kinds.back() != shape.kind) kinds.push_back(shape.kind);
  return kinds;
}

std::optional<std::int64_t> parseMinute(std::u16string_view text) {
  const bool withTime = text.size() == 14;
  if ((text.size() != 8 && !withTime) || text[2] != u'/' || text[5] != u'/') return std::nullopt;
  const auto year = twoDigits(text, 0, 0, 99), month = twoDigits(text, 3, 1, 12),
             day = twoDigits(text, 6, 1, 31);
  if (!year || !month || !day) return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(*year + (*year < 80 ? 2000 : 1900)),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;  // the 31st of a short month
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  if (!withTime) return days * minutesOfDay;
  const auto hour = twoDigits(text, 9, 0, 23), minute = twoDigits(text, 12, 0, 59);
  if (!hour || !minute || text[8] != u' ' || text[11] != u':') return std::nullopt;
  return days * minutesOfDay + *hour * 60 + *minute;
}

std::u16string formatMinute(std::int64_t minute) {
  const std::chrono::days days(static_cast<int>(minute / minutesOfDay));
  const std::chrono::year_month_day date{std::chrono::sys_days(days)};
  const std::int64_t ofDay = minute % minutesOfDay;
  return text::decimalPadded(int{date.year()} % 100, 2) + u"/" +
         text::decimalPadded(unsigned{date.month()}, 2) + u"/" +
         text::decimalPadded(unsigned{date.day()}, 2) + u" " + text::decimalPadded(ofDay / 60, 2) + u":" +
         text::decimalPadded(ofDay % 60, 2);
}

}  // namespace vordane::zulsim
