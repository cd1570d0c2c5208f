// The command table: one row per panel button, with its place in the
// 6 x 7 grid, its picture, its command id and its tooltip, and the
// accessors the panel lays itself out with.
#pragma once

#include <cstdint>

#include "LBModule.h"

struct SButtonDef {
  int32_t row;          // grid row, 0 at the top
  int32_t column;       // grid column, 0 at the left
  int32_t picId;        // picture id (carried, not used by the panel)
  const char* picName;  // name of the button's "BMPP" resource
  int32_t funcId;       // command id passed to the dispatcher
  const wchar_t* tooltip;
};

constexpr unsigned kButtonCount = 37;
extern const SButtonDef gButtonDefs[kButtonCount];

// Number of buttons (37).
unsigned BtnsGetCount();
// Client size the buttons need; null pointers are skipped.
void BtnsGetArea(int* w, int* h);
// Fields of row i; 0 or null for i of 37 or more.
int BtnGetFuncID(unsigned i);
int BtnGetPicID(unsigned i);
const char* BtnGetPicStr(unsigned i);
const wchar_t* BtnGetTooltip(unsigned i);
// Rectangle of button i; nothing is written for i of 37 or more.
void BtnGetDimentions(unsigned i, int* x, int* y, int* w, int* h);

// Places of the two checkboxes and their icons, for a thing of size w x h.
void BtnCbColorGetPos(int* x, int* y, int w, int h);
void BtnCbOpacityGetPos(int* x, int* y, int w, int h);
void BtnImgColorGetPos(int* x, int* y, int w, int h);
void BtnImgOpacityGetPos(int* x, int* y, int w, int h);
const wchar_t* BtnCbColorGetTooltip();
const wchar_t* BtnCbOpacityGetTooltip();
const char* BtnImgColorGetPicStr();
const char* BtnImgOpacityGetPicStr();
int BtnImgColorGetPicID();
int BtnImgOpacityGetPicID();
// The panel's default text: name and version.
const wchar_t* BtnsVersionGetTooltip();
