// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/ScriptLint.h"

#include <algorithm>
#include <array>
#include <QHash>
#include <string_view>

namespace {

/// A bracket in the middle of a line that does not close within so many lines is text.
constexpr int LinesOfAnswer = 50;

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isNameByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '$' || c == '#';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// A command as it is typed: its name without the marks before it, and whether one of these was a point.
struct TypedName {
    QString Name;
    bool IsCertain = false;
};

TypedName takeName(std::string_view word) {
    TypedName typed;
    while (!word.empty() && (word.front() == '.' || word.front() == '_' || word.front() == '\'')) {
        typed.IsCertain |= word.front() == '.';
        word.remove_prefix(1);
    }
    const bool isName =
        std::all_of(word.begin(), word.end(), isNameByte) && !word.empty() &&
        (isLetter(word.front()) || (word.size() > 1 && word.front() == '-' && isLetter(word[1])));
    if (isName) {
        typed.Name = QString::fromLatin1(word.data(), static_cast<qsizetype>(word.size())).toUpper();
    }
    return typed;
}

class Linter {
  public:
    Linter(std::string_view text, const std::function<bool(const QString&)>& isCommand)
        : text(text),
          isCommand(isCommand),
          lower(QByteArray(text.data(), qsizetype(text.size())).toLower()) {}

    std::vector<ScriptRemark> Run() {
        // With programs of others come commands of theirs.
        constexpr std::array Loading = {"(load", "(autoload", "(arxload", "(vl-load", "appload", "netload"};
        judgesNames = std::none_of(Loading.begin(), Loading.end(),
                                   [this](const char* word) { return lower.contains(word); });
        while (at < text.size()) {
            lineOfScript();
        }
        constexpr std::array Saving = {"qsave", "saveas", "vla-save", "'save"};
        if (std::none_of(Saving.begin(), Saving.end(),
                         [this](const char* word) { return lower.contains(word); })) {
            remark(1, QStringLiteral("no QSAVE or SAVEAS: changes to the drawings are not saved"));
        }
        std::stable_sort(remarks.begin(), remarks.end(),
                         [](const ScriptRemark& a, const ScriptRemark& b) { return a.Line < b.Line; });
        return std::move(remarks);
    }

  private:
    void remark(int where, const QString& what) { remarks.push_back({where, what}); }

    void lineOfScript() {
        if (text[at] == ';') {
            at = std::min(text.find('\n', at), text.size());
        }
        bool isFirst = true;
        while (at < text.size() && text[at] != '\n') {
            if (isBlank(text[at])) {
                ++at;
                isFirst = isFirst && text[at - 1] == '\r';
            } else if (text[at] == '(') {
                if (!form(isFirst)) {
                    return;
                }
                isFirst = false;
            } else {
                word(isFirst);
                isFirst = false;
            }
        }
        if (at < text.size()) {
            ++at;
            ++line;
        }
    }

    void word(bool atLineStart) {
        const std::size_t start = at;
        while (at < text.size() && !isBlank(text[at])) {
            ++at;
        }
        const std::string_view typed = text.substr(start, at - start);
        if (atLineStart && typed.front() == ')') {
            remark(line, QStringLiteral("a closing parenthesis that nothing opens"));
        } else if (atLineStart) {
            const TypedName name = takeName(typed);
            command(name, name.IsCertain || !seenInput);
        }
        seenInput = true;
    }

    /// One LISP form, over lines. What never closes is told of and ends the script where it begins a line;
    /// elsewhere it may be text. False when nothing is left.
    bool form(bool atLineStart) {
        const std::size_t start = at;
        const int firstLine = line;
        int depth = 0;
        while (at < text.size() && (atLineStart || line - firstLine <= LinesOfAnswer)) {
            const char c = text[at];
            if (c == '\n') {
                ++line;
            } else if (c == '"') {
                const int stringLine = line;
                if (!string()) {
                    return unclosed(atLineStart, start, firstLine, stringLine,
                                    QStringLiteral("the string that begins here is never closed"));
                }
                continue;
            } else if (c == ';') {
                at = std::min(text.find('\n', at), text.size());
                continue;
            } else if (c == '(') {
                ++depth;
                call();
            } else if (c == ')' && --depth == 0) {
                ++at;
                afterForm();
                seenInput = true;
                return true;
            }
            ++at;
        }
        return unclosed(atLineStart, start, firstLine, firstLine,
                        QStringLiteral("the parenthesis that opens here is never closed"));
    }

