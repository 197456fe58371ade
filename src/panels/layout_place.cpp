// Measuring and placing: the one file that counts pixels.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "panels/layout_window.h"

namespace {

constexpr XPLMFontID font = xplmFont_Proportional;
constexpr int titleHeight = 20;
constexpr int titleRoom = 60;  // of the close boxes beside the title
constexpr int margin = 14;     // between window and cells
constexpr int columnGap = 16;
constexpr int labelGap = 10;    // between a label and what it belongs to
constexpr int linePadding = 9;  // beyond the letters' height
constexpr int rowGap = 2;
constexpr int groupGap = 8;  // above a heading, and the height of an empty row
constexpr int boxSide = 14;
constexpr int fieldPadding = 10;
constexpr int buttonPadding = 22;
constexpr int cascadeStart = 60;
constexpr int cascadeStep = 28;
constexpr int cascadeLength = 12;

int TextWidth(const std::string& text) {
  return static_cast<int>(XPLMMeasureString(font, text.c_str(), static_cast<int>(text.size())) + 0.999F);
}

int RoomFor(int characters) { return TextWidth(std::string(static_cast<size_t>(characters), '0')); }

int LineHeight() {
  int height = 0;
  XPLMGetFontDimensions(font, nullptr, &height, nullptr);
  return std::max(height, 8) + linePadding;
}

// Pixels of the label and of the body, with the gap between them in the former.
struct CellSize {
  int label, body;
  int Whole() const { return label + body; }
};

int LabelWidth(const Cell& cell) { return cell.label[0] == '\0' ? 0 : TextWidth(cell.label) + labelGap; }

CellSize SizeOf(const Cell& cell) {
  switch (cell.kind) {
    case CellKind::Value:
      return {LabelWidth(cell), RoomFor(cell.width)};
    case CellKind::Field:
      return {LabelWidth(cell), RoomFor(cell.width) + fieldPadding};
    case CellKind::Box:
      return {boxSide + labelGap, TextWidth(cell.label)};
    case CellKind::Button:
      return {0, TextWidth(cell.label) + buttonPadding};
    default:
      return {0, TextWidth(cell.label)};
  }
}

using Columns = std::array<CellSize, maxRowCells>;

// The rows of a window with the columns of their groups.
struct Measure {
  std::vector<Columns> columns;  // of each row
  std::vector<int> heights;      // of each row, with the gap above it
  std::vector<int> gaps;         // part of the height that lies above the row
  int width = 0, height = 0;     // of all rows
};

bool IsAlone(const Window& window, const CellWidgets& cell) {
  return std::count_if(window.cells.begin(), window.cells.end(),
                       [&](const CellWidgets& other) { return other.row == cell.row; }) == 1;
}

bool BeginsGroup(const Window& window, int row) {
  for (const CellWidgets& cell : window.cells) {
    if (cell.row == row) return cell.cell->kind == CellKind::Heading;
  }
  return true;  // an empty row
}

int WidthOf(const Columns& columns) {
  int width = 0;
  for (const CellSize& column : columns) {
    if (column.Whole() > 0) width += column.Whole() + (width > 0 ? columnGap : 0);
  }
  return width;
}

Measure MeasureWindow(const Window& window) {
  Measure measure;
  const int rows = static_cast<int>(window.plan->rows.size()) + (window.hasMessageLine ? 1 : 0);
  std::vector<int> firstOfGroup;
  firstOfGroup.reserve(static_cast<size_t>(rows));
  for (int row = 0; row < rows; ++row) {
    firstOfGroup.push_back(row == 0 || BeginsGroup(window, row) ? row : firstOfGroup.back());
  }
  const size_t count = static_cast<size_t>(rows);
  measure.columns.resize(count, Columns{});
  measure.heights.resize(count, groupGap);  // of rows without cells
  for (const CellWidgets& cell : window.cells) measure.heights[static_cast<size_t>(cell.row)] = 0;
  measure.gaps.resize(count, 0);
  const int line = LineHeight();
  for (const CellWidgets& cell : window.cells) {
    const size_t row = static_cast<size_t>(cell.row);
    measure.gaps[row] = cell.cell->kind == CellKind::Heading && row > 0 ? groupGap : 0;
    const int lines = cell.usedLines * line;
    measure.heights[row] = std::max(measure.heights[row], lines > 0 ? measure.gaps[row] + lines + rowGap : 0);
    const CellSize size = SizeOf(*cell.cell);
    const bool alone = IsAlone(window, cell);
    if (alone) measure.width = std::max(measure.width, size.Whole());
    // A lone cell stands in the first column, which its label takes part in alone.
    CellSize& column =
        measure.columns[static_cast<size_t>(firstOfGroup[row])][static_cast<size_t>(cell.column)];
    column.label = std::max(column.label, size.label);
    if (!alone) column.body = std::max(column.body, size.body);
  }
  for (size_t row = 0; row < count; ++row) {
    measure.columns[row] = measure.columns[static_cast<size_t>(firstOfGroup[row])];
    for (const CellWidgets& cell : window.cells) {
      if (static_cast<size_t>(cell.row) != row || !IsAlone(window, cell)) continue;
      const CellSize size = SizeOf(*cell.cell);
      if (size.label > 0) measure.width = std::max(measure.width, measure.columns[row][0].label + size.body);
    }
    measure.width = std::max(measure.width, WidthOf(measure.columns[row]));
    measure.height += measure.heights[row];
  }
  measure.width = std::max(measure.width, TextWidth(window.plan->title) + titleRoom);
  return measure;
}

void SetArea(XPWidgetID widget, const Area& area) {
  XPSetWidgetGeometry(widget, area.left, area.top, area.right, area.bottom);
}

// A text's rectangle ends where the text may end, so that none lies over its neighbour.
void PlaceCell(CellWidgets* cell, const Area& area, int labelWidth, int line) {
  const Cell& it = *cell->cell;
  const int bottom = area.top - line;
  const int bodyLeft = area.left + labelWidth;
  switch (it.kind) {
    case CellKind::Box: {
      const int middle = (area.top + bottom) / 2;
      SetArea(cell->body, {area.left, middle + boxSide / 2, area.left + boxSide, middle - boxSide / 2});
      SetArea(cell->label, {area.left + boxSide + labelGap, area.top, area.right, bottom});
      return;
    }
    case CellKind::Button:
      SetArea(cell->body, {area.left, area.top, area.left + SizeOf(it).body, bottom});
      return;
    default:
      break;
  }
  if (cell->label != nullptr) {
    SetArea(cell->label, {area.left, area.top, std::min(bodyLeft, area.left + LabelWidth(it)) - 1, bottom});
  }
  const int left = cell->label != nullptr ? bodyLeft : area.left;
  SetArea(cell->body, {left, area.top, std::min(area.right, left + SizeOf(it).body), bottom});
  int top = bottom;
  for (const XPWidgetID more : cell->moreLines) {
    SetArea(more, {left, top, std::min(area.right, left + SizeOf(it).body), top - line});
    top -= line;
  }
}

void PlaceMeasured(Window* window, const Measure& measure) {
  const Area area = AreaOf(window->widget);
  const int line = LineHeight();
  for (CellWidgets& cell : window->cells) {
    const size_t row = static_cast<size_t>(cell.row);
    int top = area.top - titleHeight - margin / 2 - measure.gaps[row];
    for (size_t above = 0; above < row; ++above) top -= measure.heights[above];
    int left = area.left + margin;
    for (size_t column = 0; column < static_cast<size_t>(cell.column); ++column) {
      left += measure.columns[row][column].Whole() + columnGap;
    }
    const CellSize& column = measure.columns[row][static_cast<size_t>(cell.column)];
    const int right = IsAlone(*window, cell) ? area.right - margin : left + column.Whole();
    PlaceCell(&cell, {left, top, right, top - line}, column.label, line);
  }
}

// The nearest place at which a window of that size is on the screen; what does not fit ends below and at the
// right, so that title and close box stay in reach.
Area OnScreen(const Area& area, ScreenSize size) {
  const int width = area.right - area.left;
  const int height = area.top - area.bottom;
  const int left = std::max(0, std::min(area.left, size.width - width));
  const int top = std::min(size.height, std::max(area.top, height));
  return {left, top, left + width, top - height};
}

void MoveWindow(Window* window, const Area& area) {
  SetArea(window->widget, area);
  PlaceCells(window);
}

bool IsPlaceTaken(const Window& window, const Area& area) {
  return std::any_of(madeWindows.begin(), madeWindows.end(), [&](const auto& other) {
    if (other.get() == &window || !IsOpen(*other)) return false;
    const Area there = AreaOf(other->widget);
    return std::abs(there.left - area.left) < cascadeStep / 2 &&
           std::abs(there.top - area.top) < cascadeStep / 2;
  });
}

}  // namespace

