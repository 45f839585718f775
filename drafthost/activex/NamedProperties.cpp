// SPDX-License-Identifier: GPL-3.0-or-later
// Properties of entities by name without the object model: (getpropertyvalue), (setpropertyvalue) and what
// goes with them. They are the model's properties; a name with "/X", "/Y" or "/Z" behind it is a coordinate
// of a point.

#include <map>

#include "drafthost/activex/Functions.h"
#include "drafthost/activex/Model.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::activex {
namespace {

/// Names that differ from those of the model.
std::string modelName(const std::string& name) {
    static const std::map<std::string, std::string> known = {
        {"position", "InsertionPoint"}, {"widthfactor", "ScaleFactor"},  {"text", "TextString"},
        {"contents", "TextString"},     {"textheight", "Height"},        {"lineweight", "Lineweight"},
        {"layerid", "Layer"},           {"textstylename", "StyleName"},  {"linetypeid", "Linetype"},
        {"oblique", "ObliqueAngle"},    {"blocktablerecordname", "Name"}};
    const auto found = known.find(lisp::lowerCase(name));
    return found == known.end() ? name : found->second;
}

struct Asked {
    std::string name;
    int axis = -1;
};

Asked asked(const Value& given) {
    Asked result{stringArg(given), -1};
    const std::size_t slash = result.name.rfind('/');
    if (slash != std::string::npos && slash + 2 == result.name.size()) {
        const char axis = static_cast<char>(std::toupper(static_cast<unsigned char>(result.name.back())));
        if (axis >= 'X' && axis <= 'Z') {
            result.axis = axis - 'X';
            result.name.resize(slash);
        }
    }
    result.name = modelName(result.name);
    return result;
}

Value call(Evaluator& e, const char* function, std::vector<Value> args) {
    return e.apply(e.findFunction(Value::symbol(function)), args);
}

Value objectFrom(Evaluator& e, const Value& entity) {
    return call(e, "VLAX-ENAME->VLA-OBJECT", {entity});
}

Value getByName(Evaluator& e, Args args) {
    const Asked what = asked(args[1]);
    const Value object = objectFrom(e, args[0]);
    if (!call(e, "VLAX-PROPERTY-AVAILABLE-P", {object, Value::string(what.name)})) {
        fail("ADS request error: no property " + lisp::prin1(args[1]));
    }
    const Value value = call(e, "VLAX-GET", {object, Value::string(what.name)});
    const auto point = lisp::toPoint(value);
    return what.axis >= 0 && point ? Value::real((*point)[static_cast<std::size_t>(what.axis)]) : value;
}

Value setByName(Evaluator& e, Args args) {
    const Asked what = asked(args[1]);
    const Value object = objectFrom(e, args[0]);
    Value value = args[2];
    if (what.axis >= 0) {
        auto point = lisp::toPoint(call(e, "VLAX-GET", {object, Value::string(what.name)}));
        if (!point) {
            fail("ADS request error: no coordinate " + lisp::prin1(args[1]));
        }
        (*point)[static_cast<std::size_t>(what.axis)] = lisp::realArg(args[2]);
        value = Value::point(*point);
    }
    call(e, "VLAX-PUT", {object, Value::string(what.name), value});
    return {};
}

Value isReadOnly(Evaluator& e, Args args) {
    const Value name = Value::string(asked(args[1]).name);
    const Value object = objectFrom(e, args[0]);
    const bool known = bool(call(e, "VLAX-PROPERTY-AVAILABLE-P", {object, name}));
    const bool settable =
        known && bool(call(e, "VLAX-PROPERTY-AVAILABLE-P", {object, name, Value::boolean(true)}));
    return Value::integer(settable ? 0 : 1);
}

Value dumpAll(Evaluator& e, Args args) {
    call(e, "VLAX-DUMP-OBJECT", {objectFrom(e, args[0])});
    return {};
}

constexpr Subr Functions[] = {
    {"GETPROPERTYVALUE", 2, 4, getByName},
    {"SETPROPERTYVALUE", 3, 5, setByName},
    {"ISPROPERTYREADONLY", 2, 2, isReadOnly},
    {"DUMPALLPROPERTIES", 1, 2, dumpAll},
};

}  // namespace

std::span<const Subr> namedPropertyFunctions() {
    return Functions;
}

}  // namespace drafthost::activex
