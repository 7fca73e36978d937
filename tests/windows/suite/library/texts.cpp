#include "library/texts.h"

#include <map>

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

std::string chosen = "en";

const std::map<std::size_t, std::string>& messages() {
  static std::map<std::string, std::map<std::size_t, std::string>> read;
  auto& own = read[chosen];
  if (!own.empty()) return own;
  for (const std::string& line :
       linesOf(readText(layout().source / "data" / "language" / chosen / "messages.tsv"))) {
    const std::size_t tab = line.find('\t');
    if (tab == std::string::npos || line.find_first_not_of("0123456789") != tab) continue;
    own[std::stoul(line.substr(0, tab))] = line.substr(tab + 1);
  }
  return own;
}

}  // namespace

void setLanguage(const std::string& language) {
  chosen = language;
}

const std::string& language() {
  return chosen;
}

std::string messageText(std::size_t number) {
  const auto found = messages().find(number);
  if (found == messages().end()) throw Failure("there is no message " + std::to_string(number));
  return found->second;
}

bool isMessage(std::string_view text, std::size_t number) {
  const std::string pattern = messageText(number);
  const std::size_t place = pattern.find("{1}");
  if (place == std::string::npos) return text == pattern;
  const std::string before = pattern.substr(0, place), behind = pattern.substr(place + 3);
  return text.size() >= before.size() + behind.size() && text.starts_with(before) && text.ends_with(behind);
}

}  // namespace vordane::suite
