// ZC_Button: one widget of the panel, a picture button or a checkbox.
// Buttons are stored by value; the tooltip belongs to the command table.
#pragma once

#include "lbwin.h"

class ZC_Button {
 public:
  enum EButtonType : int32_t { eBtnNone = 0, eBtnPicture = 1, eBtnCheckBox = 2 };

  ZC_Button() = default;

  int SetDimentions(int x, int y, int w, int h);
  void SetType(EButtonType type) { m_type = type; }
  EButtonType GetType() const { return m_type; }
  void SetState(int state) { m_state = state; }
  int GetState() const { return m_state; }
  void SetFuncID(int id) { m_funcId = id; }
  int GetFuncID() const { return m_funcId; }
  int GetX() const { return m_x; }
  int GetY() const { return m_y; }
  int GetW() const { return m_w; }
  int GetH() const { return m_h; }
  void SetToolTip(const wchar_t* text) { m_tooltip = text; }
  const wchar_t* GetToolTip() const { return m_tooltip; }
  void SetBlueBorder(bool on) { m_blueBorder = on; }
  bool GetBlueBorder() const { return m_blueBorder; }

  // Inside [X, X + W) x [Y, Y + H).
  bool IsUnderCursor(int x, int y) const;
  // The 1-pixel frame: light on the left and top, dark on the right and
  // bottom.
  void DrawBorder(HDC hdc, unsigned long light, unsigned long dark) const;
  // Raised frame, or blue all round while the blue border is set.
  void DrawBorder(HDC hdc) const;
  // Sunken frame.
  void DrawClicked(HDC hdc) const;

 private:
  int32_t m_x = 0;
  int32_t m_y = 0;
  int32_t m_w = 10;
  int32_t m_h = 10;
  EButtonType m_type = eBtnNone;
  int32_t m_state = 0;
  int32_t m_funcId = 0;
  const wchar_t* m_tooltip = nullptr;
  bool m_blueBorder = false;
};
