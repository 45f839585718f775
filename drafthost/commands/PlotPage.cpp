// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/PlotPage.h"

#include <sys/prctl.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Extents.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Record.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "drafthost/drawing/Xref.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

namespace fs = std::filesystem;

constexpr double MillimetresPerInch = 25.4;

const Layout* findLayout(const Drawing& drawing, const std::string& name) {
    for (const Layout& layout : layouts(drawing)) {
        if (foldCase(layout.name) == foldCase(name)) {
            return &layout;
        }
    }
    return nullptr;
}

Extents extentsOf(const Drawing& drawing, const Layout& layout) {
    const Block* block = findBlock(drawing, layout.blockName);
    if (block == nullptr) {
        return computeExtents(drawing, !layout.model);
    }
    std::vector<RecordId> shown = entitiesOf(drawing, *block);
    // The first viewport of a sheet is the sheet itself.
    std::erase_if(shown, [&](RecordId id) {
        return drawing.type(id) == "VIEWPORT" && drawing.record(id).integerOr(69, 0) == 1;
    });
    return computeExtents(drawing, shown);
}

void takeView(PagePlan& plan, const View& view) {
    const double across = view.height * view.aspect;
    plan.low = {view.center.x - across / 2, view.center.y - view.height / 2, 0};
    plan.high = {view.center.x + across / 2, view.center.y + view.height / 2, 0};
}

/// The rectangle of drawing units that is wanted; false when there is none. That of a layout follows from the
/// paper and is not asked here.
bool takeArea(const Drawing& drawing, const Layout& layout, const PageSetup& setup, PagePlan& plan,
              std::string& error) {
    const Extents extents = extentsOf(drawing, layout);
    const bool current = layout.model == modelIsCurrent(drawing);
    switch (setup.area) {
        case PlotArea::Window:
            plan.low = {std::min(setup.low.x, setup.high.x), std::min(setup.low.y, setup.high.y), 0};
            plan.high = {std::max(setup.low.x, setup.high.x), std::max(setup.low.y, setup.high.y), 0};
            break;
        case PlotArea::View: {
            const RecordId id = findEntry(drawing, Table::View, setup.view);
            if (id == NoRecord) {
                error = "Cannot find view \"" + setup.view + "\".";
                return false;
            }
            const Record view = drawing.record(id);
            const double height = view.realOr(40, 1);
            takeView(plan, {view.pointOr(10, {}), height, height > 0 ? view.realOr(41, 1) / height : 1});
            break;
        }
        case PlotArea::Limits:
            plan.low = headerPoint(drawing, "$LIMMIN", {});
            plan.high = headerPoint(drawing, "$LIMMAX", {});
            break;
        case PlotArea::Display:
            if (current) {
                takeView(plan, currentView(drawing));
                break;
            }
            [[fallthrough]];
        default:
            if (extents.empty()) {
                error = "There is nothing to plot in layout \"" + layout.name + "\".";
                return false;
            }
            plan.low = extents.min;
            plan.high = extents.max;
    }
    // A single line has no width; paper needs one.
    const double least = std::max({plan.high.x - plan.low.x, plan.high.y - plan.low.y}) * 1e-3;
    if (!(least > 0) || !std::isfinite(least)) {
        error = "Invalid window specification.";
        return false;
    }
    if (plan.high.x - plan.low.x < least) {
        plan.low.x -= least / 2;
        plan.high.x += least / 2;
    }
    if (plan.high.y - plan.low.y < least) {
        plan.low.y -= least / 2;
        plan.high.y += least / 2;
    }
    return true;
}

/// A copy of the drawing as it is now, with what it refers to.
bool writeCopy(Document& document, const std::string& path, std::vector<std::string>& notes,
               std::string& error) {
    Drawing& drawing = document.drawing();
    if (!drawing.saveAs(path, {}, error)) {
        return false;
    }
    if (xrefs(drawing).empty()) {
        return true;
    }
    const auto copy = Drawing::open(path, error);
    if (copy == nullptr) {
        return false;
    }
    const std::string folder = fs::path(document.path()).parent_path().string();
    for (const Xref& xref : xrefs(drawing)) {
        const std::string file = xrefFile(xref.path, folder);
        std::string cause;
        if (file.empty()) {
            notes.push_back("\"" + xref.path + "\" cannot be found.");
        } else if (!bindXref(*copy, xref.name, file, false, cause)) {
            notes.push_back(cause);
        }
    }
    return copy->saveAs(path, {}, error);
}

std::string lastLine(const QByteArray& text) {
    const QByteArray trimmed = text.trimmed();
    return trimmed.mid(trimmed.lastIndexOf('\n') + 1).toStdString();
}

}  // namespace

