// SPDX-License-Identifier: GPL-3.0-or-later
// Which class a record of the drawing has.

#include "drafthost/activex/Classes.h"

#include <map>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

Class entityClass(const char* interface, const char* objectName, std::vector<Properties> own = {},
                  std::vector<Methods> ownMethods = {}) {
    Class c{interface, objectName, std::move(own), std::move(ownMethods)};
    c.properties.push_back(entityProperties());
    c.properties.push_back(recordProperties());
    c.methods.push_back(entityMethods());
    c.methods.push_back(recordMethods());
    return c;
}

Class recordClass(const char* interface, const char* objectName, std::vector<Properties> own = {},
                  std::vector<Methods> ownMethods = {}) {
    static constexpr Method Erase[] = {{"Delete", 0, 0, eraseRecord}};
    Class c{interface, objectName, std::move(own), std::move(ownMethods)};
    c.properties.push_back(recordProperties());
    c.methods.push_back(recordMethods());
    c.methods.push_back(Erase);
    return c;
}

using ClassMap = std::map<std::string, Class, std::less<>>;

ClassMap makeEntityClasses() {
    ClassMap m;
    const auto add = [&](const char* type, Class c) { m.emplace(type, std::move(c)); };
    add("LINE", entityClass("IAcadLine", "AcDbLine", {lineProperties()}, {curveMethods()}));
    add("CIRCLE", entityClass("IAcadCircle", "AcDbCircle", {circleProperties()}, {curveMethods()}));
    add("ARC", entityClass("IAcadArc", "AcDbArc", {arcProperties()}, {curveMethods()}));
    add("ELLIPSE", entityClass("IAcadEllipse", "AcDbEllipse", {ellipseProperties()}));
    add("POINT", entityClass("IAcadPoint", "AcDbPoint", {pointProperties()}));
    add("RAY", entityClass("IAcadRay", "AcDbRay", {rayProperties()}));
    add("XLINE", entityClass("IAcadXline", "AcDbXline", {rayProperties()}));
    add("SOLID", entityClass("IAcadSolid", "AcDbSolid", {solidProperties()}));
    add("TRACE", entityClass("IAcadTrace", "AcDbTrace", {solidProperties()}));
    add("3DFACE", entityClass("IAcad3DFace", "AcDbFace", {solidProperties()}));
    add("TEXT", entityClass("IAcadText", "AcDbText", {textProperties()}));
    add("MTEXT", entityClass("IAcadMText", "AcDbMText", {mtextProperties()}));
    add("ATTDEF", entityClass("IAcadAttribute", "AcDbAttributeDefinition",
                              {attributeProperties(), attributeDefinitionProperties(), textProperties()}));
    add("ATTRIB",
        entityClass("IAcadAttributeReference", "AcDbAttribute", {attributeProperties(), textProperties()}));
    add("INSERT", entityClass("IAcadBlockReference", "AcDbBlockReference", {insertProperties()},
                              {insertMethods(), explodeMethods()}));
    add("INSERT#",
        entityClass("IAcadMInsertBlock", "AcDbMInsertBlock", {multiInsertProperties(), insertProperties()},
                    {insertMethods(), explodeMethods()}));
    add("INSERT@", entityClass("IAcadExternalReference", "AcDbBlockReference", {insertProperties()},
                               {insertMethods(), explodeMethods()}));
    add("LWPOLYLINE", entityClass("IAcadLWPolyline", "AcDbPolyline", {lightPolylineProperties()},
                                  {lightPolylineMethods(), curveMethods(), explodeMethods()}));
    add("POLYLINE", entityClass("IAcadPolyline", "AcDb2dPolyline", {polylineProperties()},
                                {polylineMethods(), explodeMethods()}));
    add("POLYLINE8", entityClass("IAcad3DPolyline", "AcDb3dPolyline", {polylineProperties()},
                                 {polylineMethods(), explodeMethods()}));
    add("POLYLINE16", entityClass("IAcadPolygonMesh", "AcDbPolygonMesh", {polylineProperties()}));
    add("POLYLINE64", entityClass("IAcadPolyfaceMesh", "AcDbPolyFaceMesh", {polylineProperties()}));
    add("SPLINE", entityClass("IAcadSpline", "AcDbSpline", {splineProperties()}));
    add("HATCH", entityClass("IAcadHatch", "AcDbHatch", {hatchProperties()}, {hatchMethods()}));
    static constexpr std::pair<const char*, const char*> Dimensions[] = {
        {"IAcadDimRotated", "AcDbRotatedDimension"},
        {"IAcadDimAligned", "AcDbAlignedDimension"},
        {"IAcadDimAngular", "AcDb2LineAngularDimension"},
        {"IAcadDimDiametric", "AcDbDiametricDimension"},
        {"IAcadDimRadial", "AcDbRadialDimension"},
        {"IAcadDim3PointAngular", "AcDb3PointAngularDimension"},
        {"IAcadDimOrdinate", "AcDbOrdinateDimension"}};
    for (int kind = 0; kind < 7; ++kind) {
        m.emplace("DIMENSION" + std::to_string(kind),
                  entityClass(Dimensions[kind].first, Dimensions[kind].second, {dimensionProperties()}));
    }
    add("ARC_DIMENSION", entityClass("IAcadDimArcLength", "AcDbArcDimension", {dimensionProperties()}));
    add("LARGE_RADIAL_DIMENSION",
        entityClass("IAcadDimRadialLarge", "AcDbRadialDimensionLarge", {dimensionProperties()}));
    add("LEADER", entityClass("IAcadLeader", "AcDbLeader", {leaderProperties()}));
    add("IMAGE", entityClass("IAcadRasterImage", "AcDbRasterImage", {imageProperties()}));
    add("WIPEOUT", entityClass("IAcadWipeout", "AcDbWipeout", {imageProperties()}));
    add("VIEWPORT",
        entityClass("IAcadPViewport", "AcDbViewport", {viewportProperties()}, {viewportMethods()}));
    static constexpr std::array<const char*, 3> Plain[] = {
        {"MULTILEADER", "IAcadMLeader", "AcDbMLeader"},
        {"MLINE", "IAcadMLine", "AcDbMline"},
        {"3DSOLID", "IAcad3DSolid", "AcDb3dSolid"},
        {"REGION", "IAcadRegion", "AcDbRegion"},
        {"BODY", "IAcadEntity", "AcDbBody"},
        {"TOLERANCE", "IAcadTolerance", "AcDbFcf"},
        {"SHAPE", "IAcadShape", "AcDbShape"},
        {"OLE2FRAME", "IAcadOle", "AcDbOle2Frame"},
        {"ACAD_TABLE", "IAcadTable", "AcDbTable"},
        {"MESH", "IAcadSubDMesh", "AcDbSubDMesh"},
        {"HELIX", "IAcadHelix", "AcDbHelix"},
        {"PDFUNDERLAY", "IAcadPdfUnderlay", "AcDbPdfReference"},
        {"DWFUNDERLAY", "IAcadDwfUnderlay", "AcDbDwfReference"},
        {"DGNUNDERLAY", "IAcadDgnUnderlay", "AcDbDgnReference"},
        {"ACAD_PROXY_ENTITY", "IAcadEntity", "AcDbZombieEntity"},
    };
    for (const auto& [type, interface, name] : Plain) {
        add(type, entityClass(interface, name));
    }
    return m;
}

