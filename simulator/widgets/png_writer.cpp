// A drawing as PNG file.
#include <zlib.h>

#include "widgets/picture.h"

namespace sim {
namespace {

void PutBig32(std::string* out, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) *out += static_cast<char>(value >> shift & 0xFF);
}

const Bytef* Bytes(const std::string& data) { return reinterpret_cast<const Bytef*>(data.data()); }

void PutChunk(std::string* out, const char* type, const std::string& data) {
  const std::string summed = type + data;
  PutBig32(out, static_cast<uint32_t>(data.size()));
  *out += summed;
  PutBig32(out, static_cast<uint32_t>(crc32(0, Bytes(summed), static_cast<uInt>(summed.size()))));
}

std::string Compressed(const std::string& data) {
  uLongf size = compressBound(static_cast<uLong>(data.size()));
  std::string out(size, '\0');
  // Fails for want of memory alone, as the room is as large as it says.
  if (compress2(reinterpret_cast<Bytef*>(out.data()), &size, Bytes(data), static_cast<uLong>(data.size()),
                Z_BEST_COMPRESSION) != Z_OK)
    size = 0;
  out.resize(size);
  return out;
}

}  // namespace

std::string PngFile(const Drawing& drawing) {
  const std::vector<Colour> pixels = Pixels(drawing);
  const size_t width = static_cast<size_t>(drawing.width) * kPictureScale;
  std::string header;
  PutBig32(&header, static_cast<uint32_t>(width));
  PutBig32(&header, static_cast<uint32_t>(drawing.height * kPictureScale));
  header += std::string("\x08\x02\x00\x00\x00", 5);  // 8 bits each of red, green, blue; not interlaced
  std::string rows;
  rows.reserve(pixels.size() * 3 + pixels.size() / width);
  for (size_t i = 0; i < pixels.size(); ++i) {
    if (i % width == 0) rows += '\0';  // no filter
    for (int shift = 16; shift >= 0; shift -= 8) rows += static_cast<char>(pixels[i] >> shift & 0xFF);
  }
  std::string file = "\x89PNG\r\n\x1A\n";
  PutChunk(&file, "IHDR", header);
  PutChunk(&file, "IDAT", Compressed(rows));
  PutChunk(&file, "IEND", "");
  return file;
}

}  // namespace sim
