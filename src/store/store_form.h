// What the fault store asks of the window that owns it. The window implements it; the store's tests have an
// in-memory one. Everything runs on the one user-interface thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "faults/cFaultDisplay.h"
#include "platform/automation.h"
#include "platform/database.h"
#include "platform/services.h"
#include "platform/view.h"
#include "platform/window.h"
#include "settings/shared_state.h"
#include "status/list_account.h"
#include "status/window_status.h"

namespace vordane::store {

class ResetReceipts;

// What the store works on all its life; everything outlives it.
struct Surroundings {
  window::Form& form;
  window::View& view;
  SharedState& state;
  platform::Clock& clock;
  status::WindowStatus& status;
  ResetReceipts& receipts;
};

class StoreForm {
 public:
  virtual ~StoreForm() = default;
  virtual database::Database* faultDatabase() = 0;  // null: FAULT.MDB is not open
  // The form's one decoder, created on first use, set to decode with this flag until the next call.
  virtual const cFaultDisplay& faultDecoder(bool wideFaultFields) = 0;
  // The words that a person reads descriptions in; null: as they are stored. Good until the next call.
  virtual const FaultTextTable* readingTexts() { return nullptr; }
  // What a shared store must be kept in for this station to write into it: the language and a mark of its
  // words.
  virtual database::Agreement storingLanguage() = 0;
  virtual automation::ObjectRef host() = 0;                          // null stand-alone or before RegisterPBX
  virtual std::u16string installPath(std::u16string_view item) = 0;  // of product "Addins"

  // Errors of the host are ignored; nothing is called stand-alone.
  virtual void hostMessage(std::u16string_view text) = 0;  // ShowMessage
  virtual void hostCode(std::int32_t code) = 0;            // ShowCode

  // Asks for a box with selector 0; in a scheduled run it is logged instead and answered 6. An empty
  // substitution counts as none given.
  virtual int showBox(std::int16_t number, std::u16string_view substitution = {}) = 0;

  // False once an ending has begun: whoever just came back from a box or an outgoing call must stop.
  virtual bool alive() = 0;

  // A list was taken in or not; comes once for each ingestion, before its boxes. The form tells the status
  // line and, in a scheduled run, the run log.
  virtual void listTaken(const status::ListAccount& account) = 0;
  // Nothing was deleted, since another exchange is shown than the one that the person was asked about.
  virtual void deletionGivenUp() = 0;
  // FAULT.MDB is open, and what it holds can't be shown; comes before its box.
  virtual void displayFailed(std::u16string_view engineText) = 0;
};

}  // namespace vordane::store
