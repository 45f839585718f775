// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one host that the functions of arx/ work on. They are plain functions without a host among their
// arguments, so there has to be one place that knows it.

#include <functional>
#include <string>
#include <string_view>

#include "achar.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"

class QDockWidget;
class QMainWindow;
class QWidget;

namespace drafthost {

/// Makes a host the one behind the functions of arx/, for as long as it lives.
class ApiHost {
  public:
    explicit ApiHost(Host& host);
    ~ApiHost();
    ApiHost(const ApiHost&) = delete;
    ApiHost& operator=(const ApiHost&) = delete;

    /// What modules get as the host's windows; all null without a frame. The frame comes twice because its
    /// type is not known here.
    static void setFrame(QMainWindow* frame, QWidget* mainWindow, QWidget* view);
    /// How the frame keeps the places of docking tools and finds them again.
    static void setDocking(std::function<void()> keep, std::function<bool(QDockWidget*)> restore);
};

/// The host in force.
Host& apiHost();

std::string toUtf8(const ACHAR* text);
std::u16string toUtf16(std::string_view text);
/// A copy that the receiver frees with free().
ACHAR* duplicate(std::string_view text);
/// Copies into a buffer of so many units with the end mark; false when it does not fit.
bool copyTo(ACHAR* result, int size, std::string_view text);

}  // namespace drafthost
