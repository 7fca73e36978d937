#include "doctor_paths.h"

#include <system_error>

#include "settings/comRegQuil32.h"
#include "settings/suite_settings.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

// The settings of the suite itself, which are all that the add-in's own paths need.
class SuiteSettings final : public platform::SettingsStore {
 public:
  explicit SuiteSettings(const Workstation& workstation) : workstation_(workstation) {}
  std::optional<std::u16string> read(std::u16string_view application, std::u16string_view section,
                                     std::u16string_view key) override {
    return application == settings::suiteApplication ? workstation_.setting(section, key) : std::nullopt;
  }
  void write(std::u16string_view, std::u16string_view, std::u16string_view, std::u16string_view) override {}

 private:
  const Workstation& workstation_;
};

struct Piece {
  std::u16string_view item;
  fs::path file;
  const char* without;
};

std::vector<Piece> piecesOf(const SuiteLayout& layout) {
  constexpr const char* noStart = "the program ends at its start";
  return {
      {u"REGDBOFQUIL32", layout.sharedTexts(), noStart},
      {u"Database", layout.texts(), noStart},
      {u"Database", layout.faults(), "no faults can be stored or shown"},
      {u"REGDBOFQUIL32", layout.registration(), "the program ends when a host creates it"},
  };
}

}  // namespace

std::vector<Finding> examinePaths(const SuiteLayout& layout, std::u16string_view programDirectory,
                                  const Workstation& workstation) {
  std::vector<Finding> findings;
  if (!workstation.exists) return findings;
  SuiteSettings settings(workstation);
  const comRegQuil32::Installation installation{settings, std::u16string(programDirectory)};
  for (const Piece& piece : piecesOf(layout)) {
    const std::u16string path =
        comRegQuil32::GetInstallPath(installation, u"Addins", piece.item) + toText(piece.file.filename());
    std::error_code failure;
    if (!fs::is_regular_file(piece.file, failure) || workstation.exists(path)) continue;
    findings.push_back(
        {Weight::fatal, "the program looks for " + text::toUtf8(path) +
                            ", which is not there although the suite has it: " + piece.without});
  }
  return findings;
}

}  // namespace vordane::tools
