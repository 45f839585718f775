// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/R12Groups.h"

#include <map>

namespace drafthost {

const std::set<int>* r12Groups(std::string_view type) {
    static const std::map<std::string_view, std::set<int>> known = {
        {"LINE", {10, 20, 30, 11, 21, 31}},
        {"POINT", {10, 20, 30, 50}},
        {"CIRCLE", {10, 20, 30, 40}},
        {"ARC", {10, 20, 30, 40, 50, 51}},
        {"TRACE", {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33}},
        {"SOLID", {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33}},
        {"3DFACE", {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 70}},
        {"TEXT", {10, 20, 30, 40, 1, 50, 41, 51, 7, 71, 72, 11, 21, 31, 73}},
        {"SHAPE", {10, 20, 30, 40, 2, 50, 41, 51}},
        {"INSERT", {66, 2, 10, 20, 30, 41, 42, 43, 50, 70, 71, 44, 45}},
        {"ATTDEF", {10, 20, 30, 40, 1, 3, 2, 70, 73, 50, 41, 51, 7, 71, 72, 11, 21, 31, 74}},
        {"ATTRIB", {10, 20, 30, 40, 1, 2, 70, 73, 50, 41, 51, 7, 71, 72, 11, 21, 31, 74}},
        {"POLYLINE", {66, 10, 20, 30, 70, 40, 41, 71, 72, 73, 74, 75}},
        {"VERTEX", {10, 20, 30, 40, 41, 42, 70, 50, 71, 72, 73, 74}},
        {"SEQEND", {}},
        {"DIMENSION", {2,  3,  10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 14,
                       24, 34, 15, 25, 35, 16, 26, 36, 70, 1,  40, 50, 51, 52, 53}},
        {"VIEWPORT", {10, 20, 30, 40, 41, 68, 69}},
    };
    const auto found = known.find(type);
    return found == known.end() ? nullptr : &found->second;
}

bool canHold(const Drawing& drawing, std::string_view type) {
    constexpr int R13 = 1012;
    constexpr int R14 = 1014;
    const int first = type == "LWPOLYLINE" ? R14 : R13;
    return drawing.versionNumber() >= first || r12Groups(type) != nullptr;
}

const std::set<int>& r12Groups(Table table) {
    static const std::map<Table, std::set<int>> known = {
        {Table::Layer, {70, 62, 6}},
        {Table::Ltype, {70, 3, 72, 73, 40, 49}},
        {Table::Style, {70, 40, 41, 50, 71, 42, 3, 4}},
        {Table::View, {70, 40, 10, 20, 41, 11, 21, 31, 12, 22, 32, 42, 43, 44, 50, 71}},
        {Table::Ucs, {70, 10, 20, 30, 11, 21, 31, 12, 22, 32}},
        {Table::Vport, {70, 10, 20, 11, 21, 12, 22, 13, 23, 14, 24, 15, 25, 16, 26, 36, 17,
                        27, 37, 40, 41, 42, 43, 44, 50, 51, 71, 72, 73, 74, 75, 76, 77, 78}},
        {Table::Appid, {70}},
        {Table::Dimstyle,
         {70,  3,  4,  40, 41, 42, 43, 44, 45, 46,  47,  48,  140, 141, 142, 143, 144, 145, 146,
          147, 71, 72, 73, 74, 75, 76, 77, 78, 170, 171, 172, 173, 174, 175, 176, 177, 178}},
    };
    return known.at(table);
}

bool isR12Variable(std::string_view name) {
    static const std::set<std::string_view> known = {
        "$INSBASE",    "$EXTMIN",     "$EXTMAX",    "$LIMMIN",    "$LIMMAX",     "$ORTHOMODE", "$REGENMODE",
        "$FILLMODE",   "$QTEXTMODE",  "$MIRRTEXT",  "$LTSCALE",   "$ATTMODE",    "$TEXTSIZE",  "$TRACEWID",
        "$TEXTSTYLE",  "$CLAYER",     "$CELTYPE",   "$CECOLOR",   "$DIMSCALE",   "$DIMASZ",    "$DIMEXO",
        "$DIMDLI",     "$DIMRND",     "$DIMDLE",    "$DIMEXE",    "$DIMTP",      "$DIMTM",     "$DIMTXT",
        "$DIMCEN",     "$DIMTSZ",     "$DIMTOL",    "$DIMLIM",    "$DIMTIH",     "$DIMTOH",    "$DIMSE1",
        "$DIMSE2",     "$DIMTAD",     "$DIMZIN",    "$DIMBLK",    "$DIMASO",     "$DIMSHO",    "$DIMPOST",
        "$DIMAPOST",   "$DIMALT",     "$DIMALTD",   "$DIMALTF",   "$DIMLFAC",    "$DIMTOFL",   "$DIMTVP",
        "$DIMTIX",     "$DIMSOXD",    "$DIMSAH",    "$DIMBLK1",   "$DIMBLK2",    "$DIMSTYLE",  "$DIMCLRD",
        "$DIMCLRE",    "$DIMCLRT",    "$DIMTFAC",   "$DIMGAP",    "$LUNITS",     "$LUPREC",    "$SKETCHINC",
        "$FILLETRAD",  "$AUNITS",     "$AUPREC",    "$ELEVATION", "$PELEVATION", "$THICKNESS", "$LIMCHECK",
        "$CHAMFERA",   "$CHAMFERB",   "$SKPOLY",    "$TDCREATE",  "$TDUPDATE",   "$TDINDWG",   "$TDUSRTIMER",
        "$USRTIMER",   "$ANGBASE",    "$ANGDIR",    "$PDMODE",    "$PDSIZE",     "$PLINEWID",  "$SPLFRAME",
        "$SPLINETYPE", "$SPLINESEGS", "$SURFTAB1",  "$SURFTAB2",  "$SURFTYPE",   "$SURFU",     "$SURFV",
        "$UCSNAME",    "$UCSORG",     "$UCSXDIR",   "$UCSYDIR",   "$PUCSNAME",   "$PUCSORG",   "$PUCSXDIR",
        "$PUCSYDIR",   "$USERI1",     "$USERI2",    "$USERI3",    "$USERI4",     "$USERI5",    "$USERR1",
        "$USERR2",     "$USERR3",     "$USERR4",    "$USERR5",    "$WORLDVIEW",  "$SHADEDGE",  "$SHADEDIF",
        "$TILEMODE",   "$MAXACTVP",   "$PLIMCHECK", "$PEXTMIN",   "$PEXTMAX",    "$PLIMMIN",   "$PLIMMAX",
        "$UNITMODE",   "$VISRETAIN",  "$PLINEGEN",  "$PSLTSCALE"};
    return known.contains(name);
}

}  // namespace drafthost
