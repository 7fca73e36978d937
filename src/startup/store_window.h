// The window as its fault store sees it: the fault database, the decoder, the host, the boxes. Owns the
// database and the decoder. One thread.
#pragma once

#include <memory>

#include "faults/cFaultDisplay.h"
#include "platform/database.h"
#include "platform/window.h"
#include "startup/host_link.h"
#include "startup/window_life.h"
#include "store/store_form.h"

namespace vordane::startup {

class StoreWindow final : public store::StoreForm {
 public:
  StoreWindow(Application& application, window::Form& form, WindowLife& life, HostLink& host,
              status::WindowStatus& status)
      : application_(application), form_(form), life_(life), host_(host), status_(status) {}

  // Leaves the database unset when it can't be opened.
  void open();
  // Lets go of the database and the decoder; a step that waits further down the stack may still name them.
  void close();
  void closeDatabase();
  // The lists are filled: whoever decodes from here on reads them anew.
  void textsLoaded() { decoder_.reset(); }

  database::Database* faultDatabase() override { return database_.get(); }
  const cFaultDisplay& faultDecoder(bool wideFaultFields) override;
  const FaultTextTable* readingTexts() override { return reading_; }
  // Descriptions are read in these words from now on; null: as they are stored. They outlive the next call.
  void readIn(const FaultTextTable* texts) { reading_ = texts; }
  database::Agreement storingLanguage() override;
  automation::ObjectRef host() override { return host_.ref(); }
  std::u16string installPath(std::u16string_view item) override { return application_.installPath(item); }
  void hostMessage(std::u16string_view text) override;
  void hostCode(std::int32_t code) override;
  int showBox(std::int16_t number, std::u16string_view substitution = {}) override;
  bool alive() override { return life_.alive(); }
  void listTaken(const status::ListAccount& account) override;
  void deletionGivenUp() override;
  void displayFailed(std::u16string_view engineText) override;

 private:
  std::u16string path() const;
  void reportToLog(const status::ListAccount& account);

  Application& application_;
  window::Form& form_;
  WindowLife& life_;
  HostLink& host_;
  status::WindowStatus& status_;
  std::unique_ptr<database::Database> database_;
  FaultTextTable texts_;
  const FaultTextTable* reading_ = nullptr;
  bool wide_ = true;
  std::unique_ptr<cFaultDisplay> decoder_;
};

}  // namespace vordane::startup
