#include "trace/secrets.h"

#include <algorithm>

#include "text/numbers.h"

namespace vordane::trace {
namespace {

constexpr std::size_t longEnough = 4;  // to be no part of another word by chance

bool belongsToWord(char16_t character) {
  return (character >= u'0' && character <= u'9') || (character >= u'A' && character <= u'Z') ||
         (character >= u'a' && character <= u'z') || character == u'_' || character >= 0x80;
}

bool isWord(std::u16string_view text, std::size_t at, std::size_t length) {
  const bool begins = at == 0 || !belongsToWord(text[at - 1]);
  return begins && (at + length == text.size() || !belongsToWord(text[at + length]));
}

std::size_t findIn(std::u16string_view text, std::u16string_view identifier, std::size_t from) {
  for (std::size_t at = from; (at = text.find(identifier, at)) != text.npos; ++at)
    if (identifier.size() >= longEnough || isWord(text, at, identifier.size())) return at;
  return text.npos;
}

}  // namespace

void Secrets::keep(std::u16string_view identifier) {
  if (shown_ || identifier.empty() || identifier == u"BUSY" || identifier == u"ERROR") return;
  const auto same = [&](const Kept& kept) { return kept.identifier == identifier; };
  if (std::any_of(kept_.begin(), kept_.end(), same)) return;
  if (kept_.size() == most) {
    const auto older = [](const Kept& a, const Kept& b) { return a.number < b.number; };
    kept_.erase(std::min_element(kept_.begin(), kept_.end(), older));
  }
  const auto isLonger = [&](const Kept& kept) { return kept.identifier.size() >= identifier.size(); };
  kept_.insert(std::partition_point(kept_.begin(), kept_.end(), isLonger),
               {std::u16string(identifier), ++count_});
}

std::u16string_view Secrets::hidden(std::u16string_view text, std::u16string& place) const {
  for (const Kept& kept : kept_) {
    std::size_t at = findIn(text, kept.identifier, 0);
    if (at == text.npos) continue;
    const std::u16string substitute =
        u"(identifier " + text::decimal(static_cast<std::int64_t>(kept.number)) + u")";
    std::u16string changed(text);
    for (; at != changed.npos; at = findIn(changed, kept.identifier, at + substitute.size()))
      changed.replace(at, kept.identifier.size(), substitute);
    place = std::move(changed);
    text = place;
  }
  return text;
}

}  // namespace vordane::trace
