// SPDX-License-Identifier: GPL-3.0-or-later
// The application, its documents and the preferences, and drawings that a program opens beside its own.

#include <filesystem>

#include "drafthost/activex/Application.h"
#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {
namespace {

Result activeDocument(Call& call) {
    return singleObject(call.e, documentClass());
}
void putActiveDocument(Call& call, const Value& value) {
    if (&objectOf(unwrapped(value)) != &objectOf(singleObject(call.e, documentClass()))) {
        failAutomation("Another drawing cannot be made current while a program runs.");
    }
}
Result documents(Call& call) {
    return singleObject(call.e, documentsClass());
}
Result preferences(Call& call) {
    return singleObject(call.e, preferencesClass());
}
Result name(Call&) {
    return Result::text("AutoCAD");
}
Result version(Call& call) {
    const auto held = call.session().host.getVar("ACADVER");
    return Result::text((held && held->isString() ? held->toString() : "19.0") + "s (LMS Tech)");
}
Result path(Call&) {
    std::error_code error;
    return Result::text(std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string());
}
Result fullName(Call&) {
    std::error_code error;
    return Result::text(std::filesystem::read_symlink("/proc/self/exe", error).string());
}
Result isVisible(Call&) {
    return Result::boolean(false);
}
Result one(Call&) {
    return Result::integer(1);
}
void ignore(Call&, const Value&) {}
Result zero(Call&) {
    return Result::integer(0);
}
Result nothing(Call&) {
    return {};
}
Result zoomExtents(Call& call) {
    const std::vector<Value> answers = {Value::string("_.ZOOM"), Value::string("_E")};
    const auto status = call.session().host.commandS(answers);
    call.e.checkDocument();
    if (status != automation::CommandStatus::Done) {
        failAutomation("Description was not provided.");
    }
    return {};
}
Result interfaceObject(Call& call) {
    Value made = createObject(call.e, call.text(0));
    if (!made) {
        failAutomation("Problem in loading application");
    }
    return made;
}

constexpr Property ApplicationProperty[] = {
    {"ActiveDocument", Access::Custom, 0, 0, activeDocument, putActiveDocument},
    {"Documents", Access::Custom, 0, 0, documents},
    {"Preferences", Access::Custom, 0, 0, preferences},
    {"Name", Access::Custom, 0, 0, name},
    {"Caption", Access::Custom, 0, 0, name},
    {"Version", Access::Custom, 0, 0, version},
    {"Path", Access::Custom, 0, 0, path},
    {"FullName", Access::Custom, 0, 0, fullName},
    {"Visible", Access::Custom, 0, 0, isVisible, ignore},
    {"WindowState", Access::Custom, 0, 0, one, ignore},
    {"HWND", Access::Custom, 0, 0, zero},
    {"LocaleID", Access::Custom, 0, 0, zero},
};
constexpr Method ApplicationMethod[] = {
    {"GetInterfaceObject", 1, 1, interfaceObject},
    {"Update", 0, 0, nothing},
    {"ZoomExtents", 0, 0, zoomExtents},
    {"ZoomAll", 0, 0, zoomExtents},
    {"ZoomWindow", 2, 2, nothing},
    {"ZoomCenter", 2, 2, nothing},
    {"ZoomScaled", 1, 2, nothing},
    {"ZoomPrevious", 0, 0, nothing},
};

std::vector<Value> openDocuments(Call& call) {
    return {singleObject(call.e, documentClass())};
}

// --- drawings beside ---

Drawing& beside(const Call& call) {
    if (call.self.database->drawing == nullptr) {
        failAutomation("No drawing is open in this object.");
    }
    return *call.self.database->drawing;
}

/// A path as the model takes it: with slashes of either kind, from the drawing's folder when it has none.
std::string pathOf(const Call& call, std::string text) {
    for (char& c : text) {
        c = c == '\\' ? '/' : c;
    }
    if (const auto found = call.session().host.findFile(text)) {
        return *found;
    }
    return text;
}

void openInto(Database& database, const std::string& file) {
    std::string error;
    auto drawing = Drawing::open(file, error);
    if (drawing == nullptr) {
        failAutomation(error.empty() ? file + " not found" : error);
    }
    database.own = std::move(drawing);
    database.drawing = database.own.get();
    database.path = file;
}

Result openBeside(Call& call) {
    openInto(*call.self.database, pathOf(call, call.text(0)));
    return {};
}

void write(const Call& call, const std::string& file) {
    std::string error;
    if (call.self.database->readOnly && file == call.self.database->path) {
        failAutomation(file + " is opened read-only");
    }
    if (lisp::lowerCase(file).ends_with(".dwg")) {
        failAutomation("This host writes DXF drawings: " + file);
    }
    if (!beside(call).save(file, error)) {
        failAutomation(error);
    }
}
Result saveBesideAs(Call& call) {
    std::string file = call.text(0);
    for (char& c : file) {
        c = c == '\\' ? '/' : c;
    }
    if (std::filesystem::path(file).extension().empty()) {
        file += ".dxf";
    }
    write(call, file);
    call.self.database->path = file;
    return {};
}
Result saveBeside(Call& call) {
    if (call.self.database->path.empty()) {
        failAutomation("The drawing has no name.");
    }
    write(call, call.self.database->path);
    return {};
}
Result closeBeside(Call& call) {
    if (call.has(0) && call.boolean(0) && beside(call).modified()) {
        if (call.has(1)) {
            write(call, call.text(1));
        } else {
            saveBeside(call);
        }
    }
    call.self.database->drawing = nullptr;
    call.self.database->own.reset();
    return {};
}
Result besideName(Call& call) {
    return Result::text(std::filesystem::path(call.self.database->path).filename().string());
}
Result besideFullName(Call& call) {
    return Result::text(call.self.database->path);
}
Result besidePath(Call& call) {
    return Result::text(std::filesystem::path(call.self.database->path).parent_path().string());
}
Result besideSaved(Call& call) {
    return Result::boolean(!beside(call).modified());
}
Result besideReadOnly(Call& call) {
    return Result::boolean(call.self.database->readOnly);
}
Result application(Call& call) {
    return singleObject(call.e, applicationClass());
}

constexpr Property BesideProperty[] = {
    {"Name", Access::Custom, 0, 0, besideName},         {"FullName", Access::Custom, 0, 0, besideFullName},
    {"Path", Access::Custom, 0, 0, besidePath},         {"Saved", Access::Custom, 0, 0, besideSaved},
    {"ReadOnly", Access::Custom, 0, 0, besideReadOnly}, {"Application", Access::Custom, 0, 0, application},
};
constexpr Method BesideMethod[] = {
    {"Open", 1, 3, openBeside},       {"SaveAs", 1, 3, saveBesideAs}, {"Save", 0, 0, saveBeside},
    {"Close", 0, 2, closeBeside},     {"Regen", 1, 1, nothing},       {"Activate", 0, 0, nothing},
    {"StartUndoMark", 0, 0, nothing}, {"EndUndoMark", 0, 0, nothing},
};

const Class& besideClass(bool document) {
    static const Class kDatabase{
        "IAxDbDocument", "", {BesideProperty, databaseProperties()}, {BesideMethod, databaseMethods()}};
    static const Class kDocument{
        "IAcadDocument", "", {BesideProperty, databaseProperties()}, {BesideMethod, databaseMethods()}};
    return document ? kDocument : kDatabase;
}

Result openDocument(Call& call) {
    auto database = std::make_shared<Database>();
    openInto(*database, pathOf(call, call.text(0)));
    database->readOnly = call.has(1) && call.boolean(1);
    return makeObject(besideClass(true), database);
}
Result addDocument(Call& call) {
    auto database = std::make_shared<Database>();
    if (call.has(0)) {
        openInto(*database, pathOf(call, call.text(0)));
        database->path.clear();
    } else {
        const auto metric = call.session().host.getVar("MEASUREINIT");
        database->own = Drawing::createNew(metric && metric->isInt() && metric->toInt() == 1);
        database->drawing = database->own.get();
    }
    return makeObject(besideClass(true), database);
}

Value findDocument(Call& call, const std::string& name) {
    const auto held = call.session().host.getVar("DWGNAME");
    return held && held->isString() && foldCase(held->toString()) == foldCase(name)
               ? singleObject(call.e, documentClass())
               : Value();
}

}  // namespace

