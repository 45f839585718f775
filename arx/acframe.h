// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Windows of the host. All of them are null in a host that runs without a frame.
#include "achar.h"

class QDockWidget;
class QMainWindow;
class QWidget;

ARX_EXPORT QMainWindow* acedGetAcadFrame();
ARX_EXPORT QWidget* adsw_acadMainWnd();
ARX_EXPORT QWidget* acedGetAcadDwgView();
/// Keeps where the docking tools of the frame stand, each under its object name, between starts of the host.
ARX_EXPORT void AdUiSaveDockingToolPositions();
/// Docks a tool where it stood when that was kept last; false when nothing is known of it.
ARX_EXPORT bool AdUiRestoreDockingToolPosition(QDockWidget* tool);
/// Handles one batch of waiting events of the host's event loop; what a module does while it waits.
ARX_EXPORT void acedPumpMessage();
