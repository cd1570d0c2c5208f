// Placeholder panel until the panel window lands: no panel is created.
#include "Panel.h"

#include "Suites.h"

const AIPanelSuite* sAIPanel = nullptr;
const AIUIThemeSuite* sAIUITheme = nullptr;

static const SSuiteInit gPanelSuites[] = {
    {kAIPanelSuite, kAIPanelSuiteVersion, reinterpret_cast<const void**>(&sAIPanel)},
    {kAIUIThemeSuite, kAIUIThemeSuiteVersion, reinterpret_cast<const void**>(&sAIUITheme)},
};

void PanelGetSuites(const SSuiteInit** table, unsigned* count) {
  if (table) *table = gPanelSuites;
  if (count) *count = sizeof(gPanelSuites) / sizeof(gPanelSuites[0]);
}

AIErr PanelAdd() { return kNoErr; }
AIErr PanelRemove() { return kNoErr; }
void PanelShowHide() {}
bool PanelIsVisible() { return false; }
AIErr PanelChangeUITheme() { return kNoErr; }
