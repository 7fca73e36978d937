#include "platform/windows/window/layout.h"

#include <algorithm>

#include "platform/windows/window/geometry.h"

namespace vordane::window::win32 {
namespace {

// Lengths at 96 dots an inch.
constexpr int margin = 12, gap = 8, smallGap = 4, buttonPadding = 28, smallestButton = 84;
constexpr int dropDownWidth = 190, receivedWidth = 168, lampPadding = 36, framePadding = 10;
constexpr int splitterHeight = 5, smallestGrid = 96, smallestPane = 48, smallestWidth = 420;

// Places one row after another from the top down.
class Stacker {
 public:
  explicit Stacker(const LayoutInput& input) : in_(input) {}

  Layout run() {
    placeHeader();
    placeButtons();
    placeBar(out_.lookUp, in_.lookUpHeight);
    placeBar(out_.filter, in_.filterHeight);
    out_.panel = {0, 0, in_.width, y_};
    placeBar(out_.notice, in_.noticeHeight);
    placeBar(out_.flood, in_.floodHeight);
    placeBar(out_.newer, in_.newerHeight);
    placeGridAndPane();
    return std::move(out_);
  }

 private:
  int px(int length) const { return scaled(length, in_.dpi); }
  RECT box(int x, int y, int w, int h) const { return {x, y, x + w, y + h}; }

  int frameWidth() const {
    const int lamps = in_.lamps[0] + in_.lamps[1] + 2 * px(lampPadding) + px(gap);
    return std::max(lamps, in_.frameCaption + px(gap) * 2) + 2 * px(framePadding);
  }
  int lampHeight() const { return std::max(in_.textHeight + px(10), px(28)); }
  int frameHeight() const { return in_.textHeight + lampHeight() + px(framePadding) + px(2); }

  void placeHeader() {
    const int labelY = px(8);
    const int boxY = labelY + in_.textHeight + px(smallGap);
    const int dropWidth = std::max(px(dropDownWidth), in_.exchangeLabel);
    const int textX = px(margin) + dropWidth + px(margin);
    const int textWidth = std::max(px(receivedWidth), in_.receivedLabel);
    out_.exchangeLabel = box(px(margin), labelY, dropWidth, in_.textHeight);
    out_.dropDown = box(px(margin), boxY, dropWidth, in_.dropDownHeight);
    out_.receivedLabel = box(textX, labelY, textWidth, in_.textHeight);
    out_.received = box(textX, boxY, textWidth, in_.dropDownHeight);
    const int fieldsEnd = textX + textWidth;
    const bool beside = fieldsEnd + px(margin) * 2 + frameWidth() <= in_.width;
    const int frameX = beside ? in_.width - px(margin) - frameWidth() : px(margin);
    const int frameY = beside ? px(smallGap) : boxY + in_.dropDownHeight + px(gap);
    placeLamps(frameX, frameY);
    y_ = std::max<int>(boxY + in_.dropDownHeight, static_cast<int>(out_.frame.bottom)) + px(gap);
  }

  void placeLamps(int x, int y) {
    out_.frame = box(x, y, frameWidth(), frameHeight());
    int lampX = x + px(framePadding);
    for (std::size_t n = 0; n < 2; ++n) {
      const int w = in_.lamps[n] + px(lampPadding);
      out_.lamps[n] = box(lampX, y + in_.textHeight + px(2), w, lampHeight());
      lampX += w + px(gap);
    }
  }

  int buttonWidth(std::size_t n) const {
    return std::max(px(smallestButton), in_.buttons[n] + px(buttonPadding));
  }

  void placeButtons() {
    const int h = std::max(in_.textHeight + px(12), px(29));
    int x = px(margin);
    for (std::size_t n = 0; n < in_.buttons.size(); ++n) {
      const int w = buttonWidth(n);
      if (x > px(margin) && x + w > in_.width - px(margin)) {
        x = px(margin);
        y_ += h + px(gap);
      }
      const bool last = n + 1 == in_.buttons.size();
      out_.buttons.push_back(box(last ? std::max(x, in_.width - px(margin) - w) : x, y_, w, h));
      x += w + px(gap);
    }
    if (!in_.buttons.empty()) y_ += h + px(gap) + px(2);
  }

  void placeBar(RECT& bar, int barHeight) {
    bar = box(0, y_, in_.width, barHeight);
    y_ += barHeight;
  }

  void placeGridAndPane() {
    const int bottom = std::max(y_, in_.height - in_.statusHeight);
    const int room = bottom - y_ - px(splitterHeight);
    const int least = px(smallestPane) + in_.noteHeight, most = std::max(least, room - px(smallestGrid));
    const int paneHeight = std::clamp(in_.paneHeight, least, most);
    const int paneY = std::max(y_, bottom - paneHeight);
    out_.status = box(0, bottom, in_.width, in_.statusHeight);
    out_.pane = box(0, paneY, in_.width, std::max(0, bottom - paneY));
    out_.note =
        box(0, std::max(paneY, bottom - in_.noteHeight), in_.width, std::min(in_.noteHeight, bottom - paneY));
    out_.splitter = box(0, paneY - px(splitterHeight), in_.width, px(splitterHeight));
    out_.grid = box(0, y_, in_.width, std::max(0, static_cast<int>(out_.splitter.top) - y_));
  }

  const LayoutInput& in_;
  Layout out_;
  int y_ = 0;
};

}  // namespace

Layout arrange(const LayoutInput& input) {
  return Stacker(input).run();
}

SIZE smallestClient(const LayoutInput& input) {
  LayoutInput narrow = input;
  const Layout wide = arrange(input);
  narrow.width =
      std::max<int>({scaled(smallestWidth, input.dpi), width(wide.frame) + 2 * scaled(margin, input.dpi),
                     static_cast<int>(wide.received.right) + scaled(margin, input.dpi)});
  const Layout layout = arrange(narrow);
  return {narrow.width, layout.grid.top + scaled(smallestGrid + splitterHeight + smallestPane, input.dpi) +
                            input.noteHeight + input.statusHeight};
}

int paneHeightFor(const LayoutInput& input, int y) {
  LayoutInput wanted = input;
  wanted.paneHeight = input.height - input.statusHeight - y - scaled(splitterHeight, input.dpi);
  return height(arrange(wanted).pane);
}

}  // namespace vordane::window::win32
