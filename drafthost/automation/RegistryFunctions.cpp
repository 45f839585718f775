// SPDX-License-Identifier: GPL-3.0-or-later
// The host's own registry, and data that programs keep with a drawing.

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::automation {
namespace {

Value readRegistry(Evaluator& e, Args args) {
    const std::string name = optional(args, 1) ? stringArg(args[1]) : "";
    return sessionOf(e).host.registryValue(stringArg(args[0]), name).value_or(Value());
}

Value writeRegistry(Evaluator& e, Args args) {
    const std::string name = optional(args, 1) ? stringArg(args[1]) : "";
    const Value value = optional(args, 2) ? args[2] : Value::string("");
    return sessionOf(e).host.setRegistryValue(stringArg(args[0]), name, value) ? value : Value();
}

Value deleteRegistry(Evaluator& e, Args args) {
    const std::string& key = stringArg(args[0]);
    LispHost& host = sessionOf(e).host;
    return Value::boolean(optional(args, 1) ? host.deleteRegistry(key, stringArg(args[1]))
                                            : host.deleteRegistry(key, std::nullopt));
}

/// The keys below one; with a second argument the names of its values.
Value registryDescendents(Evaluator& e, Args args) {
    ListBuilder result;
    for (std::string& name : sessionOf(e).host.registryNames(stringArg(args[0]), bool(optional(args, 1)))) {
        result.add(Value::string(std::move(name)));
    }
    return result.take();
}

// Data of programs: an XRECORD for each key, with the printed value, in a dictionary of the drawing or in the
// extension dictionary of an object.

constexpr const char* DataDictionary = "LISP_DATA";
constexpr int TextCode = 1;
constexpr std::size_t Piece = 250;

/// The dictionary that a name or an entity means; NoRecord when it is not there and not to be made.
RecordId dataDictionary(Evaluator& e, const Value& where, bool make) {
    Drawing& drawing = drawingOf(e);
    if (where.isString()) {
        const RecordId root = rootDictionary(drawing);
        return make               ? provideDictionary(drawing, stringArg(where))
               : root == NoRecord ? NoRecord
                                  : findInDictionary(drawing, root, stringArg(where));
    }
    std::vector<Value> object{where};
    const Value entity =
        where.isForeign() ? e.apply(e.findFunction(Value::symbol("VLAX-VLA-OBJECT->ENAME")), object) : where;
    const auto record = aliveRecord(drawing, enameArg(entity));
    if (!record) {
        return NoRecord;
    }
    RecordId extension = extensionDictionary(drawing, *record);
    if (extension == NoRecord && make) {
        extension = makeExtensionDictionary(drawing, *record);
    }
    RecordId data = extension == NoRecord ? NoRecord : findInDictionary(drawing, extension, DataDictionary);
    if (data == NoRecord && extension != NoRecord && make) {
        data = addObject(drawing, "DICTIONARY", "AcDbDictionary", extension);
        if (data != NoRecord) {
            drawing.appendTag(data, 281, std::int64_t{1});
            addDictionaryEntry(drawing, extension, DataDictionary, data);
        }
    }
    return data;
}

Value putData(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const RecordId dictionary = dataDictionary(e, args[0], true);
    const std::string& key = stringArg(args[1]);
    RecordId record = dictionary == NoRecord ? NoRecord : findInDictionary(drawing, dictionary, key);
    if (dictionary != NoRecord && record == NoRecord) {
        record = addObject(drawing, "XRECORD", "AcDbXrecord", dictionary);
        if (record != NoRecord) {
            drawing.appendTag(record, 280, std::int64_t{1});
            addDictionaryEntry(drawing, dictionary, key, record);
        }
    }
    if (record == NoRecord) {
        fail("the drawing keeps no data of programs");
    }
    for (std::size_t i = drawing.record(record).size(); i-- > 1;) {
        if (drawing.record(record).code(i) == TextCode) {
            drawing.removeTag(record, i);
        }
    }
    const std::string text = lisp::prin1(args[2]);
    for (std::size_t at = 0; at < text.size(); at += Piece) {
        drawing.appendTag(record, TextCode, text.substr(at, Piece));
    }
    sessionOf(e).host.drawingChanged(false);
    return args[2];
}

std::optional<Value> dataOf(Evaluator& e, RecordId record) {
    const Record tags = drawingOf(e).record(record);
    std::string text;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags.code(i) == TextCode) {
            text += tags.text(i);
        }
    }
    if (text.empty()) {
        return std::nullopt;
    }
    std::vector<Value> source{Value::string(text)};
    return e.apply(e.findFunction(Value::symbol("READ")), source);
}

Value getData(Evaluator& e, Args args) {
    const RecordId dictionary = dataDictionary(e, args[0], false);
    const RecordId record =
        dictionary == NoRecord ? NoRecord : findInDictionary(drawingOf(e), dictionary, stringArg(args[1]));
    return record == NoRecord ? optional(args, 2) : dataOf(e, record).value_or(optional(args, 2));
}

Value listData(Evaluator& e, Args args) {
    const RecordId dictionary = dataDictionary(e, args[0], false);
    ListBuilder result;
    if (dictionary != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawingOf(e), dictionary)) {
            const RecordId record = drawingOf(e).findHandle(entry.handle);
            if (record != NoRecord) {
                result.add(Value::cons(Value::string(entry.name), dataOf(e, record).value_or(Value())));
            }
        }
    }
    return result.take();
}

Value deleteData(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const RecordId dictionary = dataDictionary(e, args[0], false);
    const RecordId record =
        dictionary == NoRecord ? NoRecord : findInDictionary(drawing, dictionary, stringArg(args[1]));
    if (record == NoRecord) {
        return {};
    }
    removeDictionaryEntry(drawing, dictionary, stringArg(args[1]));
    drawing.deleteRecord(record);
    sessionOf(e).host.drawingChanged(false);
    return Value::boolean(true);
}

constexpr Subr Functions[] = {
    {"VL-REGISTRY-READ", 1, 2, readRegistry},
    {"VL-REGISTRY-WRITE", 1, 3, writeRegistry},
    {"VL-REGISTRY-DELETE", 1, 2, deleteRegistry},
    {"VL-REGISTRY-DESCENDENTS", 1, 2, registryDescendents},
    {"VLAX-LDATA-PUT", 3, 4, putData},
    {"VLAX-LDATA-GET", 2, 4, getData},
    {"VLAX-LDATA-LIST", 1, 2, listData},
    {"VLAX-LDATA-DELETE", 2, 3, deleteData},
};

}  // namespace

std::span<const Subr> registryFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
