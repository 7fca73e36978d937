#include "network.h"

#include <algorithm>

namespace vordane::tools {
namespace {

bool isPort(std::string_view text) {
  constexpr int highest = 65535;
  const bool digits = !text.empty() && text.size() <= 5 &&
                      std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits) return false;
  const int number = std::stoi(std::string(text));
  return number >= 1 && number <= highest;
}

}  // namespace

std::optional<Address> addressOf(std::string_view written) {
  const auto colon = written.rfind(':');
  if (colon == written.npos || !isPort(written.substr(colon + 1))) return std::nullopt;
  std::string_view host = written.substr(0, colon);
  const bool bracketed = host.size() >= 2 && host.front() == '[' && host.back() == ']';
  if (bracketed) host = host.substr(1, host.size() - 2);
  if (host.empty() || (!bracketed && host.find(':') != host.npos)) return std::nullopt;
  return Address{std::string(host), std::string(written.substr(colon + 1))};
}

}  // namespace vordane::tools
