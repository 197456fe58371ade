// Pictures of the visible windows, for people who look at a run without a screen: the windows are turned into a
// list of plain shapes, which is written as PNG (with a built-in font) or SVG (which tells the widgets too).
//
//   picture.cpp      which part of the screen, which widgets in which order
//   looks.cpp        what a widget of each class looks like
//   canvas.cpp       shapes as pixels, with font.cpp's letters
//   png_writer.cpp, svg_writer.cpp   the files
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "widgets/widgets.h"

namespace sim {

// Red, green, blue in the lowest three bytes (0xRRGGBB).
using Colour = uint32_t;

// Coordinates are pixels of the picture, y downwards, origin at the upper left.
struct Shape {
  enum Kind : uint8_t { Fill, Frame, Line, Text, Open, Close } kind = Fill;
  double x = 0, y = 0;           // upper left corner, or first point of a line
  double width = 0, height = 0;  // of a rectangle; second point minus first point of a line
  double round = 0;              // radius of a rectangle's corners, thickness of a line (its ends are round)
  Colour colour = 0;
  double opacity = 1;
  std::string text = {};  // letters in cells of kLetterWidth by kLetterHeight, printable ASCII
  // Between Open and Close stand the shapes of one widget, then the widgets in it. Names and values.
  std::vector<std::pair<const char*, std::string>> facts = {};
};

struct Drawing {
  int left = 0, top = 0;  // screen coordinates of the upper left corner
  int width = 0, height = 0;
  Colour background = 0;
  std::vector<Shape> shapes;
};

// Draws windows with screen coordinates into a drawing whose corner is set.
struct Pen {
  Drawing* drawing;
  bool dark = false;  // inside a translucent window
  size_t group = 0;   // the shape that opened the present widget's group

  void Fill(const Rect& r, Colour colour, double round = 0, double opacity = 1);
  void Frame(const Rect& r, Colour colour, double round = 0);  // within the rectangle
  void Line(double x1, double y1, double x2, double y2, Colour colour, double thickness);
  // Text that begins at x, in the middle of the rectangle's height; its place becomes a fact of the group. What
  // is too long goes on beyond the rectangle, as on the screen.
  void Text(const std::string& text, int x, const Rect& r, Colour colour);
  void Centred(const std::string& text, const Rect& r, Colour colour);
};

// "left top right bottom".
std::string BoxText(const Rect& r);
// What the class draws for this widget, without what lies in it.
void DrawWidget(const Widget* widget, Pen* pen);

// The part of the screen that the windows (front one first in the list) take, with a margin, cut at the
// screen's edges. Widgets are asked whether they draw themselves, as in every frame.
Drawing DrawScreen(const std::vector<Widget*>& windows);
// Into a file that ends in .png or .svg. Returns false with an error text when the ending is another one or the
// file cannot be written.
bool WritePicture(const Drawing& drawing, const std::string& file, std::string* error);

// The whole content of a PNG file, kPictureScale pixels for each of the drawing's.
std::string PngFile(const Drawing& drawing);
// Groups of class "widget", data-... attributes in screen coordinates, see GroupOf in picture.cpp.
std::string SvgFile(const Drawing& drawing);

constexpr int kPictureScale = 2;
// Rows of pixels from the top, kPictureScale for each of the drawing's.
std::vector<Colour> Pixels(const Drawing& drawing);

// Five columns of a character, lowest bit on top; characters that the font lacks look like '?'.
const uint8_t* FontColumns(char character);

}  // namespace sim
