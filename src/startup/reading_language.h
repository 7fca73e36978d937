// Another language database than that of the suite, read whole: its texts for the window, and the words of
// its descriptions. Nothing of the file is held open. One thread.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "faults/fault_texts.h"
#include "platform/database.h"
#include "platform/window.h"

namespace vordane::startup {

class ReadingLanguage {
 public:
  // Null when the file can't be used, and `reason` says why: the engine's text, or the table that is missing
  // or not whole.
  static std::unique_ptr<ReadingLanguage> open(database::Engine& engine, std::u16string_view path,
                                               std::u16string& reason);
  // What its speakers call the language; empty when the file can't be used.
  static std::u16string nameIn(database::Engine& engine, std::u16string_view path);

  const std::vector<std::u16string>& messages() const { return messages_; }
  // A form as the window's, with this language's captions, tips, headings, fonts and lists.
  window::Form& form() { return form_; }
  const std::map<std::u16string, std::u16string>& helpTexts() const { return helpTexts_; }
  const FaultTextTable& faultTexts() const { return faultTexts_; }

 private:
  ReadingLanguage();
  bool load(database::Database& database, std::u16string& reason);

  std::vector<std::u16string> messages_;
  window::Form form_;
  std::map<std::u16string, std::u16string> helpTexts_;
  FaultTextTable faultTexts_;
};

}  // namespace vordane::startup
