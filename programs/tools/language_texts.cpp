#include "language_texts.h"

#include <vector>

#include "database_files.h"
#include "faults/stored_words.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/language_databases.h"
#include "language/message_numbers.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "platform/stored_values.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using database::textOf;

// An item's place in its list is its place in this order.
void readWindowLists(database::Database& database, FaultTextTable& texts) {
  const auto rows = database.openRecordset(language::statement::lists.with({formName}));
  for (; !rows->atEnd(); rows->moveNext())
    if (const auto kind = listKind(textOf(rows->get(u"ObjectName"))))
      texts.addItem(*kind, textOf(rows->get(u"List")));
  rows->close();
}

}  // namespace

void readLanguageDatabase(database::Engine& engine, const std::string& path, FaultTextTable& texts) {
  if (database::fileKind(text::fromUtf8(path)) == database::FileKind::access)
    throw ToolError(path + ": is an Access file and has to be imported first (vordane-tools import)");
  try {
    const auto database = engine.open(text::fromUtf8(path), true);
    std::vector<std::u16string> messages;
    if (!comLanguage::LoadTextArray(messages, u"tMessages", *database))
      throw ToolError(path + ": its messages can't be read (table tMessages)");
    texts.setMessages(messages);
    readWindowLists(*database, texts);
  } catch (const database::DatabaseError& error) {
    throw ToolError(failureText(path, error));
  }
}

database::Agreement storingLanguageOf(database::Engine& engine, const std::string& path) {
  FaultTextTable texts;
  readLanguageDatabase(engine, path, texts);
  const std::u16string* name = texts.message(static_cast<int>(message::languageName));
  return {name == nullptr ? std::u16string{} : *name, markOfStoredWords(texts)};
}

}  // namespace vordane::tools
