// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The tables of which classes are made, each at the end of the file that holds its functions, and the classes
// of what is no record.

#include "drafthost/activex/Model.h"
#include "drafthost/drawing/Blocks.h"

namespace drafthost::activex {

using Properties = std::span<const Property>;
using Methods = std::span<const Method>;

// Of every record, of every entity, and of kinds of entities.
Properties recordProperties();
Methods recordMethods();
Properties entityProperties();
Methods entityMethods();
Methods curveMethods();
Methods explodeMethods();
Properties lineProperties();
Properties circleProperties();
Properties arcProperties();
Properties ellipseProperties();
Properties pointProperties();
Properties rayProperties();
Properties solidProperties();
Properties textProperties();
Properties attributeProperties();
Properties attributeDefinitionProperties();
Properties mtextProperties();
Properties insertProperties();
Methods insertMethods();
Properties multiInsertProperties();
Properties lightPolylineProperties();
Methods lightPolylineMethods();
Properties polylineProperties();
Methods polylineMethods();
Properties splineProperties();
Properties hatchProperties();
Methods hatchMethods();
/// A hatch in a block, its boundaries still to be given.
Result addHatch(Call& call);
Properties dimensionProperties();
Properties leaderProperties();
Properties imageProperties();
Properties viewportProperties();
Methods viewportMethods();

// Of table records and other objects.
Properties layerProperties();
Properties linetypeProperties();
Properties textStyleProperties();
Methods textStyleMethods();
Properties dimStyleProperties();
Methods dimStyleMethods();
Properties namedProperties();
Properties viewProperties();
Properties ucsProperties();
Properties vportProperties();
Properties blockProperties();
Methods blockMethods();
Methods addMethods();
Properties layoutProperties();
Methods layoutMethods();
Properties plotProperties();
Properties dictionaryProperties();
Methods dictionaryMethods();
Properties xrecordProperties();
Methods xrecordMethods();
Methods groupMethods();
Methods sortentsMethods();

// Of collections and of what is no record.
Properties collectionProperties();
Methods collectionMethods();
const Class& applicationClass();
const Class& documentsClass();
const Class& documentClass();
const Class& databaseClass();
const Class& colorClass();
const Class& summaryClass();
const Class& plotClass();
const Class& utilityClass();
const Class& preferencesClass();
const Class& selectionSetsClass();
const Class& selectionSetClass();
/// The collection of a table: "Layers", "Blocks", "Layouts", …; nullptr when there is none of that name.
const Class* collectionClass(std::string_view name);
/// The collections that documents and databases have.
Properties databaseProperties();
Methods databaseMethods();

/// A copy of a colour: of an entity or a layer, or a new one (ByLayer) without.
Value makeColor(Evaluator& e, std::int64_t index, std::int64_t trueColor, const std::string& book);
Result getTrueColor(Call& call);
void putTrueColor(Call& call, const Value& value);

/// The object that a block's name means: its block record, or its BLOCK before R13; NoRecord when there is
/// none.
RecordId blockObject(const Drawing& drawing, std::string_view name);
/// The object's block; nullptr when the drawing lacks it.
const Block* blockOf(const Drawing& drawing, RecordId object);

// Members of what holds others.
std::vector<Value> blockMembers(Call& call);
std::vector<Value> dictionaryMembers(Call& call);
Value dictionaryMember(Call& call, const std::string& name);
std::vector<Value> groupMembers(Call& call);
/// Removes a layout with all that is on it.
void deleteLayout(Call& call);
/// Takes a record away where nothing needs it.
Result eraseRecord(Call& call);

}  // namespace drafthost::activex
