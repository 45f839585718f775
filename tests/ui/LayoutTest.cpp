// SPDX-License-Identifier: GPL-3.0-or-later
// What a picky user sees: nothing clipped, nothing overlapping, at every font and at the smallest size; and
// the order in which the keyboard goes through a dialog.
#include "tests/ui/UiFixture.h"
#include "ui/MainPages.h"
#include "ui/Schedule.h"
#include "ui/StatusDialog.h"
#include "ui/TarnelDlg.h"
#include "widgets/AutoTab.h"

#include <QDateTimeEdit>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>

namespace {

class LayoutTest : public UiFixture {
  protected:
    ~LayoutTest() override { QApplication::setFont(before); }

    void setFontSize(int percent) const {
        QFont font = before;
        font.setPointSizeF(font.pointSizeF() * percent / 100);
        QApplication::setFont(font);
    }
    /// Buttons and labels hold their texts, and no two controls of one parent overlap.
    static void expectTidy(const QWidget& window) {
        std::vector<const QWidget*> shown;
        for (const QWidget* control : window.findChildren<QWidget*>()) {
            const bool text =
                qobject_cast<const QPushButton*>(control) || qobject_cast<const QLabel*>(control);
            const bool field = text || qobject_cast<const QDateTimeEdit*>(control) ||
                               qobject_cast<const QSpinBox*>(control) ||
                               qobject_cast<const QProgressBar*>(control);
            if (!field || !control->isVisible()) {
                continue;
            }
            if (text) {
                EXPECT_GE(control->width(), neededWidth(*control)) << name(control);
                EXPECT_GE(control->height(), control->fontMetrics().height()) << name(control);
            }
            EXPECT_TRUE(control->parentWidget()->rect().contains(control->geometry()) ||
                        qobject_cast<const QSpinBox*>(control))
                << name(control) << " reaches over the edge";
            for (const QWidget* other : shown) {
                if (other->parentWidget() == control->parentWidget()) {
                    EXPECT_FALSE(other->geometry().intersects(control->geometry()))
                        << name(control) << " over " << name(other);
                }
            }
            shown.push_back(control);
        }
        EXPECT_FALSE(shown.empty());
    }
    static int neededWidth(const QWidget& control) {
        const auto* button = qobject_cast<const QPushButton*>(&control);
        if (button == nullptr) {
            return control.sizeHint().width();
        }
        const int icon = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
        return button->fontMetrics().horizontalAdvance(button->text()) + icon + 8;
    }
    static std::string name(const QWidget* control) { return control->objectName().toStdString(); }

    QFont before = QApplication::font();
};

TEST_F(LayoutTest, NothingIsClippedOrOverlaps) {
    for (const int percent : {80, 100, 120, 150, 200}) {
        SCOPED_TRACE(percent);
        setFontSize(percent);
        TarnelDlg dialog(nullptr);
        dialog.show();
        for (const MainPageEntry& page : MainPages()) {
            dialog.ShowPage(page.Name);
            QCoreApplication::processEvents();
            expectTidy(dialog);
        }
        dialog.resize(dialog.minimumSize());
        QCoreApplication::processEvents();
        expectTidy(dialog);
        StatusDialog status(nullptr, 2);
        status.show();
        expectTidy(status);
        Schedule schedule;
        schedule.show();
        schedule.Tick();
        schedule.findChild<QPushButton*>(QStringLiteral("go"))->setText(QStringLiteral("Run Now"));
        expectTidy(schedule);
    }
}

TEST_F(LayoutTest, TabGoesFromTitlesOverThePageToTheButtons) {
    TarnelData().LastTab = 3;
    TarnelDlg dialog(nullptr);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    dialog.findChild<QTabBar*>()->setFocus();
    QStringList visited;
    for (int i = 0; i < 40 && (visited.isEmpty() || !QApplication::focusWidget()->inherits("QTabBar")); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QString here = QApplication::focusWidget()->objectName();
        if (here.startsWith(QLatin1String("qt_spinbox"))) {
            here = QApplication::focusWidget()->parent()->objectName();
        }
        visited << here;
    }
    visited.removeAll(QStringLiteral("view"));
    visited.removeAll(QStringLiteral("qt_tabwidget_tabbar"));
    EXPECT_EQ(visited.join(u' '),
              QStringLiteral("alarmtime maxtime readonly recover disablescriptchain filetabbuttontext "
                             "dodirrefresh warnnosave warndialogcommand warndialogcmdreplacement help "
                             "schedule runScript close"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("close"));
}

TEST_F(LayoutTest, AScreenThatHasGoneDoesNotKeepTheDialogOutOfReach) {
    TarnelData().MainWindow = {20000, 20900, 9000, 9600};
    TarnelDlg dialog(nullptr);
    dialog.show();
    EXPECT_NE(QGuiApplication::screenAt(dialog.geometry().center()), nullptr);
    EXPECT_EQ(dialog.size(), QSize(900, 600).boundedTo(QGuiApplication::primaryScreen()->availableSize()));
}

}  // namespace
