// The paint of one mesh vertex (colour and opacity) and the three
// process-wide switches that decide which half of it is read and written.
#pragma once

#include "AIMeshSuites.h"

class CColorOpacity {
 public:
  AIColor m_Color{};
  double m_dOpacity = 1.0;

  // Colour takes part when sm_bUseColor or sm_bUseAll is set; opacity
  // when sm_bUseOpacity or sm_bUseAll is set. Tested at every call.
  static int sm_bUseColor;    // initially 1
  static int sm_bUseOpacity;  // initially 0
  static int sm_bUseAll;      // initially 0

  // Sets m_dOpacity to 1.0, then reads what takes part. Host results are
  // ignored.
  void Read(AIMeshVertexIterator vertex);
  void Write(AIMeshVertexIterator vertex) const;
};
