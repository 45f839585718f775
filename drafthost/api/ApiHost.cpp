// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/api/ApiHost.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <QCoreApplication>
#include <QString>

#include "acframe.h"
#include "drafthost/api/Documents.h"
#include "drafthost/api/Reactors.h"

namespace drafthost {
namespace {

Host* theHost = nullptr;
std::unique_ptr<Reactors> theReactors;
QMainWindow* theFrame = nullptr;
QWidget* theMainWindow = nullptr;
QWidget* theView = nullptr;
std::function<void()> keepDocking;
std::function<bool(QDockWidget*)> restoreDocking;

}  // namespace

ApiHost::ApiHost(Host& host) {
    theHost = &host;
    theReactors = std::make_unique<Reactors>(host);
}

ApiHost::~ApiHost() {
    theHost->shutDown();
    theReactors.reset();
    forgetDocuments();
    theHost = nullptr;
    setFrame(nullptr, nullptr, nullptr);
    setDocking({}, {});
}

void ApiHost::setFrame(QMainWindow* frame, QWidget* mainWindow, QWidget* view) {
    theFrame = frame;
    theMainWindow = mainWindow;
    theView = view;
}

void ApiHost::setDocking(std::function<void()> keep, std::function<bool(QDockWidget*)> restore) {
    keepDocking = std::move(keep);
    restoreDocking = std::move(restore);
}

Host& apiHost() {
    return *theHost;
}
Reactors& apiReactors() {
    return *theReactors;
}

std::string toUtf8(const ACHAR* text) {
    return text ? QString::fromUtf16(text).toStdString() : std::string();
}

std::u16string toUtf16(std::string_view text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size())).toStdU16String();
}

ACHAR* duplicate(std::string_view text) {
    const std::u16string wide = toUtf16(text);
    auto* copy = static_cast<ACHAR*>(std::malloc((wide.size() + 1) * sizeof(ACHAR)));
    if (copy) {
        std::memcpy(copy, wide.c_str(), (wide.size() + 1) * sizeof(ACHAR));
    }
    return copy;
}

bool copyTo(ACHAR* result, int size, std::string_view text) {
    const std::u16string wide = toUtf16(text);
    if (size < 0 || wide.size() + 1 > std::size_t(size)) {
        return false;
    }
    std::memcpy(result, wide.c_str(), (wide.size() + 1) * sizeof(ACHAR));
    return true;
}

}  // namespace drafthost

QMainWindow* acedGetAcadFrame() {
    return drafthost::theFrame;
}
QWidget* acedGetAcadDwgView() {
    return drafthost::theView;
}
QWidget* adsw_acadMainWnd() {
    return drafthost::theMainWindow;
}
void AdUiSaveDockingToolPositions() {
    if (drafthost::keepDocking) {
        drafthost::keepDocking();
    }
}
bool AdUiRestoreDockingToolPosition(QDockWidget* tool) {
    return drafthost::restoreDocking && drafthost::restoreDocking(tool);
}
void acedPumpMessage() {
    QCoreApplication::processEvents();
}
