#include "platform/windows/window/background.h"

#include <windows.h>

#include <objbase.h>
#include <ocidl.h>
#include <olectl.h>
#include <shlwapi.h>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/parts_paint.h"

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

std::int32_t lengthOf(const Control& control, std::u16string_view property) {
  try {
    return control.has(property) ? control.number(property) : 0;
  } catch (const std::exception&) {
    return 0;
  }
}

}  // namespace

void Background::Released::operator()(IPicture* picture) const {
  picture->Release();
}

std::unique_ptr<IPicture, Background::Released> Background::load(std::u16string_view path) {
  IStream* stream = nullptr;
  const std::u16string name(path);
  if (FAILED(SHCreateStreamOnFileW(wide(name), STGM_READ | STGM_SHARE_DENY_WRITE, &stream))) return nullptr;
  void* picture = nullptr;
  const HRESULT result = OleLoadPicture(stream, 0, FALSE, IID_IPicture, &picture);
  stream->Release();
  return std::unique_ptr<IPicture, Released>(SUCCEEDED(result) ? static_cast<IPicture*>(picture) : nullptr);
}

bool pictureReadable(std::u16string_view path) {
  return Background::load(path) != nullptr;
}

void Background::update(const Control& control, const Control& form) {
  Placed placed;
  const std::u16string path = control.has(u"Picture") ? control.text(u"Picture") : std::u16string{};
  if (!path.empty()) placed.picture = load(path);
  placed.twips = {lengthOf(control, u"Left"), lengthOf(control, u"Top"),
                  lengthOf(control, u"Left") + lengthOf(control, u"Width"),
                  lengthOf(control, u"Top") + lengthOf(control, u"Height")};
  placed.wholeWindow = lengthOf(control, u"Width") >= lengthOf(form, u"Width") &&
                       lengthOf(control, u"Height") >= lengthOf(form, u"Height");
  pictures_[&control] = std::move(placed);
  changed();
}

void Background::draw(HDC dc, const Placed& placed, SIZE client, int dpi) const {
  RECT place{0, 0, client.cx, client.cy};
  if (!placed.wholeWindow)
    place = {toPixels(placed.twips.left, dpi), toPixels(placed.twips.top, dpi),
             toPixels(placed.twips.right, dpi), toPixels(placed.twips.bottom, dpi)};
  OLE_XSIZE_HIMETRIC pictureWidth = 0;
  OLE_YSIZE_HIMETRIC pictureHeight = 0;
  placed.picture->get_Width(&pictureWidth);
  placed.picture->get_Height(&pictureHeight);
  placed.picture->Render(dc, place.left, place.top, width(place), height(place), 0, pictureHeight,
                         pictureWidth, -pictureHeight, nullptr);
}

HBRUSH Background::brush(SIZE client, int dpi, const Palette& palette) {
  if (client.cx == drawnFor_.cx && client.cy == drawnFor_.cy && brush_) return brush_.get();
  drawnFor_ = client;
  bool any = false;
  for (const auto& [control, placed] : pictures_) any = any || placed.picture;
  if (!any || palette.systemOnly || client.cx <= 0 || client.cy <= 0) {
    brush_ = Brush(CreateSolidBrush(palette.panel));
    return brush_.get();
  }
  const WindowDc screen(nullptr);
  const MemoryDc dc(CreateCompatibleDC(screen.get()));
  bitmap_ = Bitmap(CreateCompatibleBitmap(screen.get(), client.cx, client.cy));
  {
    const Selected with(dc.get(), bitmap_.get());
    fillRect(dc.get(), {0, 0, client.cx, client.cy}, palette.panel);
    for (const auto& [control, placed] : pictures_)
      if (placed.picture) draw(dc.get(), placed, client, dpi);
    washOver(dc.get(), client, palette.panel);
  }
  brush_ = Brush(CreatePatternBrush(bitmap_.get()));
  return brush_.get();
}

}  // namespace vordane::window::win32
