// The stand-in's widget library: message routes, class behaviour, life and death, console commands.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <tuple>
#include <utility>

#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "test_tools.h"
#include "unit/sim_talk.h"
#include "widgets/picture.h"
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
  Talk(R"(widgets -> ok window "Win" {button "Go"; checkbox "Trace" on; caption "Trace"; radio "Near" on})");
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
  Talk(R"(press "Off" -> error: "Off" is covered or lies outside its window or the screen)");
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

TEST_F(SimWidgets, TheRightCaptionComesFirstUnlessTheLeftOneIsClearlyNearer) {
  // A heading before two radio buttons; a caption before its box with the next column far to the right.
  Child(xpWidgetClass_Caption, 110, 400, 145, "Mode");
  for (int i = 0; i < 2; ++i) {
    XPWidgetID box = Child(xpWidgetClass_Button, 150 + 100 * i, 400, 164 + 100 * i, "");
    XPSetWidgetProperty(box, xpProperty_ButtonBehavior, xpButtonBehaviorRadioButton);
    Child(xpWidgetClass_Caption, 172 + 100 * i, 400, 230 + 100 * i, i ? "Slow" : "Fast");
  }
  Child(xpWidgetClass_Caption, 110, 370, 160, "On");
  XPWidgetID box = Child(xpWidgetClass_Button, 165, 370, 179, "");
  XPSetWidgetProperty(box, xpProperty_ButtonBehavior, xpButtonBehaviorCheckBox);
  Child(xpWidgetClass_Caption, 260, 370, 300, "Port");
  Child(xpWidgetClass_TextField, 310, 370, 390, "");
  Talk(R"(press "Slow" | press "On" | press "Mode" -> error: no visible button or box "Mode")");
  const std::string list = SimCommand("widgets");
  EXPECT_NE(list.find(R"(radio "Fast" off; caption "Fast"; radio "Slow" on)"), std::string::npos) << list;
  EXPECT_NE(list.find(R"(checkbox "On" on; caption "Port")"), std::string::npos) << list;
}

TEST_F(SimWidgets, KeysGoToTheWidgetWithTheKeyboard) {
  static Lines keys;  // what reaches the window: "CHARACTER VIRTUAL-KEY FLAGS"
  static bool taken;
  keys.clear();
  taken = false;
  const XPWidgetFunc_t listen = [](XPWidgetMessage message, XPWidgetID, intptr_t param1, intptr_t) {
    if (message != xpMsg_KeyPress) return 0;
    const XPKeyState_t& key = *reinterpret_cast<const XPKeyState_t*>(param1);
    keys.push_back(std::to_string(key.key) + " " + std::to_string(static_cast<unsigned char>(key.vkey)) + " " +
                   std::to_string(key.flags));
    return taken ? 1 : 0;
  };
  XPAddWidgetCallback(window, listen);
  XPWidgetID one = Child(xpWidgetClass_TextField, 110, 400, 200, "ab");
  XPWidgetID two = Child(xpWidgetClass_TextField, 210, 400, 300, "cd");
  Talk("key enter | key -> error: usage: key NAME");  // nobody has it: fine
  EXPECT_NE(SimCommand("key f25").find("error: the keys are enter, escape, tab, "), std::string::npos);
  EXPECT_EQ(std::exchange(keys, {}), Lines{});
  ASSERT_EQ(XPSetKeyboardFocus(one), one);
  // What the field wants itself never reaches the window; enter and tab do, and are the field's when it is not
  // taken.
  const std::tuple<const char*, bool, Lines, XPWidgetID> cases[] = {
      {"f1", false, {"0 112 8", "0 112 16"}, one},
      {"up", false, {"30 38 8", "30 38 16"}, one},
      {"backspace", false, {}, one},
      {"tab", true, {"9 9 8", "9 9 16"}, one},
      {"tab", false, {"9 9 8", "9 9 16"}, two},  // up and down, though the keyboard moved in between
      {"backtab", false, {"9 9 9", "9 9 17"}, one},
      {"enter", true, {"13 13 8", "13 13 16"}, one},
      {"enter", false, {"13 13 8"}, nullptr}};
  for (const auto& [name, take, expected, owner] : cases) {
    taken = take;
    Talk(std::string("key ") + name);
    EXPECT_EQ(std::exchange(keys, {}), expected) << name;
    EXPECT_EQ(XPGetWidgetWithFocus(), owner) << name;
  }
  EXPECT_EQ(NameOf(one), "a");
  XPSetKeyboardFocus(two);
  Talk("key escape");
  EXPECT_EQ(XPGetWidgetWithFocus(), nullptr);
  EXPECT_EQ(keys, Lines{});
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
  EXPECT_EQ(XPGetWidgetUnderlyingWindow(panel), nullptr);  // none here
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

// What a picture is of, in a file that is gone again; "" unless it was written.
std::string Picture(const std::string& ending) {
  const std::string file = testing::TempDir() + "sim_widgets_picture" + ending;
  EXPECT_EQ(SimCommand("picture \"" + file + "\""), "ok");
  const std::string content = tools::ReadFile(file);
  std::filesystem::remove(file);
  return content;
}

TEST_F(SimWidgets, PicturesThatCannotBeWrittenSayWhy) {
  Talk(R"(picture /tmp/a.bmp -> error: the picture's name must end in .png or .svg: "/tmp/a.bmp" |
         picture /no/such.png -> error: cannot write "/no/such.png")");
}

TEST_F(SimWidgets, VectorPicturesTellWhereEverythingLies) {
  XPSetWidgetProperty(window, xpProperty_MainWindowHasCloseBoxes, 1);
  XPWidgetID field = Child(xpWidgetClass_TextField, 110, 400, 160, "a<\"&\xFC and very long");
  XPSetKeyboardFocus(field);
  XPSetWidgetProperty(button, xpProperty_Enabled, 0);
  const std::string svg = Picture(".svg");
  const std::string measured =
      std::to_string(135 + static_cast<int>(XPLMMeasureString(xplmFont_Basic, "Trace", 5)));
  for (const std::string& part :
       {std::string(R"(data-box="86 514 414 186" )"),  // of the picture, with its margin
        std::string(R"(data-class="window" data-text="Win" data-state="" data-box="100 500 400 200" )"),
        std::string(
            R"(data-class="button" data-text="Go" data-state="" data-box="110 470 170 450" data-enabled="0")"),
        std::string(R"(data-class="checkbox" data-text="" data-state="off" data-box="110 440 130 420" )"
                    R"(data-label="Trace">)"),
        R"(data-text="Trace" data-state="" data-box="135 440 200 420" data-text-box="135 435 )" + measured +
            " 425\"",
        std::string(R"(data-class="radio" data-text="Near" data-state="off" data-box="210 440 300 420" )"),
        // The caret stands at the end, and the field shows what fits into it.
        std::string(R"(data-text="a&lt;&quot;&amp;? and very long")"),
        std::string(R"(data-focus="1" data-text-box="113 395 155 385">)"), std::string(">ry long</text>")})
    EXPECT_NE(svg.find(part), std::string::npos) << part << "\n" << svg;
  EXPECT_LT(svg.find(R"(data-text="Win")"), svg.find(R"(data-text="Go")"));
}

