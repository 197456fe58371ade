// The stand-in's widget library: message routes, class behaviour, life and death, console commands.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <tuple>
#include <utility>

#include "test_tools.h"
#include "unit/sim_talk.h"
#include "widgets/widgets.h"

namespace {

using sim::SimCommand;

std::vector<std::string> heard;           // "NAME MESSAGE P1 P2" in order of arrival
XPWidgetID window, button, check, radio;  // of the fixture
int swallow = 0;                          // message that Second handles

std::string NameOf(XPWidgetID id) { return static_cast<sim::Widget*>(id)->text; }

// Writes down messages that matter here.
int First(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t param2) {
  const std::set<XPWidgetMessage> withNumber = {1, 2, 7, 18, 10000};
  const std::set<XPWidgetMessage> withWidget = {13, 14, 16, 17, 1200, 1300, 1301, 1400};
  const bool widget = withWidget.contains(message);
  if (!widget && !withNumber.contains(message)) return 0;
  const std::string first = widget ? NameOf(reinterpret_cast<XPWidgetID>(param1)) : std::to_string(param1);
  heard.push_back(NameOf(id) + " " + std::to_string(message) + " " + first + " " + std::to_string(param2));
  return 0;
}

int Second(XPWidgetMessage message, XPWidgetID id, intptr_t, intptr_t) {
  if (message == 10000) heard.push_back(NameOf(id) + " second");
  return message == swallow;
}

// A close box that destroys the window it belongs to, from inside the click.
int DestroyAtClose(XPWidgetMessage message, XPWidgetID id, intptr_t, intptr_t) {
  if (message != xpMessage_CloseButtonPushed) return 0;
  XPDestroyWidget(id, 1);
  return 1;
}

int EatLetterX(XPWidgetMessage message, XPWidgetID, intptr_t param1, intptr_t) {
  XPKeyState_t* key = reinterpret_cast<XPKeyState_t*>(param1);
  if (message != xpMsg_KeyPress) return 0;
  if (key->key == 'y') key->key = 'Y';
  return key->key == 'x';
}

XPWidgetID Child(XPWidgetClass type, int left, int top, int right, const char* text,
                 XPWidgetID parent = nullptr) {
  return XPCreateWidget(left, top, right, top - 20, 1, text, 0, parent ? parent : window, type);
}

struct SimWidgets : testing::Test {
  void SetUp() override {
    sim::Options options;
    options.root = testing::TempDir() + "sim_widgets";
    options.rate = 0;
    options.circuit = false;
    ASSERT_EQ(sim::SimStart(options), 0);
    swallow = 0;
    window = XPCreateWidget(100, 500, 400, 200, 1, "Win", 1, nullptr, xpWidgetClass_MainWindow);
    button = Child(xpWidgetClass_Button, 110, 470, 170, "Go");
    check = Child(xpWidgetClass_Button, 110, 440, 130, "");
    XPSetWidgetProperty(check, xpProperty_ButtonBehavior, xpButtonBehaviorCheckBox);
    Child(xpWidgetClass_Caption, 135, 440, 200, "Trace");
    radio = Child(xpWidgetClass_Button, 210, 440, 300, "Near");
    XPSetWidgetProperty(radio, xpProperty_ButtonBehavior, xpButtonBehaviorRadioButton);
    XPAddWidgetCallback(window, First);
    heard.clear();
  }
  void TearDown() override {
    if (window) XPDestroyWidget(window, 1);
    EXPECT_EQ(sim::WidgetCount(), 0);
    EXPECT_EQ(sim::SimStop(), 0);
  }
};

using Lines = std::vector<std::string>;

// What was heard since the last call of this.
Lines Heard() { return std::exchange(heard, {}); }
intptr_t Get(XPWidgetID widget, XPWidgetPropertyID id) { return XPGetWidgetProperty(widget, id, nullptr); }

TEST_F(SimWidgets, NewestCallbackIsAskedFirstAndHandlingEndsTheRoute) {
  XPAddWidgetCallback(button, First);
  EXPECT_EQ(Heard(), Lines{"Go 1 1 0"});  // told at once that it is a further callback
  XPAddWidgetCallback(button, Second);
  const std::tuple<XPDispatchMode, int, Lines> cases[] = {
      {xpMode_Direct, 0, {"Go second", "Go 10000 7 8"}},
      {xpMode_Direct, 10000, {"Go second"}},
      {xpMode_Once, 0, {"Go second"}},
      {xpMode_UpChain, 0, {"Go second", "Go 10000 7 8", "Win 10000 7 8"}},
      {xpMode_UpChain, 10000, {"Go second"}},
      {xpMode_DirectAllCallbacks, 10000, {"Go second", "Go 10000 7 8"}}};
  for (const auto& [mode, swallowed, expected] : cases) {
    swallow = swallowed;
    EXPECT_EQ(XPSendMessageToWidget(button, 10000, mode, 7, 8), swallowed != 0);
    EXPECT_EQ(Heard(), expected);
  }
  XPAddWidgetCallback(radio, First);  // hears it though the other child swallows it
  heard.clear();
  EXPECT_EQ(XPSendMessageToWidget(window, 10000, xpMode_Recursive, 7, 8), 1);
  EXPECT_EQ(Heard(), (Lines{"Win 10000 7 8", "Go second", "Near 10000 7 8"}));
}

TEST_F(SimWidgets, ButtonsTellTheWindow) {
  // The last one is on already: silent.
  Talk(R"(press "Go" | press "Trace" | press "Win" "Trace" | press "Near" | press "Near")");
  EXPECT_EQ(Heard(), (Lines{"Win 1300 Go 0", "Win 1301  1", "Win 1301  0", "Win 1301 Near 1"}));
  XPSetWidgetProperty(check, xpProperty_ButtonState, 1);  // from code: no message
  Talk(R"(widgets -> ok window "Win" {button "Go"; checkbox "" on; caption "Trace"; radio "Near" on})");
  // Released beside the push button: lit while over it, no message.
  XPMouseState_t mouse = {120, 460, 0, 0};
  const intptr_t at = reinterpret_cast<intptr_t>(&mouse);
  EXPECT_EQ(XPSendMessageToWidget(button, xpMsg_MouseDown, xpMode_UpChain, at, 0), 1);
  EXPECT_EQ(Get(button, xpProperty_Hilited), 1);
  mouse.x = 300;
  XPSendMessageToWidget(button, xpMsg_MouseDrag, xpMode_Direct, at, 0);
  EXPECT_EQ(Get(button, xpProperty_Hilited), 0);
  XPSendMessageToWidget(button, xpMsg_MouseUp, xpMode_Direct, at, 0);
  EXPECT_EQ(Heard(), Lines{});
}

TEST_F(SimWidgets, PressFindsOneOrSaysWhy) {
  Talk(R"(press "Gone" -> error: no visible button or box "Gone" |
         press "Other" "Go" -> error: no visible window "Other")");
  XPSetWidgetProperty(button, xpProperty_Enabled, 0);
  Talk(R"(press "Go" -> error: button or box "Go" is disabled)");
  XPSetWidgetProperty(button, xpProperty_Enabled, 1);
  Child(xpWidgetClass_Button, 110, 400, 170, "Go");
  Talk(R"(press "Go" -> error: "Go" is ambiguous in window "Win")");
  // A window in front with one such button decides.
  XPWidgetID front = XPCreateWidget(0, 100, 100, 0, 1, "Front", 1, nullptr, xpWidgetClass_MainWindow);
  Child(xpWidgetClass_Button, 10, 60, 90, "Go", front);
  Talk(R"(press "Go")");
  XPHideWidget(front);
  Talk(R"(press "Front" "Go" -> error: no visible window "Front")");
  XPDestroyWidget(front, 1);
  Child(xpWidgetClass_SubWindow, 100, 470, 400, "");  // on top of the first button
  Talk(R"(press "Near")");
  Child(xpWidgetClass_Button, 380, 250, 390, "Off");
  XPSetWidgetGeometry(XPGetNthChildWidget(window, XPCountChildWidgets(window) - 1), 500, 250, 560, 230);
  Talk(R"(press "Off" -> error: "Off" is covered or lies outside its window)");
}

TEST_F(SimWidgets, BoxesTakeTheCaptionOnTheSideTheirLineShows) {
  // Captions before their boxes, touching on both sides: "A" [ ] "B" [ ].
  XPWidgetID boxes[2];
  for (int i = 0; i < 2; ++i) {
    Child(xpWidgetClass_Caption, 110 + 100 * i, 400, 190 + 100 * i, i ? "B" : "A");
    boxes[i] = Child(xpWidgetClass_Button, 190 + 100 * i, 400, 210 + 100 * i, "");
    XPSetWidgetProperty(boxes[i], xpProperty_ButtonBehavior, xpButtonBehaviorCheckBox);
  }
  Talk(R"(press "B")");
  EXPECT_EQ(Get(boxes[0], xpProperty_ButtonState), 0);
  EXPECT_EQ(Get(boxes[1], xpProperty_ButtonState), 1);
  Talk(R"(press "A")");
  EXPECT_EQ(Get(boxes[0], xpProperty_ButtonState), 1);
}

TEST_F(SimWidgets, TypingReplacesTheTextOfTheFieldRightOfTheLabel) {
  Child(xpWidgetClass_Caption, 110, 400, 180, "Port");
  XPWidgetID far = Child(xpWidgetClass_TextField, 300, 400, 380, "far");
  XPWidgetID field = Child(xpWidgetClass_TextField, 200, 400, 280, "old");
  XPAddWidgetCallback(field, EatLetterX);
  heard.clear();
  Talk(R"(type "Port" "a xy")");
  EXPECT_EQ(NameOf(field), "a Y");
  EXPECT_EQ(NameOf(far), "far");
  EXPECT_EQ(Heard(), (Lines{"Win 1400  0", "Win 1400 a 0", "Win 1400 a  0", "Win 1400 a Y 0"}));
  EXPECT_EQ(XPGetWidgetWithFocus(), nullptr);  // the return key gave it back
  XPSetWidgetProperty(field, xpProperty_MaxCharacters, 3);
  Talk(R"(type "Win" "Port" "65000")");
  EXPECT_EQ(NameOf(field), "650");
  Talk(R"(type "Port" "")");
  EXPECT_EQ(NameOf(field), "");
  XPSetWidgetProperty(field, xpProperty_Enabled, 0);
  Talk(R"(type "Port" "1" -> error: text field right of "Port" is disabled)");
}

TEST_F(SimWidgets, FieldKeysAtTheEdges) {
  XPWidgetID field = Child(xpWidgetClass_TextField, 200, 400, 280, "abcd");
  ASSERT_EQ(XPSetKeyboardFocus(field), field);
  // Character, virtual key, modifiers, text afterwards: forward delete at the end, backspace, left, insert, two
  // to the left with shift, over the selection, home, backspace at the start, forward delete.
  const std::tuple<char, unsigned char, int, const char*> keys[] = {{0, 0x2E, 0, "abcd"},
                                                                    {8, 0x08, 0, "abc"},
                                                                    {28, 0x25, 0, "abc"},
                                                                    {'X', 'X', 0, "abXc"},
                                                                    {28, 0x25, xplm_ShiftFlag, "abXc"},
                                                                    {28, 0x25, xplm_ShiftFlag, "abXc"},
                                                                    {'-', 0xB1, 0, "a-c"},
                                                                    {0, 0x24, 0, "a-c"},
                                                                    {8, 0x08, 0, "a-c"},
                                                                    {0, 0x2E, 0, "-c"}};
  for (const auto& [key, virtualKey, modifiers, expected] : keys) {
    sim::TypeKey(key, virtualKey, modifiers);
    EXPECT_EQ(NameOf(field), expected) << "key " << int{key} << " " << int{virtualKey};
  }
  XPSetWidgetProperty(field, xpProperty_EditFieldSelStart, -5);  // a plug-in's nonsense is clamped
  XPSetWidgetProperty(field, xpProperty_EditFieldSelEnd, 500);
  sim::TypeCharacter('z');
  EXPECT_EQ(NameOf(field), "z");
  EXPECT_EQ(XPSetKeyboardFocus(button), field);  // a button refuses the keyboard
  XPHideWidget(window);
  EXPECT_EQ(XPGetWidgetWithFocus(), nullptr);
}

TEST_F(SimWidgets, HiddenParentsHideAndExposeNothing) {
  XPWidgetID panel = Child(xpWidgetClass_SubWindow, 110, 300, 200, "Panel");
  XPWidgetID inner = Child(xpWidgetClass_Caption, 150, 310, 450, "Inner", panel);
  sim::Rect box;
  XPGetWidgetExposedGeometry(inner, &box.left, &box.top, &box.right, &box.bottom);
  EXPECT_EQ(box, (sim::Rect{150, 300, 200, 290}));
  EXPECT_EQ(XPGetWidgetForLocation(window, 160, 295, 1, 1), inner);
  EXPECT_EQ(XPGetWidgetForLocation(window, 160, 295, 0, 1), panel);
  EXPECT_EQ(XPGetWidgetForLocation(window, 99, 295, 1, 0), nullptr);
  heard.clear();
  XPHideWidget(panel);
  XPShowWidget(inner);  // was shown already: silent, and still hidden by its parent
  EXPECT_FALSE(XPIsWidgetVisible(inner));
  XPShowWidget(panel);
  EXPECT_TRUE(XPIsWidgetVisible(inner));
  XPPlaceWidgetWithin(inner, nullptr);
  EXPECT_FALSE(XPIsWidgetVisible(inner));
  XPPlaceWidgetWithin(panel, panel);  // refused: a family has no loops
  EXPECT_EQ(XPGetParentWidget(panel), window);
  XPPlaceWidgetWithin(inner, window);
  EXPECT_EQ(Heard(), (Lines{"Win 17 Panel 0", "Win 16 Panel 0", "Win 13 Inner 0"}));
  XPHideWidget(window);
  Talk("widgets");
}

TEST_F(SimWidgets, TreesDieParentsFirstAndOrphansLive) {
  XPWidgetID panel = Child(xpWidgetClass_SubWindow, 110, 300, 200, "Panel");
  XPWidgetID inner = Child(xpWidgetClass_Caption, 110, 300, 150, "Inner", panel);
  for (XPWidgetID widget : {panel, inner}) XPAddWidgetCallback(widget, First);
  const int before = sim::WidgetCount();
  heard.clear();
  XPDestroyWidget(panel, 0);
  EXPECT_EQ(Heard(), (Lines{"Panel 2 0 0", "Win 14 Panel 0"}));
  EXPECT_EQ(XPGetParentWidget(inner), nullptr);
  EXPECT_EQ(XPFindRootWidget(inner), nullptr);
  EXPECT_EQ(sim::WidgetCount(), before - 1);
  XPPlaceWidgetWithin(inner, window);
  heard.clear();
  XPDestroyWidget(window, 1);
  window = nullptr;
  EXPECT_EQ(Heard(), (Lines{"Win 2 0 0", "Inner 2 1 0"}));
  EXPECT_EQ(XPCreateWidget(0, 1, 1, 0, 1, "", 1, nullptr, 99), nullptr);
  EXPECT_EQ(XPCreateWidget(0, 1, 1, 0, 1, "", 1, nullptr, xpWidgetClass_None), nullptr);
}

TEST_F(SimWidgets, CloseBoxAndFixedLayout) {
  Talk(R"(close "Win" -> error: window "Win" has no close box |
         close "Won" -> error: no visible window "Won")");
  XPAddWidgetCallback(window, XPUFixedLayout);
  XPUMoveWidgetBy(window, 10, -20);
  EXPECT_EQ(static_cast<sim::Widget*>(button)->box, (sim::Rect{120, 450, 180, 430}));
  XPSetWidgetProperty(window, xpProperty_MainWindowHasCloseBoxes, 1);
  Talk(R"(close "Win")");
  EXPECT_EQ(Heard(), Lines{"Win 1200 Win 0"});
  EXPECT_TRUE(XPIsWidgetVisible(window));  // nobody handled it
  XPAddWidgetCallback(window, DestroyAtClose);
  Talk(R"(close "Win")");
  window = nullptr;
}

TEST_F(SimWidgets, DescriptorsAreCutWithoutTerminator) {
  XPSetWidgetDescriptor(button, "Start");
  for (const auto& [room, expected] :
       {std::pair{0, std::string("######")}, {3, "Sta###"}, {6, {"Start\0", 6}}}) {
    std::string text = "######";
    EXPECT_EQ(XPGetWidgetDescriptor(button, room ? text.data() : nullptr, room), 5);
    EXPECT_EQ(text, expected);
  }
  int exists = -1;
  EXPECT_EQ(XPGetWidgetProperty(button, 10001, &exists), 0);
  EXPECT_EQ(exists, 0);
  XPSetWidgetProperty(button, 10001, 0);
  XPGetWidgetProperty(button, 10001, &exists);
  EXPECT_EQ(exists, 1);
}

TEST_F(SimWidgets, PicturesAreWrittenBySuffix) {
  const std::string base = testing::TempDir() + "sim_widgets_picture";
  const auto picture = [&](const std::string& ending) {
    return SimCommand("picture \"" + base + ending + "\"");
  };
  EXPECT_EQ(picture(".bmp").rfind("error: ", 0), 0u);
  EXPECT_EQ(picture("/no/such.png").rfind("error: cannot write", 0), 0u);
  for (const auto& [ending, start] : {std::pair(".png", "\x89PNG\r\n\x1A\n"), std::pair(".svg", "<svg ")}) {
    ASSERT_EQ(picture(ending), "ok");
    EXPECT_EQ(tools::ReadFile(base + ending).rfind(start, 0), 0u);
    std::filesystem::remove(base + ending);
  }
}

}  // namespace
