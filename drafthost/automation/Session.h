// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The LISP world of one document with all functions over drawings, prompts and the host, and what these
// functions keep from one call to the next. To the language a session is what its world runs in.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "drafthost/automation/EntityMake.h"
#include "drafthost/automation/LispHost.h"
#include "drafthost/drawing/Record.h"
#include "drafthost/lisp/World.h"
#include "drafthost/lisp/WorldHost.h"

namespace drafthost::automation {

/// What (initget) left for the next prompt.
struct InitGet {
    int bits = 0;
    std::vector<std::string> keywords;
};

/// Where (tblnext) stands: the last record given and how many were given with it.
struct TableCursor {
    EntityName last = 0;
    std::size_t index = 0;
};

/// What a layer above keeps for a session.
struct SessionExtension {
    virtual ~SessionExtension() = default;
};

class Session final : public lisp::WorldHost {
  public:
    explicit Session(LispHost& host);

    LispHost& host;
    lisp::World& world() { return world_; }

    /// The last selection set made, for "Previous"; entities may have been erased since.
    std::vector<EntityName> previousSelection;
    /// Objects selected before a command starts ("implied"); empty when none.
    std::vector<EntityName> pickFirst;

    /// Of the object model, from its first use on.
    std::unique_ptr<SessionExtension> extension;
    /// Finds a function that was never defined, by its name; nil when there is none.
    Value (*findLibraryFunction)(const lisp::Symbol&) = nullptr;

    /// Every reactor that was made.
    std::vector<Value> reactors;

    /// The layer state that was restored last.
    std::string lastLayerState;

    // Kept for the functions of LISP.
    InitGet initGet;
    Making making;
    std::map<std::string, TableCursor> tableCursors;
    std::map<EntityName, std::size_t> dictionaryCursors;  ///< entries given by (dictnext)
    std::map<EntityName, std::vector<RecordId>> deleted;  ///< records that (entdel) can give back

    /// While the arguments of (command) are being evaluated nothing may be asked: the command waits.
    class CommandArguments {
      public:
        CommandArguments(Session& session, Evaluator& e);
        ~CommandArguments() { session_.commandLevel_ = outer_; }
        CommandArguments(const CommandArguments&) = delete;
        CommandArguments& operator=(const CommandArguments&) = delete;

      private:
        Session& session_;
        int outer_;
    };
    /// Fails while nothing may be asked.
    void checkPrompts(const Evaluator& e) const;

    void print(std::string_view text) override { host.print(text); }
    void alert(std::string_view text) override { host.alert(text); }
    Value readLine(Evaluator& e) override;
    std::optional<Value> getVar(std::string_view name) override { return host.getVar(name); }
    std::optional<std::string> programToLoad(std::string_view name) override {
        return host.programToLoad(name);
    }
    bool callModuleFunction(const Exsubr& function, std::span<const Value> args, Value& result) override {
        return host.callModuleFunction(function, args, result);
    }
    Value libraryFunction(const lisp::Symbol& name) override {
        return findLibraryFunction == nullptr ? Value() : findLibraryFunction(name);
    }
    bool checkInterrupt() override { return host.checkInterrupt(); }
    bool documentGone() override { return host.documentGone(); }

  private:
    friend class CommandArguments;
    int commandLevel_ = -1;  ///< the evaluator's level in which arguments are being evaluated
    lisp::World world_;
};

/// The session that an evaluator belongs to.
inline Session& sessionOf(Evaluator& e) {
    return static_cast<Session&>(e.host);
}

}  // namespace drafthost::automation
