// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/ChangesBox.h"

#include "drafthost/editor/Document.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace drafthost {

QString askSavePath(QWidget* parent, const Document& document) {
    const QString start = QString::fromStdString(document.hasName() ? document.path() : document.title());
    const QString path = QFileDialog::getSaveFileName(parent, QObject::tr("Save drawing as"), start,
                                                      QObject::tr("Drawings (*.dxf *.DXF)"));
    return path.isEmpty() || !QFileInfo(path).suffix().isEmpty() ? path : path + QStringLiteral(".dxf");
}

ChangesAnswer askChanges(QWidget* parent, Document& document) {
    QMessageBox box(
        QMessageBox::Warning, QObject::tr("Unsaved changes"),
        QObject::tr("%1 has been changed. Save the changes?").arg(QString::fromStdString(document.title())),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
    box.setInformativeText(QString::fromStdString(document.path()));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
        case QMessageBox::Save:
            break;
        case QMessageBox::Discard:
            return {ChangesAnswer::Discard, {}};
        default:
            return {};
    }
    if (document.hasName() && !document.isReadOnly()) {
        return {ChangesAnswer::Save, {}};
    }
    const QString path = askSavePath(parent, document);
    return path.isEmpty() ? ChangesAnswer{} : ChangesAnswer{ChangesAnswer::Save, path.toStdString()};
}

}  // namespace drafthost
