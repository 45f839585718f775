// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/api/ResBufValues.h"

#include <cstdlib>
#include <limits>

#include "drafthost/api/ApiHost.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost {
namespace {

/// Selection sets that modules have got: the node holds a number, the set itself stays here for as long as
/// the host runs.
std::vector<lisp::Value>& handedSets() {
    static std::vector<lisp::Value> sets;
    return sets;
}

lisp::Value handedSet(Adesk::IntPtr number) {
    auto& sets = handedSets();
    return number > 0 && std::size_t(number) <= sets.size() ? sets[std::size_t(number) - 1] : lisp::Value();
}

/// The value of one node; nothing for a type that is none.
std::optional<lisp::Value> valueOf(const resbuf& node) {
    switch (node.restype) {
        case RTNIL:
            return lisp::Value();
        case RTT:
            return lisp::Value::truth();
        case RTVOID:
            return lisp::Value::nullSymbol();
        case RTSHORT:
            return lisp::Value::integer(node.resval.rint);
        case RTLONG:
            return lisp::Value::integer(node.resval.rlong);
        case RTINT64:
            return lisp::Value::real(double(node.resval.mnInt64));
        case RTREAL:
        case RTANG:
        case RTORINT:
            return lisp::Value::real(node.resval.rreal);
        case RTSTR:
            return lisp::Value::string(toUtf8(node.resval.rstring));
        case RTPOINT:
            return lisp::Value::point2d(node.resval.rpoint[0], node.resval.rpoint[1]);
        case RT3DPOINT:
            return lisp::Value::point({node.resval.rpoint[0], node.resval.rpoint[1], node.resval.rpoint[2]});
        case RTENAME:
            return lisp::Value::ename(lisp::EntityName(node.resval.rlname[0]));
        case RTPICKS:
            return handedSet(node.resval.rlname[0]);
        default:
            return std::nullopt;
    }
}

/// Reads one value and moves on. Nothing at the end of a list or for a type that is none. Lists that are open
/// are kept in a stack of our own: their depth is the user's to choose.
std::optional<lisp::Value> readValue(const resbuf*& at) {
    struct Open {
        lisp::ListBuilder list;
        enum class Dot { None, Seen, Done } dot = Dot::None;
    };
    std::vector<Open> open;
    while (at) {
        const resbuf& node = *at;
        at = at->rbnext;
        std::optional<lisp::Value> item;
        if (node.restype == RTLB) {
            open.emplace_back();
            continue;
        }
        if (node.restype == RTDOTE) {
            if (open.empty() || open.back().dot != Open::Dot::None) {
                return std::nullopt;
            }
            open.back().dot = Open::Dot::Seen;
            continue;
        }
        if (node.restype == RTLE) {
            if (open.empty() || open.back().dot == Open::Dot::Seen) {
                return std::nullopt;
            }
            item = open.back().list.take();
            open.pop_back();
        } else {
            item = valueOf(node);
        }
        if (!item || open.empty()) {
            return item;
        }
        Open& list = open.back();
        if (list.dot == Open::Dot::Done) {
            return std::nullopt;
        }
        if (list.dot == Open::Dot::Seen) {
            list.list.setTail(std::move(*item));
            list.dot = Open::Dot::Done;
        } else {
            list.list.add(std::move(*item));
        }
    }
    return std::nullopt;
}

class ChainWriter {
  public:
    resbuf* node(int type) {
        resbuf* added = acutNewRb(type);
        (last_ ? last_->rbnext : head_) = added;
        last_ = added;
        return added;
    }
    void write(const lisp::Value& value);
    resbuf* head() const { return head_; }

  private:
    void writeAtom(const lisp::Value& value);
    bool writePoint(const lisp::Value& list);

