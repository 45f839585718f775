// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the host tells those who watch it: the reactors of modules, the window, the tests. Every notice has
// an empty default. Exactly one of ended, cancelled and failed follows each start of a command.

#include <string_view>

namespace drafthost {

class Document;

class HostObserver {
  public:
    virtual ~HostObserver() = default;
    virtual void documentOpened(Document&) {}
    virtual void documentClosing(Document&) {}
    virtual void documentActivated(Document*) {}
    virtual void beginSave(Document&, std::string_view /*path*/) {}
    virtual void saveComplete(Document&, std::string_view /*path*/) {}
    virtual void abortSave(Document&) {}
    /// Global name in capitals, without prefixes.
    virtual void commandWillStart(std::string_view) {}
    virtual void commandEnded(std::string_view) {}
    virtual void commandCancelled(std::string_view) {}
    virtual void commandFailed(std::string_view) {}
    /// First line of the expression as typed; (C:NAME) for a function started by its name.
    virtual void lispWillStart(std::string_view) {}
    virtual void lispEnded() {}
    virtual void lispCancelled() {}
    virtual void variableChanged(std::string_view /*name*/, bool /*success*/) {}
    virtual void beginQuit() {}
    virtual void quitWillStart() {}
};

}  // namespace drafthost
