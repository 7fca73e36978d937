#include "pbx/response_codes.h"

#include <array>

#include "text/text.h"

namespace vordane::pbx {
namespace {

constexpr std::size_t textWidth = 25;

// The answers of the exchange (0-23) and of the suite's access component (24-56). The spellings are theirs.
constexpr std::u16string_view texts[] = {
    u"DIGIT ERROR",
    u"DATA ERROR",
    u"CODE NOT ALLOWED",
    u"CODE NOT USED",
    u"DATA NOT FOUND",
    u"WAIT, BUSY NOW",
    u"ASSIGNED ALREADY",
    u"HARD WARE ERROR",
    u"WD ERROR",
    u"USE CM",
    u"TRK NOT ASSIGNED",
    u"ASSIGNED TO",
    u"MEMORY FULL",
    u"DATA NOT SET",
    u"END",
    u"SEE CM",
    u"OK",
    u"NONE",
    u"WRONG",
    u"MEMORY CLEAR?",
    u"ERROR",
    u"INITIAL?",
    u"COMMAND=",
    u"CODE NOTALLOWED",
    u"ZUL_TIMEOUT",
    u"ZUL_USERCANCEL",
    u"ZUL_LACK INPUT",
    u"ZUL_PORT TROUBLES",
    u"ZUL_SYSERROR",
    u"ZUL_CMD RERR",
    u"ZUL_CMD WERR",
    u"ZUL_CHECKSUMERROR",
    u"ZUL_INVALID FILENAME",
    u"ZUL_INVALID PROCNUM",
    u"ZUL_INVALID AREANUM",
    u"ZUL_INVALID FILEFORMAT",
    u"ZUL_WRITE ERROR",
    u"ZUL_MEM OVERFLOW",
    u"ZUL_DISK_WRITE_ERROR",
    u"ZUL_INVALID_SEQUENCE",
    u"ZUL_BACKUP_NG",
    u"ZUL_NO_IPPBX",
    u"ZUL_OK",
    u"ZUL_NONE",
    u"ZUL_NO DUMY NUM",
    u"ZUL_STN",
    u"ZUL_PKG",
    u"ZUL_STN_STATION",
    u"ZUL_STN_DTERM",
    u"ZUL_STN_VIRTUAL",
    u"ZUL_STN_PS",
    u"ZUL_STN_ISDN",
    u"ZUL_STN_MODEM",
    u"ZUL_STN_DATA",
    u"ZUL_STN_OTHERS",
    u"ZUL_STN_NOT ASSIGNED",
    u"ZUL_STN_DTERMIP",
};
constexpr std::size_t textCount = std::size(texts);
static_assert(textCount == 57);

// The significant lengths, two digits each: a check on the spellings above.
constexpr std::u16string_view lengths =
    u"111016131414161508061611111203060204051305080815"
    u"111414171212121720191922151620201312060815070715131510121312142015";
static_assert(lengths.size() == 2 * textCount);

constexpr std::size_t lengthOf(std::size_t i) {
  return static_cast<std::size_t>(lengths[2 * i] - u'0') * 10 +
         static_cast<std::size_t>(lengths[2 * i + 1] - u'0');
}

constexpr bool lengthsMatchTexts() {
  for (std::size_t i = 0; i < textCount; ++i)
    if (texts[i].empty() || texts[i].size() > textWidth || texts[i].size() != lengthOf(i)) return false;
  return true;
}
static_assert(lengthsMatchTexts());

// All texts padded with blanks and joined.
constexpr auto joined = [] {
  std::array<char16_t, textCount * textWidth> table{};
  table.fill(u' ');
  for (std::size_t i = 0; i < textCount; ++i)
    for (std::size_t k = 0; k < texts[i].size(); ++k) table[i * textWidth + k] = texts[i][k];
  return table;
}();
static_assert(joined.size() == 1425);

constexpr std::u16string_view tableFrom(std::size_t i) {
  return std::u16string_view(joined.data(), joined.size()).substr(i * textWidth);
}

// Ranges of positions and what is added to them; ascending and without a gap.
struct Mapping {
  int last, offset;
};
constexpr Mapping mappings[] = {{15, 0}, {22, 84}, {23, 2 - 23}, {41, 36}, {56, 38}};
static_assert(mappings[std::size(mappings) - 1].last == static_cast<int>(textCount) - 1);

std::int16_t codeOf(int position) {
  if (position < 0) return -1;
  for (const Mapping& mapping : mappings)
    if (position <= mapping.last) return static_cast<std::int16_t>(position + mapping.offset);
  return -1;
}

// The last match counts, so that "ZUL_STN_STATION" is not taken for "ZUL_STN".
int prefixPass(std::u16string_view text) {
  int result = -1;
  if (text.empty()) return result;
  for (std::size_t i = 0; i < textCount; ++i)  // asked of each fault received: nearly all differ at once
    if (text[0] == joined[i * textWidth] &&
        text.substr(0, lengthOf(i)) == tableFrom(i).substr(0, lengthOf(i)))
      result = static_cast<int>(i);
  return result;
}

int colonPass(std::u16string_view text) {
  const std::size_t colon = text.find(u':');
  if (colon == text.npos) return -1;
  int result = -1;
  for (std::size_t i = 0; i < textCount; ++i)
    if (text::contains(tableFrom(i), text.substr(colon, textWidth))) result = static_cast<int>(i);
  return result;
}

std::u16string generationOf(std::u16string_view answer) {
  const auto pieces = text::split(answer, u' ');
  if (pieces.size() < 2 || pieces[1].empty() || text::left(pieces[0], 3) != u"SC-") return {};
  return pieces[1].substr(0, 1);
}

}  // namespace

std::int16_t GetResponseCode(std::u16string_view text) {
  const std::u16string_view working = text::right(text, textWidth);
  const int found = prefixPass(working);
  return codeOf(found >= 0 ? found : colonPass(working));
}

std::u16string GetMPGeneration(automation::Object* parent, std::u16string_view pbxName) {
  if (parent == nullptr) return {};
  try {
    const auto access = automation::toObject(automation::get(*parent, u"oZUL"));
    if (!access) return {};
    return generationOf(automation::toText(
        automation::call(*access, u"GetMPVersion", {automation::byRef(std::u16string(pbxName))})));
  } catch (const automation::AutomationError&) {
    return {};
  }
}

}  // namespace vordane::pbx
