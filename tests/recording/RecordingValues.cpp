// SPDX-License-Identifier: GPL-3.0-or-later
// Chains of values: made, filled and freed.
#include "acutads.h"
#include "tests/recording/RecordingHost.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace {

ACHAR* copyText(const ACHAR* text) {
    const QString copy = TextOf(text);
    const auto bytes = (static_cast<std::size_t>(copy.size()) + 1) * sizeof(ACHAR);
    auto* out = static_cast<ACHAR*>(std::malloc(bytes));
    std::memcpy(out, copy.utf16(), bytes);
    return out;
}

bool standsAlone(int type) {
    return type == RTLB || type == RTLE || type == RTDOTE || type == RTNIL || type == RTT || type == RTVOID;
}

}  // namespace

resbuf* acutNewRb(int type) {
    auto* node = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
    node->restype = static_cast<short>(type);
    return node;
}

resbuf* acutBuildList(int type, ...) {
    resbuf* head = nullptr;
    resbuf** tail = &head;
    va_list values;
    va_start(values, type);
    for (; type != RTNONE && type != 0; type = va_arg(values, int)) {
        resbuf* node = acutNewRb(type);
        *tail = node;
        tail = &node->rbnext;
        if (type == RTSTR) {
            node->resval.rstring = copyText(va_arg(values, const ACHAR*));
        } else if (type == RTSHORT) {
            node->resval.rint = static_cast<short>(va_arg(values, int));
        } else if (type == RTLONG) {
            node->resval.rlong = va_arg(values, int);
        } else if (type == RTREAL) {
            node->resval.rreal = va_arg(values, double);
        } else if (!standsAlone(type)) {
            acutRelRb(head);
            head = nullptr;
            break;
        }
    }
    va_end(values);
    return head;
}

int acutRelRb(resbuf* chain) {
    while (chain) {
        resbuf* next = chain->rbnext;
        if (chain->restype == RTSTR) {
            std::free(chain->resval.rstring);
        }
        std::free(chain);
        chain = next;
    }
    return RTNORM;
}

QString ValueText(const resbuf* value) {
    if (!value) {
        return QStringLiteral("nil");
    }
    switch (value->restype) {
        case RTSTR:
            return TextOf(value->resval.rstring);
        case RTSHORT:
            return QString::number(value->resval.rint);
        case RTLONG:
            return QString::number(value->resval.rlong);
        case RTREAL:
            return QString::number(value->resval.rreal);
        case RTT:
            return QStringLiteral("T");
        case RTNIL:
            return QStringLiteral("nil");
        default:
            return QStringLiteral("type %1").arg(value->restype);
    }
}

LispValue LispValue::T() {
    return {RTT, {}, 0};
}
LispValue LispValue::Nil() {
    return {RTNIL, {}, 0};
}
LispValue LispValue::String(const QString& text) {
    return {RTSTR, text, 0};
}
LispValue LispValue::Integer(int number) {
    return {RTSHORT, {}, number};
}
LispValue LispValue::Long(int number) {
    return {RTLONG, {}, number};
}
LispValue LispValue::Mark(int type) {
    return {type, {}, 0};
}

resbuf* acedGetArgs() {
    resbuf* head = nullptr;
    resbuf** tail = &head;
    for (const LispValue& value : RecordingHost::Get().Arguments) {
        resbuf* node = value.Type == RTSTR
                           ? acutBuildList(RTSTR, reinterpret_cast<const ACHAR*>(value.Text.utf16()), RTNONE)
                           : acutNewRb(value.Type);
        if (value.Type == RTSHORT) {
            node->resval.rint = static_cast<short>(value.Number);
        } else if (value.Type == RTLONG) {
            node->resval.rlong = value.Number;
        }
        *tail = node;
        tail = &node->rbnext;
    }
    return head;
}

// printf over the host's text: only the conversions that modules use.
int acutPrintf(const ACHAR* format, ...) {
    QString out;
    const QString text = TextOf(format);
    va_list values;
    va_start(values, format);
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != QLatin1Char('%') || at + 1 == text.size()) {
            out += text[at];
            continue;
        }
        const char kind = text[++at].toLatin1();
        if (kind == 's') {
            out += TextOf(va_arg(values, const ACHAR*));
        } else if (kind == 'd') {
            out += QString::number(va_arg(values, int));
        } else {
            out += text[at];
        }
    }
    va_end(values);
    RecordingHost& host = RecordingHost::Get();
    host.Printed += out;
    host.Note(QStringLiteral("print ") + out);
    return RTNORM;
}
