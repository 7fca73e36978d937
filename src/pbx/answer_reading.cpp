#include "pbx/answer_reading.h"

#include <algorithm>
#include <iterator>

namespace vordane::pbx {
namespace {

// RPC_S_SERVER_UNAVAILABLE, RPC_S_CALL_FAILED, RPC_E_DISCONNECTED, RPC_E_SERVER_DIED,
// RPC_E_SERVER_DIED_DNE, CO_E_OBJNOTCONNECTED
constexpr std::uint32_t goneCodes[] = {0x800706BA, 0x800706BE, 0x80010108,
                                       0x80010007, 0x80010012, 0x800401FD};

template <class Read>
auto attempt(const Read& read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const automation::AutomationError& failure) {
    if (isServerGone(failure.code())) throw ServerGone{};
    return std::nullopt;
  }
}

}  // namespace

bool isServerGone(std::int32_t code) {
  return std::find(std::begin(goneCodes), std::end(goneCodes), static_cast<std::uint32_t>(code)) !=
         std::end(goneCodes);
}

std::optional<std::u16string> readText(automation::Object& record, std::u16string_view member) {
  return attempt([&] { return automation::toText(automation::get(record, member)); });
}

std::optional<std::int32_t> readLong(automation::Object& record, std::u16string_view member) {
  return attempt([&] { return automation::toLong(automation::get(record, member)); });
}

std::u16string readEntry(automation::Object& record, std::u16string_view member, std::int32_t index) {
  const auto text = attempt([&] {
    return automation::toText(
        automation::get(record, member, {automation::byVal(static_cast<std::int16_t>(index))}));
  });
  return text.value_or(std::u16string{});
}

void copyEntries(automation::Object& record, std::int32_t count, cListRequest& copy,
                 const std::function<bool()>& wanted) {
  for (std::int32_t i = 0; i < count && wanted(); ++i) {
    const auto cmd = readEntry(record, u"CMD", i);
    const auto first = readEntry(record, u"FirstData", i);
    const auto second = readEntry(record, u"SecondData", i);
    copy.AddToList(cmd, first, second);
    copy.set(cListRequest::Column::ExtraData, i, readEntry(record, u"ExtraData", i));
  }
}

}  // namespace vordane::pbx