    resbuf* head_ = nullptr;
    resbuf* last_ = nullptr;
};

/// A list of two or three reals is a point to modules.
bool ChainWriter::writePoint(const lisp::Value& list) {
    double coordinates[3] = {};
    int count = 0;
    for (const lisp::Value* at = &list; !at->isNil(); at = &at->cdr()) {
        if (!at->isCons() || !at->car().isReal() || count == 3) {
            return false;
        }
        coordinates[count++] = at->car().toReal();
    }
    if (count < 2) {
        return false;
    }
    resbuf* point = node(count == 2 ? RTPOINT : RT3DPOINT);
    for (int i = 0; i < 3; ++i) {
        point->resval.rpoint[i] = coordinates[i];
    }
    return true;
}

/// Lists are walked with a stack of our own, as when they are read.
void ChainWriter::write(const lisp::Value& value) {
    std::vector<const lisp::Value*> rest;
    const lisp::Value* current = &value;
    for (;;) {
        while (current->isCons() && !writePoint(*current)) {
            node(RTLB);
            rest.push_back(&current->cdr());
            current = &current->car();
        }
        if (!current->isCons()) {
            writeAtom(*current);
        }
        while (!rest.empty() && !rest.back()->isCons()) {
            if (!rest.back()->isNil()) {
                node(RTDOTE);
                writeAtom(*rest.back());
            }
            node(RTLE);
            rest.pop_back();
        }
        if (rest.empty()) {
            return;
        }
        current = &rest.back()->car();
        rest.back() = &rest.back()->cdr();
    }
}

void ChainWriter::writeAtom(const lisp::Value& value) {
    switch (value.type()) {
        case lisp::Type::Nil:
            node(RTNIL);
            break;
        case lisp::Type::Int: {
            const std::int32_t number = value.toInt();
            if (number >= std::numeric_limits<short>::min() && number <= std::numeric_limits<short>::max()) {
                node(RTSHORT)->resval.rint = short(number);
            } else {
                node(RTLONG)->resval.rlong = number;
            }
            break;
        }
        case lisp::Type::Real:
            node(RTREAL)->resval.rreal = value.toReal();
            break;
        case lisp::Type::String:
            node(RTSTR)->resval.rstring = duplicate(value.toString());
            break;
        case lisp::Type::Ename:
            node(RTENAME)->resval.rlname[0] = Adesk::IntPtr(value.toEname());
            break;
        default:
            if (automation::pickSetOf(value) != nullptr) {
                handedSets().push_back(value);
                node(RTPICKS)->resval.rlname[0] = Adesk::IntPtr(handedSets().size());
            } else if (value.same(lisp::Value::truth())) {
                node(RTT);
            } else {
                node(RTSTR)->resval.rstring = duplicate(lisp::prin1(value));
            }
            break;
    }
}

}  // namespace

std::optional<std::vector<lisp::Value>> valuesOf(const resbuf* chain) {
    std::vector<lisp::Value> values;
    while (chain) {
        auto value = readValue(chain);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(std::move(*value));
    }
    return values;
}

resbuf* chainOf(std::span<const lisp::Value> values) {
    ChainWriter writer;
    for (const lisp::Value& value : values) {
        writer.write(value);
    }
    return writer.head();
}

void store(const VariableValue& value, resbuf& out) {
    out.resval = {};
    switch (value.index()) {
        case 0:
            out.restype = RTSHORT;
            out.resval.rint = short(std::get<int>(value));
            break;
        case 1:
            out.restype = RTREAL;
            out.resval.rreal = std::get<double>(value);
            break;
        case 2:
            out.restype = RTSTR;
            out.resval.rstring = duplicate(std::get<std::string>(value));
            break;
        case 3:
            out.restype = RTPOINT;
            out.resval.rpoint[0] = std::get<Point2>(value)[0];
            out.resval.rpoint[1] = std::get<Point2>(value)[1];
            out.resval.rpoint[2] = 0;
            break;
        default:
            out.restype = RT3DPOINT;
            for (int i = 0; i < 3; ++i) {
                out.resval.rpoint[i] = std::get<Point>(value)[std::size_t(i)];
            }
            break;
    }
}

std::optional<VariableValue> variableValueOf(const resbuf& node) {
    switch (node.restype) {
        case RTSHORT:
            return int(node.resval.rint);
        case RTLONG:
            return int(node.resval.rlong);
        case RTREAL:
        case RTANG:
        case RTORINT:
            return node.resval.rreal;
        case RTSTR:
            return toUtf8(node.resval.rstring);
        case RTPOINT:
            return Point2{node.resval.rpoint[0], node.resval.rpoint[1]};
        case RT3DPOINT:
            return Point{node.resval.rpoint[0], node.resval.rpoint[1], node.resval.rpoint[2]};
        default:
            return std::nullopt;
    }
}

}  // namespace drafthost
