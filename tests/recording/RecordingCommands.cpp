// SPDX-License-Identifier: GPL-3.0-or-later
// Commands, variables, prompts and LISP functions.
#include "acedads.h"
#include "tests/recording/RecordingHost.h"

#include <cstdarg>

namespace {
RecordingHost& host() {
    return RecordingHost::Get();
}

/// The next prepared answer; false when the prompt is cancelled or nothing was prepared.
bool nextAnswer(const ACHAR* prompt, QString& answer) {
    host().Note(QStringLiteral("prompt ") + TextOf(prompt));
    if (host().Answers.empty()) {
        return false;
    }
    answer = host().Answers.front();
    host().Answers.pop_front();
    return !answer.isNull();
}
}  // namespace

int acedCommand(int type, ...) {
    QStringList words;
    va_list values;
    va_start(values, type);
    for (; type != RTNONE && type != 0; type = va_arg(values, int)) {
        if (type == RTSTR) {
            words << TextOf(va_arg(values, const ACHAR*));
        } else {
            words << QString::number(va_arg(values, int));
        }
    }
    va_end(values);
    return host().Command(words);
}

int acedCmd(const resbuf* chain) {
    QStringList words;
    for (; chain; chain = chain->rbnext) {
        words << ValueText(chain);
    }
    return host().Command(words);
}

int acedGetVar(const ACHAR* name, resbuf* out) {
    const QString key = TextOf(name).toUpper();
    host().Note(QStringLiteral("getvar ") + TextOf(name));
    const auto found = host().Variables.constFind(key);
    if (found == host().Variables.constEnd()) {
        return RTERROR;
    }
    resbuf* value =
        found->userType() == QMetaType::QString
            ? acutBuildList(RTSTR, reinterpret_cast<const ACHAR*>(found->toString().utf16()), RTNONE)
            : acutBuildList(RTSHORT, found->toInt(), RTNONE);
    out->restype = value->restype;
    out->resval = value->resval;
    value->restype = RTNONE;
    acutRelRb(value);
    return RTNORM;
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
    const QString key = TextOf(name).toUpper();
    host().Note(QStringLiteral("setvar %1 %2").arg(TextOf(name), ValueText(value)));
    if (!host().Variables.contains(key) || host().ReadOnlyVariables.contains(key)) {
        return RTERROR;
    }
    host().Variables[key] =
        value->restype == RTSTR ? QVariant(ValueText(value)) : QVariant(value->resval.rint);
    return RTNORM;
}

int acedGetSym(const ACHAR* name, resbuf** out) {
    const auto found = host().Symbols.constFind(TextOf(name).toUpper());
    *out = found == host().Symbols.constEnd()
               ? nullptr
               : acutBuildList(RTSTR, reinterpret_cast<const ACHAR*>(found->utf16()), RTNONE);
    return RTNORM;
}

int acedPutSym(const ACHAR* name, const resbuf* value) {
    host().Note(QStringLiteral("putsym %1 %2").arg(TextOf(name), ValueText(value)));
    host().Symbols[TextOf(name).toUpper()] = ValueText(value);
    return RTNORM;
}

void acedInitDialog(bool useDialog) {
    host().Note(QStringLiteral("initdialog %1").arg(useDialog ? 1 : 0));
}

int ads_queueexpr(const ACHAR* expression) {
    host().Note(QStringLiteral("queueexpr ") + TextOf(expression));
    host().Queued.push_back(TextOf(expression));
    return RTNORM;
}

int acedUsrBrk() {
    return 0;
}

int acedFindFile(const ACHAR* name, ACHAR* result, int size) {
    host().Note(QStringLiteral("findfile ") + TextOf(name));
    const auto found = host().Files.constFind(TextOf(name));
    if (found == host().Files.constEnd()) {
        return RTERROR;
    }
    CopyOut(*found, result, size);
    return RTNORM;
}

int acedInitGet(int bits, const ACHAR* keywords) {
    host().Note(QStringLiteral("initget %1 %2").arg(bits).arg(TextOf(keywords)));
    return RTNORM;
}

int acedGetKword(const ACHAR* prompt, ACHAR* result, int size) {
    QString answer;
    if (!nextAnswer(prompt, answer)) {
        return RTCAN;
    }
    if (answer.isEmpty()) {
        return RTNONE;
    }
    CopyOut(answer, result, size);
    return RTNORM;
}

int acedGetInt(const ACHAR* prompt, int* result) {
    QString answer;
    if (!nextAnswer(prompt, answer)) {
        return RTCAN;
    }
    if (answer.isEmpty()) {
        return RTNONE;
    }
    *result = answer.toInt();
    return RTNORM;
}

int acedGetString(int, const ACHAR* prompt, ACHAR* result, int size) {
    QString answer;
    if (!nextAnswer(prompt, answer)) {
        return RTCAN;
    }
    CopyOut(answer, result, size);
    return RTNORM;
}

int acedDefun(const ACHAR* name, int code) {
    host().Note(QStringLiteral("defun %1 %2").arg(TextOf(name)).arg(code));
    host().Functions[TextOf(name).toUpper()] = code;
    host().Codes.push_back(code);
    return RTNORM;
}

int acedUndef(const ACHAR* name, int) {
    host().Functions.remove(TextOf(name).toUpper());
    return RTNORM;
}

int acedRegFunc(int (*function)(), int code) {
    host().Note(QStringLiteral("regfunc %1").arg(code));
    host().Handlers[code] = function;
    return RTNORM;
}

int acedRetT() {
    host().Result = QStringLiteral("T");
    return RTNORM;
}

int acedRetNil() {
    host().Result = QStringLiteral("nil");
    return RTNORM;
}

int acedRetVoid() {
    host().Result = QStringLiteral("void");
    return RTNORM;
}

int acedRetInt(int value) {
    host().Result = QStringLiteral("int %1").arg(value);
    return RTNORM;
}

int acedRetReal(ads_real value) {
    host().Result = QStringLiteral("real %1").arg(value);
    return RTNORM;
}

int acedRetStr(const ACHAR* value) {
    host().Result = QStringLiteral("str ") + TextOf(value);
    return RTNORM;
}

int acedRetList(const resbuf*) {
    host().Result = QStringLiteral("list");
    return RTNORM;
}

int acedInvoke(const resbuf* arguments, resbuf** out) {
    return host().OnInvoke ? host().OnInvoke(arguments, out) : RTERROR;
}
