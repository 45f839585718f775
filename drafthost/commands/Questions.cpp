// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Questions.h"

#include <cstdlib>
#include <filesystem>

#include "drafthost/commands/Backup.h"
#include "drafthost/drawing/Value.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/ScriptReader.h"

namespace drafthost::commands {

Task<bool> askYesNo(CommandContext& context, std::string question, bool standard) {
    auto answer = co_await context.keyword(std::move(question), "Yes No", standard ? "Yes" : "No");
    co_return answer.isKeyword("Yes");
}

namespace {

/// Whoever sits at the window is asked in a box. Programs and scripts answer on the command line, and so does
/// a user who wants no dialogs.
bool asksInBox(CommandContext& context) {
    Host& host = context.host();
    return host.changesBox() && context.source() == InputSource::Keyboard && !host.script().isRunning() &&
           host.variables().integer("FILEDIA", 1) != 0;
}

/// True when the changes are on the disk or not wanted.
bool settleInBox(CommandContext& context, Document& document) {
    const ChangesAnswer answer = context.host().changesBox()(document);
    if (answer.kind != ChangesAnswer::Save) {
        return answer.kind == ChangesAnswer::Discard;
    }
    const std::string path = answer.path.empty() ? document.path() : answer.path;
    std::string error;
    const bool saved = keepBackup(context.host(), path, error) &&
                       (answer.path.empty() ? document.save(error) : document.saveTo(path, true, {}, error));
    if (!saved) {
        context.printLine(error);
    }
    return saved;
}

}  // namespace

Task<bool> mayDiscardChanges(CommandContext& context, Document& document) {
    if (document.modified() == 0) {
        co_return true;
    }
    if (asksInBox(context)) {
        bool settled = settleInBox(context, document);
        co_return settled;
    }
    co_return co_await askYesNo(context, "Really want to discard all changes to " + document.title() + "?",
                                false);
}

Task<bool> mayReplaceFile(CommandContext& context, const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error) || context.host().variables().integer("EXPERT", 0) >= 2) {
        co_return true;
    }
    co_return co_await askYesNo(context, path + " already exists. Do you want to replace it?", false);
}

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string absolutePath(std::string_view typed) {
    std::string path(typed);
    const char* home = std::getenv("HOME");
    if (path.starts_with("~/") && home) {
        path = home + path.substr(1);
    }
    std::error_code error;
    auto absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
}

std::string absolutePath(std::string_view typed, std::string_view extension) {
    std::string path = absolutePath(typed);
    if (std::filesystem::path(path).extension().empty()) {
        path += extension;
    }
    return path;
}

bool isWord(std::string_view typed, std::string_view keyword, std::size_t least) {
    const std::string word = foldCase(typed.starts_with('_') ? typed.substr(1) : typed);
    return word.size() >= least && keyword.starts_with(word);
}

std::string unquoted(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return std::string(quoted ? text.substr(1, text.size() - 2) : text);
}

}  // namespace drafthost::commands
