// Reading and writing the paint of one mesh vertex under the three switches.
#include "color/ColorOpacity.h"

#include "Suites.h"

int CColorOpacity::sm_bUseColor = 1;
int CColorOpacity::sm_bUseOpacity = 0;
int CColorOpacity::sm_bUseAll = 0;

void CColorOpacity::Read(AIMeshVertexIterator vertex) {
  m_dOpacity = 1.0;
  if (sm_bUseColor || sm_bUseAll) lb::s::sMeshVertexIterator->GetColor(vertex, &m_Color);
  if (sm_bUseOpacity || sm_bUseAll) lb::s::sMeshVertexIterator->GetOpacity(vertex, &m_dOpacity);
}

void CColorOpacity::Write(AIMeshVertexIterator vertex) const {
  if (sm_bUseColor || sm_bUseAll) lb::s::sMeshVertexIterator->SetColor(vertex, &m_Color);
  if (sm_bUseOpacity || sm_bUseAll) lb::s::sMeshVertexIterator->SetOpacity(vertex, m_dOpacity);
}
