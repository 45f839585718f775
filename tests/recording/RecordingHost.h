// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A host for tests that has no drawings. It keeps every call in order as one line of text, answers from small
// tables, and can be told to fail. It also plays the part of a host that a chain of scripts needs: it reads
// the strings that were sent and the script that was started, and calls the LISP functions that stand there.
#include "acedads.h"
#include "achar.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <deque>
#include <functional>
#include <vector>

/// One value of a LISP call, as the host hands it to a module.
struct LispValue {
    int Type;
    QString Text;
    int Number = 0;
    static LispValue T();
    static LispValue Nil();
    static LispValue String(const QString& text);
    static LispValue Integer(int number);
    /// A value of the other integer type.
    static LispValue Long(int number);
    static LispValue Mark(int type);
};

class RecordingHost {
  public:
    static RecordingHost& Get();
    /// Everything as at the start: no calls, the standard variables, one document.
    void Reset();

    /// All calls in order: "command ._open|/a/b.dxf", "setvar SDI 1", "send (TNL_Start_Batch)\n", ...
    QStringList Calls;
    /// The calls that begin with the prefix.
    QStringList CallsOf(const QString& prefix) const;
    /// All that was written to the command line.
    QString Printed;

    /// System variables under their names in capitals: short or string.
    QHash<QString, QVariant> Variables;
    QHash<QString, QString> Symbols;
    /// Called for each command with its words; its result is the command's. RTNORM without one.
    std::function<int(const QStringList&)> OnCommand;
    /// Answers acedInvoke, which is refused without one.
    std::function<int(const resbuf*, resbuf**)> OnInvoke;
    /// Refused by acedSetVar.
    QStringList ReadOnlyVariables;

    /// Answers to prompts in order: a null string cancels, an empty one is Enter.
    std::deque<QString> Answers;

    int DocumentCount = 1;
    /// "acad.rx" and the like: what acedFindFile finds, by name.
    QHash<QString, QString> Files;
    /// The registry: "ROOT\path" to int or string.
    QMap<QString, QVariant> Registry;
    bool RegistryWritable = true;
    /// Loaded modules by file name, with their paths; and what they export, as "file!symbol".
    QHash<QString, QString> Modules;
    QHash<QString, void*> ModuleSymbols;
    /// Told of each load through the linker, which may add to the two tables above.
    std::function<void(const QString&)> OnLoadModule;

    /// LISP functions by name in capitals, and the codes in the order in which they were defined.
    QHash<QString, int> Functions;
    QHash<int, int (*)()> Handlers;
    std::vector<int> Codes;
    /// Commands by "GROUP/NAME".
    QHash<QString, void (*)()> Commands;
    std::vector<void*> Reactors;
    int ResourceDepth = 0;

    /// Calls a LISP function of the module. The result is "T", "nil", "str TEXT", "int N", or "none" when the
    /// function set nothing. An exception goes through.
    QString CallLisp(const QString& name, const std::vector<LispValue>& arguments = {});
    /// Reads queued strings and the running script, line by line, until nothing is left. A line that is no
    /// call of a known function is noted as "line TEXT". Stops after the given number of lines.
    void RunInput(int lines = 100000);
    /// What is queued and not read yet.
    std::deque<QString> Queued;

    // Used by the host's functions.
    void Note(const QString& call) { Calls.append(call); }
    int Command(const QStringList& words);
    void Send(const QString& text);
    std::vector<LispValue> Arguments;
    QString Result;

  private:
    bool nextLine(QString& line);
    void callFromScript(const QString& name);
    QStringList script;
};

inline QString TextOf(const ACHAR* text) {
    return text ? QString::fromUtf16(text) : QString();
}
/// Copies with the end mark into a buffer of the given size in units.
void CopyOut(const QString& text, ACHAR* out, int size);
/// A chain's first value as text for the record: "1", "abc", "T", "nil".
QString ValueText(const resbuf* value);
