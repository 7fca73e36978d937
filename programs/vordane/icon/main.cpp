// Draws the program's icon: a panel with an alarm lamp lit in red, one in amber and a quiet line of faults
// below. Prints an .ico file with five sizes: vordane-icon > vordane.ico
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Colour {
  double red, green, blue;
};
constexpr Colour panel{0.16, 0.22, 0.30};
constexpr Colour major{0.90, 0.22, 0.18};
constexpr Colour minor{0.97, 0.70, 0.16};
constexpr Colour line{0.62, 0.70, 0.78};

struct Pixel {
  Colour colour{0, 0, 0};
  double cover = 0;  // 0 to 1
};

// How much of the pixel lies inside a shape whose signed distance from it is known, in pixels.
double inside(double distance) {
  return std::fmin(1, std::fmax(0, 0.5 - distance));
}

double roundedBox(double x, double y, double left, double top, double right, double bottom, double radius) {
  const double dx = std::fabs(x - (left + right) / 2) - (right - left) / 2 + radius;
  const double dy = std::fabs(y - (top + bottom) / 2) - (bottom - top) / 2 + radius;
  return std::hypot(std::fmax(dx, 0), std::fmax(dy, 0)) + std::fmin(std::fmax(dx, dy), 0) - radius;
}

void blend(Pixel& pixel, const Colour& colour, double cover) {
  const double rest = 1 - cover;
  pixel.colour = {colour.red * cover + pixel.colour.red * rest,
                  colour.green * cover + pixel.colour.green * rest,
                  colour.blue * cover + pixel.colour.blue * rest};
  pixel.cover = cover + pixel.cover * rest;
}

// In units of the icon's size.
Pixel draw(double x, double y, double size) {
  const auto box = [&](double left, double top, double right, double bottom, double radius) {
    return inside(roundedBox(x, y, left, top, right, bottom, radius) * size);
  };
  Pixel pixel;
  blend(pixel, panel, box(0.03, 0.06, 0.97, 0.94, 0.14));
  blend(pixel, major, inside((std::hypot(x - 0.31, y - 0.35) - 0.15) * size));
  blend(pixel, minor, inside((std::hypot(x - 0.69, y - 0.35) - 0.15) * size));
  blend(pixel, line, box(0.16, 0.62, 0.84, 0.69, 0.03));
  blend(pixel, line, box(0.16, 0.76, 0.62, 0.83, 0.03));
  return pixel;
}

void put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i) & 0xFF);
}

char part(double value) {
  return static_cast<char>(std::lround(value * 255));
}

// A 32-bit bitmap, its lines from below, and an empty mask: the cover says what shows.
std::string image(int size) {
  std::string out;
  put(out, 40, 4);
  put(out, static_cast<std::uint32_t>(size), 4);
  put(out, static_cast<std::uint32_t>(size * 2), 4);
  put(out, 1, 2);
  put(out, 32, 2);
  for (int i = 0; i < 6; ++i) put(out, 0, 4);
  for (int y = size - 1; y >= 0; --y)
    for (int x = 0; x < size; ++x) {
      const Pixel pixel = draw((x + 0.5) / size, (y + 0.5) / size, size);
      const double scale = pixel.cover > 0 ? 1 / pixel.cover : 0;
      out += {part(pixel.colour.blue * scale), part(pixel.colour.green * scale),
              part(pixel.colour.red * scale), part(pixel.cover)};
    }
  const int maskLine = (size + 31) / 32 * 4;
  return out + std::string(static_cast<std::size_t>(maskLine * size), '\0');
}

}  // namespace

int main() {
  const std::vector<int> sizes{16, 24, 32, 48, 64};
  std::string directory;
  std::string images;
  put(directory, 0, 2);
  put(directory, 1, 2);
  put(directory, static_cast<std::uint32_t>(sizes.size()), 2);
  for (const int size : sizes) {
    const std::string bitmap = image(size);
    for (int i = 0; i < 2; ++i) put(directory, static_cast<std::uint32_t>(size), 1);
    put(directory, 0, 2);
    put(directory, 1, 2);
    put(directory, 32, 2);
    put(directory, static_cast<std::uint32_t>(bitmap.size()), 4);
    put(directory, static_cast<std::uint32_t>(6 + 16 * sizes.size() + images.size()), 4);
    images += bitmap;
  }
  const std::string file = directory + images;
  return std::fwrite(file.data(), 1, file.size(), stdout) == file.size() ? 0 : 1;
}
