// SPDX-License-Identifier: GPL-3.0-or-later
// The editor of scripts with a long one: putting it in with its first picture, colouring all of it, and
// typing in its middle, beside a plain text widget that colours nothing. Arguments: bytes (100000), rounds
// (15).
#include "script/ScriptEditor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <QApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QTest>
#include <vector>

namespace {

using S = QsciScintillaBase;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double timed(const std::function<void()>& work) {
    QElapsedTimer clock;
    clock.start();
    work();
    return double(clock.nsecsElapsed()) / 1e6;
}

QByteArray scriptOf(qsizetype size) {
    const QByteArray piece =
        "._-layer _make walls _color 3 walls\r\n\r\n(setq name (strcat currentpath \"/pdf/\" "
        "currentfile)) ; where it goes\r\n(command \"_.zoom\" \"_extents\")\r\n._qsave\r\n";
    QByteArray script;
    while (script.size() + piece.size() <= size) {
        script += piece;
    }
    return script;
}

void print(const char* what, const std::vector<double>& own, const std::vector<double>& peer) {
    std::printf("%s: %.2f ms, plain text widget %.2f ms, ratio %.2f\n", what, median(own), median(peer),
                median(own) / median(peer));
}

}  // namespace

int main(int argc, char** argv) {
    const int size = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 15;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QByteArray script = scriptOf(size);
    ScriptEditor editor;
    editor.SetUpStyles();
    editor.SetUpAsPage();
    QPlainTextEdit plain;
    plain.setLineWrapMode(QPlainTextEdit::NoWrap);
    for (QWidget* widget : {static_cast<QWidget*>(&editor), static_cast<QWidget*>(&plain)}) {
        widget->resize(800, 600);
        widget->show();
    }
    std::vector<double> load, plainLoad, color, type, plainType;
    for (int round = 0; round < rounds; ++round) {
        load.push_back(timed([&] {
            editor.SetText(script);
            editor.viewport()->grab();
        }));
        plainLoad.push_back(timed([&] {
            plain.setPlainText(QString::fromUtf8(script));
            plain.viewport()->grab();
        }));
        // From the last line upwards, all is asked for.
        color.push_back(timed([&] { editor.SendScintilla(S::SCI_COLOURISE, 0UL, -1L); }));
        editor.SendScintilla(S::SCI_GOTOPOS, static_cast<unsigned long>(script.size() / 2));
        type.push_back(timed([&] {
            QTest::keyClick(&editor, 'x');
            editor.viewport()->grab();
        }));
        QTextCursor middle = plain.textCursor();
        middle.setPosition(static_cast<int>(plain.document()->characterCount() / 2));
        plain.setTextCursor(middle);
        plainType.push_back(timed([&] {
            QTest::keyClick(&plain, 'x');
            plain.viewport()->grab();
        }));
    }
    print("put in, with the first picture", load, plainLoad);
    print("type in the middle, with the picture", type, plainType);
    std::printf("colour all of %d bytes: %.2f ms\n", int(script.size()), median(color));
    return 0;
}
