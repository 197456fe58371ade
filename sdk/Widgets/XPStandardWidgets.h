// The built-in widget classes with their properties and messages.
#pragma once
#include "XPWidgetDefs.h"

enum {
  xpWidgetClass_None = 0,
  xpWidgetClass_MainWindow = 1,
  xpWidgetClass_SubWindow = 2,
  xpWidgetClass_Button = 3,
  xpWidgetClass_TextField = 4,
  xpWidgetClass_ScrollBar = 5,
  xpWidgetClass_Caption = 6,
  xpWidgetClass_GeneralGraphics = 7,
  xpWidgetClass_Progress = 8,
};

// Main window.
enum { xpMainWindowStyle_MainWindow = 0, xpMainWindowStyle_Translucent = 1 };
enum { xpProperty_MainWindowType = 1100, xpProperty_MainWindowHasCloseBoxes = 1200 };
enum { xpMessage_CloseButtonPushed = 1200 };
// Sub window.
enum { xpSubWindowStyle_SubWindow = 0, xpSubWindowStyle_Screen = 2, xpSubWindowStyle_ListView = 3 };
enum { xpProperty_SubWindowType = 1200 };
// Button.
enum {
  xpPushButton = 0,
  xpRadioButton = 1,
  xpWindowCloseBox = 3,
  xpLittleDownArrow = 5,
  xpLittleUpArrow = 6,
};
enum { xpButtonBehaviorPushButton = 0, xpButtonBehaviorCheckBox = 1, xpButtonBehaviorRadioButton = 2 };
enum { xpProperty_ButtonType = 1300, xpProperty_ButtonBehavior = 1301, xpProperty_ButtonState = 1302 };
enum { xpMsg_PushButtonPressed = 1300, xpMsg_ButtonStateChanged = 1301 };
// Text field.
enum { xpTextEntryField = 0, xpTextTransparent = 3, xpTextTranslucent = 4 };
enum {
  xpProperty_EditFieldSelStart = 1400,
  xpProperty_EditFieldSelEnd = 1401,
  xpProperty_EditFieldSelDragStart = 1402,
  xpProperty_TextFieldType = 1403,
  xpProperty_PasswordMode = 1404,
  xpProperty_MaxCharacters = 1405,
  xpProperty_ScrollPosition = 1406,
  xpProperty_Font = 1407,
  xpProperty_ActiveEditSide = 1408,
};
enum { xpMsg_TextFieldChanged = 1400 };
// Scroll bar.
enum { xpScrollBarTypeScrollBar = 0, xpScrollBarTypeSlider = 1 };
enum {
  xpProperty_ScrollBarSliderPosition = 1500,
  xpProperty_ScrollBarMin = 1501,
  xpProperty_ScrollBarMax = 1502,
  xpProperty_ScrollBarPageAmount = 1503,
  xpProperty_ScrollBarType = 1504,
  xpProperty_ScrollBarSlop = 1505,
};
enum { xpMsg_ScrollBarSliderPositionChanged = 1500 };
// Caption, general graphics, progress.
enum { xpProperty_CaptionLit = 1600 };
enum { xpProperty_GeneralGraphicsType = 1700 };
enum { xpProperty_ProgressPosition = 1800, xpProperty_ProgressMin = 1801, xpProperty_ProgressMax = 1802 };
