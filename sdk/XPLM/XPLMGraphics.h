// Conversion between world coordinates (degrees, metres above sea level) and the simulator's local
// axes (metres: x east, y up, z south around a reference point that moves now and then); drawing helpers.
#pragma once
#include "XPLMDefs.h"

XPLM_API void XPLMWorldToLocal(double lat, double lon, double alt, double* x, double* y, double* z);
XPLM_API void XPLMLocalToWorld(double x, double y, double z, double* lat, double* lon, double* alt);

typedef int XPLMTextureID;
enum { xplm_Tex_GeneralInterface = 0, xplm_Tex_AircraftPaint = 1, xplm_Tex_AircraftLiteMap = 2 };
typedef int XPLMFontID;
enum { xplmFont_Basic = 0, xplmFont_Proportional = 18 };

XPLM_API void XPLMSetGraphicsState(int fog, int textureUnits, int lighting, int alphaTesting, int alphaBlending,
                                   int depthTesting, int depthWriting);
XPLM_API void XPLMBindTexture2d(int texture, int unit);
XPLM_API void XPLMGenerateTextureNumbers(int* textures, int count);
XPLM_API int XPLMGetTexture(XPLMTextureID texture);
// From drawing callbacks only. Colours are three floats from 0 to 1.
XPLM_API void XPLMDrawTranslucentDarkBox(int left, int top, int right, int bottom);
XPLM_API void XPLMDrawString(float* colour, int x, int y, char* text, int* wordWrapWidth, XPLMFontID font);
XPLM_API void XPLMDrawNumber(float* colour, int x, int y, double value, int digits, int decimals, int showSign,
                             XPLMFontID font);
XPLM_API void XPLMGetFontDimensions(XPLMFontID font, int* width, int* height, int* digitsOnly);
XPLM_API float XPLMMeasureString(XPLMFontID font, const char* text, int length);
