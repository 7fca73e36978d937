#include "startup/reading_language.h"

#include "language/comDatabase.h"
#include "language/comLanguage.h"
#include "language/message_numbers.h"
#include "startup/form_model.h"

namespace vordane::startup {
namespace {

constexpr std::u16string_view messageTable = u"tMessages";

struct Loader {
  std::u16string_view table;
  bool (*load)(window::Form&, database::Database&);
};
constexpr Loader loaders[] = {{u"tForms", comLanguage::LocaliseForm},
                              {u"tControls", comLanguage::LocaliseControls},
                              {u"tComboBoxDT", comLanguage::LoadComboLists},
                              {u"tSSGridsHD", comLanguage::LocaliseGridHeadings}};

std::u16string nameAmong(const std::vector<std::u16string>& messages) {
  return message::languageName < messages.size() ? messages[message::languageName] : std::u16string{};
}

}  // namespace

ReadingLanguage::ReadingLanguage() : form_(makeFormModel()) {}

std::unique_ptr<ReadingLanguage> ReadingLanguage::open(database::Engine& engine, std::u16string_view path,
                                                       std::u16string& reason) {
  std::unique_ptr<database::Database> database;
  if (!comDatabase::OpenLanguageDatabase(engine, path, database, true, &reason)) return nullptr;
  std::unique_ptr<ReadingLanguage> language(new ReadingLanguage);
  return language->load(*database, reason) ? std::move(language) : nullptr;
}

std::u16string ReadingLanguage::nameIn(database::Engine& engine, std::u16string_view path) {
  std::unique_ptr<database::Database> database;
  std::vector<std::u16string> messages;
  if (!comDatabase::OpenLanguageDatabase(engine, path, database, true)) return {};
  return comLanguage::LoadTextArray(messages, messageTable, *database) ? nameAmong(messages)
                                                                       : std::u16string{};
}

bool ReadingLanguage::load(database::Database& database, std::u16string& reason) {
  reason = messageTable;
  if (!comLanguage::LoadTextArray(messages_, messageTable, database) || nameAmong(messages_).empty())
    return false;
  for (const Loader& loader : loaders) {
    reason = loader.table;
    if (!loader.load(form_, database)) return false;
  }
  reason.clear();
  helpTexts_ = comLanguage::loadHelpTexts(form_, database);
  readFaultTexts(messages_, form_, faultTexts_);
  return true;
}

}  // namespace vordane::startup
