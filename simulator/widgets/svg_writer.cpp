// A drawing as SVG file.
#include <charconv>
#include <string>

#include "widgets/picture.h"

namespace sim {
namespace {

std::string Hex(Colour colour) {
  std::string text = "#";
  for (int shift = 20; shift >= 0; shift -= 4) text += "0123456789abcdef"[colour >> shift & 0xF];
  return text;
}

// Printable ASCII as XML wants it, in text and in quotes.
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
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + Escaped(value) + "\"";
}

std::string Attribute(const char* name, double value) {
  char text[32];
  return Attribute(name, std::string(text, std::to_chars(text, text + sizeof text, value).ptr));
}

std::string RectangleOf(const Shape& s) {
  const double inset = s.kind == Shape::Frame ? 0.5 : 0;  // a stroke lies on both sides of its line
  std::string out = "<rect" + Attribute("x", s.x + inset) + Attribute("y", s.y + inset) +
                    Attribute("width", s.width - 2 * inset) + Attribute("height", s.height - 2 * inset);
  if (s.round > 0) out += Attribute("rx", s.round - inset);
  out += Attribute("fill", s.kind == Shape::Fill ? Hex(s.colour) : "none");
  if (s.kind == Shape::Frame) out += Attribute("stroke", Hex(s.colour));
  if (s.opacity < 1) out += Attribute("fill-opacity", s.opacity);
  return out + "/>\n";
}

std::string TextOf(const Shape& s) {
  // The length makes any font of the viewer's as wide as the simulator's.
  return "<text" + Attribute("x", s.x) + Attribute("y", s.y + kLetterHeight - 2) +
         Attribute("fill", Hex(s.colour)) +
         Attribute("textLength", kLetterWidth * static_cast<double>(s.text.size())) +
         " lengthAdjust=\"spacingAndGlyphs\">" + Escaped(s.text) + "</text>\n";
}

std::string ElementOf(const Shape& s) {
  std::string out;
  switch (s.kind) {
    case Shape::Fill:
    case Shape::Frame:
      return s.width > 0 && s.height > 0 ? RectangleOf(s) : "";
    case Shape::Line:
      return "<line" + Attribute("x1", s.x) + Attribute("y1", s.y) + Attribute("x2", s.x + s.width) +
             Attribute("y2", s.y + s.height) + Attribute("stroke", Hex(s.colour)) +
             Attribute("stroke-width", s.round) + " stroke-linecap=\"round\"/>\n";
    case Shape::Text:
      return TextOf(s);
    case Shape::Open:
      out = "<g class=\"widget\"";
      for (const auto& [name, value] : s.facts) out += Attribute(name, value);
      return out + ">\n";
    case Shape::Close:
      return "</g>\n";
  }
  return out;
}

}  // namespace

std::string SvgFile(const Drawing& drawing) {
  const int right = drawing.left + drawing.width, bottom = drawing.top - drawing.height;
  const double scale = kPictureScale;
  std::string out =
      "<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attribute("width", drawing.width * scale) +
      Attribute("height", drawing.height * scale) +
      Attribute("viewBox", "0 0 " + std::to_string(drawing.width) + " " + std::to_string(drawing.height)) +
      Attribute("data-box", BoxText({drawing.left, drawing.top, right, bottom})) +
      " font-family=\"DejaVu Sans Mono, Consolas, monospace\" font-size=\"10\" xml:space=\"preserve\">\n";
  out += "<rect width=\"100%\" height=\"100%\"" + Attribute("fill", Hex(drawing.background)) + "/>\n";
  for (const Shape& s : drawing.shapes) out += ElementOf(s);
  return out + "</svg>\n";
}

}  // namespace sim
