// SPDX-License-Identifier: GPL-3.0-or-later
// The page where drawings are chosen, with very many of them: adding, sorting, listing a tree of folders, and
// what the lists do with many rows, each beside a peer in the same run. Arguments: entries (100000), folders
// of the tree with ten files each (20000), rounds (5). The tree is made in a temporary folder.
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "files/FilesTab.h"
#include "files/QueueEdit.h"
#include "html/HtmlResources.h"
#include "widgets/FocusListCtrl.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScrollBar>
#include <QSet>
#include <QTemporaryDir>
#include <tuple>
#include <vector>

namespace {

int rounds = 5;

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

/// Own and peer in turn; each may need something done in front of it that is not counted.
void compare(const char* what, const std::function<void()>& prepare, const std::function<void()>& own,
             const std::function<void()>& peer) {
    std::vector<double> mine, others;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        mine.push_back(timed(own));
        prepare();
        others.push_back(timed(peer));
    }
    std::printf("%s: %.1f ms, peer %.1f ms, ratio %.2f\n", what, median(mine), median(others),
                median(mine) / median(others));
}

QString pathOf(int i) {
    return QStringLiteral("/srv/archive/project-%1/Sheet %2.dxf").arg(i / 100).arg((i * 7919) % 1000003);
}

void fillQueue(int count) {
    CTarnelData& data = TarnelData();
    data.FileNames.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
    data.FileOrder.clear();
    std::vector<QString> paths;
    for (int i = 0; i < count; ++i) {
        paths.push_back(pathOf(i));
    }
    AddToQueue(data, paths);
    for (std::size_t i = 0; i < data.FileStatus.size(); ++i) {
        data.FileStatus[i] = static_cast<std::uint32_t>(i % 7);
    }
    BuildFileOrder(data);
}

void measureAdding(int count) {
    std::vector<QString> added, queue;
    for (int i = 0; i < count; ++i) {
        queue.push_back(pathOf(i));
        added.push_back(pathOf(i + count / 2));
    }
    qsizetype size = 0;
    std::size_t entries = 0;
    compare(
        "add, half there already (hash set of the paths)", [&] { fillQueue(count); },
        [&] {
            AddToQueue(TarnelData(), added);
            entries = TarnelData().FileNames.size();
        },
        [&] {
            QSet<QString> set(queue.begin(), queue.end());
            for (const QString& path : added) {
                set.insert(path);
            }
            size = set.size();
        });
    if (size != qsizetype(count + count / 2) || entries != std::size_t(size)) {
        std::abort();
    }
}

struct Key {
    QString Name;
    QString Directory;
    std::uint32_t Status;
    std::uint32_t Entry;
};

void measureSorting(int count) {
    fillQueue(count);
    CTarnelData& data = TarnelData();
    const auto sortKeys = [&](auto of) {
        std::vector<Key> keys;
        for (std::uint32_t i = 0; i < data.FileNames.size(); ++i) {
            keys.push_back(
                {data.FileNames[i].toCaseFolded(), data.FileDirs[i].toCaseFolded(), data.FileStatus[i], i});
        }
        std::sort(keys.begin(), keys.end(), [&](const Key& a, const Key& b) { return of(a) < of(b); });
        for (std::size_t k = 0; k < keys.size(); ++k) {
            data.FileOrder[k] = keys[k].Entry;
        }
    };
    const std::function<void()> peers[] = {
        [&] { sortKeys([](const Key& k) { return std::tie(k.Name, k.Directory, k.Status); }); },
        [&] { sortKeys([](const Key& k) { return std::tie(k.Name, k.Status, k.Directory); }); },
        [&] { sortKeys([](const Key& k) { return std::tie(k.Directory, k.Name, k.Status); }); },
        [&] { sortKeys([](const Key& k) { return std::tie(k.Directory, k.Status, k.Name); }); },
        [&] { sortKeys([](const Key& k) { return std::tie(k.Status, k.Name, k.Directory); }); },
        [&] { sortKeys([](const Key& k) { return std::tie(k.Status, k.Directory, k.Name); }); }};
    for (int order = 0; order < 6; ++order) {
        data.SortIdx = order;
        const std::string what = "sort, order " + std::to_string(order) + " (std::sort over folded keys)";
        compare(
            what.c_str(), [] {}, [&] { BuildFileOrder(data); }, peers[order]);
    }
    data.SortIdx = 0;
}