ClassMap makeRecordClasses() {
    ClassMap m;
    const auto add = [&](const char* type, Class c) { m.emplace(type, std::move(c)); };
    add("LAYER", recordClass("IAcadLayer", "AcDbLayerTableRecord", {layerProperties()}));
    add("LTYPE", recordClass("IAcadLineType", "AcDbLinetypeTableRecord", {linetypeProperties()}));
    add("STYLE", recordClass("IAcadTextStyle", "AcDbTextStyleTableRecord", {textStyleProperties()},
                             {textStyleMethods()}));
    add("DIMSTYLE",
        recordClass("IAcadDimStyle", "AcDbDimStyleTableRecord", {dimStyleProperties()}, {dimStyleMethods()}));
    add("VIEW", recordClass("IAcadView", "AcDbViewTableRecord", {viewProperties()}));
    add("UCS", recordClass("IAcadUCS", "AcDbUCSTableRecord", {ucsProperties()}));
    add("VPORT", recordClass("IAcadViewport", "AcDbViewportTableRecord", {vportProperties()}));
    add("APPID", recordClass("IAcadRegisteredApplication", "AcDbRegAppTableRecord", {namedProperties()}));
    Class block =
        recordClass("IAcadBlock", "AcDbBlockTableRecord", {blockProperties(), collectionProperties()},
                    {blockMethods(), addMethods(), collectionMethods()});
    block.members = blockMembers;
    add("BLOCK_RECORD", block);
    block.interface = "IAcadModelSpace";
    add("BLOCK_RECORD*M", block);
    block.interface = "IAcadPaperSpace";
    add("BLOCK_RECORD*P", block);
    add("LAYOUT",
        recordClass("IAcadLayout", "AcDbLayout", {layoutProperties(), plotProperties()}, {layoutMethods()}));
    add("PLOTSETTINGS",
        recordClass("IAcadPlotConfiguration", "AcDbPlotSettings", {plotProperties()}, {layoutMethods()}));
    Class dictionary =
        recordClass("IAcadDictionary", "AcDbDictionary", {dictionaryProperties(), collectionProperties()},
                    {dictionaryMethods(), collectionMethods()});
    dictionary.members = dictionaryMembers;
    dictionary.named = dictionaryMember;
    add("DICTIONARY", dictionary);
    dictionary.objectName = "AcDbDictionaryWithDefault";
    add("ACDBDICTIONARYWDFLT", dictionary);
    add("XRECORD", recordClass("IAcadXRecord", "AcDbXrecord", {xrecordProperties()}, {xrecordMethods()}));
    Class group = recordClass("IAcadGroup", "AcDbGroup", {xrecordProperties(), collectionProperties()},
                              {groupMethods(), collectionMethods()});
    group.members = groupMembers;
    add("GROUP", group);
    add("SORTENTSTABLE", recordClass("IAcadSortentsTable", "AcDbSortentsTable", {}, {sortentsMethods()}));
    add("MATERIAL", recordClass("IAcadMaterial", "AcDbMaterial", {xrecordProperties()}));
    add("MLEADERSTYLE", recordClass("IAcadMLeaderStyle", "AcDbMLeaderStyle", {xrecordProperties()}));
    add("TABLESTYLE", recordClass("IAcadTableStyle", "AcDbTableStyle", {xrecordProperties()}));
    return m;
}

