// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/FramePlace.h"

#include "drafthost/editor/RegistryFile.h"

#include <QDataStream>
#include <QDockWidget>
#include <QGuiApplication>
#include <QIODevice>
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

void keepTools(const QMainWindow& frame, RegistryFile& registry) {
    for (const QDockWidget* tool : frame.findChildren<QDockWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!tool->objectName().startsWith(u'{')) {
            continue;
        }
        QByteArray place;
        QDataStream stream(&place, QIODevice::WriteOnly);
        stream << qint32(frame.dockWidgetArea(const_cast<QDockWidget*>(tool))) << tool->isFloating()
               << tool->geometry();
        registry.write(UserRoot, key(("Tools\\" + tool->objectName().toStdString()).c_str()),
                       place.toBase64().toStdString());
    }
}

bool restoreTool(QMainWindow& frame, QDockWidget& tool, const RegistryFile& registry) {
    const QByteArray place = stored(registry, ("Tools\\" + tool.objectName().toStdString()).c_str());
    QDataStream stream(place);
    qint32 area = 0;
    bool floats = false;
    QRect geometry;
    stream >> area >> floats >> geometry;
    const bool isArea = area == Qt::LeftDockWidgetArea || area == Qt::RightDockWidgetArea ||
                        area == Qt::TopDockWidgetArea || area == Qt::BottomDockWidgetArea;
    if (stream.status() != QDataStream::Ok || !isArea || !geometry.isValid()) {
        return false;
    }
    frame.addDockWidget(static_cast<Qt::DockWidgetArea>(area), &tool);
    if (floats) {
        tool.setFloating(true);
        if (const QScreen* screen = QGuiApplication::screenAt(geometry.center())) {
            tool.setGeometry(placedInside(geometry, screen->availableGeometry()));
        }
    } else {
        frame.resizeDocks({&tool}, {geometry.width()}, Qt::Horizontal);
    }
    return true;
}

}  // namespace drafthost
