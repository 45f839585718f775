// SPDX-License-Identifier: GPL-3.0-or-later
// What the chains of values exchange with the host: variables, arguments, symbols. It stands apart from the
// values, which programs without a host use too.
#include "engine/record/ResBuf.h"

#include "acedads.h"
#include "acutads.h"
#include "engine/record/HostText.h"

int ResBuf::GetVar(const QString& name) {
    Clear();
    resbuf* node = acutNewRb(RTNONE);
    if (!node) {
        return RTERROR;
    }
    const int result = acedGetVar(HostText(name), node);
    if (result != RTNORM) {
        acutRelRb(node);
        return result;
    }
    append(node);
    return result;
}

void ResBuf::GetArgs() {
    Clear();
    head = acedGetArgs();
    index();
}

void ResBuf::AddString(const QString& text) {
    append(acutBuildList(RTSTR, HostText(text), RTNONE));
}

void ResBuf::AddBool(bool value) {
    append(acutBuildList(value ? RTT : RTNIL, RTNONE));
}

int ResBuf::SetVar(const QString& name) const {
    return head ? acedSetVar(HostText(name), head) : RTERROR;
}

int ResBuf::PutSym(const QString& name) const {
    return acedPutSym(HostText(name), head);
}