void measureTree(int folders) {
    const QTemporaryDir place;
    for (int i = 0; i < folders; ++i) {
        const QString folder = place.filePath(QStringLiteral("p%1/f%2").arg(i / 100).arg(i));
        QDir().mkpath(folder);
        for (int k = 0; k < 10; ++k) {
            QFile file(folder + QStringLiteral("/sheet-%1.%2").arg(k).arg(k % 2 == 0 ? u"dxf" : u"DWG"));
            if (!file.open(QIODevice::WriteOnly)) {
                std::abort();
            }
        }
    }
    CTarnelData& data = TarnelData();
    data.Recurse = data.UseFilter = 1;
    data.Filter = QStringLiteral("*.dxf,*.dwg");
    FilesTab page;
    page.show();
    const auto wait = [&] {
        while (data.BrowsePaths.size() < std::size_t(folders) * 10) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QCoreApplication::processEvents();
    };
    // Without the read-only files each file is asked for its rights, which find does on request only.
    for (const bool withReadOnly : {true, false}) {
        data.IncludeReadOnly = withReadOnly ? 1 : 0;
        QStringList arguments = {place.path(),         QStringLiteral("-type"),  QStringLiteral("f"),
                                 QStringLiteral("("),  QStringLiteral("-iname"), QStringLiteral("*.dxf"),
                                 QStringLiteral("-o"), QStringLiteral("-iname"), QStringLiteral("*.dwg"),
                                 QStringLiteral(")")};
        if (!withReadOnly) {
            arguments << QStringLiteral("-perm") << QStringLiteral("/222");
        }
        compare(
            withReadOnly ? "fill from a tree of folders (find)"
                         : "fill from a tree of folders, writable files (find -perm /222)",
            [] {},
            [&] {
                page.ShowFolder(QFile::encodeName(place.path()));
                wait();
            },
            [&] {
                QProcess find;
                find.start(QStringLiteral("find"), arguments);
                find.waitForFinished(-1);
                if (find.readAllStandardOutput().count('\n') != qsizetype(folders) * 10) {
                    std::abort();
                }
            });
    }
    data.IncludeReadOnly = 0;
    data.Recurse = data.UseFilter = 0;
}

void measureList(int count) {
    const auto figures = [](int rows) {
        fillQueue(rows);
        FilesTab page;
        page.resize(1000, 600);
        page.show();
        QCoreApplication::processEvents();
        auto* list = page.findChild<FocusListCtrl*>(QStringLiteral("queue"));
        std::vector<double> scroll, select, invert;
        for (int i = 0; i < 20 * rounds; ++i) {
            scroll.push_back(timed([&] {
                list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum() * (i % 20) / 20);
                list->viewport()->grab();
            }));
        }
        for (int i = 0; i < rounds; ++i) {
            select.push_back(timed([&] {
                list->selectAll();
                list->viewport()->grab();
            }));
            list->SelectRows(rows > 10 ? std::vector<int>{3, 5, 8} : std::vector<int>{});
            invert.push_back(timed([&] {
                list->InvertSelection();
                list->viewport()->grab();
            }));
        }
        std::printf("%d rows: a screenful elsewhere %.1f ms, select all %.1f ms, invert %.1f ms\n", rows,
                    median(scroll), median(select), median(invert));
    };
    figures(0);
    figures(count);
}

void measureOpening(int count) {
    const auto openPage = [](std::vector<double>& times) {
        times.push_back(timed([] {
            FilesTab page;
            page.resize(1000, 600);
            page.show();
            page.grab();
        }));
    };
    std::vector<double> full, empty;
    for (int round = 0; round < 3 * rounds; ++round) {
        fillQueue(count);
        openPage(full);
        fillQueue(0);
        openPage(empty);
    }
    std::printf("open the page: %.1f ms, with an empty queue %.1f ms, ratio %.2f\n", median(full),
                median(empty), median(full) / median(empty));
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int folders = argc > 2 ? std::atoi(argv[2]) : 20000;
    rounds = argc > 3 ? std::max(1, std::atoi(argv[3])) : 5;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    InitHtmlResources();
    measureAdding(count);
    measureSorting(count);
    measureList(count);
    measureOpening(count);
    measureTree(folders);
    return 0;
}
