#include "watermark.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace kwa {
namespace {

constexpr int kWidth = 51;
constexpr int kHeight = 305;
constexpr int kRowBytes = (kWidth * 3 + 3) / 4 * 4;
constexpr std::size_t kHeaderBytes = 14 + 40;
constexpr std::size_t kFileBytes = kHeaderBytes + static_cast<std::size_t>(kRowBytes) * kHeight;

struct Colour {
  double red, green, blue;  // 0 to 1
};

struct Point {
  double x, y;  // pixels from the upper left corner
};

struct Stroke {
  Point from, to;
};

Colour Mix(const Colour& a, const Colour& b, double share) {
  return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share, a.blue + (b.blue - a.blue) * share};
}

double Clamped(double value) {
  return std::min(1.0, std::max(0.0, value));
}

double DistanceToStroke(Point p, const Stroke& s) {
  const double dx = s.to.x - s.from.x;
  const double dy = s.to.y - s.from.y;
  const double length2 = dx * dx + dy * dy;
  const double along = length2 > 0 ? Clamped(((p.x - s.from.x) * dx + (p.y - s.from.y) * dy) / length2) : 0;
  return std::hypot(p.x - s.from.x - along * dx, p.y - s.from.y - along * dy);
}

// How much of the pixel at p a round-ended stroke of that width covers.
double Coverage(Point p, const Stroke& s, double width) {
  return Clamped(width / 2 + 0.5 - DistanceToStroke(p, s));
}

constexpr Colour kWhite = {1, 1, 1};
constexpr Colour kCyan = {0.36, 0.86, 1.0};
constexpr Colour kAzure = {0.13, 0.47, 0.93};

// Deep blue, lightest in the middle. Both ends have one colour: the wizard's page is 9 pixels taller than the picture,
// and the platform continues it in the colour of its first pixel.
Colour Background(Point p) {
  const double glow = std::exp(-std::pow((p.x - 25.5) / 30, 2) - std::pow((p.y - 152.5) / 72, 2));
  return Mix({0.02, 0.07, 0.21}, {0.05, 0.26, 0.58}, 0.75 * glow);
}

// The letters K, W and A, 11 pixels wide and 13 high each.
constexpr Stroke kLetters[] = {
    {{6.5, 20}, {6.5, 33}},   {{14, 20}, {7.5, 26.8}},      {{9.4, 25.2}, {14.3, 33}},  // K
    {{18, 20}, {21.7, 33}},   {{21.7, 33}, {25.5, 22}},                                 // W
    {{25.5, 22}, {29.3, 33}}, {{29.3, 33}, {33, 20}},       {{35.5, 33}, {40.5, 20}},
    {{40.5, 20}, {45.5, 33}}, {{37.4, 28.9}, {43.6, 28.9}},  // A
};

// Half the length of the waveform's bar at height y: three swells under a long fade in and out.
double Amplitude(double y) {
  const double along = (y - 56) / (290 - 56);
  const double swell = 0.55 + 0.45 * std::sin(along * 17.5 - 0.9);
  const double ripple = 0.70 + 0.30 * std::sin(along * 93.0);
  return 1.0 + 19.0 * std::pow(std::sin(along * 3.14159265), 0.8) * swell * ripple;
}

Colour Picture(Point p) {
  Colour colour = Background(p);
  // A waveform that runs downwards, one rounded bar every 5 pixels.
  const double y = 56 + 5 * std::round((p.y - 56) / 5);
  if (y >= 56 && y <= 290) {
    const double half = Amplitude(y);
    const double glow = std::exp(-std::max(0.0, DistanceToStroke(p, {{25.5 - half, y}, {25.5 + half, y}}) - 1) / 2.2);
    const Colour bar = Mix(kCyan, kAzure, Clamped(std::abs(p.x - 25.5) / 21));
    colour = Mix(colour, bar, 0.12 * glow);
    colour = Mix(colour, bar, 0.95 * Coverage(p, {{25.5 - half, y}, {25.5 + half, y}}, 2.4));
  }
  for (const Stroke& stroke : kLetters) colour = Mix(colour, kWhite, Coverage(p, stroke, 2.0));
  return Mix(colour, kCyan, 0.9 * Coverage(p, {{6.5, 41}, {44.5, 41}}, 1.0));
}

std::string LittleEndian(std::size_t value, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

std::string BitmapHeader() {
  constexpr std::size_t kPlanes = 1;
  constexpr std::size_t kBitsPerPixel = 24;
  constexpr std::size_t kPixelsPerMetre = 3780;  // 96 an inch
  std::string header = "BM";
  for (const std::size_t word : {kFileBytes, std::size_t{0}, kHeaderBytes, kHeaderBytes - 14}) {
    header += LittleEndian(word, 4);
  }
  header +=
      LittleEndian(kWidth, 4) + LittleEndian(kHeight, 4) + LittleEndian(kPlanes, 2) + LittleEndian(kBitsPerPixel, 2);
  // Neither compressed nor with a palette.
  header += LittleEndian(0, 4) + LittleEndian(kFileBytes - kHeaderBytes, 4);
  return header + LittleEndian(kPixelsPerMetre, 4) + LittleEndian(kPixelsPerMetre, 4) + LittleEndian(0, 8);
}

char ToByte(double value) {
  return static_cast<char>(std::lround(255 * Clamped(value)));
}

}  // namespace

std::string MakeWatermark(std::size_t size) {
  if (size != kFileBytes) {
    throw std::runtime_error("the list of contents asks for " + std::to_string(size) + " bytes, this bitmap has " +
                             std::to_string(kFileBytes));
  }
  std::string bytes = BitmapHeader();
  for (int row = kHeight - 1; row >= 0; --row) {  // bitmaps stand on their heads
    for (int column = 0; column < kWidth; ++column) {
      const Colour colour = Picture({column + 0.5, row + 0.5});
      bytes += {ToByte(colour.blue), ToByte(colour.green), ToByte(colour.red)};
    }
    bytes.append(kRowBytes - 3 * kWidth, '\0');
  }
  return bytes;
}

}  // namespace kwa
