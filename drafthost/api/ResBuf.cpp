// SPDX-License-Identifier: GPL-3.0-or-later
// Making and freeing chains of typed values. Memory is the C library's, as modules free strings with it.

#include "resbuf.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "adscodes.h"
#include "drafthost/api/ArgumentList.h"
#include "drafthost/drawing/Value.h"

namespace {

constexpr int FirstResultType = 5000;

enum class Field { None, Short, Long, Int64, Real, Text, Point, Name, Handle, Unknown };

Field fieldOfGroup(int code) {
    using drafthost::ValueKind;
    if (code >= 10 && code <= 18) {
        return Field::Point;
    }
    if (code < 0) {
        return Field::Name;
    }
    switch (drafthost::kindOf(code)) {
        case ValueKind::Real:
            return Field::Real;
        case ValueKind::Int16:
        case ValueKind::Bool:
            return Field::Short;
        case ValueKind::Int32:
            return Field::Long;
        case ValueKind::Int64:
            return Field::Int64;
        case ValueKind::Text:
        case ValueKind::Handle:
            return Field::Text;
        default:
            return Field::Unknown;
    }
}

Field fieldOf(int type) {
    if (type < FirstResultType) {
        return fieldOfGroup(type);
    }
    switch (type) {
        case RTSHORT:
            return Field::Short;
        case RTLONG:
            return Field::Long;
        case RTINT64:
            return Field::Int64;
        case RTREAL:
        case RTANG:
        case RTORINT:
            return Field::Real;
        case RTSTR:
        case RTDXF0:
            return Field::Text;
        case RTPOINT:
        case RT3DPOINT:
            return Field::Point;
        case RTENAME:
        case RTPICKS:
            return Field::Name;
        case RTNONE:
        case RTVOID:
        case RTLB:
        case RTLE:
        case RTDOTE:
        case RTNIL:
        case RTT:
            return Field::None;
        default:
            return Field::Unknown;
    }
}

ACHAR* copyOf(const ACHAR* text) {
    const std::size_t bytes = (std::char_traits<ACHAR>::length(text) + 1) * sizeof(ACHAR);
    auto* copy = static_cast<ACHAR*>(std::malloc(bytes));
    if (copy) {
        std::memcpy(copy, text, bytes);
    }
    return copy;
}

bool fill(resbuf& node, Field field, drafthost::Arguments& given) {
    va_list& arguments = given.list;
    switch (field) {
        case Field::Short:
            node.resval.rint = short(va_arg(arguments, int));
            return true;
        case Field::Long:
            node.resval.rlong = va_arg(arguments, Adesk::Int32);
            return true;
        case Field::Int64:
            node.resval.mnInt64 = va_arg(arguments, Adesk::Int64);
            return true;
        case Field::Real:
            node.resval.rreal = va_arg(arguments, double);
            return true;
        case Field::Text: {
            const ACHAR* text = va_arg(arguments, const ACHAR*);
            node.resval.rstring = copyOf(text ? text : u"");
            return node.resval.rstring != nullptr;
        }
        case Field::Point: {
            const ads_real* point = va_arg(arguments, const ads_real*);
            for (int i = 0; i < 3; ++i) {
                node.resval.rpoint[i] = node.restype == RTPOINT && i == 2 ? 0 : point[i];
            }
            return true;
        }
        case Field::Name: {
            const Adesk::IntPtr* name = va_arg(arguments, const Adesk::IntPtr*);
            node.resval.rlname[0] = name[0];
            node.resval.rlname[1] = name[1];
            return true;
        }
        case Field::None:
            return true;
        default:
            return false;
    }
}

}  // namespace

namespace drafthost {

resbuf* buildList(int type, Arguments& arguments) {
    resbuf* head = nullptr;
    resbuf** next = &head;
    while (type != RTNONE && type != 0) {
        resbuf* node = acutNewRb(type == RTDXF0 ? 0 : type);
        if (!node || !fill(*node, fieldOf(type), arguments)) {
            acutRelRb(node);
            acutRelRb(head);
            return nullptr;
        }
        *next = node;
        next = &node->rbnext;
        type = va_arg(arguments.list, int);
    }
    return head;
}

}  // namespace drafthost

resbuf* acutNewRb(int type) {
    auto* node = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
    if (node) {
        node->restype = short(type);
    }
    return node;
}

resbuf* acutBuildList(int type, ...) {
    drafthost::Arguments arguments;
    va_start(arguments.list, type);
    resbuf* head = drafthost::buildList(type, arguments);
    va_end(arguments.list);
    return head;
}

int acutRelRb(resbuf* chain) {
    while (chain) {
        resbuf* next = chain->rbnext;
        // Group code 0 is text too.
        if (fieldOf(chain->restype) == Field::Text) {
            std::free(chain->resval.rstring);
        }
        std::free(chain);
        chain = next;
    }
    return RTNORM;
}
