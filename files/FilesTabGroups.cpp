// SPDX-License-Identifier: GPL-3.0-or-later
// Groups: queues that the user keeps in files.
#include "engine/record/TarnelData.h"
#include "files/FilesTab.h"
#include "state/GroupFile.h"

#include <QFileDialog>

namespace {

QString startFolder() {
    const std::deque<QByteArray>& history = TarnelData().PreviousDirectories;
    return history.empty() ? QString() : QFile::decodeName(history.front());
}

void tell(QWidget* owner, const QString& text) {
    QMessageBox box(QMessageBox::NoIcon, FilesTab::tr("Error"), text, QMessageBox::Ok, owner);
    box.exec();
}

}  // namespace

void FilesTab::LoadGroup() {
    QFileDialog dialog(this, tr("Load Group"), startFolder(),
                       tr("Tarnel Script Files (*.xml *.grp *.lst *.txt);;All Files (*)"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return;
    }
    QString message;
    const bool loaded = LoadGroupFile(dialog.selectedFiles().first(), &message);
    if (!message.isEmpty()) {
        tell(this, message);
    }
    if (loaded) {
        Q_EMIT TarnelData().Signals.RefreshSignal();
    }
}

void FilesTab::SaveGroup() {
    QFileDialog dialog(this, tr("Save Group"), startFolder(), tr("XML Files (*.xml);;All Files (*)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QStringLiteral("xml"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return;
    }
    Q_EMIT TarnelData().Signals.CollectSignal();
    QString error;
    if (!SaveGroupFile(dialog.selectedFiles().first(), &error)) {
        tell(this, error);
    }
}
