// What a widget of each class looks like.
#include <algorithm>

#include "core/table.h"
#include "widgets/picture.h"

namespace sim {
namespace {

constexpr Colour kWhite = 0xFFFFFF, kInk = 0x141C24, kFaint = 0x8A939B, kEdge = 0x98A2AB,
                 kWindowEdge = 0x1B2A3A;
constexpr Colour kPanel = 0xE6E9EC, kTitleBar = 0x2C4560, kTitleButton = 0x45627F, kDarkPanel = 0x27313C;
constexpr Colour kInset = 0xDADFE4, kDarkInset = 0x1E2730, kScreen = 0x0E1A14, kDisabled = 0xD3D8DC;
constexpr Colour kButton = 0xFBFCFD, kLit = 0xF2C14E, kMark = 0x1F6FB5, kSelection = 0xB5D5F2,
                 kTrack = 0xC6CDD3;
constexpr Colour kGreen = 0x3C9A5F;
constexpr double kCorner = 4;

Colour Ink(const Pen* pen) { return pen->dark ? kWhite : kInk; }

void Cross(const Rect& r, Colour colour, Pen* pen) {
  const double x = (r.left + r.right) / 2.0, y = (r.top + r.bottom) / 2.0;
  for (int side : {-1, 1}) pen->Line(x - 3, y - 3 * side, x + 3, y + 3 * side, colour, 1.4);
}

// A tip that points left, right (lying) or down, up.
void Arrow(const Rect& r, bool lying, bool high, Colour colour, Pen* pen) {
  const double x = (r.left + r.right) / 2.0, y = (r.top + r.bottom) / 2.0, tip = high ? 2 : -2;
  for (int side : {-1, 1}) {
    if (lying) pen->Line(x - tip, y + 3.5 * side, x + tip, y, colour, 1.4);
    if (!lying) pen->Line(x + 3.5 * side, y - tip, x, y + tip, colour, 1.4);
  }
}

void DrawWindow(const Widget* w, Pen* pen) {
  const Rect& r = w->box;
  const Rect title = {r.left, r.top, r.right, r.top - kTitleHeight};
  pen->Fill(r, pen->dark ? kDarkPanel : kPanel, kCorner, pen->dark ? 0.9 : 1);
  if (!pen->dark) {
    pen->Fill(title, kTitleBar, kCorner);
    pen->Fill({r.left, r.top - kTitleHeight / 2, r.right, title.bottom}, kTitleBar);
  }
  pen->Frame(r, kWindowEdge, kCorner);
  pen->Centred(w->text, title, kWhite);
  if (!Property(w, xpProperty_MainWindowHasCloseBoxes)) return;
  for (int k = 0; k < 2; ++k) {
    pen->Fill(CloseBox(w, k), kTitleButton, 3);
    Cross(CloseBox(w, k), kWhite, pen);
  }
}

// A small square or disc with its mark, and the text beside it.
void DrawBox(const Widget* w, bool disc, Pen* pen) {
  const bool enabled = IsEnabled(w), on = Property(w, xpProperty_ButtonState) != 0;
  const Rect& r = w->box;
  const int side = std::max(4, std::min({12, r.Width(), r.Height()}));
  const int top = (r.top + r.bottom + side) / 2;
  const Rect mark = {r.left, top, r.left + side, top - side};
  const Colour colour = enabled ? kMark : kFaint;
  const double round = disc ? side / 2.0 : 2.5;
  pen->Fill(mark, !enabled ? kDisabled : on && !disc ? kMark : kWhite, round);
  pen->Frame(mark, on ? colour : kFaint, round);
  if (on && disc) pen->Fill({mark.left + 3, mark.top - 3, mark.right - 3, mark.bottom + 3}, colour, side / 2.0);
  if (on && !disc) {
    const double x = mark.left + side * 0.42, y = mark.bottom + side * 0.27;
    pen->Line(mark.left + side * 0.23, mark.bottom + side * 0.48, x, y, kWhite, 1.6);
    pen->Line(x, y, mark.left + side * 0.78, mark.bottom + side * 0.72, kWhite, 1.6);
  }
  pen->Text(w->text, mark.right + 4, r, enabled ? Ink(pen) : kFaint);
}

void DrawButton(const Widget* w, Pen* pen) {
  const intptr_t type = Property(w, xpProperty_ButtonType);
  const bool disc = Property(w, xpProperty_ButtonBehavior) == xpButtonBehaviorRadioButton;
  if (IsBox(w) || type == xpRadioButton) return DrawBox(w, disc, pen);
  const bool enabled = IsEnabled(w);
  const Colour ink = enabled ? kInk : kFaint;
  const Rect& r = w->box;
  pen->Fill(r, Property(w, xpProperty_Hilited) ? kLit : enabled ? kButton : kDisabled, kCorner);
  pen->Frame(r, kEdge, kCorner);
  if (type == xpLittleUpArrow || type == xpLittleDownArrow) Arrow(r, false, type == xpLittleUpArrow, ink, pen);
  if (type == xpWindowCloseBox) Cross(r, ink, pen);
  if (type == xpPushButton) pen->Centred(w->text, r, ink);
}

void DrawField(const Widget* w, Pen* pen) {
  const Rect& r = w->box;
  const intptr_t style = Property(w, xpProperty_TextFieldType);
  const bool dark = style == xpTextTranslucent || (style == xpTextTransparent && pen->dark);
  const bool focus = w == keyboardFocus, enabled = IsEnabled(w);
  if (style != xpTextTransparent) pen->Fill(r, dark ? kDarkInset : enabled ? kWhite : kDisabled, 2);
  pen->Frame(r, focus ? kMark : kEdge, 2);
  const intptr_t length = static_cast<intptr_t>(w->text.size());
  const intptr_t first = std::clamp<intptr_t>(Property(w, xpProperty_ScrollPosition), 0, length);
  const intptr_t last = std::min<intptr_t>(length, first + VisibleLetters(w));
  const auto place = [&](XPWidgetPropertyID id) {
    return r.left + kFieldMargin +
           kLetterWidth * static_cast<int>(std::clamp(Property(w, id), first, last) - first);
  };
  const int from = place(xpProperty_EditFieldSelStart), to = place(xpProperty_EditFieldSelEnd);
  const int middle = (r.top + r.bottom) / 2, high = std::min(middle + 7, r.top - 2),
            low = std::max(middle - 7, r.bottom + 2);
  if (focus && to > from) pen->Fill({from, high, to, low}, dark ? kMark : kSelection);
  const std::string text = Property(w, xpProperty_PasswordMode) ? std::string(w->text.size(), '*') : w->text;
  pen->Text(text.substr(static_cast<size_t>(first), static_cast<size_t>(last - first)), r.left + kFieldMargin,
            r,
            dark      ? kWhite
            : enabled ? kInk
                      : kFaint);
  if (focus && to <= from) pen->Line(from - 0.5, high, from - 0.5, low, kMark, 1);
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
  const int size = layout.size, length = layout.length;
  const double share =
      Share(w, xpProperty_ScrollBarSliderPosition, xpProperty_ScrollBarMin, xpProperty_ScrollBarMax);
  const int thumb = layout.arrow + static_cast<int>(share * std::max(0, layout.Travel()));
  // From `begin` to `end` along the bar, `inset` pixels narrower on both sides.
  const auto part = [&](int begin, int end, int inset) {
    return layout.lying ? Rect{r.left + begin, r.top - inset, r.left + end, r.bottom + inset}
                        : Rect{r.left + inset, r.bottom + end, r.right - inset, r.bottom + begin};
  };
  if (layout.arrows) {
    pen->Fill(r, kTrack, kCorner);
    for (bool high : {false, true}) {
      const int at = high ? length - size : 0;
      pen->Fill(part(at, at + size, 0), kButton, kCorner);
      Arrow(part(at, at + size, 0), layout.lying, high, kInk, pen);
    }
    pen->Frame(r, kEdge, kCorner);
  } else {
    pen->Fill(part(size / 4, length - size / 4, size / 2 - 2), kTrack, 2);
    pen->Fill(part(size / 4, thumb + size / 2, size / 2 - 2), kMark, 2);
  }
  pen->Fill(part(thumb + 1, thumb + size - 1, 1), IsEnabled(w) ? kMark : kFaint, layout.arrows ? 3 : size);
}

void DrawSubWindow(const Widget* w, Pen* pen) {
  const intptr_t style = Property(w, xpProperty_SubWindowType);
  const Colour plain = pen->dark ? kDarkInset : kInset;
  pen->Fill(w->box,
            style == xpSubWindowStyle_Screen     ? kScreen
            : style == xpSubWindowStyle_ListView ? kWhite
                                                 : plain,
            kCorner);
  pen->Frame(w->box, kEdge, kCorner);
}

// Dark on any ground unless it is lit: what cannot be read on the screen cannot be read in the picture either.
void DrawCaption(const Widget* w, Pen* pen) {
  const bool lit = Property(w, xpProperty_CaptionLit) != 0;
  pen->Text(w->text, w->box.left, w->box, !IsEnabled(w) ? kFaint : lit ? kWhite : kInk);
}

void DrawProgress(const Widget* w, Pen* pen) {
  Rect bar = w->box;
  pen->Fill(bar, kWhite, 3);
  const double share = Share(w, xpProperty_ProgressPosition, xpProperty_ProgressMin, xpProperty_ProgressMax);
  bar.right = bar.left + static_cast<int>(share * bar.Width());
  pen->Fill(bar, kGreen, 3);
  pen->Frame(w->box, kEdge, 3);
}

// The icons themselves are the simulator's; a sheet stands for them.
void DrawGraphics(const Widget* w, Pen* pen) {
  const Rect& r = w->box;
  pen->Frame(r, Ink(pen), 2);
  pen->Line(r.left + 3, r.top - 3, r.right - 3, r.bottom + 3, kFaint, 1);
  pen->Line(r.left + 3, r.bottom + 3, r.right - 3, r.top - 3, kFaint, 1);
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

}  // namespace

void DrawWidget(const Widget* widget, Pen* pen) {
  const LookRow& row = lookRows[ClassOf(widget->type).type];
  if (row.draw) row.draw(widget, pen);
}

}  // namespace sim
