// SPDX-License-Identifier: GPL-3.0-or-later
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <langinfo.h>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <numbers>

#include "drafthost/commands/DateTime.h"
#include "drafthost/commands/LayoutSwitch.h"
#include "drafthost/commands/VariableActions.h"
#include "drafthost/commands/ViewGeometry.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/CommandLine.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/RegistryFile.h"

namespace drafthost::commands {

namespace {

using Get = VariableValue (*)(Host&, Document*);
using Set = bool (*)(Host&, Document*, const VariableValue&, std::string&);

struct Action {
    std::string_view name;
    Get get;
    Set set = nullptr;
};

std::string withSeparator(std::string folder) {
    if (!folder.empty() && folder.back() != '/') {
        folder += '/';
    }
    return folder;
}

std::chrono::system_clock::time_point now() {
    return std::chrono::system_clock::now();
}

// --- program ---

VariableValue supportFolders(Host& host, Document*) {
    std::string all;
    for (const std::string& folder : host.supportPath()) {
        all += (all.empty() ? "" : ";") + folder;
    }
    return all;
}

VariableValue platform(Host&, Document*) {
    utsname name{};
    uname(&name);
    return std::string(name.sysname) + " " + name.release + " (" + name.machine + ")";
}

VariableValue locale(Host&, Document*) {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            std::string text(value);
            return text.substr(0, text.find_first_of(".@"));
        }
    }
    return std::string("C");
}

VariableValue systemCodePage(Host&, Document*) {
    return std::string(nl_langinfo(CODESET));
}

VariableValue temporaryFolder(Host&, Document*) {
    std::error_code error;
    auto folder = std::filesystem::temp_directory_path(error);
    return withSeparator(error ? "/tmp" : folder.string());
}

// --- the document ---

VariableValue modifiedBits(Host&, Document* document) {
    if (!document) {
        return 0;
    }
    int bits = static_cast<int>(document->modified());
    return bits == 0 && document->drawing().modified() ? int{ModifiedObjects} : bits;
}

VariableValue drawingName(Host&, Document* document) {
    return document ? document->title() : std::string();
}

VariableValue drawingFolder(Host&, Document* document) {
    std::error_code error;
    if (document && document->hasName()) {
        return withSeparator(std::filesystem::path(document->path()).parent_path().string());
    }
    return withSeparator(std::filesystem::current_path(error).string());
}

VariableValue drawingTitled(Host&, Document* document) {
    return document && document->hasName() ? 1 : 0;
}

VariableValue savedName(Host&, Document* document) {
    return document ? document->savedName() : std::string();
}

VariableValue writable(Host&, Document* document) {
    return document && document->isReadOnly() ? 0 : 1;
}

VariableValue logName(Host&, Document* document) {
    return document ? document->logName() : std::string();
}

VariableValue daysEditing(Host&, Document* document) {
    return document ? headerReal(document->drawing(), "$TDINDWG", 0) : 0.0;
}

VariableValue daysTimer(Host&, Document* document) {
    return document ? headerReal(document->drawing(), "$TDUSRTIMER", 0) : 0.0;
}

VariableValue handles(Host&, Document* document) {
    return document && document->drawing().hasHandles() ? 1 : 0;
}

// --- space and view ---

VariableValue currentTab(Host&, Document* document) {
    return document ? currentLayoutName(document->drawing()) : std::string("Model");
}

bool setCurrentTab(Host&, Document* document, const VariableValue& value, std::string& reason) {
    if (!document) {
        reason = "CTAB needs an open drawing.";
        return false;
    }
    const std::string& name = std::get<std::string>(value);
    if (foldCase(name) == foldCase(currentLayoutName(document->drawing()))) {
        return true;
    }
    if (!makeLayoutCurrent(document->drawing(), name, reason)) {
        return false;
    }
    document->previousViews().clear();
    document->setModified(ModifiedVariables);
    return true;
}

VariableValue currentViewport(Host&, Document* document) {
    if (!document || modelIsCurrent(document->drawing())) {
        return 2;
    }
    const Drawing& drawing = document->drawing();
    const RecordId viewport = drawing.activeViewport();
    return viewport == NoRecord ? 1 : static_cast<int>(drawing.record(viewport).integerOr(69, 2));
}

bool setCurrentViewport(Host& host, Document* document, const VariableValue& value, std::string& reason) {
    if (value == currentViewport(host, document)) {
        return true;
    }
    const auto* number = std::get_if<int>(&value);
    if (document && number && enterViewport(document->drawing(), *number)) {
        return true;
    }
    reason = "CVPORT: there is no such viewport to make current.";
    return false;
}

/// The header's extents, or computed ones where the header has none or objects were changed since.
Extents knownExtents(Document& document) {
    Drawing& drawing = document.drawing();
    bool model = modelIsCurrent(drawing);
    Extents extents;
    extents.min = headerPoint(drawing, model ? "$EXTMIN" : "$PEXTMIN", extents.min);
    extents.max = headerPoint(drawing, model ? "$EXTMAX" : "$PEXTMAX", extents.max);
    if (extents.empty() || document.modified() & ModifiedObjects) {
        extents.add(computeExtents(drawing, !model));
    }
    return extents;
}

VariableValue extentsMinimum(Host&, Document* document) {
    return document ? knownExtents(*document).min : Point{1e20, 1e20, 1e20};
}

VariableValue extentsMaximum(Host&, Document* document) {
    return document ? knownExtents(*document).max : Point{-1e20, -1e20, -1e20};
}

