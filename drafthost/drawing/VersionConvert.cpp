// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/VersionConvert.h"

#include <map>
#include <set>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/DxfLines.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Import.h"
#include "drafthost/drawing/TextCodec.h"

namespace drafthost {

namespace {

constexpr int R12 = 1009;
constexpr int Version2000 = 1015;

/// Header variables by the version that brought them; a program of an earlier one stops at a name that it
/// does not know. What came with 2000 or before is in none of the lists.
int sinceOf(std::string_view name) {
    static const std::set<std::string_view> in2004 = {
        "$SORTENTS",          "$INDEXCTL", "$HIDETEXT",    "$XCLIPFRAME",
        "$HALOGAP",           "$OBSCOLOR", "$OBSLTYPE",    "$INTERSECTIONDISPLAY",
        "$INTERSECTIONCOLOR", "$DIMASSOC", "$PROJECTNAME", "$LASTSAVEDBY"};
    static const std::set<std::string_view> in2007 = {"$CAMERADISPLAY",
                                                      "$LENSLENGTH",
                                                      "$CAMERAHEIGHT",
                                                      "$STEPSPERSEC",
                                                      "$STEPSIZE",
                                                      "$3DDWFPREC",
                                                      "$PSOLWIDTH",
                                                      "$PSOLHEIGHT",
                                                      "$LOFTANG1",
                                                      "$LOFTANG2",
                                                      "$LOFTMAG1",
                                                      "$LOFTMAG2",
                                                      "$LOFTPARAM",
                                                      "$LOFTNORMALS",
                                                      "$LATITUDE",
                                                      "$LONGITUDE",
                                                      "$NORTHDIRECTION",
                                                      "$TIMEZONE",
                                                      "$LIGHTGLYPHDISPLAY",
                                                      "$TILEMODELIGHTSYNCH",
                                                      "$CMATERIAL",
                                                      "$SOLIDHIST",
                                                      "$SHOWHIST",
                                                      "$DWFFRAME",
                                                      "$DGNFRAME",
                                                      "$REALWORLDSCALE",
                                                      "$INTERFERECOLOR",
                                                      "$INTERFEREOBJVS",
                                                      "$INTERFEREVPVS",
                                                      "$CSHADOW",
                                                      "$SHADOWPLANELOCATION",
                                                      "$DIMFXL",
                                                      "$DIMFXLON",
                                                      "$DIMJOGANG",
                                                      "$DIMTFILL",
                                                      "$DIMTFILLCLR",
                                                      "$DIMARCSYM",
                                                      "$DIMLTYPE",
                                                      "$DIMLTEX1",
                                                      "$DIMLTEX2"};
    if (in2004.contains(name)) {
        return 1018;
    }
    if (in2007.contains(name)) {
        return 1021;
    }
    return name == "$DIMTXTDIRECTION" ? 1024 : name == "$REQUIREDVERSIONS" ? 1027 : Version2000;
}

/// Groups that layers and entities may have since a version: true colours, shadows, materials, visual styles.
int sinceOfGroup(int code) {
    switch (code) {
        case 420:
        case 430:
        case 440:
            return 1018;
        case 284:
        case 347:
        case 348:
            return 1021;
        default:
            return Version2000;
    }
}

class Rewriter {
  public:
    Rewriter(const Drawing& drawing, int version, std::vector<std::string>& lost)
        : drawing_(drawing), version_(version), codec_(version, drawing.codePage()), lost_(lost) {}

    std::string write() {
        std::string section;
        for (RecordId id = drawing_.first(); id != NoRecord; id = drawing_.next(id)) {
            const Record record = drawing_.record(id);
            if (record.type() == "SECTION") {
                section = record.textOr(2, "");
            }
            if (section == "HEADER" && record.type() == "SECTION") {
                header(record);
                continue;
            }
            const bool looks = section == "ENTITIES" || section == "BLOCKS" || record.type() == "LAYER";
            for (std::size_t i = 0; i < record.size(); ++i) {
                if (looks && i < record.xdata() && sinceOfGroup(record.code(i)) > version_) {
                    ++dropped_[record.code(i)];
                    continue;
                }
                tag(record, i);
            }
        }
        tell();
        return std::move(text_);
    }