std::string entityKey(const Drawing& drawing, RecordId id) {
    const Record record = drawing.record(id);
    std::string key(record.type());
    if (key == "POLYLINE") {
        const std::int64_t flags = record.integerOr(70, 0);
        key += (flags & 8) != 0 ? "8" : (flags & 16) != 0 ? "16" : (flags & 64) != 0 ? "64" : "";
    } else if (key == "INSERT") {
        constexpr std::int64_t External = 4 | 8;
        const Block* block = findBlock(drawing, record.textOr(2, ""));
        if (record.integerOr(70, 1) > 1 || record.integerOr(71, 1) > 1) {
            key += "#";
        } else if (block != nullptr && (drawing.record(block->begin).integerOr(70, 0) & External) != 0) {
            key += "@";
        }
    } else if (key == "DIMENSION") {
        key += std::to_string(record.integerOr(70, 0) & 7);
    }
    return key;
}

}  // namespace

const Class& classOf(const Drawing& drawing, RecordId id) {
    static const ClassMap kEntities = makeEntityClasses();
    static const ClassMap kRecords = makeRecordClasses();
    static const Class kEntity = entityClass("IAcadEntity", "AcDbEntity");
    static const Class kObject = recordClass("IAcadObject", "AcDbObject", {xrecordProperties()});
    const Record record = drawing.record(id);
    std::string type(record.type());
    if (type == "BLOCK_RECORD" || type == "BLOCK") {
        std::string name = foldCase(record.textOr(2, ""));
        if (name == foldCase("$Model_Space") || name == foldCase("$Paper_Space")) {
            name.front() = '*';
        }
        type = name.starts_with(foldCase("*Model_Space"))   ? "BLOCK_RECORD*M"
               : name.starts_with(foldCase("*Paper_Space")) ? "BLOCK_RECORD*P"
                                                            : "BLOCK_RECORD";
    }
    if (const auto found = kRecords.find(type); found != kRecords.end()) {
        return found->second;
    }
    const auto found = kEntities.find(entityKey(drawing, id));
    if (found != kEntities.end()) {
        return found->second;
    }
    return record.find(8) && record.subclass("AcDbEntity") != record.size() ? kEntity : kObject;
}

}  // namespace drafthost::activex
