#include "trace/wish.h"

#include <string_view>

namespace vordane::trace {
namespace {

constexpr std::u16string_view application = u"VORDANE", section = u"Trace";

// A number within the limits; `usual` for anything else.
std::int64_t numberOf(const std::optional<std::u16string>& text, std::int64_t most, std::int64_t usual) {
  if (!text || text->empty() || text->size() > 9) return usual;
  std::int64_t number = 0;
  for (const char16_t digit : *text) {
    if (digit < u'0' || digit > u'9') return usual;
    number = number * 10 + (digit - u'0');
  }
  return number >= 1 && number <= most ? number : usual;
}

}  // namespace

std::optional<Wish> wishOf(platform::SettingsStore& user, platform::SettingsStore& workstation) {
  platform::SettingsStore* store = &user;
  auto on = user.read(application, section, u"On");
  if (!on) {
    store = &workstation;
    on = workstation.read(application, section, u"On");
  }
  if (on != u"1") return {};
  Wish wish;
  wish.folder = store->read(application, section, u"Folder").value_or(u"");
  const Limits usual;
  const auto number = [&](std::u16string_view key, std::int64_t most, std::int64_t other) {
    return numberOf(store->read(application, section, key), most, other);
  };
  constexpr std::int64_t megabyte = 1'000'000;
  wish.limits.bytes = static_cast<std::uint64_t>(
      number(u"Megabytes", 100'000, static_cast<std::int64_t>(usual.bytes) / megabyte) * megabyte);
  wish.limits.days = static_cast<int>(number(u"Days", 3650, usual.days));
  wish.identifiers = store->read(application, section, u"Identifiers") == u"1";
  return wish;
}

}  // namespace vordane::trace