TEST_F(SimWidgets, TheScreenHasASizeAndCutsPictures) {
  int size[2] = {};
  const auto screen = [&] {
    XPLMGetScreenSize(&size[0], &size[1]);
    return std::pair(size[0], size[1]);
  };
  EXPECT_EQ(screen(), std::pair(1024, 768));
  Talk(R"(screen 640 480 | screen 639 480 -> error: the screen is 640 to 5120 pixels wide |
         screen 640 2881 -> error: the screen is 480 to 2880 pixels high | screen 9 -> error: screen W H)");
  EXPECT_EQ(screen(), std::pair(640, 480));
  // The window stays, its title bar is off the screen, and so is what nobody can click any more.
  EXPECT_EQ(static_cast<sim::Widget*>(window)->box, (sim::Rect{100, 500, 400, 200}));
  EXPECT_NE(Picture(".svg").find(R"(data-box="86 480 414 186")"), std::string::npos);
  XPUMoveWidgetBy(button, 0, 30);
  XPSetWidgetProperty(window, xpProperty_MainWindowHasCloseBoxes, 1);
  Talk(R"(press "Near" | press "Go" -> error: "Go" is covered or lies outside its window or the screen |
         close "Win" -> error: the close boxes of window "Win" are covered or off the screen)");
  XPHideWidget(window);
  EXPECT_NE(Picture(".svg").find("no window on the screen"), std::string::npos);
}

TEST_F(SimWidgets, PixelPicturesShowTheFrontWindowOnTop) {
  XPWidgetID other = XPCreateWidget(150, 480, 300, 300, 1, "Other", 1, nullptr, xpWidgetClass_MainWindow);
  const auto pixels = [] {
    std::vector<sim::Colour> title;  // two points of the title bars, left of the texts
    sim::Drawing drawing = sim::DrawScreen(sim::VisibleWindows());
    const std::vector<sim::Colour> all = sim::Pixels(drawing);
    const int width = drawing.width * sim::kPictureScale;
    for (const auto& [x, y] : {std::pair(120, 490), {160, 465}}) {
      const int column = (x - drawing.left) * sim::kPictureScale, row = (drawing.top - y) * sim::kPictureScale;
      title.push_back(all[static_cast<size_t>(row * width + column)]);
    }
    return title;
  };
  const std::vector<sim::Colour> front = pixels();
  EXPECT_EQ(front[0], front[1]);  // both are title bars
  XPBringRootWidgetToFront(window);
  EXPECT_EQ(pixels()[0], front[0]);
  EXPECT_NE(pixels()[1], front[1]);
  XPDestroyWidget(other, 1);
}

}  // namespace
