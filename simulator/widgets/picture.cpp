// Which widgets a picture shows, and where.
#include "widgets/picture.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace sim {
namespace {

constexpr int kMargin = 14;  // around the windows
constexpr Colour kSky = 0x51677D, kShadow = 0x0B1520, kWhite = 0xFFFFFF;

// Characters that no picture can show look like question marks.
std::string Printable(std::string text) {
  for (char& c : text) {
    if (c < ' ' || c > '~') c = '?';
  }
  return text;
}

// What a widget's group tells: class and state in the console's words, its own text, what it is called when
// that differs, its rectangle as "left top right bottom" of the screen; data-text-box (see Pen::Text) is that
// of the text.
Shape GroupOf(const Widget* w, const std::vector<Widget*>& all) {
  Shape group = {.kind = Shape::Open};
  group.facts = {{"data-class", ClassWord(w)},
                 {"data-text", Printable(w->text)},
                 {"data-state", StateOf(w)},
                 {"data-box", BoxText(w->box)}};
  const std::string& label = LabelOf(w, all);
  if (label != w->text) group.facts.emplace_back("data-label", Printable(label));
  if (!IsEnabled(w)) group.facts.emplace_back("data-enabled", "0");
  if (w == keyboardFocus) group.facts.emplace_back("data-focus", "1");
  return group;
}

// Paints a widget and what lies in it, asking it first whether it wants to do so itself. `all` are the visible
// widgets of its window.
void Paint(Widget* w, const std::vector<Widget*>& all, Pen* pen) {
  if (!w->visible) return;
  pen->group = pen->drawing->shapes.size();
  pen->drawing->shapes.push_back(GroupOf(w, all));
  if (!Send(w, xpMsg_Paint, xpMode_Direct, 0, 0) && IsLive(w)) {
    if (!Send(w, xpMsg_Draw, xpMode_Direct, 0, 0) && IsLive(w)) DrawWidget(w, pen);
    const std::vector<Widget*> children = w->children;
    for (Widget* child : children) {
      if (IsLive(child)) Paint(child, all, pen);
    }
  }
  pen->drawing->shapes.push_back({.kind = Shape::Close});
}

void PaintWindow(Widget* window, Pen* pen) {
  pen->dark = Property(window, xpProperty_MainWindowType) == xpMainWindowStyle_Translucent;
  for (int grow = 0; grow < 9; ++grow) {
    const Rect& r = window->box;
    pen->Fill({r.left - grow, r.top - 2 + grow, r.right + grow, r.bottom - 2 - grow}, kShadow, 4 + grow, 0.045);
  }
  Paint(window, VisibleWithin(window), pen);
}

bool EndsIn(const std::string& file, const std::string& ending) {
  if (file.size() <= ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), file.end() - static_cast<ptrdiff_t>(ending.size()),
                    [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

// The part of the screen with all windows and a margin around them. All zero when nothing of them lies there.
Rect ShownPart(const std::vector<Widget*>& windows, const Rect& screen) {
  Rect part;
  for (const Widget* window : windows) {
    const Rect& r = window->box;
    const Rect cut = {std::max(r.left - kMargin, screen.left), std::min(r.top + kMargin, screen.top),
                      std::min(r.right + kMargin, screen.right), std::max(r.bottom - kMargin, screen.bottom)};
    if (cut.left >= cut.right || cut.bottom >= cut.top) continue;
    part = part == Rect() ? cut
                          : Rect{std::min(part.left, cut.left), std::max(part.top, cut.top),
                                 std::max(part.right, cut.right), std::min(part.bottom, cut.bottom)};
  }
  return part;
}

}  // namespace

std::string BoxText(const Rect& r) {
  return std::to_string(r.left) + " " + std::to_string(r.top) + " " + std::to_string(r.right) + " " +
         std::to_string(r.bottom);
}

void Pen::Fill(const Rect& r, Colour colour, double round, double opacity) {
  drawing->shapes.push_back({.kind = Shape::Fill,
                             .x = static_cast<double>(r.left - drawing->left),
                             .y = static_cast<double>(drawing->top - r.top),
                             .width = static_cast<double>(r.Width()),
                             .height = static_cast<double>(r.Height()),
                             .round = round,
                             .colour = colour,
                             .opacity = opacity});
}

void Pen::Frame(const Rect& r, Colour colour, double round) {
  Fill(r, colour, round);
  drawing->shapes.back().kind = Shape::Frame;
}

void Pen::Line(double x1, double y1, double x2, double y2, Colour colour, double thickness) {
  drawing->shapes.push_back({.kind = Shape::Line,
                             .x = x1 - drawing->left,
                             .y = drawing->top - y1,
                             .width = x2 - x1,
                             .height = y1 - y2,
                             .round = thickness,
                             .colour = colour});
}

void Pen::Text(const std::string& text, int x, const Rect& r, Colour colour) {
  if (text.empty()) return;
  const int top = (r.top + r.bottom + kLetterHeight) / 2;
  const int width = static_cast<int>(text.size()) * kLetterWidth;
  if (group < drawing->shapes.size() && drawing->shapes[group].kind == Shape::Open)
    drawing->shapes[group].facts.emplace_back("data-text-box",
                                              BoxText({x, top, x + width, top - kLetterHeight}));
  drawing->shapes.push_back({.kind = Shape::Text,
                             .x = static_cast<double>(x - drawing->left),
                             .y = static_cast<double>(drawing->top - top),
                             .colour = colour,
                             .text = Printable(text)});
}

void Pen::Centred(const std::string& text, const Rect& r, Colour colour) {
  Text(text, r.left + (r.Width() - static_cast<int>(text.size()) * kLetterWidth) / 2, r, colour);
}

Drawing DrawScreen(const std::vector<Widget*>& windows) {
  Hold hold;
  Rect screen;
  GetScreen(&screen.right, &screen.top);
  Rect part = ShownPart(windows, screen);
  const bool nothing = part == Rect();
  if (nothing) part = {0, 60, 240, 0};
  Drawing drawing = {part.left, part.top, part.Width(), part.Height(), kSky, {}};
  Pen pen = {.drawing = &drawing};
  if (nothing) pen.Centred("no window on the screen", part, kWhite);
  SetDrawing(true);
  for (size_t i = windows.size(); i-- > 0;) {  // the front one last
    if (IsLive(windows[i])) PaintWindow(windows[i], &pen);
  }
  SetDrawing(false);
  return drawing;
}

bool WritePicture(const Drawing& drawing, const std::string& file, std::string* error) {
  const bool svg = EndsIn(file, ".svg");
  if (!svg && !EndsIn(file, ".png")) {
    *error = "the picture's name must end in .png or .svg: " + Quote(file);
    return false;
  }
  const std::string content = svg ? SvgFile(drawing) : PngFile(drawing);
  std::FILE* out = std::fopen(file.c_str(), "wb");
  const bool written = out && std::fwrite(content.data(), 1, content.size(), out) == content.size();
  if (!(out && std::fclose(out) == 0 && written)) {
    *error = "cannot write " + Quote(file);
    return false;
  }
  return true;
}

}  // namespace sim
