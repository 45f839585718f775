// SPDX-License-Identifier: GPL-3.0-or-later
// The left half of the page: folders, the files of the chosen one, and the filter.
#include "engine/record/TarnelData.h"
#include "files/BrowseModel.h"
#include "files/FilesTab.h"
#include "files/FilterDlg.h"
#include "files/FolderLinks.h"
#include "files/QueueEdit.h"
#include "ui_FilesTab.h"

#include <QFile>
#include <QMenu>
#include <QScrollBar>
#include <QSet>

namespace {

/// How long a folder is waited for before the window goes on without it.
constexpr int PatienceMs = 100;
/// What is listed while no filter is in use.
const QString DrawingMask = QStringLiteral("*.dwg,*.dxf");

}  // namespace

void FilesTab::setTitle() {
    const CTarnelData& data = TarnelData();
    browseModel->SetTitle(data.UseFilter != 0 ? tr("Files (%1)").arg(data.Filter) : tr("Drawing Files"));
}

void FilesTab::onFolderSelected(const QByteArray& folder) {
    listing.BreakOff();
    endListing();
    browseModel->Clear();
    if (folder.isEmpty()) {
        return;
    }
    RememberFolder(TarnelData(), folder);
    fillFileList(QFile::decodeName(folder));
}

// A copy of the folder: it is mostly an entry of the history, which changes here.
void FilesTab::ShowFolder(QByteArray folder, bool open) {
    BrowseTree::Hows how = BrowseTree::Silent;
    how.setFlag(BrowseTree::Expand, open);
    ui->tree->SelectPath(folder, how);
    RememberFolder(TarnelData(), folder);
    fillFileList(QFile::decodeName(folder));
}

void FilesTab::fillFileList(const QString& newDirectory) {
    startListing(newDirectory, false);
}

void FilesTab::refillFileList() {
    if (listing.IsRunning()) {
        refillWanted = true;
        return;
    }
    startListing(watcher.Directory(), true);
}

void FilesTab::startListing(const QString& newDirectory, bool keepRows) {
    const CTarnelData& data = TarnelData();
    listing.BreakOff();
    refillWanted = false;
    gathered = {};
    keepingRows = keepRows;
    directory = newDirectory;
    if (!keepRows) {
        browseModel->Clear();
        // Armed before the folder is read, so that nothing which comes up meanwhile is missed.
        watcher.SetPaused(true);
        watcher.SetDirectory(directory);
        watcher.SetWatchSubtree(data.Recurse != 0);
        watcher.SetWatchDirs(data.Recurse != 0);
        watcher.SetPaused(!data.DoDirRefresh);
    }
    const ListRequest request{directory, data.UseFilter != 0 ? data.Filter : DrawingMask, data.Recurse != 0,
                              data.IncludeReadOnly != 0};
    const auto work = [this, request](SlowJob::Channel& channel) {
        ListFolder(
            request, [&channel] { return channel.Stopped(); },
            [&](FoundFiles files) {
                channel.Deliver([this, portion = std::make_shared<FoundFiles>(std::move(files))] {
                    takeFiles(*portion);
                });
            });
    };
    listing.Start(work, [this] { endListing(); });
    listing.WaitFor(PatienceMs);
    if (listing.IsRunning()) {
        ui->fileList->viewport()->setCursor(Qt::BusyCursor);
    }
}

void FilesTab::takeFiles(const FoundFiles& files) {
    if (!keepingRows) {
        browseModel->Append(files);
        return;
    }
    gathered.Paths.insert(gathered.Paths.end(), files.Paths.begin(), files.Paths.end());
    gathered.IsLink.insert(gathered.IsLink.end(), files.IsLink.begin(), files.IsLink.end());
}

/// The listing is complete, or has been broken off: what has been found stays.
void FilesTab::endListing() {
    ui->fileList->viewport()->unsetCursor();
    if (!std::exchange(keepingRows, false)) {
        browseModel->Sort();
    } else {
        QSet<QString> selected;
        for (const int row : ui->fileList->SelectedRows()) {
            selected.insert(browseModel->Path(row));
        }
        const int scrolled = ui->fileList->verticalScrollBar()->value();
        browseModel->Replace(std::exchange(gathered, {}));
        std::vector<int> rows;
        for (int row = 0; !selected.isEmpty() && row < browseModel->rowCount(); ++row) {
            if (selected.contains(browseModel->Path(row))) {
                rows.push_back(row);
            }
        }
        ui->fileList->SelectRows(rows);
        ui->fileList->ScrollTo(scrolled);
    }
    if (refillWanted) {
        refillWanted = false;
        QMetaObject::invokeMethod(this, &FilesTab::refillFileList, Qt::QueuedConnection);
    }
}

void FilesTab::openFirstSelected() {
    const std::vector<int> rows = ui->fileList->SelectedRows();
    if (rows.empty()) {
        return;
    }
    const int row = rows.front();
    // By the row's number in the order found, and not by its place in the list.
    if (TarnelData().BrowseIsLink[static_cast<std::size_t>(row)] == 0) {
        AddSelectedToQueue();
    } else {
        enterLink(browseModel->Path(row));
    }
}

void FilesTab::enterLink(const QString& path) {
    const auto work = [this, link = QFile::encodeName(path)](SlowJob::Channel& channel) {
        const QByteArray folder = FolderOfLink(link);
        if (!folder.isEmpty()) {
            channel.Deliver([this, folder] { ShowFolder(folder, true); });
        }
    };
    linkJob.Start(work, nullptr);
    linkJob.WaitFor(PatienceMs);
}

void FilesTab::PreviousMenu(const QPoint& screenPoint) {
    const std::deque<QByteArray> history = TarnelData().PreviousDirectories;
    if (history.size() < 2) {
        return;
    }
    QMenu menu(this);
    for (std::size_t i = 1; i < history.size(); ++i) {
        QString path = QFile::decodeName(history[i]);
        menu.addAction(path.replace(u'&', QLatin1String("&&")))->setData(static_cast<int>(i));
    }
    menu.addSeparator();
    menu.addAction(tr("Cancel"));
    const QAction* chosen = menu.exec(screenPoint);
    const int entry = chosen == nullptr ? 0 : chosen->data().toInt();
    if (entry > 0) {
        queueChanged();
        ShowFolder(history.at(static_cast<std::size_t>(entry)));
    }
}

void FilesTab::ChangeFilter() {
    CTarnelData& data = TarnelData();
    const auto before = std::make_tuple(data.Recurse, data.IncludeReadOnly, data.Filter, data.UseFilter);
    FilterDlg dialog(this);
    if (dialog.exec() != QDialog::Accepted) {
        std::tie(data.Recurse, data.IncludeReadOnly, data.Filter, data.UseFilter) = before;
        return;
    }
    setTitle();
    fillFileList(watcher.Directory());
}
