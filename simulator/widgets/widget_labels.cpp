// What a user reads in the windows: words for classes and states, and which caption or field belongs to what.
#include <algorithm>
#include <charconv>

#include "widgets/widgets.h"

namespace sim {
namespace {

void Gather(const Widget* widget, std::vector<Widget*>* list) {
  for (Widget* child : widget->children) {
    if (!child->visible) continue;
    list->push_back(child);
    Gather(child, list);
  }
}

std::string Number(intptr_t value) {
  char text[24];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

bool OnOneLine(const Widget* a, const Widget* b) {
  const int middleA = (a->box.top + a->box.bottom) / 2, middleB = (b->box.top + b->box.bottom) / 2;
  return (middleA >= b->box.bottom && middleA <= b->box.top) ||
         (middleB >= a->box.bottom && middleB <= a->box.top);
}

// Whether the caption right of the box labels it, rather than the one left of it. A line that begins or ends
// with a box shows on which side the captions stand; else it is the right one, unless the left one is clearly
// nearer.
bool RightOneLabels(const std::vector<const Widget*>& line, const Widget* left, const Widget* box,
                    const Widget* right) {
  const bool boxFirst = IsBox(line.front()), boxLast = IsBox(line.back());
  if (boxFirst != boxLast) return boxFirst;
  return right->box.left - box->box.right <= box->box.left - left->box.right + 2 * kLetterWidth;
}

// The caption that labels a box without a text of its own: its left or right neighbour on the line. Null when
// it has neither.
const Widget* NeighbourCaption(const Widget* box, const std::vector<Widget*>& all) {
  std::vector<const Widget*> line;
  for (const Widget* other : all) {
    const bool counts = other->type == xpWidgetClass_Button || other->type == xpWidgetClass_TextField ||
                        other->type == xpWidgetClass_ScrollBar ||
                        (other->type == xpWidgetClass_Caption && !other->text.empty());
    if (other == box || (counts && OnOneLine(box, other))) line.push_back(other);
  }
  std::stable_sort(line.begin(), line.end(),
                   [](const Widget* a, const Widget* b) { return a->box.left < b->box.left; });
  const auto at = std::find(line.begin(), line.end(), box);
  const auto captionAt = [&](auto it) { return (*it)->type == xpWidgetClass_Caption ? *it : nullptr; };
  const Widget* left = at == line.begin() ? nullptr : captionAt(at - 1);
  const Widget* right = at + 1 == line.end() ? nullptr : captionAt(at + 1);
  if (!left || !right) return left ? left : right;
  return RightOneLabels(line, left, box, right) ? right : left;
}

}  // namespace

std::vector<Widget*> VisibleWindows() {
  std::vector<Widget*> windows;
  for (Widget* root : roots) {
    if (root->visible && root->type == xpWidgetClass_MainWindow) windows.push_back(root);
  }
  return windows;
}

std::vector<Widget*> VisibleWithin(const Widget* widget) {
  std::vector<Widget*> list;
  Gather(widget, &list);
  return list;
}

bool IsBox(const Widget* widget) {
  const intptr_t behaviour = Property(widget, xpProperty_ButtonBehavior);
  return widget->type == xpWidgetClass_Button &&
         (behaviour == xpButtonBehaviorCheckBox || behaviour == xpButtonBehaviorRadioButton);
}

const char* ClassWord(const Widget* widget) {
  if (!IsBox(widget)) return ClassOf(widget->type).word;
  return Property(widget, xpProperty_ButtonBehavior) == xpButtonBehaviorCheckBox ? "checkbox" : "radio";
}

std::string StateOf(const Widget* widget) {
  if (IsBox(widget)) return Property(widget, xpProperty_ButtonState) ? "on" : "off";
  if (widget->type == xpWidgetClass_ScrollBar)
    return Number(Property(widget, xpProperty_ScrollBarSliderPosition));
  if (widget->type == xpWidgetClass_Progress) return Number(Property(widget, xpProperty_ProgressPosition));
  return "";
}

const std::string& LabelOf(const Widget* widget, const std::vector<Widget*>& all) {
  const Widget* caption = widget->text.empty() && IsBox(widget) ? NeighbourCaption(widget, all) : nullptr;
  return caption ? caption->text : widget->text;
}

std::vector<Widget*> ButtonsLabelled(const std::string& label, const std::vector<Widget*>& all) {
  std::vector<Widget*> found;
  for (Widget* widget : all) {
    if (widget->type != xpWidgetClass_Button) continue;
    const std::string& own = LabelOf(widget, all);
    if (!own.empty() && own == label) found.push_back(widget);
  }
  return found;
}

std::vector<Widget*> FieldsLabelled(const std::string& label, const std::vector<Widget*>& all) {
  std::vector<Widget*> found;
  for (const Widget* caption : all) {
    if (caption->type != xpWidgetClass_Caption || caption->text != label) continue;
    Widget* nearest = nullptr;
    for (Widget* field : all) {
      if (field->type != xpWidgetClass_TextField || field->box.left <= caption->box.left ||
          !OnOneLine(field, caption))
        continue;
      if (!nearest || field->box.left < nearest->box.left) nearest = field;
    }
    if (nearest && std::find(found.begin(), found.end(), nearest) == found.end()) found.push_back(nearest);
  }
  return found;
}

}  // namespace sim
