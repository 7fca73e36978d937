// The language that a person reads the window in, as a layer over it: captions, tips, headings, sentences and
// the descriptions of the faults shown. What is stored, and what the host, boxes and the run log are told,
// stays in the language of the suite; where nobody looks there is nothing of it. Owns the other language
// while one is chosen. One thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/view.h"
#include "startup/reading_language.h"
#include "startup/window_help.h"

namespace vordane::startup {

struct WindowParts;

class WindowReading {
 public:
  WindowReading(const WindowParts& parts, WindowHelp& help) : parts_(parts), help_(help) {}

  // A person sees the window from now on: in the language chosen last. Counts once.
  void begin();
  // The languages that stand beside that of the suite, looked for anew.
  window::Languages languages();
  // By its place among the last `languages`. Of one that can't be read the status line says why, and the
  // window stays as it is.
  void choose(std::size_t language);
  bool isOn() const { return language_ != nullptr; }
  // Faults show as they are stored, until it is asked for again or another language is chosen.
  bool storedShown() const { return stored_; }
  void switchStored();
  // The window's title is about to name this exchange.
  void nameTitle(std::u16string_view exchange);

 private:
  struct File {
    std::u16string name, language;  // without its directory; as its speakers call it
  };
  std::u16string folder() const;
  bool read(const std::u16string& file);
  void show(std::unique_ptr<ReadingLanguage> language, const std::u16string& file);

  const WindowParts& parts_;
  WindowHelp& help_;
  std::vector<File> files_;
  std::u16string file_;  // of the language read
  std::unique_ptr<ReadingLanguage> language_;
  bool begun_ = false, stored_ = false;
};

}  // namespace vordane::startup
