// The panel's window side: its widgets and bitmaps, the subclassed window
// procedure and the text strip.
#pragma once

#include <vector>

#include "AITypes.h"
#include "ZC_Button.h"
#include "ZC_DIB.h"
#include "lbwin.h"

extern std::vector<ZC_Button> gButtons;
extern ZC_DIB gComposite;
extern ZC_DIB gLayer;
extern ZC_DIB gCheckOn;
extern ZC_DIB gCheckOff;
extern std::vector<int32_t> gColorLinked;
extern std::vector<int32_t> gOpacityLinked;
extern int32_t gColorCheckBox;
extern int32_t gOpacityCheckBox;
extern int32_t gPressed;
extern bool gTracking;
extern int32_t gCursorX;
extern int32_t gCursorY;
extern const wchar_t* gDefaultText;
extern const wchar_t* gLastText;
extern int32_t gPanelWidth;
extern int32_t gPanelHeight;
extern int32_t gLastBrightness;

// Builds the buttons and composes the panel picture.
void BuildWidgets();
// Builds the widgets, then subclasses the host panel's native window.
AIErr AddWidgets();
// Restores the window's procedure and destroys the window.
AIErr RemoveWidgets();

LRESULT NewWindowProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
// True when the panel handled the message; never changes `result`.
bool PanelWindowProc(long long& result, HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
// Hands the message to the window's procedure from before the subclassing.
LRESULT CallDefaultWindowProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);

// Shows `text` in the strip below the buttons unless it is already there
// (same pointer) and `force` is false.
void DrawTooltipArea(HDC hdc, const wchar_t* text, bool force);
