#include "doctor_language.h"

#include <algorithm>

#include "faults/cFaultDisplay.h"
#include "language/message_numbers.h"
#include "language_texts.h"
#include "lines.h"
#include "platform/stored_values.h"
#include "store/statements.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t faultsLookedAt = 1000;

struct StoredText {
  std::u16string kind, description;
};

std::vector<StoredText> newestFaults(database::Database& faults) {
  std::vector<StoredText> newest;
  const auto rows = faults.openRecordset(store::faultsNewestFirst);
  for (; !rows->atEnd() && newest.size() < faultsLookedAt; rows->moveNext())
    newest.push_back({database::textOf(rows->get(u"Fault")), database::textOf(rows->get(u"Description"))});
  rows->close();
  return newest;
}

class Language {
 public:
  Language(database::Engine& engine, const fs::path& file) {
    readLanguageDatabase(engine, text::toUtf8(toText(file)), texts_);
    const std::u16string* name = texts_.message(static_cast<int>(message::languageName));
    if (name != nullptr) name_ = text::toUtf8(*name);
  }
  const std::string& name() const { return name_; }
  std::size_t told(const std::vector<StoredText>& faults) const {
    const bool wide = true;
    const cFaultDisplay decoder(texts_, wide);
    return static_cast<std::size_t>(std::count_if(faults.begin(), faults.end(), [&](const StoredText& fault) {
      std::u16string data;
      return !decoder.explainStored(fault.kind, fault.description, data).empty();
    }));
  }

 private:
  FaultTextTable texts_;
  std::string name_;
};

std::vector<fs::path> languagesBeside(const fs::path& own) {
  std::vector<fs::path> files;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(own.parent_path(), failure)) {
    const fs::path name = entry.path().filename();
    if (name.extension() == ".LNG" && name.stem().stem() == own.stem() && name != own.filename())
      files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

void examineStoringLanguage(const SuiteLayout& layout, database::Engine& engine, database::Database& faults,
                            std::vector<Finding>& findings) try {
  const std::vector<StoredText> newest = newestFaults(faults);
  if (newest.empty()) return;
  const Language own(engine, layout.texts());
  for (const fs::path& file : languagesBeside(layout.texts())) {
    const Language other(engine, file);
    const std::size_t told = other.name() == own.name() ? 0 : other.told(newest);
    if (told == 0) continue;
    findings.push_back({Weight::incomplete,
                        text::toUtf8(toText(layout.faults())) + ": " + std::to_string(told) +
                            " of the newest " + std::to_string(newest.size()) + " fault(s) are stored in " +
                            other.name() + ", and VORDANE.LNG is " + own.name() +
                            ": a fault of them that an exchange still reports is stored a second time"});
  }
} catch (const database::DatabaseError&) {
} catch (const automation::AutomationError&) {
} catch (const ToolError&) {
}

}  // namespace vordane::tools
