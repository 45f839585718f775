// SPDX-License-Identifier: GPL-3.0-or-later
// Anchors, tab pages and balloons off screen.
#include "widgets/AutoTab.h"
#include "widgets/BalloonHelp.h"
#include "widgets/ResizableDialog.h"
#include "widgets/XPStyleButton.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QTest>

namespace {

QWidget* control(QWidget* parent, const QRect& units, const char* anchors) {
    auto* made = new QWidget(parent);
    made->setGeometry(units);
    if (anchors != nullptr) {
        made->setProperty("anchors", QString::fromLatin1(anchors));
    }
    return made;
}

TEST(ResizableDialogTest, AnchorsFollowTheDialogAtEveryFont) {
    for (const int points : {8, 9, 14, 20}) {
        CResizableDialog dialog;
        QFont font = dialog.font();
        font.setPointSize(points);
        dialog.setFont(font);
        dialog.resize(200, 100);
        QWidget* fill = control(&dialog, {0, 0, 200, 80}, "0,0,100,100");
        QWidget* right = control(&dialog, {150, 84, 46, 14}, "100,100,100,100");
        QWidget* fixed = control(&dialog, {4, 84, 46, 14}, nullptr);
        dialog.InitLayout();
        const QSize design = dialog.size();
        const QRect fillBefore = fill->geometry();
        const QRect rightBefore = right->geometry();
        const QRect fixedBefore = fixed->geometry();
        EXPECT_EQ(design, FromDialogUnits(&dialog, {0, 0, 200, 100}).size());
        EXPECT_LE(rightBefore.bottom(), dialog.height());
        dialog.resize(design + QSize(101, 57));
        dialog.show();
        QCoreApplication::processEvents();
        EXPECT_EQ(fill->size(), fillBefore.size() + QSize(101, 57));
        EXPECT_EQ(right->geometry(), rightBefore.translated(101, 57));
        EXPECT_EQ(fixed->geometry(), fixedBefore);
        dialog.resize(design);
        EXPECT_EQ(fill->geometry(), fillBefore) << "growing and shrinking must not drift";
    }
}

TEST(AutoTabTest, PagesWrapAndCloseBalloons) {
    CAutoTab tab;
    for (int i = 0; i < 5; ++i) {
        tab.AddTab(QString::number(i), new QWidget, {});
    }
    tab.show();
    tab.SetActive(4);
    tab.SetActive(9);
    EXPECT_EQ(tab.currentIndex(), 4);
    CBalloonHelp::Show(&tab, QStringLiteral("t"), QStringLiteral("x"), {50, 50}, QMessageBox::Information, 0);
    EXPECT_EQ(CBalloonHelp::OpenCount(), 1);
    tab.Step(1);
    EXPECT_EQ(tab.currentIndex(), 0);
    EXPECT_EQ(CBalloonHelp::OpenCount(), 0);
    tab.Step(-1);
    EXPECT_EQ(tab.currentIndex(), 4);
}

TEST(BalloonHelpTest, GoesByItselfByClickAndWithItsParent) {
    QWidget parent;
    parent.show();
    const auto show = [&](int life) {
        return CBalloonHelp::Show(&parent, QStringLiteral("Run Script"),
                                  QStringLiteral("None.\n\nHighlight.\n"), {200, 200},
                                  QMessageBox::Information, life);
    };
    show(20);
    EXPECT_TRUE(QTest::qWaitFor([] { return CBalloonHelp::OpenCount() == 0; }, 5000));
    CBalloonHelp* balloon = show(0);
    QTest::mouseClick(balloon, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([] { return CBalloonHelp::OpenCount() == 0; }, 5000));
    {
        QWidget shortLived;
        CBalloonHelp::Show(&shortLived, QStringLiteral("t"), QStringLiteral("x"), {}, QMessageBox::Warning,
                           0);
    }
    EXPECT_EQ(CBalloonHelp::OpenCount(), 0);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
