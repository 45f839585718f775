// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The page where drawings are chosen: a tree of folders, the files of the chosen folder, buttons, and the
// queue of the next run. The page holds nothing of the queue: it shows and changes the record's arrays.
#include "files/DirWatcher.h"
#include "files/FolderListing.h"
#include "files/SlowJob.h"
#include "widgets/MainPage.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <QMessageBox>
#include <vector>

class BrowseModel;
class CXPStyleButtonST;
class DragImage;
class FocusListCtrl;
class QMenu;
class QueueModel;
struct HyperlinkEvent;

namespace Ui {
class FilesTab;
}

class FilesTab : public MainPage {
    Q_OBJECT
  public:
    explicit FilesTab(QWidget* parent = nullptr);
    ~FilesTab() override;

    /// Shows the queue anew, which has changed behind the page.
    void OnRefresh();
    /// The widths of the columns go to the record; the queue is there already.
    void OnCollect();
    /// The column of the files, then the three of the queue.
    std::array<int, 4> ColumnWidths() const;

    /// Lists a folder that was not chosen in the tree, which only follows, opened there or not.
    void ShowFolder(QByteArray folder, bool open = false);

    void AddSelectedToQueue();
    void AddAll();
    void RemoveSelectedFromQueue();
    void RemoveAll();
    void RemoveDone();
    void SetAllToDo();
    void SetStatusOfRows(const std::vector<int>& rows, std::uint32_t status);
    /// Moves the selected rows of the queue behind a row.
    void MoveSelectedRows(int targetRow);
    /// Puts the host's open drawings into the queue; those that are in it become ToDo again.
    void AddOpenDrawings();

    /// The menus that the buttons, links and lists open.
    void SetStatusMenu(QWidget* at);
    void QueueMenu(const QPoint& screenPoint);
    void BrowseMenu(const QPoint& screenPoint);
    void SortMenu(QWidget* at);
    void PreviousMenu(const QPoint& screenPoint);

    void ChangeFilter();
    void LoadGroup();
    void SaveGroup();
    /// What a link of the two strips does, by its name in any case of letters.
    void FollowLink(const QString& name, const QPoint& menuPoint);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // The page itself.
    std::vector<CXPStyleButtonST*> buttons() const;
    void setUpButtons();
    void setUpLists();
    void connectAll();
    void arrangeButtons();
    void fitStrips();
    void sizeColumns();
    int statusWidth() const;
    void balloon(QWidget* at, const QString& title, const QString& text, int life);
    QPoint menuPoint(QWidget* at) const;
    void onHyperlink(HyperlinkEvent& event, int& handled);
    bool listKey(FocusListCtrl* list, int key, Qt::KeyboardModifiers modifiers);

    // The files of a folder.
    void onFolderSelected(const QByteArray& folder);
    void setTitle();
    void fillFileList(const QString& directory);
    void refillFileList();
    void startListing(const QString& directory, bool keepRows);
    void takeFiles(const FoundFiles& files);
    void endListing();
    void openFirstSelected();
    void enterLink(const QString& path);

    // The queue.
    void queueChanged();
    void showQueue(const std::vector<std::uint32_t>& selectedEntries);
    void showQueueRows(const std::vector<int>& selectedRows);
    std::vector<std::uint32_t> selectedEntries() const;
    void updateFilesStrip();
    void flattenOrder();
    void shiftSelectedRows(int direction);
    int runMenu(QMenu& menu, const QPoint& screenPoint);
    void beginDrag(const QPoint& screenPoint);
    void moveDrag(const QPoint& screenPoint);
    void endDrag(bool drop);

    std::unique_ptr<Ui::FilesTab> ui;
    QueueModel* queueModel;
    BrowseModel* browseModel;
    DirWatcher watcher;
    SlowJob listing;
    SlowJob linkJob;
    QString directory;
    QString countsPage;
    /// The listing goes on behind rows that stay until it is complete.
    bool keepingRows = false;
    bool refillWanted = false;
    FoundFiles gathered;
    DragImage* dragImage = nullptr;
    bool dropAllowed = false;
    int dropRow = -1;
};