bool planPage(const Drawing& drawing, const std::string& layoutName, const PageSetup& setup, PagePlan& plan,
              std::string& error) {
    const Layout* layout = findLayout(drawing, layoutName);
    if (layout == nullptr) {
        error = "Layout \"" + layoutName + "\" not found.";
        return false;
    }
    plan = {};
    plan.width = setup.paper.width;
    plan.height = setup.paper.height;
    std::array<double, 4> margins = setup.paper.margins;
    if (setup.rotation % 2 == 1) {
        std::swap(plan.width, plan.height);
        std::rotate(margins.begin(), margins.end() - 1, margins.end());
    }
    const auto [left, bottom, right, top] = margins;
    plan.turned = setup.rotation >= 2;
    const double across = plan.width - left - right;
    const double up = plan.height - bottom - top;
    if (!(across > 0) || !(up > 0)) {
        error = "Paper size \"" + setup.paper.name + "\" has no room to plot on.";
        return false;
    }
    const double unit = setup.inches ? MillimetresPerInch : 1;
    plan.scale = setup.drawn > 0 && setup.plotted > 0 ? unit * setup.plotted / setup.drawn : unit;
    if (setup.area == PlotArea::Layout && !layout->model && !setup.fit) {
        // What lies in the margins of the sheet is on the paper too.
        plan.high = {(across + right) / plan.scale, (up + top) / plan.scale, 0};
        plan.low = {-left / plan.scale, -bottom / plan.scale, 0};
        plan.x = setup.originX;
        plan.y = setup.originY;
        return true;
    }
    PageSetup whole = setup;
    if (setup.area == PlotArea::Layout) {
        whole.area = PlotArea::Extents;
    }
    if (!takeArea(drawing, *layout, whole, plan, error)) {
        return false;
    }
    const double wide = plan.high.x - plan.low.x;
    const double high = plan.high.y - plan.low.y;
    if (setup.fit) {
        plan.scale = std::min(across / wide, up / high);
    }
    plan.x = left + (setup.centered ? (across - wide * plan.scale) / 2 : setup.originX);
    plan.y = bottom + (setup.centered ? (up - high * plan.scale) / 2 : setup.originY);
    return true;
}

bool writePage(Document& document, const std::string& layout, const PageSetup& setup, const PagePlan& plan,
               const std::string& file, std::vector<std::string>& notes, std::string& error) {
    const QTemporaryDir folder;
    if (!folder.isValid()) {
        error = folder.errorString().toStdString();
        return false;
    }
    const std::string copy = folder.filePath(QStringLiteral("plot.dxf")).toStdString();
    if (!writeCopy(document, copy, notes, error)) {
        return false;
    }
    const std::string fresh = file + ".plotting";
    if (std::ofstream probe(fresh); !probe) {
        error = file + ": " + std::strerror(errno);
        return false;
    }
    QJsonArray folders;
    for (const std::string& one : document.host().supportPath()) {
        folders.append(QString::fromStdString(one));
    }
    const std::string beside = fs::path(document.path()).parent_path().string();
    folders.append(QString::fromStdString(beside));
    const QJsonObject request{
        {QStringLiteral("drawing"), QString::fromStdString(copy)},
        {QStringLiteral("layout"), QString::fromStdString(layout)},
        {QStringLiteral("file"), QString::fromStdString(fresh)},
        {QStringLiteral("paper"), QJsonArray{plan.width, plan.height}},
        {QStringLiteral("window"), QJsonArray{plan.low.x, plan.low.y, plan.high.x, plan.high.y}},
        {QStringLiteral("clip"), setup.area != PlotArea::Extents},
        {QStringLiteral("scale"), plan.scale},
        {QStringLiteral("origin"), QJsonArray{plan.x, plan.y}},
        {QStringLiteral("turned"), plan.turned},
        {QStringLiteral("styles"), setup.plotStyles ? QString::fromStdString(setup.styles) : QString()},
        {QStringLiteral("folders"), folders},
        {QStringLiteral("lineweights"), setup.lineweights},
    };
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored).parent_path() / "drafthost-plot";
    QProcess drawer;
    // A host that is killed takes its helper along.
    drawer.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    drawer.start(QString::fromStdString(program.string()),
                 {QString::fromUtf8(QJsonDocument(request).toJson(QJsonDocument::Compact))});
    const bool ran = drawer.waitForStarted(-1) && drawer.waitForFinished(-1) &&
                     drawer.exitStatus() == QProcess::NormalExit;
    for (const QByteArray& line : drawer.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty()) {
            notes.push_back(line.toStdString());
        }
    }
    std::error_code failed;
    if (ran && drawer.exitCode() == 0) {
        fs::rename(fresh, file, failed);
        if (!failed) {
            return true;
        }
        error = file + ": " + failed.message();
    } else {
        const std::string cause = lastLine(drawer.readAllStandardError());
        error = file + ": " +
                (!cause.empty() ? cause : program.string() + ": " + drawer.errorString().toStdString());
    }
    fs::remove(fresh, ignored);
    return false;
}

}  // namespace drafthost::commands
