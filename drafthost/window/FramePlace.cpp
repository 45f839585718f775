// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/FramePlace.h"

#include "drafthost/editor/RegistryFile.h"

#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <QStyle>

namespace drafthost {

namespace {

constexpr const char* UserRoot = "HKEY_CURRENT_USER";

std::string key(const char* name) {
    return RegistryFile::productKey() + "\\Window\\" + name;
}

QByteArray stored(const RegistryFile& registry, const char* name) {
    const std::string text = registry.readString(UserRoot, key(name)).value_or("");
    return QByteArray::fromBase64(QByteArray::fromStdString(text));
}

}  // namespace

QRect placedInside(QRect place, const QRect& available) {
    place.setSize(place.size().boundedTo(available.size()));
    place.moveRight(std::min(place.right(), available.right()));
    place.moveBottom(std::min(place.bottom(), available.bottom()));
    place.moveLeft(std::max(place.left(), available.left()));
    place.moveTop(std::max(place.top(), available.top()));
    return place;
}

void restorePlace(QMainWindow& frame, const RegistryFile& registry) {
    const bool known = frame.restoreGeometry(stored(registry, "Geometry"));
    frame.restoreState(stored(registry, "Panels"));
    if (frame.isMaximized() || frame.isFullScreen()) {
        return;
    }
    const QScreen* screen = known ? QGuiApplication::screenAt(frame.geometry().center()) : nullptr;
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        return;
    }
    // Title bar and borders are not there yet and stand around what is placed here.
    constexpr int Border = 4;
    const int title = frame.style()->pixelMetric(QStyle::PM_TitleBarHeight) + Border;
    const QRect available = screen->availableGeometry().adjusted(Border, title, -Border, -Border);
    QRect place(QPoint(), known ? frame.size() : QSize(1000, 720));
    if (known) {
        place.moveTopLeft(frame.geometry().topLeft());
    } else {
        place.moveCenter(available.center());
    }
    frame.setGeometry(placedInside(place, available));
}

void keepPlace(const QMainWindow& frame, RegistryFile& registry) {
    registry.write(UserRoot, key("Geometry"), frame.saveGeometry().toBase64().toStdString());
    registry.write(UserRoot, key("Panels"), frame.saveState().toBase64().toStdString());
}

}  // namespace drafthost
