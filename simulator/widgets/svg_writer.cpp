// A drawing as SVG file.
#include <string>

#include "widgets/picture.h"

namespace sim {
namespace {

std::string Hex(Colour colour) {
  std::string text = "#";
  for (int shift = 20; shift >= 0; shift -= 4) text += "0123456789abcdef"[colour >> shift & 0xF];
  return text;
}

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + value + "\"";
}

std::string Attribute(const char* name, int value) { return Attribute(name, std::to_string(value)); }

std::string Escaped(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '&':
        out += "&amp;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

std::string SvgFile(const Drawing& drawing) {
  std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attribute("width", drawing.width) +
                    Attribute("height", drawing.height) +
                    " font-family=\"monospace\" font-size=\"10\" xml:space=\"preserve\">\n";
  out += "<rect width=\"100%\" height=\"100%\"" + Attribute("fill", Hex(drawing.background)) + "/>\n";
  for (const Shape& s : drawing.shapes) {
    switch (s.kind) {
      case Shape::Fill:
      case Shape::Frame:
        out += "<rect" + Attribute("x", s.x) + Attribute("y", s.y) + Attribute("width", s.width) +
               Attribute("height", s.height) +
               Attribute("fill", s.kind == Shape::Fill ? Hex(s.colour) : "none");
        if (s.kind == Shape::Frame) out += Attribute("stroke", Hex(s.colour));
        out += "/>\n";
        break;
      case Shape::Line:
        out += "<line" + Attribute("x1", s.x) + Attribute("y1", s.y) + Attribute("x2", s.x + s.width) +
               Attribute("y2", s.y + s.height) + Attribute("stroke", Hex(s.colour)) + "/>\n";
        break;
      case Shape::Text:
        out += "<text" + Attribute("x", s.x) + Attribute("y", s.y + kTextHeight - 1) +
               Attribute("fill", Hex(s.colour)) + ">" + Escaped(s.text) + "</text>\n";
        break;
    }
  }
  return out + "</svg>\n";
}

}  // namespace sim
