#include "background_pictures.h"

#include <cstdint>

namespace vordane::tools {
namespace {

constexpr int width = 16;  // stretched over the window, so only the height carries the run
constexpr int height = 256;
constexpr int headerBytes = 54;

constexpr BackgroundPicture pictures[] = {
    {u"VORDBACK.BMP", {245, 246, 248}, {232, 234, 238}}, {u"VORDHEAD.BMP", {250, 251, 252}, {236, 239, 243}},
    {u"VORDPANE.BMP", {255, 255, 255}, {246, 247, 249}}, {u"MIST.BMP", {240, 246, 250}, {222, 234, 243}},
    {u"MISTHEAD.BMP", {247, 251, 253}, {226, 238, 246}}, {u"MISTPANE.BMP", {253, 254, 255}, {239, 246, 250}},
    {u"SAGE.BMP", {243, 248, 242}, {227, 238, 226}},     {u"SAGEHEAD.BMP", {249, 252, 248}, {231, 241, 230}},
    {u"SAGEPANE.BMP", {254, 255, 254}, {242, 248, 241}}, {u"SAND.BMP", {250, 247, 240}, {241, 234, 220}},
    {u"SANDHEAD.BMP", {253, 251, 246}, {243, 237, 225}}, {u"SANDPANE.BMP", {255, 254, 252}, {249, 246, 239}},
};

void appendNumber(std::string& out, std::uint32_t value, int bytes) {
  for (int byte = 0; byte < bytes; ++byte) out += static_cast<char>((value >> (8 * byte)) & 0xFFU);
}

std::string header() {
  constexpr std::uint32_t pixelBytes = width * height * 3;  // a row is a multiple of four bytes as it is
  std::string out = "BM";
  appendNumber(out, headerBytes + pixelBytes, 4);
  appendNumber(out, 0, 4);
  appendNumber(out, headerBytes, 4);
  appendNumber(out, 40, 4);
  appendNumber(out, width, 4);
  appendNumber(out, height, 4);
  appendNumber(out, 1, 2);
  appendNumber(out, 24, 2);
  appendNumber(out, 0, 4);
  appendNumber(out, pixelBytes, 4);
  for (int field = 0; field < 4; ++field) appendNumber(out, 0, 4);
  return out;
}

char between(unsigned char top, unsigned char bottom, int row) {
  return static_cast<char>(top + (bottom - top) * row / (height - 1));
}

}  // namespace

std::span<const BackgroundPicture> backgroundPictures() {
  return pictures;
}

std::string drawPicture(const BackgroundPicture& picture) {
  std::string out = header();
  for (int row = height - 1; row >= 0; --row)  // a BMP begins with its lowest row
    for (int column = 0; column < width; ++column) {
      out += between(picture.top.blue, picture.bottom.blue, row);
      out += between(picture.top.green, picture.bottom.green, row);
      out += between(picture.top.red, picture.bottom.red, row);
    }
  return out;
}

}  // namespace vordane::tools
