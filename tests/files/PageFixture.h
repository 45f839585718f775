// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The page over a clean record and a folder of its own, with what a user's hand does: choosing from menus,
// answering boxes, looking at balloons.
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "files/BrowseTree.h"
#include "files/FilesTab.h"
#include "html/HTMLayout.h"
#include "tests/files/Folder.h"
#include "tests/recording/RecordingHost.h"
#include "widgets/BalloonHelp.h"
#include "widgets/FocusListCtrl.h"
#include "widgets/XPStyleButton.h"

#include <functional>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QTimer>

class PageFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        RecordingHost::Get().Reset();
        CTarnelData& data = TarnelData();
        for (auto* texts : {&data.FileNames, &data.FileDirs, &data.BrowsePaths}) {
            texts->clear();
        }
        for (auto* numbers : {&data.FileStatus, &data.FileOrder, &data.BrowseIsLink, &data.BrowseIcons}) {
            numbers->clear();
        }
        data.PreviousDirectories = {folder.Bytes()};
        data.ColumnWidths = {-1, 0, 0, 0};
        data.SortIdx = data.SortReverse = data.Recurse = data.UseFilter = data.IncludeReadOnly = 0;
        data.Filter = QStringLiteral("*.dwg");
        data.FileTabButtonText = true;
        data.DoDirRefresh = false;
    }
    void TearDown() override {
        CBalloonHelp::CloseAll();
        tab.reset();
    }
    void open() {
        tab = std::make_unique<FilesTab>();
        tab->resize(900, 500);
        tab->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(tab.get()));
        settle();
    }
    static void settle() {
        for (int i = 0; i < 4; ++i) {
            QCoreApplication::processEvents();
        }
    }
    void addEntry(const char* path, std::uint32_t status = ToDo) {
        AppendEntry(TarnelData(), QString::fromUtf8(path));
        TarnelData().FileStatus[TarnelData().FileStatus.size() - 1] = status;
    }

    FocusListCtrl* list(const char* name) const {
        return tab->findChild<FocusListCtrl*>(QLatin1String(name));
    }
    FocusListCtrl* files() const { return list("fileList"); }
    FocusListCtrl* queue() const { return list("queue"); }
    BrowseTree* tree() const { return tab->findChild<BrowseTree*>(); }
    void press(const char* button) {
        QTest::mouseClick(tab->findChild<CXPStyleButtonST*>(QLatin1String(button)), Qt::LeftButton);
        settle();
    }
    /// First column of a list from top to bottom, with "*" behind what is selected.
    static std::string rows(const FocusListCtrl* of) {
        std::string all;
        for (int row = 0; row < of->RowCount(); ++row) {
            all += of->model()->index(row, 0).data().toString().toStdString() +
                   (of->IsRowSelected(row) ? "* " : " ");
        }
        return all;
    }
    static QPoint middle(const FocusListCtrl* of, int row) {
        return of->visualRect(of->model()->index(row, 0)).center();
    }
    static void click(const FocusListCtrl* of, int row, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(of->viewport(), Qt::LeftButton, modifiers, middle(of, row));
    }
    static void doubleClick(const FocusListCtrl* of, int row) {
        click(of, row);
        QTest::mouseDClick(of->viewport(), Qt::LeftButton, {}, middle(of, row));
        settle();
    }
    /// Statuses in the order of the entries.
    static std::string statuses() {
        std::string all;
        for (std::size_t i = 0; i < TarnelData().FileNames.size(); ++i) {
            all += std::to_string(EntryStatus(TarnelData(), i));
        }
        return all;
    }
    /// Title and text of the balloon that stands; empty without one.
    static std::string balloon() {
        std::string all;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* one = qobject_cast<CBalloonHelp*>(window)) {
                all += one->Title().toStdString() + ": " + one->Text().toStdString();
            }
        }
        CBalloonHelp::CloseAll();
        return all;
    }
    /// Chooses an entry of the menu that comes up next, or leaves it with Esc when the text is empty. All its
    /// texts go into menuTexts, a marked one with "x" behind it, a separator as "-".
    void chooseNext(const QString& text) {
        menuTexts.clear();
        choose(text, 400);
    }
    void clickLink(const char* strip, const QString& name, const QString& menuText = {},
                   bool hasMenu = false) {
        auto* view = tab->findChild<CHTMLayout*>(QLatin1String(strip));
        for (const HtmlElement& link : view->Links()) {
            if (link.Attribute(QStringLiteral("href")) == name) {
                if (hasMenu) {
                    chooseNext(menuText);
                }
                QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, link.Box().center());
                settle();
                return;
            }
        }
        ADD_FAILURE() << "no link " << name.toStdString();
    }
    QString stripText(const char* strip) const {
        return tab->findChild<CHTMLayout*>(QLatin1String(strip))->PageText().trimmed();
    }

    Folder folder;
    std::unique_ptr<FilesTab> tab;
    QStringList menuTexts;

  private:
    void choose(const QString& text, int patience) {
        QTimer::singleShot(5, qApp, [=, this] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr) {
                if (patience > 0) {
                    choose(text, patience - 1);
                } else {
                    ADD_FAILURE() << "no menu for " << text.toStdString();
                }
                return;
            }
            QAction* chosen = nullptr;
            for (QAction* action : menu->actions()) {
                menuTexts << (action->isSeparator()
                                  ? QStringLiteral("-")
                                  : action->text() + QLatin1String(action->isChecked() ? "x" : ""));
                if (!text.isEmpty() && action->text() == text) {
                    chosen = action;
                }
            }
            if (chosen == nullptr) {
                EXPECT_TRUE(text.isEmpty()) << text.toStdString();
                menu->close();
            } else {
                menu->setActiveAction(chosen);
                QTest::keyClick(menu, Qt::Key_Return);
            }
        });
    }
};