ScreenSize AskScreenSize() {
  ScreenSize size = {};
  XPLMGetScreenSize(&size.width, &size.height);
  return size;
}

Area AreaOf(XPWidgetID widget) {
  Area area = {};
  XPGetWidgetGeometry(widget, &area.left, &area.top, &area.right, &area.bottom);
  return area;
}

std::vector<std::string> BreakText(std::string text, int width, int lines) {
  constexpr char more[] = "...";
  for (char& character : text) {
    if (static_cast<unsigned char>(character) < ' ' && character != '\n') character = ' ';
  }
  const int room = RoomFor(width);
  std::vector<std::string> broken;
  size_t at = 0;
  while (at < text.size() && static_cast<int>(broken.size()) < lines) {
    const size_t end = std::min(text.find('\n', at), text.size());
    const bool isLast = static_cast<int>(broken.size()) == lines - 1;
    std::string line = text.substr(at, end - at);
    size_t next = std::min(end + 1, text.size());
    if (TextWidth(line) > room || (isLast && next < text.size())) {
      const std::string mark = isLast ? more : "";
      while (!line.empty() && TextWidth(line + mark) > room) {
        // Never within a character of several bytes.
        do line.pop_back();
        while (!line.empty() && (static_cast<unsigned char>(text[at + line.size()]) & 0xC0) == 0x80);
      }
      const size_t blank = line.rfind(' ');
      const bool inWord = at + line.size() < end && text[at + line.size()] != ' ';
      if (!isLast && inWord && blank != std::string::npos && blank > 0) line.resize(blank);
      if (line.empty()) line = text.substr(at, 1);  // no room at all: go on all the same
      next = at + line.size();
      while (next < end && text[next] == ' ') ++next;
      if (next == end && next < text.size()) ++next;
      line += mark;
    }
    broken.push_back(line);
    at = next;
  }
  return broken;
}

