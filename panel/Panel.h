// The command panel as the frame sees it: created when the application has
// started, removed at shutdown, shown and hidden from the menu item.
#pragma once

#include "AITypes.h"

AIErr PanelAdd();
AIErr PanelRemove();
void PanelShowHide();
bool PanelIsVisible();
AIErr PanelChangeUITheme();
