#include "startup/window_reading.h"

#include <algorithm>
#include <utility>

#include "language/message_numbers.h"
#include "startup/dlgFaultDisplay.h"

namespace vordane::startup {
namespace {

constexpr std::u16string_view fileBegin = u"VORDANE.", fileEnd = u".LNG";
constexpr std::u16string_view section = u"Window", key = u"ReadingLanguage";

// A text that the other language lacks stays as it is.
std::vector<std::u16string> merged(const std::vector<std::u16string>& own,
                                   const std::vector<std::u16string>& other) {
  std::vector<std::u16string> all = own;
  for (std::size_t i = 0; i < std::min(own.size(), other.size()); ++i)
    if (!other[i].empty()) all[i] = other[i];
  return all;
}

std::u16string titled(const std::u16string& words, std::u16string_view exchange) {
  return words + u" (" + std::u16string(exchange) + u")";
}

}  // namespace

std::u16string WindowReading::folder() const {
  return parts_.application.installPath(u"Database");
}

void WindowReading::begin() {
  if (parts_.application.unattended() || std::exchange(begun_, true)) return;
  const Workstation& station = parts_.application.station();
  const std::u16string kept = station.settings.read(programName, section, key).value_or(u"");
  if (kept.empty()) return;
  const auto files = station.files.between(folder() + std::u16string(fileBegin), fileEnd);
  if (std::find(files.begin(), files.end(), kept) != files.end()) read(kept);
}

window::Languages WindowReading::languages() {
  const Workstation& station = parts_.application.station();
  const std::u16string own = messageText(parts_.state(), message::languageName);
  std::vector<File> files{{{}, own}};
  window::Languages languages;
  for (const std::u16string& name : station.files.between(folder() + std::u16string(fileBegin), fileEnd)) {
    const auto known =
        std::find_if(files_.begin(), files_.end(), [&](const File& file) { return file.name == name; });
    const std::u16string language = known != files_.end() && known->language != name
                                        ? known->language
                                        : ReadingLanguage::nameIn(station.engine, folder() + name);
    // One that can't be read stands there by its file's name: whoever chooses it learns why.
    if (language != own) files.push_back({name, language.empty() ? name : language});
  }
  files_ = std::move(files);
  for (const File& file : files_) {
    if (isOn() && file.name == file_) languages.chosen = languages.names.size();
    languages.names.push_back(file.language);
  }
  return languages;
}

void WindowReading::choose(std::size_t language) {
  if (language >= files_.size()) return;
  const std::u16string file = files_[language].name;
  if (file.empty())
    show(nullptr, {});
  else if (!read(file))
    return;
  parts_.application.station().settings.write(programName, section, key, file);
}

bool WindowReading::read(const std::u16string& file) {
  std::u16string reason;
  auto language = ReadingLanguage::open(parts_.application.station().engine, folder() + file, reason);
  const bool read = language != nullptr;
  if (read) {
    show(std::move(language), file);
  } else {
    parts_.status.languageUnusable(file, reason);
    status::showLine(parts_.view(), parts_.status);
  }
  return read;
}

void WindowReading::show(std::unique_ptr<ReadingLanguage> language, const std::u16string& file) {
  const auto before = std::exchange(language_, std::move(language));  // until nobody names it any more
  file_ = file;
  stored_ = false;
  SharedState& state = parts_.state();
  state.ShownMessages =
      isOn() ? merged(state.Messages, language_->messages()) : std::vector<std::u16string>{};
  parts_.faults.readIn(isOn() ? &language_->faultTexts() : nullptr);
  help_.readIn(isOn() ? &language_->helpTexts() : nullptr);
  const std::u16string& exchange = parts_.host.PBXName();
  if (parts_.form.self().text(u"Caption") == titled(parts_.text(message::windowTitle), exchange))
    nameTitle(exchange);
  parts_.status.languageRead();
  parts_.view().setWords(isOn() ? &language_->form() : nullptr);
  parts_.showProcessorTexts();
  parts_.store.reword();
  status::showLine(parts_.view(), parts_.status);
}

void WindowReading::switchStored() {
  if (!isOn()) return;
  stored_ = !stored_;
  parts_.faults.readIn(stored_ ? nullptr : &language_->faultTexts());
  parts_.view().setWords(&language_->form());
}

void WindowReading::nameTitle(std::u16string_view exchange) {
  if (isOn())
    language_->form().self().set(u"Caption",
                                 titled(shownText(parts_.state(), message::windowTitle), exchange));
}

}  // namespace vordane::startup
