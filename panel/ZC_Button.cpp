// The panel's picture buttons and checkboxes: drawing, hit tests and states.
#include "ZC_Button.h"

int ZC_Button::SetDimentions(int x, int y, int w, int h) {
  m_x = x;
  m_y = y;
  m_w = w;
  m_h = h;
  return 0;
}

bool ZC_Button::IsUnderCursor(int x, int y) const {
  return m_x <= x && x < m_x + m_w && m_y <= y && y < m_y + m_h;
}

void ZC_Button::DrawBorder(HDC hdc, unsigned long light, unsigned long dark) const {
  HPEN lightPen = CreatePen(PS_SOLID, 1, static_cast<COLORREF>(light));
  HPEN darkPen = CreatePen(PS_SOLID, 1, static_cast<COLORREF>(dark));
  // Left column bottom-up, then the top row; line ends are exclusive, so
  // the corners belong to the stroke that starts there.
  HGDIOBJ old = SelectObject(hdc, lightPen);
  MoveToEx(hdc, m_x, m_y + m_h - 2, nullptr);
  LineTo(hdc, m_x, m_y);
  LineTo(hdc, m_x + m_w - 1, m_y);
  // Right column top-down, then the bottom row right to left.
  SelectObject(hdc, darkPen);
  MoveToEx(hdc, m_x + m_w - 1, m_y, nullptr);
  LineTo(hdc, m_x + m_w - 1, m_y + m_h - 1);
  LineTo(hdc, m_x - 1, m_y + m_h - 1);
  SelectObject(hdc, old);
  DeleteObject(lightPen);
  DeleteObject(darkPen);
}

void ZC_Button::DrawBorder(HDC hdc) const {
  if (m_blueBorder)
    DrawBorder(hdc, 0xFF0000, 0xFF0000);
  else
    DrawBorder(hdc, 0xFFFFFF, 0x808080);
}

void ZC_Button::DrawClicked(HDC hdc) const { DrawBorder(hdc, 0x808080, 0xFFFFFF); }
