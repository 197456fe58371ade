// A drawing as pixels, with smooth edges: each shape is a distance, and a pixel is covered as far as it lies
// inside.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "widgets/picture.h"

namespace sim {
namespace {

constexpr double kStroke = 0.94;  // thickness of letters

// Not the library's: that one is too new on Linux for older systems.
double Length(double x, double y) { return std::sqrt(x * x + y * y); }

struct Canvas {
  int width, height;  // in pixels of the file
  std::vector<Colour> pixels;

  // Paints where `distance(x, y)` (drawing units, negative inside) says so, within a box in drawing units.
  template <class Distance>
  void Cover(double left, double top, double right, double bottom, const Shape& shape, Distance distance) {
    const auto pixel = [](double at, int most) {
      return static_cast<int>(std::clamp(at * kPictureScale, 0.0, static_cast<double>(most)));
    };
    const int fromX = pixel(left - 1, width), toX = pixel(right + 2, width);
    const int fromY = pixel(top - 1, height), toY = pixel(bottom + 2, height);
    for (int y = fromY; y < toY; ++y) {
      for (int x = fromX; x < toX; ++x) {
        const double away = distance((x + 0.5) / kPictureScale, (y + 0.5) / kPictureScale) * kPictureScale;
        const double cover = std::clamp(0.5 - away, 0.0, 1.0) * shape.opacity;
        if (cover > 0) Blend(x, y, shape.colour, cover);
      }
    }
  }

  void Blend(int x, int y, Colour colour, double share) {
    Colour& at = pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    Colour mixed = 0;
    for (int shift : {16, 8, 0}) {
      const double from = at >> shift & 0xFF, to = colour >> shift & 0xFF;
      mixed |= static_cast<Colour>(std::lround(from + (to - from) * share)) << shift;
    }
    at = mixed;
  }

  void Line(double x1, double y1, double x2, double y2, double thickness, const Shape& shape) {
    const double dx = x2 - x1, dy = y2 - y1, square = dx * dx + dy * dy, half = thickness / 2;
    Cover(std::min(x1, x2) - half, std::min(y1, y2) - half, std::max(x1, x2) + half, std::max(y1, y2) + half,
          shape, [&](double x, double y) {
            const double along =
                square > 0 ? std::clamp(((x - x1) * dx + (y - y1) * dy) / square, 0.0, 1.0) : 0.0;
            return Length(x - x1 - along * dx, y - y1 - along * dy) - half;
          });
  }

  void Rectangle(const Shape& s) {
    const double halfX = s.width / 2, halfY = s.height / 2, middleX = s.x + halfX, middleY = s.y + halfY;
    const double round = std::min({s.round, halfX, halfY});
    Cover(s.x, s.y, s.x + s.width, s.y + s.height, s, [&](double x, double y) {
      const double outX = std::abs(x - middleX) - halfX + round, outY = std::abs(y - middleY) - halfY + round;
      const double edge =
          Length(std::max(outX, 0.0), std::max(outY, 0.0)) + std::min(std::max(outX, outY), 0.0) - round;
      return s.kind == Shape::Frame ? std::abs(edge + 0.5) - 0.5 : edge;
    });
  }

  // The font's dots, joined by strokes: to the next one beside and below, and aslant where no other way leads.
  void Letter(double left, double top, char character, const Shape& shape) {
    const uint8_t* columns = FontColumns(character);
    const auto dot = [&](int column, int row) {
      return column >= 0 && column < 5 && row >= 0 && row < 8 && (columns[column] >> row & 1);
    };
    for (int column = 0; column < 5; ++column) {
      for (int row = 0; row < 8; ++row) {
        if (!dot(column, row)) continue;
        const double x = left + column + 0.5, y = top + row + 0.5;
        bool joined = dot(column - 1, row) || dot(column, row - 1);
        for (const auto& [right, down] :
             {std::pair(1, 0), std::pair(0, 1), std::pair(1, 1), std::pair(-1, 1)}) {
          if (!dot(column + right, row + down)) continue;
          if (right && down && (dot(column + right, row) || dot(column, row + down))) continue;
          Line(x, y, x + right, y + down, kStroke, shape);
          joined = true;
        }
        joined |= dot(column - 1, row - 1) || dot(column + 1, row - 1);
        if (!joined) Line(x, y, x, y, kStroke * 1.3, shape);
      }
    }
  }

  void Draw(const Shape& s) {
    switch (s.kind) {
      case Shape::Fill:
      case Shape::Frame:
        return Rectangle(s);
      case Shape::Line:
        return Line(s.x, s.y, s.x + s.width, s.y + s.height, s.round, s);
      case Shape::Text:
        for (size_t i = 0; i < s.text.size(); ++i)
          Letter(s.x + kLetterWidth * static_cast<double>(i), s.y + 1, s.text[i], s);
        return;
      case Shape::Open:
      case Shape::Close:
        return;
    }
  }
};

}  // namespace

std::vector<Colour> Pixels(const Drawing& drawing) {
  Canvas canvas = {drawing.width * kPictureScale, drawing.height * kPictureScale, {}};
  canvas.pixels.assign(static_cast<size_t>(canvas.width) * static_cast<size_t>(canvas.height),
                       drawing.background);
  for (const Shape& shape : drawing.shapes) canvas.Draw(shape);
  return std::move(canvas.pixels);
}

}  // namespace sim
