// Files in memory, on a disk that can be full or refuse to open them.
#pragma once

#include <map>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/services.h"

namespace vordane::fakes {

class MemoryFiles : public platform::Files {
 public:
  bool exists(std::u16string_view path) override { return content.count(std::u16string(path)) != 0; }
  bool directoryExists(std::u16string_view path) override {
    return directories.count(std::u16string(path)) != 0;
  }
  std::vector<std::u16string> between(std::u16string_view before, std::u16string_view behind) override {
    std::vector<std::u16string> names;
    for (const auto& [path, bytes] : content)
      if (path.size() >= before.size() + behind.size() && path.starts_with(before) && path.ends_with(behind))
        names.push_back(path.substr(before.rfind(u'\\') + 1));
    return names;
  }
  bool append(std::u16string_view path, std::string_view bytes) override {
    if (outOfMemory) throw std::bad_alloc();
    if (locked || used() + bytes.size() > capacity) return false;
    content[std::u16string(path)] += bytes;
    return true;
  }
  std::optional<std::int64_t> length(std::u16string_view path) override {
    const auto found = content.find(std::u16string(path));
    if (locked || found == content.end()) return std::nullopt;
    return static_cast<std::int64_t>(found->second.size());
  }

  std::map<std::u16string, std::string> content;
  std::set<std::u16string> directories;
  std::size_t capacity = 1'000'000'000;
  bool locked = false, outOfMemory = false;

 private:
  std::size_t used() const {
    std::size_t sum = 0;
    for (const auto& [path, bytes] : content) sum += bytes.size();
    return sum;
  }
};

}  // namespace vordane::fakes