  private:
    void header(const Record& record) {
        bool keep = true;
        for (std::size_t i = 0; i < record.size(); ++i) {
            if (record.code(i) == 9) {
                const std::string name = record.text(i);
                keep = sinceOf(name) <= version_;
                if (name == "$ACADVER") {
                    line(9, name);
                    line(1, "AC" + std::to_string(version_));
                    ++i;
                    continue;
                }
            }
            if (keep) {
                tag(record, i);
            }
        }
    }

    void tag(const Record& record, std::size_t i) {
        const int code = record.code(i);
        const ValueKind kind = kindOf(code);
        // Numbers stay as they are written; texts go over into the other encoding.
        line(code, kind == ValueKind::Text || drawing_.isBinary() ? codec_.encode(record.text(i))
                                                                  : std::string(record.raw(i)));
    }

    void line(int code, const std::string& value) { appendDxfLine(text_, code, value); }

    void tell() {
        const std::pair<int, const char*> words[] = {{420, "true colors"},    {430, "names of colors"},
                                                     {440, "transparencies"}, {284, "shadow settings"},
                                                     {347, "materials"},      {348, "visual styles"}};
        for (const auto& [code, word] : words) {
            if (dropped_[code] != 0) {
                lost_.push_back(std::to_string(dropped_[code]) + " " + word);
            }
        }
    }

    const Drawing& drawing_;
    int version_;
    TextCodec codec_;
    std::vector<std::string>& lost_;
    std::map<int, std::size_t> dropped_;
    std::string text_;
};

/// A new drawing that shows what the old one did.
std::unique_ptr<Drawing> renewed(const Drawing& drawing, std::vector<std::string>& lost) {
    auto made = Drawing::createNew(headerInteger(drawing, "$MEASUREMENT", 0) == 1);
    Importer importer(drawing, *made);
    for (const Table table : {Table::Layer, Table::Ltype, Table::Style, Table::Dimstyle, Table::Appid}) {
        for (const RecordId id : tableEntries(drawing, table)) {
            importer.entry(table, entryName(drawing, id));
        }
    }
    const std::vector<Block> all = blocks(drawing);
    for (const Block& block : all) {
        const bool space = block.name.starts_with("$") ||
                           foldCase(block.name).starts_with(foldCase("*MODEL_SPACE")) ||
                           foldCase(block.name).starts_with(foldCase("*PAPER_SPACE"));
        if (!space) {
            importer.block(block.name);
        }
    }
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        importer.entity(id, {drawing.record(id).integerOr(67, 0) == 1 ? "*Paper_Space" : "*Model_Space"});
    }
    for (const HeaderVariable& variable : headerVariables(drawing)) {
        const bool own = variable.name == "$ACADVER" || variable.name == "$HANDSEED" ||
                         variable.name == "$HANDLING" || variable.name == "$DWGCODEPAGE";
        if (own || !headerVariable(*made, variable.name)) {
            continue;
        }
        if (variable.reals > 1) {
            setHeaderPoint(*made, variable.name, variable.point, variable.reals);
        } else {
            setHeader(*made, variable.name, variable.code, variable.value);
        }
    }
    if (importer.left() != 0) {
        lost.push_back(std::to_string(importer.left()) + " objects that only that version has");
    }
    return made;
}

}  // namespace

ConvertedDrawing convertVersion(const Drawing& drawing, int version, std::string& error) {
    ConvertedDrawing result;
    std::unique_ptr<Drawing> newer;
    const Drawing* source = &drawing;
    if (version != R12 && drawing.versionNumber() < Version2000) {
        newer = renewed(drawing, result.lost);
        source = newer.get();
    }
    const std::string bytes =
        version == R12 ? writeR12(*source, result.lost) : Rewriter(*source, version, result.lost).write();
    result.drawing = Drawing::parse(bytes, "the drawing in another version", error);
    return result;
}

}  // namespace drafthost
