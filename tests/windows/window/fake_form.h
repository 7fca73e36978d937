// A form, its rows and its texts as the fault display's window has them, in memory, for the tests of the
// drawn window and for the program that shows it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "fakes/memory_notes.h"
#include "platform/database.h"
#include "platform/services.h"
#include "platform/view.h"

namespace vordane::window::testing {

enum class Language { english, russian, japanese };

// The controls of the fault display's window, captions set.
Form makeForm(Language language);

class FakeTexts : public ViewTexts {
 public:
  explicit FakeTexts(Language language) : language_(language) {}
  std::u16string text(ViewText which) override;
  void speak(Language language) { language_ = language; }

 private:
  Language language_;
};

class FakeSettings : public platform::SettingsStore {
 public:
  std::optional<std::u16string> read(std::u16string_view application, std::u16string_view section,
                                     std::u16string_view key) override;
  void write(std::u16string_view application, std::u16string_view section, std::u16string_view key,
             std::u16string_view value) override;
  std::map<std::u16string, std::u16string> values;  // "application|section|key"
};

// `count` rows out of a handful of faults, newest first; counts what is asked of it.
class FakeRows : public GridSource, public database::RowList {
 public:
  FakeRows(Language language, std::size_t count) : language_(language), count_(count) {}
  std::size_t size() const override { return count_; }
  std::optional<GridRow> row(std::size_t position) override;
  std::u16string asRead(const GridRow& row) override { return readBefore + row.description; }
  std::u16string readBefore;  // stands before each description as it is read
  // The equipment code C2D of the second fault came from the data characters 4 and 6 to 8.
  std::vector<Range> provenance(std::size_t row, std::size_t position) override;
  database::RowList* list() override { return held ? nullptr : this; }
  bool held = false;  // a step holds the file: no row is given
  std::optional<std::int64_t> number(std::size_t position) const override {
    return static_cast<std::int64_t>(count_ - position);
  }
  bool fetch(std::size_t position, std::vector<database::Value>& out) override;
  database::Notes* notes() override { return noNotesFor ? nullptr : &kept; }
  database::NoNotes noNotes() const override { return *noNotesFor; }
  void chooseNoted(std::span<const std::uint32_t> positions, std::vector<std::uint32_t>& chosen) override;
  // Row 0 has the number of all rows, the last one number 1.
  fakes::MemoryNotes kept{
      [this](std::int64_t fault) { return fault > 0 && fault <= static_cast<std::int64_t>(count_); }};
  std::optional<database::NoNotes> noNotesFor;
  std::size_t fetched = 0;
  bool longTexts = false;

 private:
  Language language_;
  std::size_t count_;
};

std::u16string caption(Language language);
std::u16string accountOfList(Language language);
std::u16string failureAccount(Language language);
std::u16string hintNotice(Language language);
std::u16string waitingNotice(Language language);
std::u16string failureNotice(Language language);

}  // namespace vordane::window::testing
