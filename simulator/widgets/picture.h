// Pictures of the visible windows, for people who look at a run without a screen: the windows are turned
// into a list of plain shapes, which is written as PNG (with a built-in font, no library needed) or SVG.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "widgets/widgets.h"

namespace sim {

// Red, green, blue in the lowest three bytes (0xRRGGBB).
using Colour = uint32_t;

// Coordinates are pixels of the picture, y downwards, origin at the upper left.
struct Shape {
  enum Kind : uint8_t { Fill, Frame, Line, Text } kind = Fill;
  int x = 0, y = 0;           // upper left corner, or first point of a line
  int width = 0, height = 0;  // of a rectangle; second point minus first point of a line
  Colour colour = 0;
  std::string text;  // drawn in cells of kCharacterWidth by kTextHeight, printable ASCII
};
constexpr int kTextHeight = 8;

struct Drawing {
  int width = 0, height = 0;
  Colour background = 0;
  std::vector<Shape> shapes;
};

// Draws the windows (front one first in the list) into a file that ends in .png or .svg. Returns false with an
// error text when the ending is another one or the file cannot be written.
bool DrawPicture(const std::vector<Widget*>& windows, const std::string& file, std::string* error);

// The whole content of a PNG file, two pixels for each of the drawing's.
std::string PngFile(const Drawing& drawing);
std::string SvgFile(const Drawing& drawing);

// Five columns of a character, lowest bit on top; characters that the font lacks look like '?'.
const uint8_t* FontColumns(char character);

}  // namespace sim
