// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/api/Reactors.h"

#include <algorithm>

#include "drafthost/api/ApiHost.h"
#include "drafthost/api/Documents.h"
#include "drafthost/editor/ModuleTable.h"

namespace drafthost {

void Reactors::add(AcRxEventReactor* reactor) {
    const bool known =
        std::any_of(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.any == reactor; });
    if (reactor && !known) {
        entries_.push_back({reactor, dynamic_cast<AcEditorReactor*>(reactor)});
    }
}

void Reactors::remove(AcRxEventReactor* reactor) {
    std::erase_if(entries_, [&](const Entry& entry) { return entry.any == reactor; });
}

template <class Function>
void Reactors::toAll(Function function) {
    // A copy: a reactor may take itself or others away. Whoever has gone is not called any more.
    const std::vector<Entry> entries = entries_;
    for (const Entry& entry : entries) {
        const bool there = std::any_of(entries_.begin(), entries_.end(),
                                       [&](const Entry& other) { return other.any == entry.any; });
        if (there) {
            const std::uint64_t module = host_.modules().moduleOf(*reinterpret_cast<void**>(entry.any));
            host_.modules().guarded(module, [&] { function(entry); });
        }
    }
}

template <class Function>
void Reactors::toEditors(Function function) {
    if (entries_.empty()) {
        return;
    }
    toAll([&](const Entry& entry) {
        if (entry.editor) {
            function(*entry.editor);
        }
    });
}

void Reactors::documentOpened(Document& document) {
    AcDbDatabase* database = apiDatabase(document);
    toAll([&](const Entry& entry) { entry.any->databaseConstructed(database); });
}

void Reactors::documentClosing(Document& document) {
    AcDbDatabase* database = apiDatabase(document);
    toAll([&](const Entry& entry) { entry.any->databaseToBeDestroyed(database); });
    retireDocument(document);
}

void Reactors::beginSave(Document& document, std::string_view path) {
    host_.modules().sendToFunctionOwners(AcRx::kSaveMsg);
    const std::u16string name = toUtf16(path);
    toAll([&](const Entry& entry) { entry.any->beginSave(apiDatabase(document), name.c_str()); });
}

void Reactors::saveComplete(Document& document, std::string_view path) {
    const std::u16string name = toUtf16(path);
    toAll([&](const Entry& entry) { entry.any->saveComplete(apiDatabase(document), name.c_str()); });
}

void Reactors::abortSave(Document& document) {
    toAll([&](const Entry& entry) { entry.any->abortSave(apiDatabase(document)); });
}

void Reactors::commandWillStart(std::string_view name) {
    const std::u16string text = toUtf16(name);
    toEditors([&](AcEditorReactor& reactor) { reactor.commandWillStart(text.c_str()); });
}

void Reactors::commandEnded(std::string_view name) {
    const std::u16string text = toUtf16(name);
    toEditors([&](AcEditorReactor& reactor) { reactor.commandEnded(text.c_str()); });
}

void Reactors::commandCancelled(std::string_view name) {
    const std::u16string text = toUtf16(name);
    toEditors([&](AcEditorReactor& reactor) { reactor.commandCancelled(text.c_str()); });
}

void Reactors::commandFailed(std::string_view name) {
    const std::u16string text = toUtf16(name);
    toEditors([&](AcEditorReactor& reactor) { reactor.commandFailed(text.c_str()); });
}

void Reactors::lispWillStart(std::string_view firstLine) {
    const std::u16string text = toUtf16(firstLine);
    toEditors([&](AcEditorReactor& reactor) { reactor.lispWillStart(text.c_str()); });
}

void Reactors::lispEnded() {
    toEditors([](AcEditorReactor& reactor) { reactor.lispEnded(); });
}

void Reactors::lispCancelled() {
    toEditors([](AcEditorReactor& reactor) { reactor.lispCancelled(); });
}

void Reactors::variableChanged(std::string_view name, bool success) {
    const std::u16string text = toUtf16(name);
    toEditors([&](AcEditorReactor& reactor) { reactor.sysVarChanged(text.c_str(), success); });
}

void Reactors::beginQuit() {
    toEditors([](AcEditorReactor& reactor) { reactor.beginQuit(); });
}

void Reactors::quitWillStart() {
    toEditors([](AcEditorReactor& reactor) { reactor.quitWillStart(); });
}

namespace {

class Editor : public AcEditor {
  public:
    void addReactor(AcRxEventReactor* reactor) override { apiReactors().add(reactor); }
    void removeReactor(AcRxEventReactor* reactor) override { apiReactors().remove(reactor); }
};

}  // namespace
}  // namespace drafthost

AcEditor* acedEditorPtr() {
    static drafthost::Editor editor;
    return &editor;
}
