// What the fault store asks of the window that owns it. `dlgFaultDisplay` implements it; the store's tests
// have an in-memory one. Everything runs on the one user-interface thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "faults/cFaultDisplay.h"
#include "pbx/cListRequest.h"
#include "platform/automation.h"
#include "platform/database.h"
#include "platform/services.h"
#include "platform/view.h"
#include "platform/window.h"
#include "settings/shared_state.h"
#include "store/list_account.h"

namespace vordane::store {

class StoreForm {
 public:
  virtual ~StoreForm() = default;
  virtual database::Database* faultDatabase() = 0;  // null: FAULT.MDB is not open
  virtual window::Form& form() = 0;
  virtual window::View& view() = 0;
  virtual SharedState& state() = 0;
  virtual platform::Clock& clock() = 0;
  // The form's one decoder, created on first use, set to decode with this flag until the next call.
  virtual const cFaultDisplay& faultDecoder(bool wideFaultFields) = 0;
  virtual automation::Object* parent() = 0;  // the host; null stand-alone or before RegisterPBX
  virtual std::u16string installPath(std::u16string_view item) = 0;  // of product "Addins"

  // Errors of the host are ignored; nothing is called stand-alone.
  virtual void hostMessage(std::u16string_view text) = 0;  // Parent.ShowMessage
  virtual void hostCode(std::int32_t code) = 0;            // Parent.ShowCode

  // Asks for a box with selector 0; in a scheduled run it is logged instead and answered 6. An empty
  // substitution counts as none given.
  virtual int showBox(std::int16_t number, std::u16string_view substitution = {}) = 0;

  // False once an ending has begun: whoever just came back from a box or an outgoing call must stop.
  virtual bool alive() = 0;

  // The exchange and processor texts that the request now being finished was sent with.
  virtual std::u16string requestPbxName() = 0;
  virtual bool requestWideFaultFields() = 0;
  virtual const cListRequest& response() = 0;  // the copied answer
  virtual bool responseTruncated() = 0;        // the answer had more entries than the copy can hold
  virtual bool responseCut() = 0;              // one of its texts was longer than the copy keeps

  // A list was taken in or not; comes once for each ingestion, before the acknowledgement. The form tells
  // the status line and, in a scheduled run, the run log.
  virtual void listTaken(const ListAccount& account) = 0;
  // The exchange now shown, empty without one, and when its stored list came, empty when that is not known.
  virtual void exchangeShown(std::u16string_view name, std::u16string_view received) = 0;
  // Nothing was deleted, since another exchange is shown than the one that the person was asked about.
  virtual void deletionGivenUp() = 0;
  // Shows what is waited for or what failed last in the place of an empty grid; false when there is neither
  // and the store's own hint has that place.
  virtual bool showOwnNotice() = 0;

  // Builds and sends the fault list acknowledgement; false when it could not be sent.
  virtual bool AcknowledgeFaultList() = 0;
  // In a scheduled run the run's next step, else the busy flag goes off.
  virtual void endAction() = 0;
};

}  // namespace vordane::store
