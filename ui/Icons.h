#pragma once
// Pictures of buttons and tabs from the module's resources.
#include "html/HtmlResources.h"

#include <QIcon>

/// The picture of that name; an empty icon when there is none.
inline QIcon ResourceIcon(const QString& name) {
    QPixmap picture;
    picture.loadFromData(FindHtmlResource(name, HtmlResourceKind::Data));
    return QIcon(picture);
}
