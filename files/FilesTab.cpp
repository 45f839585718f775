// SPDX-License-Identifier: GPL-3.0-or-later
// The page itself: controls, places, keys and links.
#include "files/FilesTab.h"

#include "engine/record/TarnelData.h"
#include "files/BrowseModel.h"
#include "files/FolderPlaces.h"
#include "files/QueueModel.h"
#include "html/HTMLayout.h"
#include "ui_FilesTab.h"
#include "widgets/BalloonHelp.h"

#include <algorithm>
#include <QContextMenuEvent>
#include <QDir>
#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
#include <QScrollBar>
#include <QShortcut>

namespace {

const QString PlacesPage = QStringLiteral(
    "<style>html{background-color:threedface;}body{font-family:Arial;font-size:8pt;padding:0px;margin:0px;"
    "overflow:none;}</style><body>Go to: "
    "<a id=1 href=previous title=\"Go to previous directories you've visited.\">Previous</a> "
    "<a href=desktop title=\"Go to your Desktop folder.\">Desktop</a> "
    "<a href=fav title=\"Go to your Favorites folder.\">Favorites</a>");

/// Width of a button that shows its picture alone, and of the status column on a plain screen.
constexpr int PictureButtonWidth = 25;
constexpr int PlainStatusWidth = 60;
constexpr int WidthUnset = -1;

QIcon picture(const char* name) {
    return QIcon(QStringLiteral(":/tarnel/data/%1.svg").arg(QLatin1String(name)));
}

int scrollBarWidth(const QWidget* list) {
    return list->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, list);
}

void dressStrip(CHTMLayout* strip) {
    strip->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    strip->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    strip->setFrameShape(QFrame::NoFrame);
}

}  // namespace

FilesTab::FilesTab(QWidget* parent)
    : MainPage(parent),
      ui(std::make_unique<Ui::FilesTab>()),
      queueModel(new QueueModel(this)),
      browseModel(new BrowseModel(this)) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    setUpButtons();
    setFocusProxy(ui->queue);
    setUpLists();
    dressStrip(ui->places);
    dressStrip(ui->counts);
    ui->places->LoadHtml(PlacesPage);
    connectAll();

    CTarnelData& data = TarnelData();
    if (data.PreviousDirectories.empty()) {
        data.PreviousDirectories.push_back(TidyPath(QFile::encodeName(QDir::currentPath())));
    }
    queueChanged();
    ui->tree->StartBuild();
    ShowFolder(data.PreviousDirectories.front());
}

FilesTab::~FilesTab() {
    // The lists and the tree go after the page, and must not tell it of it.
    for (QObject* control : {static_cast<QObject*>(ui->tree), static_cast<QObject*>(ui->queue),
                             static_cast<QObject*>(ui->fileList)}) {
        control->disconnect(this);
    }
}

std::vector<CXPStyleButtonST*> FilesTab::buttons() const {
    return {ui->loadGroup,   ui->saveGroup, ui->filter,  ui->add,      ui->addAll,
            ui->removeFiles, ui->removeAll, ui->allToDo, ui->setStatus};
}

void FilesTab::setUpButtons() {
    constexpr std::array Pictures = {"loadgroup", "savegroup", "filter",  "add",      "addall",
                                     "remove",    "removeall", "alltodo", "setstatus"};
    std::size_t next = 0;
    for (CXPStyleButtonST* button : buttons()) {
        button->setIcon(picture(Pictures.at(next++)));
    }
    if (TarnelData().FileTabButtonText) {
        return;
    }
    // The room that the texts took goes to the queue.
    QRect queue = Layout().Design(ui->queue);
    const int gap = queue.left() - Layout().Design(ui->loadGroup).right();
    for (CXPStyleButtonST* button : buttons()) {
        QRect place = Layout().Design(button);
        place.setWidth(std::max(PictureButtonWidth, button->iconSize().width() + 9));
        Layout().SetDesign(button, place);
        button->SetInfo(button->icon(), button->text());
        button->setText({});
        queue.setLeft(place.right() + gap);
    }
    Layout().SetDesign(ui->queue, queue);
}

void FilesTab::setUpLists() {
    ui->fileList->setModel(browseModel);
    ui->queue->setModel(queueModel);
    ui->queue->SetRowsDraggable(true);
    ui->queue->header()->setSectionsClickable(true);
    ui->queue->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    CTarnelData& data = TarnelData();
    if (data.ColumnWidths[0] == WidthUnset) {
        data.ColumnWidths = {
            ui->fileList->width() - 2 * ui->fileList->frameWidth() - scrollBarWidth(ui->fileList),
            ui->queue->width() - 2 * ui->queue->frameWidth() - scrollBarWidth(ui->queue) - statusWidth(), 0,
            statusWidth()};
    }
    ui->fileList->header()->resizeSection(0, data.ColumnWidths[0]);
    for (int column = 0; column < QueueModel::ColumnCount; ++column) {
        ui->queue->header()->resizeSection(column,
                                           data.ColumnWidths.at(static_cast<std::size_t>(column) + 1));
    }
    setTitle();
    for (QWidget* list : {static_cast<QWidget*>(ui->fileList), static_cast<QWidget*>(ui->queue)}) {
        list->installEventFilter(this);
    }
}