    bool unclosed(bool atLineStart, std::size_t start, int firstLine, int told, const QString& what) {
        if (atLineStart) {
            remark(told, what);
            at = text.size();
            return false;
        }
        line = firstLine;
        at = start;
        word(false);
        return true;
    }

    void afterForm() {
        if (at < text.size() && text[at] == ')') {
            remark(line, QStringLiteral("a closing parenthesis that nothing opens"));
            while (at < text.size() && text[at] == ')') {
                ++at;
            }
        }
    }

    /// From a quote to behind the closing one.
    bool string() {
        for (++at; at < text.size(); ++at) {
            if (text[at] == '\n') {
                ++line;
            } else if (text[at] == '\\') {
                ++at;
            } else if (text[at] == '"') {
                ++at;
                return true;
            }
        }
        return false;
    }

    /// At the parenthesis that opens a call: the command's name where it stands as a text.
    void call() {
        constexpr std::array Callers = {"command", "command-s", "vl-cmdf"};
        std::size_t behind = at + 1;
        while (behind < text.size() && isNameByte(text[behind])) {
            ++behind;
        }
        const QByteArray function = lower.mid(qsizetype(at) + 1, qsizetype(behind - at) - 1);
        if (std::find(Callers.begin(), Callers.end(), function) == Callers.end()) {
            return;
        }
        while (behind < text.size() && isBlank(text[behind])) {
            ++behind;
        }
        if (behind >= text.size() || text[behind] != '"') {
            return;
        }
        const std::size_t end = text.find('"', behind + 1);
        if (end != std::string_view::npos) {
            const TypedName name = takeName(text.substr(behind + 1, end - behind - 1));
            command(name, name.IsCertain);
        }
    }

    void command(const TypedName& typed, bool isCertain) {
        const QString& name = typed.Name;
        if (name.isEmpty()) {
            return;
        }
        if (name == u"OPTIONS" || name == u"PREFERENCES") {
            remark(line, name + QStringLiteral(" shows a dialog, which stops the script"));
        } else if (name == u"PLOT" && !isCertain && lower.contains("-layer")) {
            // It may be an option of that command.
        } else if (name == u"PLOT" || name == u"LAYER") {
            remark(line, QStringLiteral("%1 shows a dialog, which stops the script; -%1 does not").arg(name));
        }
        if (isCertain && judgesNames && isUnknown(name)) {
            remark(line, QStringLiteral("unknown command %1").arg(name));
        }
    }

    /// Once for each name, as the whole script is looked through for what it defines itself.
    bool isUnknown(const QString& name) {
        const auto seen = unknown.constFind(name);
        if (seen != unknown.constEnd()) {
            return *seen;
        }
        const bool defined = lower.contains(QByteArray("c:" + name.toLower().toLatin1()));
        return *unknown.insert(name, !defined && !isCommand(name));
    }

    std::string_view text;
    const std::function<bool(const QString&)>& isCommand;
    QByteArray lower;
    QHash<QString, bool> unknown;
    std::vector<ScriptRemark> remarks;
    std::size_t at = 0;
    int line = 1;
    bool seenInput = false;
    bool judgesNames = true;
};

}  // namespace

std::vector<ScriptRemark> CheckScript(const QByteArray& script,
                                      const std::function<bool(const QString&)>& isCommand) {
    return Linter(std::string_view(script.constData(), static_cast<std::size_t>(script.size())), isCommand)
        .Run();
}
