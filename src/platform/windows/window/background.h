// The background pictures: what the picture controls of the form hold, drawn behind the band of controls and
// around the pane's text, which stands on the picture's middle colour. All of it is washed with the ground's
// own colour and the grid keeps its ground, so that text stays readable. One thread; owns the pictures.
#pragma once

#include <memory>
#include <string>

#include "platform/window.h"
#include "platform/windows/window/handles.h"
#include "platform/windows/window/theme.h"

struct IPicture;

namespace vordane::window::win32 {

// Whether the file holds a picture that can be shown (BMP, GIF, JPEG, ICO, WMF, EMF).
bool pictureReadable(std::u16string_view path);

class Background {
 public:
  // Reads the control's Picture (a path); an empty, unreadable or hidden one shows nothing.
  void update(const Control& control);
  // The ground of the client area, `header` being the band of controls in it; drawn again only after a
  // change. A picture is stretched to the panel it stands behind, which follows the window's size.
  HBRUSH brush(SIZE client, const RECT& header, const Palette& palette);
  void changed() { drawnFor_ = {-1, -1}; }
  // What the pane's text stands on, and the pane around it.
  COLORREF paneColour(const Palette& palette) const;
  void drawPane(HDC dc, const RECT& pane, const Palette& palette) const;

 private:
  struct Released {
    void operator()(IPicture* picture) const;
  };
  using Picture = std::unique_ptr<IPicture, Released>;
  friend bool pictureReadable(std::u16string_view path);
  static Picture load(std::u16string_view path);

  Picture* pictureOf(const Control& control);

  Picture window_, header_, detail_;
  Bitmap bitmap_;
  Brush brush_;
  SIZE drawnFor_{-1, -1};
};

}  // namespace vordane::window::win32