void FilesTab::connectAll() {
    const auto press = [this](QPushButton* button, auto action) {
        connect(button, &QPushButton::clicked, this, action);
    };
    press(ui->loadGroup, &FilesTab::LoadGroup);
    press(ui->saveGroup, &FilesTab::SaveGroup);
    press(ui->filter, &FilesTab::ChangeFilter);
    press(ui->add, &FilesTab::AddSelectedToQueue);
    press(ui->addAll, &FilesTab::AddAll);
    press(ui->removeFiles, &FilesTab::RemoveSelectedFromQueue);
    press(ui->removeAll, &FilesTab::RemoveAll);
    press(ui->allToDo, &FilesTab::SetAllToDo);
    press(ui->setStatus, [this] { SetStatusMenu(ui->setStatus); });
    connect(ui->fileList, &QTreeView::doubleClicked, this, &FilesTab::openFirstSelected);
    connect(ui->queue, &QTreeView::doubleClicked, this, [this] { SetStatusMenu(ui->queue); });
    connect(ui->queue->header(), &QHeaderView::sectionClicked, this,
            [this] { SortMenu(ui->queue->header()); });
    connect(ui->queue, &FocusListCtrl::DragBegun, this, &FilesTab::beginDrag);
    connect(ui->queue, &FocusListCtrl::DragMoved, this, &FilesTab::moveDrag);
    connect(ui->queue, &FocusListCtrl::DragDropped, this, [this] { endDrag(true); });
    connect(ui->queue, &FocusListCtrl::DragCanceled, this, [this] { endDrag(false); });
    connect(new QShortcut(Qt::ALT | Qt::Key_O, this), &QShortcut::activated, this,
            &FilesTab::AddOpenDrawings);
    connect(ui->tree, &BrowseTree::FolderSelected, this, &FilesTab::onFolderSelected);
    connect(&watcher, &DirWatcher::Changed, this, &FilesTab::refillFileList);
    connect(ui->places, &CHTMLayout::OnHyperlink, this, &FilesTab::onHyperlink);
    connect(ui->counts, &CHTMLayout::OnHyperlink, this, &FilesTab::onHyperlink);
    connect(&TarnelData().Signals, &TarnelSignals::CollectSignal, this, &FilesTab::OnCollect);
    connect(&TarnelData().Signals, &TarnelSignals::RefreshSignal, this, &FilesTab::OnRefresh);
}

void FilesTab::resizeEvent(QResizeEvent* event) {
    CResizableDialog::resizeEvent(event);
    if (queueModel != nullptr && ui->queue != nullptr && ui->queue->model() != nullptr) {
        arrangeButtons();
        fitStrips();
        sizeColumns();
    }
}

// In a narrow page a strip breaks into lines; it takes the room of its list then, as its last links would be
// hidden.
void FilesTab::fitStrips() {
    const auto needed = [this](CHTMLayout* strip) {
        int height = Layout().Design(strip).height();
        for (const HtmlElement& link : strip->Links()) {
            height = std::max(height, link.Box().bottom() + 1);
        }
        return height;
    };
    QRect places = ui->places->geometry();
    QRect tree = ui->tree->geometry();
    const int more = needed(ui->places) - places.height();
    places.setHeight(places.height() + more);
    tree.setTop(tree.top() + more);
    ui->places->setGeometry(places);
    ui->tree->setGeometry(tree);

    QRect counts = ui->counts->geometry();
    QRect queue = ui->queue->geometry();
    counts.setTop(counts.bottom() - needed(ui->counts) + 1);
    queue.setBottom(counts.top() - 1);
    ui->counts->setGeometry(counts);
    ui->queue->setGeometry(queue);
}

// In a window lower than the template the three groups of buttons would run into one another.
void FilesTab::arrangeButtons() {
    const std::vector<CXPStyleButtonST*> column = buttons();
    bool meet = false;
    for (std::size_t i = 1; i < column.size(); ++i) {
        meet |= column[i]->y() <= column[i - 1]->geometry().bottom();
    }
    if (!meet) {
        return;
    }
    const int top = column.front()->y();
    const int pitch = (height() - top) / static_cast<int>(column.size());
    for (std::size_t i = 0; i < column.size(); ++i) {
        QRect place = column[i]->geometry();
        place.moveTop(top + pitch * static_cast<int>(i));
        place.setHeight(std::min(place.height(), pitch - 1));
        column[i]->setGeometry(place);
    }
}

int FilesTab::statusWidth() const {
    return std::max(PlainStatusWidth, ui->queue->fontMetrics().horizontalAdvance(FileStatusWord(Canceled)) +
                                          PlainStatusWidth / 4);
}

