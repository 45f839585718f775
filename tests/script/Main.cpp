// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlResources.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

// The user's own folders stay out of the tests: home is a folder that goes.
int main(int argc, char** argv) {
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
        qunsetenv(name);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    InitHtmlResources();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
