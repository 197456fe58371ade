// What the files of the layout share: a window that has been made. Internal to layout*.cpp.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "XPWidgets.h"
#include "panels/layout.h"

struct ScreenSize {
  int width, height;
  bool operator==(const ScreenSize&) const = default;
};

// A rectangle of the screen; y grows upwards.
struct Area {
  int left, top, right, bottom;
};

// A cell and its widgets.
struct CellWidgets {
  const Cell* cell;
  int row;
  int column;
  XPWidgetID label = nullptr;         // of a value, field or box; may be missing
  XPWidgetID body = nullptr;          // what the cell is there for; of a value its first line
  std::vector<XPWidgetID> moreLines;  // of a value
  std::string shown;                  // what was put into the body last, all lines of a value in one
  int usedLines = 1;                  // of a value: 0 when it takes no room
  bool enabled = true;
};

struct Window {
  const WindowPlan* plan;
  XPWidgetID widget = nullptr;
  std::vector<CellWidgets> cells;  // the last one is the line for messages if the window has it
  bool hasMessageLine = false;
  std::string message;
  int64_t refreshedAt = 0;  // monotonic, ns
  bool placed = false;      // has been shown before
  ScreenSize screen = {};   // that it was placed on
};

extern std::vector<std::unique_ptr<Window>> madeWindows;
// Whether windows may act (EnableWindows).
extern bool windowsEnabled;

// --- layout_place.cpp: measuring and placing ----------------------------------------------------------
ScreenSize AskScreenSize();
Area AreaOf(XPWidgetID widget);
// Breaks a text into at most `lines` lines that fit into the room for `width` characters; the last one ends in
// "..." when there is more. Control characters but line feeds become blanks.
std::vector<std::string> BreakText(std::string text, int width, int lines);
// Gives the window the size that its cells need and puts them in their places; its upper left corner stays
// where it is unless the screen ends there.
void PlaceWindow(Window* window);
// Puts the cells in their places within the window as it stands.
void PlaceCells(Window* window);
// A place for a window that is about to be shown: its own if no other open window begins there, else the next
// one of the cascade.
void Cascade(Window* window);
// Keeps the window's distance from the upper left corner when the screen has another size than it was placed
// on.
void FollowScreen(Window* window, ScreenSize now);

// --- layout_input.cpp: what the user does ------------------------------------------------------------
// Callbacks of a window and of its fields.
int HandleWindow(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2);
int HandleField(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2);
// Gives the keyboard back when a field of the window has it, or one of any window (null), which accepts its
// text while windows are enabled.
void GiveKeyboardBack(const Window* window);

// --- layout.cpp ---------------------------------------------------------------------------------------
// The window or the cell that a widget belongs to; null for none.
Window* WindowOf(XPWidgetID widget);
CellWidgets* CellOf(Window* window, XPWidgetID body);
bool IsOpen(const Window& window);
std::string TextOf(XPWidgetID widget);
// The text of a field that the user has changed and nobody has accepted yet differs from what was put there.
bool IsEdited(const CellWidgets& field);
// Puts the text in force into a field, whatever stands there.
void ResetField(CellWidgets* field);
void ResetFields(Window* window);
// Lets a box show what is in force.
void RefreshBox(const CellWidgets& box);
void HideWindow(Window* window);
void ShowMessage(Window* window, const std::string& message);
// Asks everything that may have changed.
void RefreshNow(Window* window);