void FilesTab::sizeColumns() {
    const auto room = [](const FocusListCtrl* list) {
        return list->width() - 2 * list->frameWidth() - scrollBarWidth(list);
    };
    ui->fileList->header()->resizeSection(0, std::max(0, room(ui->fileList)));
    const int others = ui->queue->header()->sectionSize(QueueModel::DirectoryColumn) + statusWidth();
    ui->queue->header()->resizeSection(QueueModel::NameColumn, std::max(0, room(ui->queue) - others));
}

void FilesTab::OnCollect() {
    TarnelData().ColumnWidths = ColumnWidths();
}

std::array<int, 4> FilesTab::ColumnWidths() const {
    const QHeaderView* queue = ui->queue->header();
    return {ui->fileList->header()->sectionSize(0), queue->sectionSize(QueueModel::NameColumn),
            queue->sectionSize(QueueModel::DirectoryColumn), queue->sectionSize(QueueModel::StatusColumn)};
}

void FilesTab::balloon(QWidget* at, const QString& title, const QString& text, int life) {
    CBalloonHelp::CloseAll();
    CBalloonHelp::Show(this, title, text, at->mapToGlobal(QPoint(at->width() / 2, 0)),
                       QMessageBox::Information, life);
}

// A menu opens at the pointer, or at what it belongs to when that was reached by keyboard.
QPoint FilesTab::menuPoint(QWidget* at) const {
    const QPoint pointer = QCursor::pos();
    const bool isThere = at->rect().contains(at->mapFromGlobal(pointer));
    return isThere ? pointer : at->mapToGlobal(QPoint(at->width() / 2, std::min(at->height(), 40)));
}

// The slot of a click must not change the page that the click is in.
void FilesTab::onHyperlink(HyperlinkEvent& event, int& handled) {
    constexpr int Click = 3;
    handled = 1;
    if (event.Action != Click) {
        return;
    }
    auto* strip = qobject_cast<CHTMLayout*>(sender());
    const QPoint below = strip->OnScreen(event.Element.Box()).bottomLeft();
    QMetaObject::invokeMethod(
        this, [this, name = event.Href, below] { FollowLink(name, below); }, Qt::QueuedConnection);
}

void FilesTab::FollowLink(const QString& link, const QPoint& point) {
    const QString name = link.toLower();
    if (name == u"add") {
        AddSelectedToQueue();
    } else if (name == u"addall") {
        AddAll();
    } else if (name == u"remove") {
        RemoveSelectedFromQueue();
    } else if (name == u"removeall") {
        RemoveAll();
    } else if (name == u"removedone") {
        RemoveDone();
    } else if (name == u"alltodo" || name == u"todo") {
        SetAllToDo();
    } else if (name == u"status") {
        SetStatusMenu(ui->setStatus);
    } else if (name == u"filter") {
        ChangeFilter();
    } else if (name == u"sort") {
        SortMenu(ui->counts);
    } else if (name == u"previous") {
        PreviousMenu(point);
    } else if (name == u"desktop") {
        ui->tree->SelectDesktop();
    } else if (name == u"fav") {
        ui->tree->SelectFavorites();
    }
}

// Esc ends the innermost thing that goes on: a drag, then the reading of a folder, then the dialog.
void FilesTab::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && ui->queue->IsDragging()) {
        ui->queue->CancelDrag();
        event->accept();
    } else if (event->key() == Qt::Key_Escape && listing.IsRunning()) {
        listing.BreakOff();
        endListing();
        event->accept();
    } else {
        CResizableDialog::keyPressEvent(event);
    }
}

bool FilesTab::listKey(FocusListCtrl* list, int key, Qt::KeyboardModifiers modifiers) {
    const bool plain = (modifiers & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool isQueue = list == ui->queue;
    if (plain && (key == Qt::Key_Return || key == Qt::Key_Enter) && list->HasSelection()) {
        if (isQueue) {
            SetStatusMenu(ui->queue);
        } else {
            openFirstSelected();
        }
    } else if (plain && isQueue && key == Qt::Key_Delete) {
        RemoveSelectedFromQueue();
    } else if (isQueue && modifiers == Qt::AltModifier && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        shiftSelectedRows(key == Qt::Key_Up ? -1 : 1);
    } else {
        return false;
    }
    return true;
}

bool FilesTab::eventFilter(QObject* watched, QEvent* event) {
    auto* list = qobject_cast<FocusListCtrl*>(watched);
    if (list != nullptr && event->type() == QEvent::KeyPress && !list->IsDragging()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (listKey(list, key->key(), key->modifiers())) {
            return true;
        }
    }
    if (list != nullptr && event->type() == QEvent::ContextMenu) {
        const auto* menu = static_cast<QContextMenuEvent*>(event);
        const QRect current = list->visualRect(list->currentIndex());
        const QPoint point = menu->reason() == QContextMenuEvent::Keyboard && current.isValid()
                                 ? list->viewport()->mapToGlobal(current.center())
                                 : menu->globalPos();
        if (list == ui->queue) {
            QueueMenu(point);
        } else {
            BrowseMenu(point);
        }
        return true;
    }
    return CResizableDialog::eventFilter(watched, event);
}
