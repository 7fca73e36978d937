#include "pbx/answer_reading.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace vordane::pbx {
namespace {

// RPC_S_SERVER_UNAVAILABLE, RPC_S_CALL_FAILED, RPC_E_DISCONNECTED, RPC_E_SERVER_DIED,
// RPC_E_SERVER_DIED_DNE, CO_E_OBJNOTCONNECTED
constexpr std::uint32_t goneCodes[] = {0x800706BA, 0x800706BE, 0x80010108,
                                       0x80010007, 0x80010012, 0x800401FD};

// E_OUTOFMEMORY: what a call says whose result found no room on its way here.
constexpr std::uint32_t noRoom = 0x8007000E;

template <class Read>
auto attempt(const Read& read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const automation::AutomationError& failure) {
    if (isServerGone(failure.code())) throw ServerGone{};
    if (static_cast<std::uint32_t>(failure.code()) == noRoom) throw std::bad_alloc();
    return std::nullopt;
  }
}

// Cuts a text that is longer than one may be; true when it was.
bool shorten(std::u16string& text) {
  if (text.size() <= longestText) return false;
  text.resize(longestText);
  text.shrink_to_fit();
  return true;
}

// One copy: what it has cost so far, and whether all of it fitted.
class Copying {
 public:
  Copying(automation::Object& record, cListRequest& copy) : record_(record), copy_(copy) {}

  // False when the entry was one too many.
  bool add(std::int32_t index) {
    const auto cmd = read(u"CMD", index);
    const auto first = read(u"FirstData", index);
    const auto second = read(u"SecondData", index);
    copy_.AddToList(cmd, first, second);
    copy_.set(cListRequest::Column::ExtraData, index, read(u"ExtraData", index));
    bytes_ += cListRequest::bytesOfEntry;
    result_.tooLarge = bytes_ > largestAnswer;
    return !result_.tooLarge;
  }
  Copied result() const { return result_; }

 private:
  // "" for one that can't be read.
  std::u16string read(std::u16string_view member, std::int32_t index) {
    auto text = attempt([&] {
                  return automation::toText(automation::get(
                      record_, member, {automation::byVal(static_cast<std::int16_t>(index))}));
                }).value_or(std::u16string{});
    result_.cut |= shorten(text);
    bytes_ += text.size() * sizeof(char16_t);
    return text;
  }

  automation::Object& record_;
  cListRequest& copy_;
  std::size_t bytes_ = 0;
  Copied result_;
};

}  // namespace

bool isServerGone(std::int32_t code) {
  return std::find(std::begin(goneCodes), std::end(goneCodes), static_cast<std::uint32_t>(code)) !=
         std::end(goneCodes);
}

std::optional<std::u16string> readText(automation::Object& record, std::u16string_view member) {
  auto text = attempt([&] { return automation::toText(automation::get(record, member)); });
  if (text) shorten(*text);
  return text;
}

std::optional<std::int32_t> readLong(automation::Object& record, std::u16string_view member) {
  return attempt([&] { return automation::toLong(automation::get(record, member)); });
}

Copied copyEntries(automation::Object& record, std::int32_t count, cListRequest& copy,
                   const std::function<bool()>& wanted) {
  Copying copying(record, copy);
  for (std::int32_t i = 0; i < count && wanted(); ++i) {
    if (copying.add(i)) continue;
    copy.Clear();
    break;
  }
  return copying.result();
}

}  // namespace vordane::pbx
