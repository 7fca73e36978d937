#include "platform/windows/window/background.h"

#include <windows.h>

#include <objbase.h>
#include <ocidl.h>
#include <olectl.h>
#include <shlwapi.h>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/parts_paint.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

// How much of the panel's own colour lies over a picture: captions stand on it.
constexpr BYTE wash = 150;

void washOver(HDC dc, SIZE size, COLORREF colour) {
  const MemoryDc point(CreateCompatibleDC(dc));
  const Bitmap dot(CreateCompatibleBitmap(dc, 1, 1));
  const Selected with(point.get(), dot.get());
  SetPixel(point.get(), 0, 0, colour);
  const BLENDFUNCTION blend{AC_SRC_OVER, 0, wash, 0};
  GdiAlphaBlend(dc, 0, 0, size.cx, size.cy, point.get(), 0, 0, 1, 1, blend);
}

constexpr std::u16string_view headerControl = u"imgHeader", windowControl = u"imgBackground";

void drawPicture(HDC dc, IPicture& picture, const RECT& place) {
  OLE_XSIZE_HIMETRIC pictureWidth = 0;
  OLE_YSIZE_HIMETRIC pictureHeight = 0;
  picture.get_Width(&pictureWidth);
  picture.get_Height(&pictureHeight);
  picture.Render(dc, place.left, place.top, width(place), height(place), 0, pictureHeight, pictureWidth,
                 -pictureHeight, nullptr);
}

}  // namespace

void Background::Released::operator()(IPicture* picture) const {
  picture->Release();
}

Background::Picture Background::load(std::u16string_view path) {
  IStream* stream = nullptr;
  const std::u16string name(path);
  if (FAILED(SHCreateStreamOnFileW(wide(name), STGM_READ | STGM_SHARE_DENY_WRITE, &stream))) return nullptr;
  void* picture = nullptr;
  const HRESULT result = OleLoadPicture(stream, 0, FALSE, IID_IPicture, &picture);
  stream->Release();
  return Picture(SUCCEEDED(result) ? static_cast<IPicture*>(picture) : nullptr);
}

bool pictureReadable(std::u16string_view path) {
  return Background::load(path) != nullptr;
}

void Background::update(const Control& control) {
  const bool header = text::equalIgnoringCase(control.name(), headerControl);
  if (!header && !text::equalIgnoringCase(control.name(), windowControl)) return;
  const std::u16string path = control.has(u"Picture") ? control.text(u"Picture") : std::u16string{};
  (header ? header_ : window_) = path.empty() ? nullptr : load(path);
  changed();
}

HBRUSH Background::brush(SIZE client, const RECT& header, const Palette& palette) {
  if (client.cx == drawnFor_.cx && client.cy == drawnFor_.cy && brush_) return brush_.get();
  drawnFor_ = client;
  if ((!window_ && !header_) || palette.systemOnly || client.cx <= 0 || client.cy <= 0) {
    brush_ = Brush(CreateSolidBrush(palette.panel));
    return brush_.get();
  }
  const WindowDc screen(nullptr);
  const MemoryDc dc(CreateCompatibleDC(screen.get()));
  bitmap_ = Bitmap(CreateCompatibleBitmap(screen.get(), client.cx, client.cy));
  {
    const Selected with(dc.get(), bitmap_.get());
    const RECT whole{0, 0, client.cx, client.cy};
    fillRect(dc.get(), whole, palette.panel);
    if (window_) drawPicture(dc.get(), *window_, whole);
    if (header_) drawPicture(dc.get(), *header_, header);
    washOver(dc.get(), client, palette.panel);
  }
  brush_ = Brush(CreatePatternBrush(bitmap_.get()));
  return brush_.get();
}

}  // namespace vordane::window::win32
