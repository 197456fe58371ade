// The layout of windows: a window is described as rows of cells, and this file makes widgets of them, places
// them, keeps their texts up to date and turns what the user does into calls of the cells' functions. Windows
// hold no number of pixels: every text is measured as the simulator will draw it.
//
// Cells that stand below each other in a group form columns; a group begins with a heading or an empty row. A
// row of a single cell reaches across the columns, and a value without label and text takes no room. What
// changes is asked again four times a second (of lively windows twenty times) while its window is open, and
// only texts that differ are given to the simulator; while no window is open nothing is asked at all.
//
// A field's text is checked at every key; the reason why it is refused stands in the window's last line. Enter
// accepts the text and presses the default button if there is one, else the keyboard goes back to the
// simulator. Tab and Shift-Tab accept it and go on to the next field. A click elsewhere in any of our windows,
// or on the close box, accepts it, too, or gives the old text back when it is refused; a button accepts first
// and does not act on a refused text, but for an exit, which accepts nothing. Escape gives the old text back,
// and a second one closes the window.
//
// A close box hides the window: it is made once, and lasts until DestroyWindows. Windows cascade from the
// screen's upper left corner, never leave the screen, and keep their distance from that corner when its size
// changes, also while they are closed. Nothing is remembered beyond that.
//
// Simulator's thread only, no lock held; the cells' functions are called in the same way.
#pragma once
#include <cstdint>
#include <span>
#include <string>

enum class CellKind : uint8_t {
  None,
  Label,    // a text that never changes
  Heading,  // the same, above a group
  Value,    // a text that changes, behind its label
  Field,    // a text for the user to change, behind its label
  Box,      // on or off, with its label behind it
  Button,   // does something when it is pressed
};

// Functions get the cell's `index`, so that one serves several cells that are alike. Those that act return what
// the window's last line says then, "" for nothing.
struct Cell {
  CellKind kind = CellKind::None;
  const char* label = "";
  int index = 0;
  int width = 0;  // of a value or field: room for so many characters
  int lines = 1;  // of a value: at most; its text is broken between words and at line feeds
  int limit = 0;  // of a field: most bytes, 0 for as many as the user likes
  // A value's text, or the text that is in force for a field.
  std::string (*text)(int index) = nullptr;
  // Why a field's text is refused, "" when it is good. Null: every text is.
  std::string (*check)(int index, const std::string& text) = nullptr;
  // Takes a field's new text, which has been checked. What `text` gives after it is what the field shows.
  std::string (*accept)(int index, const std::string& text) = nullptr;
  // Whether a box is on.
  bool (*isOn)(int index) = nullptr;
  // The user has changed a box.
  std::string (*turn)(int index, bool on) = nullptr;
  // The user has pressed a button.
  std::string (*press)(int index) = nullptr;
  bool isDefault = false;  // of a button: Enter in a field presses it; one beside fields is theirs alone
  bool isExit = false;     // of a button: it acts whatever stands in the fields, none of which is accepted
  // Whether a field, box or button can be used now. Null: always.
  bool (*isEnabled)(int index) = nullptr;
};

constexpr int maxRowCells = 6;
struct Row {
  Cell cells[maxRowCells] = {};
};

// Lives as long as the module: a window is known by the address of its plan.
struct WindowPlan {
  const char* title;
  std::span<const Row> rows;
  // Before the window is shown: takes up what its cells tell from then on. May be null.
  void (*opened)() = nullptr;
  bool isLively = false;  // shows what moves: asked again twenty times a second
};

// From now on windows may be opened and act (at enable), or do neither (at disable): open ones say so in their
// titles, in place of their values and in the last line; what was typed and not entered is given up, and
// everything is grey until the next enable. Fields and boxes are asked once more, when there are no locks.
void EnableWindows();
void DisableWindows();
// Shows a window in front of the others, made anew if need be, with the texts that are in force; a message in
// its last line is gone. A simulator that refuses a widget gets a log line, and nothing is shown.
void OpenWindow(const WindowPlan& plan);
void CloseWindow(const WindowPlan& plan);
bool IsWindowOpen(const WindowPlan& plan);
// Asks an open window's texts, boxes and what is enabled now instead of within a quarter of a second. Texts
// that the user has begun to change stay.
void RefreshWindow(const WindowPlan& plan);
// Whether the window is open with a text in a field that the user has begun to change.
bool HasOpenText(const WindowPlan& plan);
// Once a frame: lets open windows follow what they show and the screen's size. Without any it costs nothing.
void FollowWindows();
// At stop.
void DestroyWindows();

// What the last line says of a setting that the user has changed.
constexpr char saved[] = "Saved";
// With the reason that the settings file has given last; without a main log the simulator's own gets a line,
// too.
std::string NotSaved();
