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

namespace vordane::store {

class StoreForm {
 public:
  virtual ~StoreForm() = default;
  virtual database::Database* faultDatabase() = 0;  // null: FAULT.MDB is not open
  virtual window::Form& form() = 0;
  virtual window::View& view() = 0;
  virtual SharedState& state() = 0;
  virtual platform::Clock& clock() = 0;
  virtual const cFaultDisplay& faultDecoder() = 0;  // created on first use
  virtual automation::Object* parent() = 0;         // the host; null stand-alone or before RegisterPBX
  virtual std::u16string installPath(std::u16string_view item) = 0;  // of product "Addins"

  // Errors of the host are ignored; nothing is called stand-alone.
  virtual void hostMessage(std::u16string_view text) = 0;  // Parent.ShowMessage
  virtual void hostCode(std::int32_t code) = 0;            // Parent.ShowCode

  // Asks for a box with selector 0; in a scheduled run it is logged instead and answered 6.
  virtual int showBox(std::int16_t number, std::u16string_view substitution = {}) = 0;

  // False once an ending has begun: whoever just came back from a box or an outgoing call must stop.
  virtual bool alive() = 0;

  // The exchange and processor texts that the request now being finished was sent with.
  virtual std::u16string requestPbxName() = 0;
  virtual bool requestWideFaultFields() = 0;
  virtual const cListRequest& response() = 0;  // the copied answer
};

}  // namespace vordane::store
