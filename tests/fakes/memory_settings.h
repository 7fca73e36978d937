// The per-user program settings, in memory.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/services.h"

namespace vordane::fakes {

class MemorySettings : public platform::SettingsStore {
 public:
  std::optional<std::u16string> read(std::u16string_view application, std::u16string_view section,
                                     std::u16string_view key) override {
    asked.emplace_back(key);
    const auto found = values_.find(keyOf(application, section, key));
    return found == values_.end() ? std::nullopt : std::optional(found->second);
  }
  void write(std::u16string_view application, std::u16string_view section, std::u16string_view key,
             std::u16string_view value) override {
    values_[keyOf(application, section, key)] = value;
  }

  std::vector<std::u16string> asked;  // the keys that were read

 private:
  using Key = std::tuple<std::u16string, std::u16string, std::u16string>;
  static Key keyOf(std::u16string_view a, std::u16string_view s, std::u16string_view k) {
    return {std::u16string(a), std::u16string(s), std::u16string(k)};
  }
  std::map<Key, std::u16string> values_;
};

}  // namespace vordane::fakes
