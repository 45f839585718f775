// SPDX-License-Identifier: GPL-3.0-or-later
// A log of many preformatted lines in the HTML view: loading, painting one screenful at each of many places,
// and the memory it takes, beside the text browser of the window library on the same page. Argument: number
// of lines (20000).
#include "html/HTMLayout.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTextBrowser>
#include <vector>

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

QString page(int lines) {
    QString html = QStringLiteral("<html><body><font size=+2><b>sheet</b></font><hr /><pre>");
    for (int i = 0; i < lines; ++i) {
        html += QStringLiteral(
                    "Command: _line Specify first point: %1,%2 Specify next point or [Undo]: @%3&lt;45\r\n")
                    .arg(i)
                    .arg(i * 7 % 1000)
                    .arg(i % 90);
    }
    return html + QStringLiteral("</pre></body></html>");
}

struct Times {
    double Load;
    double Scroll;
};

template <class Load>
Times measure(QAbstractScrollArea& view, const Load& load) {
    view.resize(800, 600);
    view.show();
    std::vector<double> loads;
    QElapsedTimer clock;
    for (int i = 0; i < 7; ++i) {
        clock.start();
        load();
        // The first picture belongs to it: what is laid out late is waited for too.
        view.viewport()->grab();
        loads.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    std::vector<double> scrolls;
    for (int i = 0; i <= 100; ++i) {
        clock.start();
        view.verticalScrollBar()->setValue(int(double(view.verticalScrollBar()->maximum()) * i / 100));
        view.viewport()->grab();
        scrolls.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    return {median(loads), median(scrolls)};
}

}  // namespace

int main(int argc, char** argv) {
    const int lines = argc > 1 ? std::atoi(argv[1]) : 20000;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QString html = page(lines);
    CHTMLayout view;
    const Times own = measure(view, [&] { view.LoadHtml(html); });
    QTextBrowser browser;
    const Times peer = measure(browser, [&] { browser.setHtml(html); });
    std::printf("%d lines: load %.0f ms, a screenful elsewhere %.1f ms\n", lines, own.Load, own.Scroll);
    std::printf("text browser: load %.0f ms, a screenful elsewhere %.1f ms; ratios %.2f and %.2f\n",
                peer.Load, peer.Scroll, own.Load / peer.Load, own.Scroll / peer.Scroll);
    return 0;
}
