// The background pictures: what the picture controls of the form hold, drawn behind the band of controls.
// The grid and the pane keep their own ground, so that text stays readable. One thread; owns the pictures.
#pragma once

#include <map>
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
  // Reads the control's Picture (a path) and place; an empty or unreadable one shows nothing.
  void update(const Control& control, const Control& form);
  // The ground of the window's client area at this size; draws it again only after a change.
  HBRUSH brush(SIZE client, int dpi, const Palette& palette);
  void changed() { drawnFor_ = {-1, -1}; }

 private:
  struct Released {
    void operator()(IPicture* picture) const;
  };
  struct Placed {
    std::unique_ptr<IPicture, Released> picture;
    RECT twips{};
    bool wholeWindow = false;  // follows the window's size
  };
  friend bool pictureReadable(std::u16string_view path);
  static std::unique_ptr<IPicture, Released> load(std::u16string_view path);
  void draw(HDC dc, const Placed& placed, SIZE client, int dpi) const;

  std::map<const Control*, Placed> pictures_;
  Bitmap bitmap_;
  Brush brush_;
  SIZE drawnFor_{-1, -1};
};

}  // namespace vordane::window::win32