void PlaceCells(Window* window) { PlaceMeasured(window, MeasureWindow(*window)); }

void PlaceWindow(Window* window) {
  const Measure measure = MeasureWindow(*window);
  Area area = AreaOf(window->widget);
  area.right = area.left + measure.width + 2 * margin;
  area.bottom = area.top - titleHeight - measure.height - margin;
  MoveWindow(window, OnScreen(area, AskScreenSize()));
}

void Cascade(Window* window) {
  const ScreenSize size = AskScreenSize();
  FollowScreen(window, size);
  PlaceWindow(window);
  const Area area = AreaOf(window->widget);
  if (std::exchange(window->placed, true) && !IsPlaceTaken(*window, area)) return;
  for (int step = 0; step < cascadeLength; ++step) {
    const int offset = cascadeStart + step * cascadeStep;
    Area place = {offset, size.height - offset, 0, 0};
    place.right = place.left + area.right - area.left;
    place.bottom = place.top - (area.top - area.bottom);
    place = OnScreen(place, size);
    if (IsPlaceTaken(*window, place) && step < cascadeLength - 1) continue;
    MoveWindow(window, place);
    return;
  }
}

void FollowScreen(Window* window, ScreenSize now) {
  const ScreenSize before = std::exchange(window->screen, now);
  if (now == before || !window->placed) return;
  Area area = AreaOf(window->widget);
  area.top += now.height - before.height;
  area.bottom += now.height - before.height;
  MoveWindow(window, OnScreen(area, now));
}
