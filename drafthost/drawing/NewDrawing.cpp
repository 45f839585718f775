// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Drawing.h"

#include <stdexcept>

namespace drafthost {

namespace {

// Writes the tags of a new drawing, with a handle counter of its own.
class Writer {
  public:
    Writer& tag(int code, std::string_view value) {
        const std::string digits = std::to_string(code);
        text_.append(digits.size() < 3 ? 3 - digits.size() : 0, ' ').append(digits).append("\r\n");
        text_.append(value).append("\r\n");
        return *this;
    }
    Writer& tag(int code, int value) { return tag(code, std::to_string(value)); }
    Writer& real(int code, double value) { return tag(code, formatReal(value)); }
    Writer& handle(int code, std::uint64_t value) { return tag(code, formatHandle(value)); }
    Writer& point(int code, double x, double y) { return real(code, x).real(code + 10, y); }
    Writer& point(int code, double x, double y, double z) { return point(code, x, y).real(code + 20, z); }
    Writer& variable(std::string_view name) { return tag(9, name); }
    std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

// Handles of the records of a new drawing; the layout of the list is that of the file.
enum Handle : std::uint64_t {
    VportTable = 1,
    LtypeTable,
    LayerTable,
    StyleTable,
    ViewTable,
    UcsTable,
    AppidTable,
    DimstyleTable,
    BlockRecordTable,
    ActiveVport,
    LtypeByBlock,
    LtypeByLayer,
    LtypeContinuous,
    LayerZero,
    StyleStandard,
    AppidHost,
    DimstyleStandard,
    ModelRecord,
    PaperRecord,
    ModelBlock,
    ModelEnd,
    PaperBlock,
    PaperEnd,
    RootDictionary,
    GroupDictionary,
    LayoutDictionary,
    MlineDictionary,
    PlotStyleDictionary,
    PlotStyleNormal,
    ModelLayout,
    PaperLayout,
    MlineStandard,
    FirstFree,
};

struct Sheet {
    double width;
    double height;
};

void writeHeader(Writer& w, bool metric, Sheet sheet) {
    w.tag(0, "SECTION").tag(2, "HEADER");
    w.variable("$ACADVER").tag(1, "AC1027");
    w.variable("$DWGCODEPAGE").tag(3, "ANSI_1252");
    w.variable("$INSBASE").point(10, 0, 0, 0);
    w.variable("$EXTMIN").point(10, 1e20, 1e20, 1e20);
    w.variable("$EXTMAX").point(10, -1e20, -1e20, -1e20);
    w.variable("$LIMMIN").point(10, 0, 0);
    w.variable("$LIMMAX").point(10, sheet.width, sheet.height);
    w.variable("$ORTHOMODE").tag(70, 0);
    w.variable("$REGENMODE").tag(70, 1);
    w.variable("$FILLMODE").tag(70, 1);
    w.variable("$QTEXTMODE").tag(70, 0);
    w.variable("$MIRRTEXT").tag(70, 0);
    w.variable("$LTSCALE").real(40, 1);
    w.variable("$ATTMODE").tag(70, 1);
    w.variable("$TEXTSIZE").real(40, metric ? 2.5 : 0.2);
    w.variable("$TRACEWID").real(40, metric ? 1 : 0.05);
    w.variable("$TEXTSTYLE").tag(7, "Standard");
    w.variable("$CLAYER").tag(8, "0");
    w.variable("$CELTYPE").tag(6, "ByLayer");
    w.variable("$CECOLOR").tag(62, 256);
    w.variable("$CELTSCALE").real(40, 1);
    w.variable("$DISPSILH").tag(70, 0);
    w.variable("$DIMSCALE").real(40, 1);
    w.variable("$DIMASZ").real(40, metric ? 2.5 : 0.18);
    w.variable("$DIMEXO").real(40, metric ? 0.625 : 0.0625);
    w.variable("$DIMEXE").real(40, metric ? 1.25 : 0.18);
    w.variable("$DIMTXT").real(40, metric ? 2.5 : 0.18);
    w.variable("$DIMGAP").real(40, metric ? 0.625 : 0.09);
    w.variable("$DIMSTYLE").tag(2, "Standard");
    w.variable("$LUNITS").tag(70, 2);
    w.variable("$LUPREC").tag(70, 4);
    w.variable("$ELEVATION").real(40, 0);
    w.variable("$THICKNESS").real(40, 0);
    w.variable("$LIMCHECK").tag(70, 0);
    w.variable("$ANGBASE").real(50, 0);
    w.variable("$ANGDIR").tag(70, 0);
    w.variable("$AUNITS").tag(70, 0);
    w.variable("$AUPREC").tag(70, 0);
    w.variable("$TDCREATE").real(40, 2440587.5);
    w.variable("$TDUPDATE").real(40, 2440587.5);
    w.variable("$PDMODE").tag(70, 0);
    w.variable("$PDSIZE").real(40, 0);
    w.variable("$HANDSEED").handle(5, FirstFree);
    w.variable("$TILEMODE").tag(70, 1);
    w.variable("$MAXACTVP").tag(70, 64);
    w.variable("$PINSBASE").point(10, 0, 0, 0);
    w.variable("$PLIMCHECK").tag(70, 0);
    w.variable("$PEXTMIN").point(10, 1e20, 1e20, 1e20);
    w.variable("$PEXTMAX").point(10, -1e20, -1e20, -1e20);
    w.variable("$PLIMMIN").point(10, 0, 0);
    w.variable("$PLIMMAX").point(10, sheet.width, sheet.height);
    w.variable("$UCSNAME").tag(2, "");
    w.variable("$UCSORG").point(10, 0, 0, 0);
    w.variable("$UCSXDIR").point(10, 1, 0, 0);
    w.variable("$UCSYDIR").point(10, 0, 1, 0);
    w.variable("$PSLTSCALE").tag(70, 1);
    w.variable("$MEASUREMENT").tag(70, metric ? 1 : 0);
    w.variable("$CELWEIGHT").tag(370, -1);
    w.variable("$INSUNITS").tag(70, metric ? 4 : 1);
    w.variable("$EXTNAMES").tag(290, 1);
    w.variable("$PSTYLEMODE").tag(290, 1);
    w.variable("$CMLSTYLE").tag(2, "Standard");
    w.variable("$CMLJUST").tag(70, 0);
    w.variable("$CMLSCALE").real(40, metric ? 20 : 1);
    w.tag(0, "ENDSEC");
}

void beginTable(Writer& w, std::string_view type, Handle handle, int count) {
    w.tag(0, "TABLE").tag(2, type).handle(5, handle).tag(330, "0").tag(100, "AcDbSymbolTable").tag(70, count);
}

void beginEntry(Writer& w, std::string_view type, Handle handle, Handle table, std::string_view marker,
                std::string_view name) {
    w.tag(0, type).handle(type == "DIMSTYLE" ? 105 : 5, handle).handle(330, table);
    w.tag(100, "AcDbSymbolTableRecord").tag(100, marker).tag(2, name);
}

void writeTables(Writer& w, bool metric, Sheet sheet) {
    w.tag(0, "SECTION").tag(2, "TABLES");
    beginTable(w, "VPORT", VportTable, 1);
    beginEntry(w, "VPORT", ActiveVport, VportTable, "AcDbViewportTableRecord", "*ACTIVE");
    w.tag(70, 0).point(10, 0, 0).point(11, 1, 1).point(12, sheet.width / 2, sheet.height / 2).point(13, 0, 0);
    const double grid = metric ? 10 : 0.5;
    w.point(14, grid, grid).point(15, grid, grid).point(16, 0, 0, 1).point(17, 0, 0, 0);
    w.real(40, sheet.height).real(41, 1.5).real(42, 50).real(43, 0).real(44, 0).real(50, 0).real(51, 0);
    w.tag(71, 0).tag(72, 1000).tag(73, 1).tag(74, 3).tag(75, 0).tag(76, 0).tag(77, 0).tag(78, 0);
    w.tag(0, "ENDTAB");

    beginTable(w, "LTYPE", LtypeTable, 3);
    const std::pair<Handle, std::pair<std::string_view, std::string_view>> lines[] = {
        {LtypeByBlock, {"ByBlock", ""}},
        {LtypeByLayer, {"ByLayer", ""}},
        {LtypeContinuous, {"Continuous", "Solid line"}}};
    for (const auto& [handle, names] : lines) {
        beginEntry(w, "LTYPE", handle, LtypeTable, "AcDbLinetypeTableRecord", names.first);
        w.tag(70, 0).tag(3, names.second).tag(72, 65).tag(73, 0).real(40, 0);
    }
    w.tag(0, "ENDTAB");

    beginTable(w, "LAYER", LayerTable, 1);
    beginEntry(w, "LAYER", LayerZero, LayerTable, "AcDbLayerTableRecord", "0");
    w.tag(70, 0).tag(62, 7).tag(6, "Continuous").tag(370, -3).handle(390, PlotStyleNormal);
    w.tag(0, "ENDTAB");

    beginTable(w, "STYLE", StyleTable, 1);
    beginEntry(w, "STYLE", StyleStandard, StyleTable, "AcDbTextStyleTableRecord", "Standard");
    w.tag(70, 0)
        .real(40, 0)
        .real(41, 1)
        .real(50, 0)
        .tag(71, 0)
        .real(42, metric ? 2.5 : 0.2)
        .tag(3, "txt")
        .tag(4, "");
    w.tag(0, "ENDTAB");

    beginTable(w, "VIEW", ViewTable, 0);
    w.tag(0, "ENDTAB");
    beginTable(w, "UCS", UcsTable, 0);
    w.tag(0, "ENDTAB");

    beginTable(w, "APPID", AppidTable, 1);
    beginEntry(w, "APPID", AppidHost, AppidTable, "AcDbRegAppTableRecord", "ACAD");
    w.tag(70, 0).tag(0, "ENDTAB");

    beginTable(w, "DIMSTYLE", DimstyleTable, 1);
    w.tag(100, "AcDbDimStyleTable");
    beginEntry(w, "DIMSTYLE", DimstyleStandard, DimstyleTable, "AcDbDimStyleTableRecord", "Standard");
    w.tag(70, 0);
    if (metric) {
        w.real(41, 2.5).real(42, 0.625).real(43, 3.75).real(44, 1.25).real(140, 2.5).real(141, 2.5).real(
            147, 0.625);
        w.tag(77, 1).tag(78, 8).tag(271, 2).tag(278, 44);
    }
    w.handle(340, StyleStandard).tag(0, "ENDTAB");

    beginTable(w, "BLOCK_RECORD", BlockRecordTable, 2);
    beginEntry(w, "BLOCK_RECORD", ModelRecord, BlockRecordTable, "AcDbBlockTableRecord", "*Model_Space");
    w.handle(340, ModelLayout).tag(70, 0).tag(280, 1).tag(281, 0);
    beginEntry(w, "BLOCK_RECORD", PaperRecord, BlockRecordTable, "AcDbBlockTableRecord", "*Paper_Space");
    w.handle(340, PaperLayout).tag(70, 0).tag(280, 1).tag(281, 0);
    w.tag(0, "ENDTAB").tag(0, "ENDSEC");
}

void writeBlock(Writer& w, Handle begin, Handle end, Handle record, std::string_view name, bool paper) {
    w.tag(0, "BLOCK").handle(5, begin).handle(330, record).tag(100, "AcDbEntity");
    if (paper) {
        w.tag(67, 1);
    }
    w.tag(8, "0")
        .tag(100, "AcDbBlockBegin")
        .tag(2, name)
        .tag(70, 0)
        .point(10, 0, 0, 0)
        .tag(3, name)
        .tag(1, "");
    w.tag(0, "ENDBLK").handle(5, end).handle(330, record).tag(100, "AcDbEntity");
    if (paper) {
        w.tag(67, 1);
    }
    w.tag(8, "0").tag(100, "AcDbBlockEnd");
}

void beginObject(Writer& w, std::string_view type, Handle handle, std::uint64_t owner) {
    w.tag(0, type).handle(5, handle).handle(330, owner);
}

void writeLayout(Writer& w, Handle handle, Handle record, std::string_view name, int order, bool metric,
                 Sheet sheet) {
    beginObject(w, "LAYOUT", handle, LayoutDictionary);
    const bool model = order == 0;
    // Paper sizes and margins are always in millimetres.
    w.tag(100, "AcDbPlotSettings")
        .tag(1, "")
        .tag(2, "none_device")
        .tag(4, metric ? "A3" : "Letter")
        .tag(6, "");
    w.real(40, 7.5).real(41, 20).real(42, 7.5).real(43, 20);
    w.real(44, metric ? 420 : 215.9)
        .real(45, metric ? 297 : 279.4)
        .real(46, 0)
        .real(47, 0)
        .real(48, 0)
        .real(49, 0);
    // Model space is plotted as it is shown, fitted and centered; a sheet in its size.
    w.real(140, 0).real(141, 0).real(142, 1).real(143, 1).tag(70, model ? 1716 : 688).tag(72, metric ? 1 : 0);
    w.tag(73, 0)
        .tag(74, model ? 0 : 5)
        .tag(7, "")
        .tag(75, model ? 0 : 16)
        .real(147, 1)
        .tag(76, 0)
        .tag(77, 2)
        .tag(78, 300);
    w.real(148, 0).real(149, 0);
    w.tag(100, "AcDbLayout").tag(1, name).tag(70, 1).tag(71, order);
    w.point(10, 0, 0).point(11, sheet.width, sheet.height).point(12, 0, 0, 0);
    w.point(14, 1e20, 1e20, 1e20).point(15, -1e20, -1e20, -1e20).real(146, 0);
    w.point(13, 0, 0, 0).point(16, 1, 0, 0).point(17, 0, 1, 0).tag(76, 0).handle(330, record);
}

void beginDictionary(Writer& w, std::string_view type, Handle handle, std::uint64_t owner) {
    beginObject(w, type, handle, owner);
    w.tag(100, "AcDbDictionary").tag(281, 1);
}

void writeObjects(Writer& w, bool metric, Sheet sheet) {
    w.tag(0, "SECTION").tag(2, "OBJECTS");
    beginDictionary(w, "DICTIONARY", RootDictionary, 0);
    w.tag(3, "ACAD_GROUP").handle(350, GroupDictionary);
    w.tag(3, "ACAD_LAYOUT").handle(350, LayoutDictionary);
    w.tag(3, "ACAD_MLINESTYLE").handle(350, MlineDictionary);
    w.tag(3, "ACAD_PLOTSTYLENAME").handle(350, PlotStyleDictionary);
    beginDictionary(w, "DICTIONARY", GroupDictionary, RootDictionary);
    beginDictionary(w, "DICTIONARY", LayoutDictionary, RootDictionary);
    w.tag(3, "Layout1").handle(350, PaperLayout).tag(3, "Model").handle(350, ModelLayout);
    beginDictionary(w, "DICTIONARY", MlineDictionary, RootDictionary);
    w.tag(3, "Standard").handle(350, MlineStandard);
    beginDictionary(w, "ACDBDICTIONARYWDFLT", PlotStyleDictionary, RootDictionary);
    w.tag(3, "Normal").handle(350, PlotStyleNormal);
    w.tag(100, "AcDbDictionaryWithDefault").handle(340, PlotStyleNormal);
    beginObject(w, "ACDBPLACEHOLDER", PlotStyleNormal, PlotStyleDictionary);
    writeLayout(w, ModelLayout, ModelRecord, "Model", 0, metric, sheet);
    writeLayout(w, PaperLayout, PaperRecord, "Layout1", 1, metric, sheet);
    beginObject(w, "MLINESTYLE", MlineStandard, MlineDictionary);
    w.tag(100, "AcDbMlineStyle")
        .tag(2, "Standard")
        .tag(70, 0)
        .tag(3, "")
        .tag(62, 256)
        .real(51, 90)
        .real(52, 90);
    w.tag(71, 2);
    for (const double offset : {0.5, -0.5}) {
        w.real(49, offset).tag(62, 256).tag(6, "BYLAYER");
    }
    w.tag(0, "ENDSEC");
}

}  // namespace

std::unique_ptr<Drawing> Drawing::createNew(bool metric) {
    const Sheet sheet = metric ? Sheet{420, 297} : Sheet{12, 9};
    Writer w;
    writeHeader(w, metric, sheet);
    w.tag(0, "SECTION").tag(2, "CLASSES");
    w.tag(0, "CLASS")
        .tag(1, "ACDBDICTIONARYWDFLT")
        .tag(2, "AcDbDictionaryWithDefault")
        .tag(3, "ObjectDBX Classes");
    w.tag(90, 0).tag(91, 1).tag(280, 0).tag(281, 0);
    w.tag(0, "CLASS").tag(1, "ACDBPLACEHOLDER").tag(2, "AcDbPlaceHolder").tag(3, "ObjectDBX Classes");
    w.tag(90, 0).tag(91, 1).tag(280, 0).tag(281, 0).tag(0, "ENDSEC");
    writeTables(w, metric, sheet);
    w.tag(0, "SECTION").tag(2, "BLOCKS");
    writeBlock(w, ModelBlock, ModelEnd, ModelRecord, "*Model_Space", false);
    writeBlock(w, PaperBlock, PaperEnd, PaperRecord, "*Paper_Space", true);
    w.tag(0, "ENDSEC").tag(0, "SECTION").tag(2, "ENTITIES").tag(0, "ENDSEC");
    writeObjects(w, metric, sheet);
    w.tag(0, "EOF");
    std::string error;
    std::unique_ptr<Drawing> drawing = parse(w.take(), "new drawing", error);
    if (drawing == nullptr) {
        throw std::logic_error(error);
    }
    drawing->setDates({"$TDCREATE", "$TDUPDATE"}, {});
    drawing->setModified(false);
    return drawing;
}

}  // namespace drafthost
