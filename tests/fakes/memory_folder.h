// A folder of traces in memory, on a disk that can be full or gone.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "trace/folder.h"

namespace vordane::fakes {

struct MemoryFolderState {
  std::map<std::string, std::string> content;
  std::uint64_t room = 1'000'000'000'000;
  bool refuses = false;                    // every writing
  std::vector<std::string> held, removed;  // files that can't be removed; those that were
  int writings = 0;

  std::string all() const {
    std::string text;
    for (const auto& [name, bytes] : content) text += bytes;
    return text;
  }
};

class MemoryFolder final : public trace::Folder {
 public:
  explicit MemoryFolder(std::shared_ptr<MemoryFolderState> state) : held_(std::move(state)), state_(*held_) {}
  std::vector<trace::StoredFile> files() override {
    std::vector<trace::StoredFile> found;
    for (const auto& [name, bytes] : state_.content) found.push_back({name, bytes.size()});
    return found;
  }
  bool append(const std::string& name, std::string_view bytes) override {
    ++state_.writings;
    if (state_.refuses) return false;
    state_.content[name] += bytes;
    return true;
  }
  bool remove(const std::string& name) override {
    for (const std::string& held : state_.held)
      if (held == name) return false;
    state_.content.erase(name);
    state_.removed.push_back(name);
    return true;
  }
  std::uint64_t room() override { return state_.room; }

 private:
  std::shared_ptr<MemoryFolderState> held_;
  MemoryFolderState& state_;
};

}  // namespace vordane::fakes
