// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Hands the host's notices on to the reactors of modules and to modules themselves.

#include <vector>

#include "aced.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"

namespace drafthost {

class Reactors : public HostObserver {
  public:
    explicit Reactors(Host& host) : host_(host) { host_.addObserver(this); }
    ~Reactors() override { host_.removeObserver(this); }

    void add(AcRxEventReactor* reactor);
    void remove(AcRxEventReactor* reactor);

    void documentOpened(Document& document) override;
    void documentClosing(Document& document) override;
    void beginSave(Document& document, std::string_view path) override;
    void saveComplete(Document& document, std::string_view path) override;
    void abortSave(Document& document) override;
    void commandWillStart(std::string_view name) override;
    void commandEnded(std::string_view name) override;
    void commandCancelled(std::string_view name) override;
    void commandFailed(std::string_view name) override;
    void lispWillStart(std::string_view firstLine) override;
    void lispEnded() override;
    void lispCancelled() override;
    void variableChanged(std::string_view name, bool success) override;
    void beginQuit() override;
    void quitWillStart() override;

  private:
    struct Entry {
        AcRxEventReactor* any;
        /// The same when it is an editor's, else null.
        AcEditorReactor* editor;
    };
    template <class Function>
    void toAll(Function function);
    template <class Function>
    void toEditors(Function function);

    Host& host_;
    std::vector<Entry> entries_;
};

/// The reactors in force.
Reactors& apiReactors();

}  // namespace drafthost
