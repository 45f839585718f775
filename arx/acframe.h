// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Windows of the host. All of them are null in a host that runs without a frame.
#include "achar.h"

class QMainWindow;
class QWidget;

ARX_EXPORT QMainWindow* acedGetAcadFrame();
ARX_EXPORT QWidget* adsw_acadMainWnd();
ARX_EXPORT QWidget* acedGetAcadDwgView();
/// Handles one batch of waiting events of the host's event loop; what a module does while it waits.
ARX_EXPORT void acedPumpMessage();
