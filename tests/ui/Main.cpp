// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlResources.h"

#include <gtest/gtest.h>
#include <QApplication>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    InitHtmlResources();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
