#include "hostile/whims.h"

#include <limits>

#include "text/numbers.h"

namespace vordane::hostile {

using automation::AutomationError;
using automation::Value;

// Splitmix: every seed gives a good sequence.
std::uint64_t Whims::next() {
  std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
  return z ^ (z >> 31);
}

std::int32_t Whims::number() {
  if (once(2)) return oneOf({0, 1, -1, 10, 11, 12, 61, 99, 100, 200, -100, 32764, 32767, 32768, -32768});
  if (once(3)) return std::numeric_limits<std::int32_t>::max() - static_cast<std::int32_t>(below(3));
  if (once(3)) return std::numeric_limits<std::int32_t>::min() + static_cast<std::int32_t>(below(3));
  return static_cast<std::int32_t>(below(1000)) - 500;
}

std::u16string Whims::knownText() {
  return oneOf<const char16_t*>({u"",
                                 u"BUSY",
                                 u"ERROR",
                                 u"busy",
                                 u"L1",
                                 u"ACCEPTED",
                                 u"10",
                                 u"11",
                                 u"12",
                                 u"99",
                                 u"100",
                                 u"0",
                                 u"-1",
                                 u"1e3",
                                 u"OK",
                                 u"ZUL_TIMEOUT",
                                 u"END",
                                 u"15 MJ MP000",
                                 u"26/11/20 10:15",
                                 u"00",
                                 u"01",
                                 u"120,300",
                                 u"-99999999,1e300",
                                 u"A,.CSV",
                                 u"C:\\A\\,A.CSV",
                                 u"SC-1000 N1"});
}

std::u16string Whims::strangeText() {
  switch (below(7)) {
    case 0:
      return std::u16string(1 + below(4), static_cast<char16_t>(0xD800 + below(0x800)));  // half characters
    case 1:
      return std::u16string(u"A\0B\0", 4);
    case 2:
      return u"\"' OR ''='\";--\r\n[x]#|";
    case 3:
      return u"&%SP&%ST&CR&LF&%";
    case 4:
      return u"..\\..\\con.tlg:x\u202E\u0085\u2028\x1B[2J";
    case 5:
      return u"9223372036854775808";
    default: {
      std::u16string text;
      for (std::size_t i = below(40); i-- > 0;) text += static_cast<char16_t>(next());
      return text;
    }
  }
}

std::u16string Whims::longText() {
  const std::size_t length = once(20) ? 300'000 : once(4) ? 70'000 : 2'000;
  return std::u16string(length, oneOf({u'0', u'F', u' ', u'%', u'\"', u'\0', u'\uFFFF', u'\u30D5'}));
}

std::u16string Whims::text() {
  const std::size_t kind = below(20);
  if (kind < 14) return knownText();
  return kind < 19 ? strangeText() : longText();
}

Value Whims::value() {
  switch (below(13)) {
    case 0:
      return automation::Empty{};
    case 1:
      return automation::Null{};
    case 2:
      return automation::Missing{};
    case 3:
      return once(2);
    case 4:
      return static_cast<std::uint8_t>(next());
    case 5:
      return static_cast<std::int16_t>(next());
    case 6:
      return number();
    case 7:
      return oneOf({0.5F, -1e30F, std::numeric_limits<float>::infinity()});
    case 8:
      return oneOf({1e308, -0.0, 2147483648.0, std::numeric_limits<double>::quiet_NaN(),
                    -std::numeric_limits<double>::infinity()});
    case 9:
      return automation::Date{oneOf({0.0, 46000.5, -1e300, 1e300, std::numeric_limits<double>::quiet_NaN()})};
    default:
      return text();
  }
}

std::int32_t Whims::errorCode() {
  return static_cast<std::int32_t>(oneOf<std::uint32_t>(
      {0x80020006, 0x80020003, 0x80020005, 0x8002000A, 0x8002000E, 0x8002000F, 0x80020009, 0x800A01B6,
       0x800A0006, 0x80004001, 0x80004005, 0x8007000E, 0x800706BA, 0x800706BE, 0x80010108, 0x80010007,
       0x80010012, 0x800401FD, 0x80010001, 0x8001010A, 0,          1,          0x7FFFFFFF, 0xFFFFFFFF}));
}

void Whims::fail() {
  throw AutomationError(errorCode(), text(), text(), static_cast<int>(below(5)) - 1);
}

}  // namespace vordane::hostile
