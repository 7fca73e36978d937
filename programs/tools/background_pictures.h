// The background pictures we ship, drawn when the suite's files are made.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vordane::tools {

struct Colour {
  unsigned char red, green, blue;
};

// A quiet run from one light colour to another, top to bottom, so that dark text stays readable on it.
struct BackgroundPicture {
  std::u16string_view file;
  Colour top, bottom;
};

std::span<const BackgroundPicture> backgroundPictures();

// The bytes of the picture as a BMP file.
std::string drawPicture(const BackgroundPicture& picture);

}  // namespace vordane::tools
