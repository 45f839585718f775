// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The LISP world of a document and the host as that world sees it.

#include <memory>
#include <string>
#include <string_view>

#include "drafthost/automation/LispHost.h"
#include "drafthost/automation/Session.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/SystemVariables.h"

namespace drafthost {

class DocumentLisp : public automation::LispHost {
  public:
    DocumentLisp(Host& host, Document& document);
    ~DocumentLisp() override;

    lisp::World& world() { return session_.world(); }
    automation::Session& session() { return session_; }
    /// Evaluates the text, gives the notices for it (firstLine is what they carry) and prints the error if
    /// there is one.
    lisp::EvalResult run(std::string_view text, std::string_view firstLine);
    /// Loads what belongs to every document: acaddoc.lsp along the support path, then (S::STARTUP).
    void startUp();

    /// As the command line shows a value; nothing for the null symbol.
    static std::string shown(const lisp::Value& value);

    automation::CommandStatus command(std::span<const lisp::Value> answers) override;
    automation::CommandStatus commandS(std::span<const lisp::Value> answers) override;
    std::optional<lisp::Value> getVar(std::string_view name) override;
    bool setVar(std::string_view name, const lisp::Value& value) override;
    void print(std::string_view text) override;
    void alert(std::string_view text) override;
    automation::PromptAnswer ask(const automation::PromptRequest& request) override;
    bool askAgain(const automation::PromptRequest& request, std::string_view reason) override;
    std::optional<std::string> askFile(std::string_view title, std::string_view preset,
                                       std::string_view extension, int flags) override;
    bool callModuleFunction(const lisp::Exsubr& function, std::span<const lisp::Value> args,
                            lisp::Value& result) override;
    automation::ModuleStatus loadModule(std::string_view name) override;
    automation::ModuleStatus unloadModule(std::string_view name) override;
    std::vector<std::string> loadedModules() override;
    std::optional<std::string> findFile(std::string_view name) override;
    std::optional<std::string> findTrustedFile(std::string_view name) override;
    std::optional<std::string> programToLoad(std::string_view name) override;
    std::optional<std::string> environment(std::string_view name) override;
    void setEnvironment(std::string_view name, std::string_view value) override;
    std::optional<std::string> configValue(std::string_view path) override;
    bool setConfigValue(std::string_view path, std::string_view value) override;
    std::optional<lisp::Value> registryValue(std::string_view key, std::string_view name) override;
    bool setRegistryValue(std::string_view key, std::string_view name, const lisp::Value& value) override;
    std::vector<std::string> registryNames(std::string_view key, bool values) override;
    bool deleteRegistry(std::string_view key, std::optional<std::string_view> name) override;
    std::string versionText() override;
    std::optional<std::string> commandName(std::string_view name) override;
    bool startProgram(std::string_view program, std::string_view argument) override;
    Drawing* drawing() override;
    void drawingChanged(bool symbolTables) override;
    bool checkInterrupt() override;
    bool documentGone() override;

  private:
    Host& host_;
    Document& document_;
    automation::Session session_;
    Heard lastHeard_;
};

/// A system variable's value for LISP, and back.
lisp::Value toLisp(const VariableValue& value);
std::optional<VariableValue> fromLisp(const lisp::Value& value);

}  // namespace drafthost
