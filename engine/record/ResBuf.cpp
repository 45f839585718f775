// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/ResBuf.h"

#include "acedads.h"
#include "acutads.h"
#include "engine/record/HostText.h"

#include <cstdlib>
#include <cstring>
#include <utility>

ResBuf::ResBuf(resbuf* chain, bool owns) : head(chain), owned(owns) {
    index();
}

ResBuf::ResBuf(ResBuf&& other) noexcept
    : head(std::exchange(other.head, nullptr)), nodes(std::move(other.nodes)), owned(other.owned) {
    other.nodes.clear();
    other.owned = true;
}

ResBuf& ResBuf::operator=(ResBuf&& other) noexcept {
    if (this != &other) {
        Clear();
        head = std::exchange(other.head, nullptr);
        nodes = std::move(other.nodes);
        owned = std::exchange(other.owned, true);
        other.nodes.clear();
    }
    return *this;
}

ResBuf::~ResBuf() {
    Clear();
}

void ResBuf::Clear() {
    if (owned && head) {
        acutRelRb(head);
    }
    head = nullptr;
    nodes.clear();
    owned = true;
}

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

void ResBuf::index() {
    nodes.clear();
    for (resbuf* node = head; node; node = node->rbnext) {
        nodes.push_back(node);
    }
}

void ResBuf::append(resbuf* node) {
    if (!node) {
        return;
    }
    if (nodes.empty()) {
        head = node;
    } else {
        nodes.back()->rbnext = node;
    }
    nodes.push_back(node);
}

void ResBuf::AddString(const QString& text) {
    append(acutBuildList(RTSTR, HostText(text), RTNONE));
}

void ResBuf::AddShort(int value) {
    if (resbuf* node = acutNewRb(RTSHORT)) {
        node->resval.rint = static_cast<short>(value);
        append(node);
    }
}

void ResBuf::AddBool(bool value) {
    append(acutBuildList(value ? RTT : RTNIL, RTNONE));
}

bool ResBuf::checked(int index) const {
    if (index >= 0 && index < Count()) {
        return true;
    }
    HostPrint(QStringLiteral("ResBuf: Index out of range.\n"));
    return false;
}

int ResBuf::Type(int index) const {
    return index >= 0 && index < Count() ? nodes[static_cast<std::size_t>(index)]->restype : RTNONE;
}

QString ResBuf::String(int index) const {
    if (!checked(index) || Type(index) != RTSTR) {
        return {};
    }
    return FromHost(nodes[static_cast<std::size_t>(index)]->resval.rstring);
}

int ResBuf::Integer(int index) const {
    if (!checked(index)) {
        return 0;
    }
    const resbuf* node = nodes[static_cast<std::size_t>(index)];
    switch (node->restype) {
        case RTSHORT:
            return node->resval.rint;
        case RTLONG:
            return node->resval.rlong;
        case RTREAL:
            return static_cast<int>(node->resval.rreal);
        default:
            return 0;
    }
}

double ResBuf::Real(int index) const {
    if (!checked(index)) {
        return 0;
    }
    const resbuf* node = nodes[static_cast<std::size_t>(index)];
    return node->restype == RTREAL ? node->resval.rreal : Integer(index);
}

void ResBuf::RemoveAt(int index) {
    if (!checked(index)) {
        return;
    }
    const auto at = static_cast<std::size_t>(index);
    resbuf* node = nodes[at];
    if (at == 0) {
        head = node->rbnext;
    } else {
        nodes[at - 1]->rbnext = node->rbnext;
    }
    node->rbnext = nullptr;
    if (owned) {
        acutRelRb(node);
    }
    nodes.erase(nodes.begin() + index);
}

int ResBuf::SetVar(const QString& name) const {
    return head ? acedSetVar(HostText(name), head) : RTERROR;
}

int ResBuf::PutSym(const QString& name) const {
    return acedPutSym(HostText(name), head);
}
