#include "setup_system.h"

#include "platform/file_moves.h"

namespace vordane::tools {
namespace {

class FilesOnly : public SetupSystem {
 public:
  Words words() override { return Words::x64; }
  std::unique_ptr<database::Engine> engine() override { return examiningEngine(); }
  bool inUse(const std::filesystem::path&) override { return false; }
  std::optional<Version> versionOf(const std::filesystem::path&) override { return std::nullopt; }
  bool registerProgram(const std::filesystem::path&, bool) override { return true; }
  bool unregisterProgram(const std::filesystem::path&) override { return true; }
  std::optional<std::u16string> setting(std::u16string_view, std::u16string_view) override {
    return std::nullopt;
  }
  void set(std::u16string_view, std::u16string_view, const std::optional<std::u16string>&) override {}
  void removeOwnSettings() override {}
  std::optional<std::uintmax_t> roomAt(const std::filesystem::path& folder) override {
    std::error_code failure;
    const std::filesystem::space_info space = std::filesystem::space(folder, failure);
    return failure ? std::nullopt : std::optional(space.available);
  }
  void letUsersWrite(const std::filesystem::path&) override {}
  bool keepCrashDumps(const std::filesystem::path&) override { return false; }
  void dropCrashDumps(const std::filesystem::path&) override {}
  std::vector<Finding> examine(const SuiteLayout& layout) override { return examineFiles(layout, *engine()); }
  void pause(std::chrono::milliseconds time) override { platform::sleepFor(time); }
};

}  // namespace

std::unique_ptr<SetupSystem> setupSystem() {
  return std::make_unique<FilesOnly>();
}

}  // namespace vordane::tools
