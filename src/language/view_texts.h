// The words of the drawn window that belong to no control, from the message texts.
#pragma once

#include "platform/view.h"
#include "settings/shared_state.h"

namespace vordane {

// The message number of a word of the drawing.
std::size_t messageNumber(window::ViewText which);

// Reads the messages that the window shows anew for each word, so that it may be made before they are loaded;
// `state` outlives it.
class MessageTexts final : public window::ViewTexts {
 public:
  explicit MessageTexts(const SharedState& state) : state_(state) {}
  std::u16string text(window::ViewText which) override { return shownText(state_, messageNumber(which)); }

 private:
  const SharedState& state_;
};

}  // namespace vordane