Value createObject(Evaluator& e, const std::string& program) {
    const std::string name = lisp::upperCase(program);
    if (name.find(".ACCMCOLOR") != std::string::npos) {
        return makeColor(e, 256, -1, "");
    }
    if (name.starts_with("OBJECTDBX.AXDBDOCUMENT")) {
        auto database = std::make_shared<Database>();
        database->own = Drawing::createNew(true);
        database->drawing = database->own.get();
        return makeObject(besideClass(false), database);
    }
    if (name.starts_with("AUTOCAD.APPLICATION")) {
        return singleObject(e, applicationClass());
    }
    return {};
}

const Class& applicationClass() {
    static const Class kClass{"IAcadApplication", "", {ApplicationProperty}, {ApplicationMethod}};
    return kClass;
}

const Class& documentsClass() {
    static constexpr Method Own[] = {{"Open", 1, 3, openDocument}, {"Add", 0, 1, addDocument}};
    static constexpr Property Around[] = {{"Application", Access::Custom, 0, 0, application}};
    static const Class kClass = [] {
        Class c{"IAcadDocuments", "", {collectionProperties(), Around}, {Own, collectionMethods()}};
        c.members = openDocuments;
        c.named = findDocument;
        return c;
    }();
    return kClass;
}

}  // namespace drafthost::activex