VariableValue viewCenter(Host&, Document* document) {
    return document ? viewCenterInUcs(document->drawing()) : Point{};
}

VariableValue viewSize(Host&, Document* document) {
    return document ? currentView(document->drawing()).height : 1.0;
}

VariableValue viewDirection(Host&, Document* document) {
    return document ? viewPlane(document->drawing()).direction : Point{0, 0, 1};
}

VariableValue viewTwist(Host&, Document* document) {
    return document ? viewPlane(document->drawing()).twist : 0.0;
}

std::int64_t viewportFlag(Document* document, int code) {
    if (document) {
        RecordId entry = findEntry(document->drawing(), Table::Vport, "*ACTIVE");
        if (entry != NoRecord) {
            return document->drawing().record(entry).integerOr(code, 0);
        }
    }
    return 0;
}

bool setViewportFlag(Document* document, int code, const VariableValue& value, std::string& reason) {
    RecordId entry = document ? findEntry(document->drawing(), Table::Vport, "*ACTIVE") : NoRecord;
    if (entry == NoRecord) {
        reason = "The drawing has no viewport that could keep this.";
        return false;
    }
    if (viewportFlag(document, code) != std::get<int>(value)) {
        document->drawing().put(entry, code, std::int64_t{std::get<int>(value)}, {74, 73, 72, 71, 51, 50});
        document->setModified(ModifiedView);
    }
    return true;
}

constexpr int SnapCode = 75;
constexpr int GridCode = 76;
constexpr int ModeCode = 71;

VariableValue worldUcs(Host&, Document* document) {
    if (!document) {
        return 1;
    }
    const Drawing& drawing = document->drawing();
    bool model = modelIsCurrent(drawing);
    bool world = headerPoint(drawing, model ? "$UCSORG" : "$PUCSORG", {0, 0, 0}) == Point{0, 0, 0} &&
                 headerPoint(drawing, model ? "$UCSXDIR" : "$PUCSXDIR", {1, 0, 0}) == Point{1, 0, 0} &&
                 headerPoint(drawing, model ? "$UCSYDIR" : "$PUCSYDIR", {0, 1, 0}) == Point{0, 1, 0};
    return world ? 1 : 0;
}

VariableValue userName(Host&, Document*) {
    const passwd* user = getpwuid(getuid());
    return std::string(user != nullptr ? user->pw_name : "");
}

/// Since the machine was started, going round after 24 days.
VariableValue millisecondsUp(Host&, Document*) {
    const auto up = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(up).count() & 0x7fffffff);
}

const Action Actions[] = {
    {"ACADPREFIX", supportFolders},
    {"CDATE", [](Host&, Document*) -> VariableValue { return calendarDate(now()); }},
    {"CMDACTIVE",
     [](Host& host, Document*) -> VariableValue { return static_cast<int>(host.input().activeBits()); }},
    {"CMDNAMES",
     [](Host& host, Document* document) -> VariableValue {
         const std::string names = document ? document->commandLine().names() : std::string();
         // Whoever asks then runs inside a question of LISP.
         return names.empty() && host.input().isListening() ? "LISP" : names;
     }},
    {"CPROFILE", [](Host& host, Document*) -> VariableValue { return host.registry().profile(); }},
    {"CTAB", currentTab, setCurrentTab},
    {"CVPORT", currentViewport, setCurrentViewport},
    {"LOGINNAME", userName},
    {"MILLISECS", millisecondsUp},
    {"DATE", [](Host&, Document*) -> VariableValue { return julianDate(now()); }},
    {"DBMOD", modifiedBits},
    {"DWGNAME", drawingName},
    {"DWGPREFIX", drawingFolder},
    {"DWGTITLED", drawingTitled},
    {"EXTMAX", extentsMaximum},
    {"EXTMIN", extentsMinimum},
    {"GRIDMODE",
     [](Host&, Document* document) -> VariableValue {
         return static_cast<int>(viewportFlag(document, GridCode));
     },
     [](Host&, Document* document, const VariableValue& value, std::string& reason) {
         return setViewportFlag(document, GridCode, value, reason);
     }},
    {"HANDLES", handles},
    {"LASTPROMPT", [](Host& host, Document*) -> VariableValue { return host.lastLine(); }},
    {"LOCALE", locale},
    {"LOGFILENAME", logName},
    {"PLATFORM", platform},
    {"SAVENAME", savedName},
    {"SNAPMODE",
     [](Host&, Document* document) -> VariableValue {
         return static_cast<int>(viewportFlag(document, SnapCode));
     },
     [](Host&, Document* document, const VariableValue& value, std::string& reason) {
         return setViewportFlag(document, SnapCode, value, reason);
     }},
    {"SYSCODEPAGE", systemCodePage},
    {"TDINDWG", daysEditing},
    {"TDUSRTIMER", daysTimer},
    {"TEMPPREFIX", temporaryFolder},
    {"VIEWCTR", viewCenter},
    {"VIEWDIR", viewDirection},
    {"VIEWMODE",
     [](Host&, Document* document) -> VariableValue {
         return static_cast<int>(viewportFlag(document, ModeCode));
     }},
    {"VIEWSIZE", viewSize},
    {"VIEWTWIST", viewTwist},
    {"WORLDUCS", worldUcs},
    {"WRITESTAT", writable},
};

}  // namespace

void addComputedAction(VariableEntry& entry, const VariableRow& row) {
    for (const Action& action : Actions) {
        if (action.name == row.name) {
            entry.get = action.get;
            if (action.set) {
                entry.set = action.set;
            }
            return;
        }
    }
}

}  // namespace drafthost::commands
