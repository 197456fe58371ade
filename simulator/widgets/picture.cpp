// What the windows look like: widgets become shapes.
#include "widgets/picture.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "core/sim.h"
#include "core/table.h"

namespace sim {
namespace {

constexpr int kMargin = 10;     // around the windows
constexpr int kLargest = 4096;  // pixels; a window may claim to be larger than any screen
constexpr Colour kSky = 0x55677A, kPanel = 0xC8CCD0, kTitleBar = 0x36495E, kDarkPanel = 0x2A3038;
constexpr Colour kWhite = 0xFFFFFF, kBlack = 0x101418, kEdge = 0x70787F, kPale = 0xA8AEB4;
constexpr Colour kInset = 0xD6DADD, kButton = 0xE4E7EA, kLit = 0xF0C040, kGreen = 0x3C9A50, kScreen = 0x101A12;

struct Pen {
  Drawing* drawing;
  int left, top;  // screen coordinates of the picture's corner
  bool dark;      // inside a translucent window

  void Add(Shape::Kind kind, int x, int y, int width, int height, Colour colour) {
    drawing->shapes.push_back({kind, x - left, top - y, width, height, colour, ""});
  }
  void Fill(const Rect& r, Colour colour) { Add(Shape::Fill, r.left, r.top, r.Width(), r.Height(), colour); }
  void Frame(const Rect& r, Colour colour) { Add(Shape::Frame, r.left, r.top, r.Width(), r.Height(), colour); }
  // Screen coordinates of both ends.
  void Line(int x1, int y1, int x2, int y2, Colour colour) {
    Add(Shape::Line, x1, y1, x2 - x1, y1 - y2, colour);
  }
  // Text that begins at x, in the middle of the rectangle's height.
  void Text(const std::string& text, int x, const Rect& r, Colour colour) {
    std::string plain = text;
    for (char& c : plain) {
      if (c < ' ' || c > '~') c = '?';
    }
    const int y = (r.top + r.bottom + kTextHeight) / 2;
    if (!plain.empty()) drawing->shapes.push_back({Shape::Text, x - left, top - y, 0, 0, colour, plain});
  }
  void Centred(const std::string& text, const Rect& r, Colour colour) {
    Text(text, r.left + (r.Width() - static_cast<int>(text.size()) * kCharacterWidth) / 2, r, colour);
  }
  Colour Ink() const { return dark ? kWhite : kBlack; }
};

void DrawWindow(const Widget* w, Pen* pen) {
  pen->dark = Property(w, xpProperty_MainWindowType) == xpMainWindowStyle_Translucent;
  pen->Fill(w->box, pen->dark ? kDarkPanel : kPanel);
  const Rect title = {w->box.left, w->box.top, w->box.right, w->box.top - kTitleHeight};
  if (!pen->dark) pen->Fill(title, kTitleBar);
  pen->Centred(w->text, title, kWhite);
  if (Property(w, xpProperty_MainWindowHasCloseBoxes)) {
    for (int k = 0; k < 2; ++k) {
      const Rect box = CloseBox(w, k);
      pen->Frame(box, kWhite);
      pen->Line(box.left + 4, box.top - 4, box.right - 5, box.bottom + 5, kWhite);
      pen->Line(box.left + 4, box.bottom + 5, box.right - 5, box.top - 4, kWhite);
    }
  }
  pen->Frame(w->box, kBlack);
}

// A small square with its mark, and the text beside it.
void DrawBox(const Widget* w, bool round, Pen* pen) {
  const bool enabled = IsEnabled(w);
  const Colour ink = enabled ? kBlack : kEdge;
  const Rect& r = w->box;
  const int middle = (r.top + r.bottom) / 2;
  const int side = std::max(4, std::min({12, r.Width(), r.Height()}));
  const Rect mark = {r.left, middle + side / 2, r.left + side, middle + side / 2 - side};
  pen->Fill(mark, enabled ? kWhite : kPale);
  pen->Frame(mark, kBlack);
  if (Property(w, xpProperty_ButtonState) && round) {
    pen->Fill({mark.left + 3, mark.top - 3, mark.right - 3, mark.bottom + 3}, ink);
  } else if (Property(w, xpProperty_ButtonState)) {
    const int bottom = mark.bottom + 3, low = mark.left + side / 2 - 2;
    for (int thick = 0; thick < 2; ++thick) {
      pen->Line(mark.left + 2, middle + thick, low, bottom + thick, ink);
      pen->Line(low, bottom + thick, mark.right - 3, mark.top - 4 + thick, ink);
    }
  }
  pen->Text(w->text, mark.right + 4, r, enabled ? pen->Ink() : kEdge);
}

void DrawButton(const Widget* w, Pen* pen) {
  const intptr_t type = Property(w, xpProperty_ButtonType);
  const intptr_t behaviour = Property(w, xpProperty_ButtonBehavior);
  const bool round = behaviour == xpButtonBehaviorRadioButton;
  if (round || behaviour == xpButtonBehaviorCheckBox || type == xpRadioButton) return DrawBox(w, round, pen);
  const bool enabled = IsEnabled(w);
  const Colour ink = enabled ? kBlack : kEdge;
  const Rect& r = w->box;
  const int middleX = (r.left + r.right) / 2, middleY = (r.top + r.bottom) / 2;
  pen->Fill(r, Property(w, xpProperty_Hilited) ? kLit : enabled ? kButton : kPale);
  pen->Frame(r, kEdge);
  if (type == xpLittleUpArrow || type == xpLittleDownArrow) {
    const int tip = type == xpLittleUpArrow ? 2 : -3;
    pen->Line(middleX - 3, middleY - tip, middleX, middleY + tip, ink);
    pen->Line(middleX, middleY + tip, middleX + 3, middleY - tip, ink);
  } else {
    pen->Centred(type == xpWindowCloseBox && w->text.empty() ? "x" : w->text, r, ink);
  }
}

void DrawField(const Widget* w, Pen* pen) {
  const Rect& r = w->box;
  const intptr_t style = Property(w, xpProperty_TextFieldType);
  const bool dark = style == xpTextTranslucent || (style == xpTextTransparent && pen->dark);
  if (style != xpTextTransparent) pen->Fill(r, dark ? kDarkPanel : IsEnabled(w) ? kWhite : kPale);
  pen->Frame(r, w == keyboardFocus ? kLit : kEdge);
  std::string text = Property(w, xpProperty_PasswordMode) ? std::string(w->text.size(), '*') : w->text;
  const intptr_t scroll =
      std::clamp<intptr_t>(Property(w, xpProperty_ScrollPosition), 0, static_cast<intptr_t>(text.size()));
  text.erase(0, static_cast<size_t>(scroll));
  text.resize(std::min(text.size(), static_cast<size_t>(std::max(0, r.Width() - 4) / kCharacterWidth)));
  pen->Text(text, r.left + 3, r, dark ? kWhite : kBlack);
}

// How far `position` lies between low and high, 0 to 1.
double Share(const Widget* w, XPWidgetPropertyID position, XPWidgetPropertyID low, XPWidgetPropertyID high) {
  const double from = static_cast<double>(Property(w, low)), to = static_cast<double>(Property(w, high));
  if (to <= from) return 0;
  return std::clamp((static_cast<double>(Property(w, position)) - from) / (to - from), 0.0, 1.0);
}

void DrawScrollBar(const Widget* w, Pen* pen) {
  const Rect& r = w->box;
  const BarLayout layout = LayoutOf(w);
  const bool lying = layout.lying;
  const int size = layout.size, length = layout.length;
  const double share =
      Share(w, xpProperty_ScrollBarSliderPosition, xpProperty_ScrollBarMin, xpProperty_ScrollBarMax);
  const int thumb = layout.arrow + static_cast<int>(share * std::max(0, layout.Travel()));
  const auto part = [&](int from, int to) {
    return lying ? Rect{r.left + from, r.top, r.left + to, r.bottom}
                 : Rect{r.left, r.bottom + to, r.right, r.bottom + from};
  };
  if (layout.arrows) {
    pen->Fill(r, kPale);
    pen->Frame(r, kEdge);
    for (int at : {0, length - size}) {
      pen->Fill(part(at, at + size), kButton);
      pen->Frame(part(at, at + size), kEdge);
      pen->Centred(lying ? (at ? ">" : "<") : (at ? "^" : "v"), part(at, at + size), kBlack);
    }
  } else {
    const int edge = size / 2 - 2;
    pen->Fill(lying ? Rect{r.left, r.top - edge, r.right, r.top - edge - 4}
                    : Rect{r.left + edge, r.top, r.left + edge + 4, r.bottom},
              kEdge);
  }
  pen->Fill(part(thumb + 1, thumb + size - 1), kTitleBar);
}

void DrawSubWindow(const Widget* w, Pen* pen) {
  const intptr_t style = Property(w, xpProperty_SubWindowType);
  const Colour plain = pen->dark ? kDarkPanel : kInset;
  pen->Fill(w->box, style == xpSubWindowStyle_Screen     ? kScreen
                    : style == xpSubWindowStyle_ListView ? kWhite
                                                         : plain);
  pen->Frame(w->box, kEdge);
}

void DrawCaption(const Widget* w, Pen* pen) {
  pen->Text(w->text, w->box.left, w->box, Property(w, xpProperty_CaptionLit) ? kWhite : pen->Ink());
}

void DrawProgress(const Widget* w, Pen* pen) {
  Rect bar = w->box;
  pen->Fill(bar, kWhite);
  const double share = Share(w, xpProperty_ProgressPosition, xpProperty_ProgressMin, xpProperty_ProgressMax);
  bar.right = bar.left + static_cast<int>(share * bar.Width());
  pen->Fill(bar, kGreen);
  pen->Frame(w->box, kEdge);
}

void DrawGraphics(const Widget* w, Pen* pen) {
  pen->Frame(w->box, pen->Ink());
  pen->Line(w->box.left, w->box.top, w->box.right, w->box.bottom, pen->Ink());
}

struct LookRow {
  XPWidgetClass type = xpWidgetClass_None;
  void (*draw)(const Widget* w, Pen* pen) = nullptr;
};
constexpr LookRow lookRows[] = {
    {.type = xpWidgetClass_None},  // a custom widget draws itself
    {.type = xpWidgetClass_MainWindow, .draw = DrawWindow},
    {.type = xpWidgetClass_SubWindow, .draw = DrawSubWindow},
    {.type = xpWidgetClass_Button, .draw = DrawButton},
    {.type = xpWidgetClass_TextField, .draw = DrawField},
    {.type = xpWidgetClass_ScrollBar, .draw = DrawScrollBar},
    {.type = xpWidgetClass_Caption, .draw = DrawCaption},
    {.type = xpWidgetClass_GeneralGraphics, .draw = DrawGraphics},
    {.type = xpWidgetClass_Progress, .draw = DrawProgress},
};
static_assert(IsTableOf<&LookRow::type>(lookRows, xpWidgetClass_Progress));

void DrawWidget(const Widget* w, Pen* pen) {
  const LookRow& row = lookRows[ClassOf(w->type).type];
  if (row.draw) row.draw(w, pen);
}

// Paints a widget and what lies in it, asking it first whether it wants to do so itself.
void Paint(Widget* w, Pen* pen) {
  if (!w->visible || Send(w, xpMsg_Paint, xpMode_Direct, 0, 0) || !IsLive(w)) return;
  if (!Send(w, xpMsg_Draw, xpMode_Direct, 0, 0) && IsLive(w)) DrawWidget(w, pen);
  const std::vector<Widget*> children = w->children;
  for (Widget* child : children) {
    if (IsLive(child)) Paint(child, pen);
  }
}

bool EndsIn(const std::string& file, const std::string& ending) {
  if (file.size() <= ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), file.end() - static_cast<ptrdiff_t>(ending.size()),
                    [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

}  // namespace

bool DrawPicture(const std::vector<Widget*>& windows, const std::string& file, std::string* error) {
  const bool svg = EndsIn(file, ".svg");
  if (!svg && !EndsIn(file, ".png")) {
    *error = "the picture's name must end in .png or .svg: " + Quote(file);
    return false;
  }
  Hold hold;
  Rect all = windows.empty() ? Rect{0, 40, 160, 0} : windows[0]->box;
  for (const Widget* window : windows) {
    all.left = std::min(all.left, window->box.left);
    all.top = std::max(all.top, window->box.top);
    all.right = std::max(all.right, window->box.right);
    all.bottom = std::min(all.bottom, window->box.bottom);
  }
  Drawing drawing;
  drawing.background = kSky;
  drawing.width = std::clamp(all.Width(), 1, kLargest) + 2 * kMargin;
  drawing.height = std::clamp(all.Height(), 1, kLargest) + 2 * kMargin;
  Pen pen = {&drawing, all.left - kMargin, all.top + kMargin, false};
  if (windows.empty()) pen.Centred("no visible window", all, kWhite);
  for (size_t i = windows.size(); i-- > 0;) {  // the front one last
    if (IsLive(windows[i])) Paint(windows[i], &pen);
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
