// A drawing as pixels, and the pixels as PNG file: stored (uncompressed) blocks need no library.
#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "widgets/picture.h"

namespace sim {
namespace {

constexpr int kScale = 2;  // the font's pixels are small

struct Canvas {
  int width, height;  // in drawing units
  std::vector<Colour> pixels;

  // Drawing units, cut at the edges.
  void Fill(int x, int y, int w, int h, Colour colour) {
    const int fromX = std::clamp(x, 0, width) * kScale, toX = std::clamp(x + w, 0, width) * kScale;
    const int fromY = std::clamp(y, 0, height) * kScale, toY = std::clamp(y + h, 0, height) * kScale;
    for (int row = fromY; row < toY; ++row) {
      const auto line = pixels.begin() + static_cast<ptrdiff_t>(row) * width * kScale;
      std::fill(line + fromX, line + std::max(fromX, toX), colour);
    }
  }

  void Line(const Shape& shape) {
    const int steps = std::max(1, std::max(std::abs(shape.width), std::abs(shape.height)));
    for (int i = 0; i <= steps; ++i)
      Fill(shape.x + shape.width * i / steps, shape.y + shape.height * i / steps, 1, 1, shape.colour);
  }

  void Text(const Shape& shape) {
    int x = shape.x;
    for (char character : shape.text) {
      const uint8_t* columns = FontColumns(character);
      for (int column = 0; column < 5; ++column) {
        for (int row = 0; row < 8; ++row) {
          if (columns[column] >> row & 1) Fill(x + column, shape.y + row, 1, 1, shape.colour);
        }
      }
      x += kCharacterWidth;
    }
  }

  void Draw(const Shape& s) {
    switch (s.kind) {
      case Shape::Fill:
        return Fill(s.x, s.y, s.width, s.height, s.colour);
      case Shape::Frame:
        Fill(s.x, s.y, s.width, 1, s.colour);
        Fill(s.x, s.y + s.height - 1, s.width, 1, s.colour);
        Fill(s.x, s.y, 1, s.height, s.colour);
        return Fill(s.x + s.width - 1, s.y, 1, s.height, s.colour);
      case Shape::Line:
        return Line(s);
      case Shape::Text:
        return Text(s);
    }
  }
};

void PutBig32(std::string* out, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) *out += static_cast<char>(value >> shift & 0xFF);
}

uint32_t Crc(const std::string& data, size_t from) {
  uint32_t crc = 0xFFFFFFFF;
  for (size_t i = from; i < data.size(); ++i) {
    crc ^= static_cast<uint8_t>(data[i]);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
  }
  return ~crc;
}

void PutChunk(std::string* out, const char* type, const std::string& data) {
  PutBig32(out, static_cast<uint32_t>(data.size()));
  const size_t from = out->size();  // the sum covers type and data
  *out += type;
  *out += data;
  PutBig32(out, Crc(*out, from));
}

// A zlib stream of stored blocks.
std::string Stored(const std::string& data) {
  std::string out = {0x78, 0x01};
  uint32_t a = 1, b = 0;  // Adler-32
  for (char byte : data) {
    a = (a + static_cast<uint8_t>(byte)) % 65521;
    b = (b + a) % 65521;
  }
  size_t at = 0;
  do {
    const size_t size = std::min<size_t>(data.size() - at, 65535);
    out += static_cast<char>(at + size == data.size());
    for (size_t word : {size, ~size}) {
      out += static_cast<char>(word & 0xFF);
      out += static_cast<char>(word >> 8 & 0xFF);
    }
    out.append(data, at, size);
    at += size;
  } while (at < data.size());
  PutBig32(&out, b << 16 | a);
  return out;
}

}  // namespace

std::string PngFile(const Drawing& drawing) {
  Canvas canvas = {drawing.width, drawing.height, {}};
  canvas.pixels.assign(
      static_cast<size_t>(drawing.width * kScale) * static_cast<size_t>(drawing.height * kScale),
      drawing.background);
  for (const Shape& shape : drawing.shapes) canvas.Draw(shape);

  std::string header;
  PutBig32(&header, static_cast<uint32_t>(drawing.width * kScale));
  PutBig32(&header, static_cast<uint32_t>(drawing.height * kScale));
  header += std::string("\x08\x02\x00\x00\x00", 5);  // 8 bits each of red, green, blue; not interlaced
  std::string rows;
  for (size_t i = 0; i < canvas.pixels.size(); ++i) {
    if (i % static_cast<size_t>(drawing.width * kScale) == 0) rows += '\0';  // no filter
    for (int shift = 16; shift >= 0; shift -= 8) rows += static_cast<char>(canvas.pixels[i] >> shift & 0xFF);
  }
  std::string file = "\x89PNG\r\n\x1A\n";
  PutChunk(&file, "IHDR", header);
  PutChunk(&file, "IDAT", Stored(rows));
  PutChunk(&file, "IEND", "");
  return file;
}

}  // namespace sim
