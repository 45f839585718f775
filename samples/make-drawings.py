#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the sample drawings, with nothing but Python's own library.

usage: make-drawings.py [FOLDER]      (default: drawings/ beside this file)

They are small but differ in what programs stumble over: versions from R12 to 2018, code pages, ASCII and
binary, with and without handles, LF and CR LF, blocks with attributes, several layouts. Most of them have
objects on layer 0 and layers without a colour of their own, so that layer-fixup.scr has something to do.
The result is the same bytes at every run.
"""

import math
import os
import struct
import sys


class Drawing:
    """Tags of one drawing in the making. From R13 on every object gets a handle and an owner."""

    def __init__(self, version, codepage="ANSI_1252", encoding="cp1252"):
        self.version = version
        self.codepage = codepage
        self.encoding = "utf-8" if version >= "AC1021" else encoding
        self.old = version == "AC1009"
        self.next_handle = 0x100
        self.layers = [("0", 7)]
        self.linetypes = []
        self.blocks = {}
        self.layouts = ["Model", "Layout1"]
        self.entities = []
        self.paper = {}
        self.low = [1e20, 1e20]
        self.high = [-1e20, -1e20]

    # ---- contents ----

    def layer(self, name, color=7):
        self.layers.append((name, color))
        return name

    def reach(self, x, y):
        self.low = [min(self.low[0], x), min(self.low[1], y)]
        self.high = [max(self.high[0], x), max(self.high[1], y)]

    def add(self, kind, layer, tags, subclass, space=None):
        (self.entities if space is None else space).append((kind, layer, tags, subclass))

    def line(self, x1, y1, x2, y2, layer="0", space=None):
        if space is None:
            self.reach(x1, y1)
            self.reach(x2, y2)
        self.add("LINE", layer, [(10, x1), (20, y1), (30, 0.0), (11, x2), (21, y2), (31, 0.0)], "AcDbLine",
                 space)

    def box(self, x, y, width, height, layer="0", space=None):
        corners = [(x, y), (x + width, y), (x + width, y + height), (x, y + height)]
        for (x1, y1), (x2, y2) in zip(corners, corners[1:] + corners[:1]):
            self.line(x1, y1, x2, y2, layer, space)

    def circle(self, x, y, radius, layer="0", space=None):
        if space is None:
            self.reach(x - radius, y - radius)
            self.reach(x + radius, y + radius)
        self.add("CIRCLE", layer, [(10, x), (20, y), (30, 0.0), (40, radius)], "AcDbCircle", space)

    def arc(self, x, y, radius, start, end, layer="0", space=None):
        if space is None:
            self.reach(x - radius, y - radius)
            self.reach(x + radius, y + radius)
        self.add("ARC", layer, [(10, x), (20, y), (30, 0.0), (40, radius), (100, "AcDbArc"), (50, start),
                                (51, end)], "AcDbCircle", space)

    def text(self, x, y, height, value, layer="0", space=None):
        if space is None:
            self.reach(x, y)
            self.reach(x + 0.6 * height * len(value), y + height)
        self.add("TEXT", layer, [(10, x), (20, y), (30, 0.0), (40, height), (1, value), (100, "AcDbText")],
                 "AcDbText", space)

    def point(self, x, y, layer="0"):
        self.reach(x, y)
        self.add("POINT", layer, [(10, x), (20, y), (30, 0.0)], "AcDbPoint")

    def insert(self, name, x, y, layer="0", attributes=(), rotation=0.0):
        self.reach(x, y)
        self.add("INSERT", layer, (name, x, y, rotation, list(attributes)), "AcDbBlockReference")

    def block(self, name):
        self.blocks[name] = []
        return self.blocks[name]

    def attribute_definition(self, space, tag, prompt, x, y, height):
        self.add("ATTDEF", "0", [(10, x), (20, y), (30, 0.0), (40, height), (1, ""),
                                 (100, "AcDbAttributeDefinition"), (3, prompt), (2, tag), (70, 0)],
                 "AcDbText", space)

    def sheet(self, name):
        """A paper layout; the first one is the active paper space."""
        if name not in self.layouts:
            if self.layouts[1:] == ["Layout1"] and not self.paper:
                self.layouts[1] = name
            else:
                self.layouts.append(name)
        return self.paper.setdefault(name, [])

    # ---- tags ----

    def handle(self):
        self.next_handle += 1
        return "%X" % self.next_handle

    def entity_tags(self, entity, owner, paper):
        kind, layer, tags, subclass = entity
        if self.old:
            out = [(0, kind), (8, layer)] + ([(67, 1)] if paper else [])
            if kind == "INSERT":
                return out + self.insert_tags(entity, None)
            return out + [tag for tag in tags if tag[0] != 100]
        handle = self.handle()
        out = [(0, kind), (5, handle), (330, owner), (100, "AcDbEntity")]
        out += ([(67, 1)] if paper else []) + [(8, layer), (100, subclass)]
        if kind == "INSERT":
            return out + self.insert_tags(entity, handle)
        return out + tags

    def insert_tags(self, entity, handle):
        _, layer, (name, x, y, rotation, attributes), _ = entity
        out = ([(66, 1)] if attributes else []) + [(2, name), (10, x), (20, y), (30, 0.0)]
        if rotation:
            out.append((50, rotation))
        for tag, value, dx, dy, height in attributes:
            out += [(0, "ATTRIB")]
            if not self.old:
                out += [(5, self.handle()), (330, handle), (100, "AcDbEntity")]
            out += [(8, layer)] + ([] if self.old else [(100, "AcDbText")])
            out += [(10, x + dx), (20, y + dy), (30, 0.0), (40, height), (1, value)]
            out += [] if self.old else [(100, "AcDbAttribute")]
            out += [(2, tag), (70, 0)]
        if attributes:
            out += [(0, "SEQEND")]
            if not self.old:
                out += [(5, self.handle()), (330, handle), (100, "AcDbEntity")]
            out += [(8, layer)]
        return out

    def table(self, name, entries):
        if self.old:
            out = [(0, "TABLE"), (2, name), (70, len(entries))]
            for tags, _ in entries:
                out += [(0, name)] + tags
            return out + [(0, "ENDTAB")]
        head = self.handle()
        out = [(0, "TABLE"), (2, name), (5, head), (330, "0"), (100, "AcDbSymbolTable"), (70, len(entries))]
        if name == "DIMSTYLE":
            out += [(100, "AcDbDimStyleTable")]
        for tags, fixed in entries:
            handle = fixed or self.handle()
            subclass = {"LTYPE": "Linetype", "STYLE": "TextStyle", "APPID": "RegApp", "VPORT": "Viewport",
                        "LAYER": "Layer", "DIMSTYLE": "DimStyle", "BLOCK_RECORD": "Block"}[name]
            out += [(0, name), (105 if name == "DIMSTYLE" else 5, handle), (330, head),
                    (100, "AcDbSymbolTableRecord"), (100, "AcDb%sTableRecord" % subclass)] + tags
        return out + [(0, "ENDTAB")]

    def tags(self):
        spaces = {"Model": ("*Model_Space", self.handle(), self.handle())}
        for i, name in enumerate(self.layouts[1:]):
            spaces[name] = ("*Paper_Space" + (str(i - 1) if i else ""), self.handle(), self.handle())
        owners = {name: self.handle() for name in self.blocks}

        middle = [(a + b) / 2 for a, b in zip(self.low, self.high)]
        size = [b - a for a, b in zip(self.low, self.high)]
        tables = []
        view = [(2, "*ACTIVE"), (70, 0), (10, 0.0), (20, 0.0), (11, 1.0), (21, 1.0), (12, middle[0]),
                (22, middle[1]), (13, 0.0), (23, 0.0), (14, 10.0), (24, 10.0), (15, 10.0), (25, 10.0),
                (16, 0.0), (26, 0.0), (36, 1.0), (17, 0.0), (27, 0.0), (37, 0.0), (40, 10.0), (41, 1.5),
                (42, 50.0), (43, 0.0), (44, 0.0), (50, 0.0), (51, 0.0), (71, 0), (72, 100), (73, 1),
                (74, 3), (75, 0), (76, 0), (77, 0), (78, 0)]
        tables += self.table("VPORT", [(view, None)])
        line = [(70, 0), (3, "Solid line"), (72, 65), (73, 0), (40, 0.0)]
        names = ["CONTINUOUS"] if self.old else ["ByBlock", "ByLayer", "Continuous"]
        linetypes = [([(2, n)] + line, None) for n in names]
        dashes = [(49, 0.5), (49, -0.25)] if self.old else [(49, 0.5), (74, 0), (49, -0.25), (74, 0)]
        linetypes.append(([(2, "DASHED"), (70, 0), (3, "Dashed __ __ __"), (72, 65), (73, 2), (40, 0.75)]
                          + dashes, None))
        tables += self.table("LTYPE", linetypes)
        continuous = "CONTINUOUS" if self.old else "Continuous"
        tables += self.table("LAYER", [([(2, n), (70, 0), (62, c), (6, continuous)], None)
                                       for n, c in self.layers])
        style = [(2, "STANDARD" if self.old else "Standard"), (70, 0), (40, 0.0), (41, 1.0), (50, 0.0),
                 (71, 0), (42, 2.5), (3, "txt"), (4, "")]
        tables += self.table("STYLE", [(style, None)])
        if not self.old:
            tables += self.table("VIEW", []) + self.table("UCS", [])
        tables += self.table("APPID", [([(2, "ACAD"), (70, 0)], None)])
        if not self.old:
            tables += self.table("DIMSTYLE", [([(2, "Standard"), (70, 0)], None)])
            records = []
            for name, (block, owner, layout) in spaces.items():
                records.append(([(2, block)] + ([(340, layout)] if self.version > "AC1014" else []), owner))
            records += [([(2, name)], owner) for name, owner in owners.items()]
            tables += self.table("BLOCK_RECORD", records)

        blocks = []
        bodies = [(block, owner, self.paper.get(name, []) if block[-1].isdigit() else [], name != "Model")
                  for name, (block, owner, _) in spaces.items()]
        if self.old:
            bodies = []
        bodies += [(name, owners[name], self.blocks[name], False) for name in self.blocks]
        for name, owner, body, paper in bodies:
            flags = 2 if any(entity[0] == "ATTDEF" for entity in body) else 0
            if self.old:
                blocks += [(0, "BLOCK"), (8, "0"), (2, name), (70, flags), (10, 0.0), (20, 0.0), (30, 0.0)]
            else:
                mark = [(67, 1)] if paper else []
                blocks += [(0, "BLOCK"), (5, self.handle()), (330, owner), (100, "AcDbEntity")] + mark
                blocks += [(8, "0"), (100, "AcDbBlockBegin"), (2, name), (70, flags), (10, 0.0), (20, 0.0),
                           (30, 0.0), (3, name), (1, "")]
            for entity in body:
                blocks += self.entity_tags(entity, owner, paper)
            blocks += [(0, "ENDBLK")]
            if not self.old:
                blocks += [(5, self.handle()), (330, owner), (100, "AcDbEntity")] + mark
                blocks += [(8, "0"), (100, "AcDbBlockEnd")]
            else:
                blocks += [(8, "0")]

        entities = []
        for entity in self.entities:
            entities += self.entity_tags(entity, spaces["Model"][1], False)
        active = self.layouts[1]
        for entity in self.paper.get(active, []):
            entities += self.entity_tags(entity, spaces[active][1], True)

        objects = [] if self.old else self.object_tags(spaces)
        header = [(9, "$ACADVER"), (1, self.version), (9, "$DWGCODEPAGE"), (3, self.codepage),
                  (9, "$INSBASE"), (10, 0.0), (20, 0.0), (30, 0.0),
                  (9, "$EXTMIN"), (10, self.low[0]), (20, self.low[1]), (30, 0.0),
                  (9, "$EXTMAX"), (10, self.high[0]), (20, self.high[1]), (30, 0.0),
                  (9, "$LIMMIN"), (10, 0.0), (20, 0.0), (9, "$LIMMAX"), (10, size[0]), (20, size[1]),
                  (9, "$LTSCALE"), (40, 1.0), (9, "$TEXTSIZE"), (40, 2.5),
                  (9, "$TEXTSTYLE"), (7, "STANDARD" if self.old else "Standard"),
                  (9, "$CLAYER"), (8, "0")]
        if not self.old:
            header += [(9, "$HANDSEED"), (5, "%X" % (self.next_handle + 1))]
        out = []
        sections = [("HEADER", header)] + ([] if self.old else [("CLASSES", [])])
        sections += [("TABLES", tables), ("BLOCKS", blocks), ("ENTITIES", entities)]
        if objects:
            sections.append(("OBJECTS", objects))
        for name, body in sections:
            out += [(0, "SECTION"), (2, name)] + body + [(0, "ENDSEC")]
        out.append((0, "EOF"))
        return [(code, float(value) if code in FLOAT_CODES else value) for code, value in out]

    def object_tags(self, spaces):
        root, groups, layouts, styles, style = (self.handle() for _ in range(5))
        named = [(3, "ACAD_GROUP"), (350, groups)]
        if self.version > "AC1014":
            named += [(3, "ACAD_LAYOUT"), (350, layouts)]
        named += [(3, "ACAD_MLINESTYLE"), (350, styles)]
        out = [(0, "DICTIONARY"), (5, root), (330, "0"), (100, "AcDbDictionary"), (281, 1)] + named
        out += [(0, "DICTIONARY"), (5, groups), (330, root), (100, "AcDbDictionary"), (281, 1)]
        if self.version > "AC1014":
            out += [(0, "DICTIONARY"), (5, layouts), (330, root), (100, "AcDbDictionary"), (281, 1)]
            for name, (_, _, layout) in spaces.items():
                out += [(3, name), (350, layout)]
        out += [(0, "DICTIONARY"), (5, styles), (330, root), (100, "AcDbDictionary"), (281, 1),
                (3, "Standard"), (350, style)]
        out += [(0, "MLINESTYLE"), (5, style), (330, styles), (100, "AcDbMlineStyle"), (2, "Standard"), (70, 0),
                (3, ""), (62, 256), (51, 90.0), (52, 90.0), (71, 2), (49, 0.5), (62, 256), (6, "ByLayer"),
                (49, -0.5), (62, 256), (6, "ByLayer")]
        if self.version > "AC1014":
            for order, (name, (_, owner, layout)) in enumerate(spaces.items()):
                out += [(0, "LAYOUT"), (5, layout), (330, layouts), (100, "AcDbPlotSettings"), (1, ""),
                        (2, ""), (4, "A3" if order else ""), (6, ""), (40, 7.5), (41, 20.0), (42, 7.5),
                        (43, 20.0), (44, 420.0), (45, 297.0), (46, 0.0), (47, 0.0), (48, 0.0), (49, 0.0),
                        (140, 0.0), (141, 0.0), (142, 1.0), (143, 1.0), (70, 688 if order else 1712), (72, 1),
                        (73, 0), (74, 5), (7, ""), (75, 16), (147, 1.0), (148, 0.0), (149, 0.0),
                        (100, "AcDbLayout"), (1, name), (70, 1), (71, order), (10, 0.0), (20, 0.0),
                        (11, 420.0), (21, 297.0), (12, 0.0), (22, 0.0), (32, 0.0), (14, 1e20), (24, 1e20),
                        (34, 1e20), (15, -1e20), (25, -1e20), (35, -1e20), (146, 0.0), (13, 0.0), (23, 0.0),
                        (33, 0.0), (16, 1.0), (26, 0.0), (36, 0.0), (17, 0.0), (27, 1.0), (37, 0.0), (76, 0),
                        (330, owner)]
        return out

    # ---- bytes ----

    def ascii(self, line_end="\r\n"):
        lines = []
        for code, value in self.tags():
            text = "%.12g" % value if isinstance(value, float) else str(value)
            if isinstance(value, float) and "." not in text and "e" not in text:
                text += ".0"
            if code in INT_CODES:
                text = text.rjust(6)
            lines.append("%3d%s%s%s" % (code, line_end, text, line_end))
        return "".join(lines).encode(self.encoding)

    def binary(self):
        out = [b"AutoCAD Binary DXF\r\n\x1a\x00"]
        for code, value in self.tags():
            out.append(struct.pack("<B" if self.old else "<H", code))
            if code in BOOL_CODES:
                out.append(struct.pack("<B", value))
            elif isinstance(value, float):
                out.append(struct.pack("<d", value))
            elif isinstance(value, str):
                out.append(value.encode(self.encoding) + b"\x00")
            else:
                out.append(struct.pack("<h", value))
        return b"".join(out)


BOOL_CODES = range(290, 300)
FLOAT_CODES = set(range(10, 60)) | set(range(110, 150)) | set(range(210, 240))
INT_CODES = set(range(60, 80)) | set(range(170, 180)) | set(range(270, 290))


def bracket():
    d = Drawing("AC1009")
    d.layer("HOLES", 1)
    d.box(0, 0, 120, 80)
    d.box(10, 10, 100, 60, "0")
    for x in (20, 100):
        for y in (20, 60):
            d.circle(x, y, 6, "HOLES")
    d.text(30, 36, 5, "BRACKET 120x80")
    return d


def plate():
    d = Drawing("AC1009")
    d.layer("BOLTS", 3)
    d.circle(0, 0, 90)
    d.circle(0, 0, 30)
    for i in range(12):
        a = math.radians(30 * i)
        d.circle(70 * math.cos(a), 70 * math.sin(a), 4.5, "BOLTS")
    return d


def workshop():
    d = Drawing("AC1009", "dos850", "cp850")
    d.layer("WÄNDE", 2)
    d.layer("TÜREN", 4)
    d.box(0, 0, 9000, 6000, "WÄNDE")
    d.line(4000, 0, 4000, 4200, "WÄNDE")
    d.arc(4000, 5100, 900, 180, 270, "TÜREN")
    d.text(600, 2800, 250, "Größe 9,0 × 6,0 m")
    d.text(4600, 2800, 250, "Büro")
    return d


def flange():
    d = Drawing("AC1014")
    d.layer("AXES", 5)
    for radius in (20, 45, 60):
        d.circle(100, 100, radius)
    d.line(30, 100, 170, 100, "AXES")
    d.line(100, 30, 100, 170, "AXES")
    d.text(140, 150, 4, "DN 40")
    return d


def rooms():
    d = Drawing("AC1015")
    d.layer("Walls", 7)
    d.layer("Fixtures", 7)
    for i in range(4):
        d.box(3600 * i, 0, 3600, 4800, "Walls")
        d.text(3600 * i + 300, 2300, 200, "Room %d, café" % (i + 1))
        d.circle(3600 * i + 1800, 4000, 220, "Fixtures")
    d.arc(1800, 0, 900, 0, 90)
    return d


def russian():
    d = Drawing("AC1015", "ANSI_1251", "cp1251")
    d.layer("Стены", 7)
    d.box(0, 0, 5000, 3000, "Стены")
    d.text(400, 1400, 200, "План первого этажа")
    d.line(0, 3000, 2500, 4200)
    d.line(2500, 4200, 5000, 3000)
    return d


def japanese():
    d = Drawing("AC1018", "ANSI_932", "cp932")
    d.layer("壁", 7)
    d.layer("寸法表", 3)
    d.box(0, 0, 2700, 3600, "壁")
    # The second byte of some of these characters is a backslash.
    d.text(300, 1700, 180, "表示能力", "寸法表")
    d.text(300, 1300, 180, "ソフト設計")
    return d


def garden():
    d = Drawing("AC1021")
    d.layer("Bäume 🌳", 3)
    d.layer("Дорога", 8)
    for i in range(5):
        for k in range(3):
            d.circle(400 * i, 500 * k, 120 + 15 * k, "Bäume 🌳")
    d.line(-200, -300, 2000, -300, "Дорога")
    d.line(-200, -500, 2000, -500, "Дорога")
    d.text(0, -420, 60, "Allée · Ωmega · 道")
    return d


def parts():
    d = Drawing("AC1024")
    d.layer("Parts", 7)
    bolt = d.block("BOLT")
    d.circle(0, 0, 8, "0", bolt)
    for i in range(6):
        a, b = math.radians(60 * i), math.radians(60 * i + 60)
        d.line(5 * math.cos(a), 5 * math.sin(a), 5 * math.cos(b), 5 * math.sin(b), "0", bolt)
    tagged = d.block("TAG")
    d.box(0, 0, 40, 12, "0", tagged)
    d.attribute_definition(tagged, "NUMBER", "Part number", 3, 3, 6)
    for i in range(8):
        d.insert("BOLT", 40 * i, 0, "Parts", rotation=15.0 * i)
        d.insert("TAG", 40 * i - 10, 20, "0", [("NUMBER", "M8-%03d" % (i + 1), 3, 3, 6)])
    d.reach(-10, -8)
    d.reach(310, 32)
    return d


def sheets():
    d = Drawing("AC1027")
    d.layer("Outline", 7)
    d.layer("Title", 7)
    frame = d.block("FRAME")
    d.box(0, 0, 400, 277, "0", frame)
    d.box(280, 0, 120, 40, "0", frame)
    d.box(0, 0, 1200, 700, "Outline")
    d.box(150, 150, 300, 400)
    d.box(650, 150, 400, 400)
    for number, name in enumerate(("Ground floor", "Details"), 1):
        paper = d.sheet(name)
        d.box(10, 10, 400, 277, "Title", paper)
        d.text(300, 22, 7, name, "Title", paper)
        d.text(300, 14, 4, "Sheet %d of 2" % number, "0", paper)
        d.add("INSERT", "Title", ("FRAME", 10.0, 10.0, 0.0, []), "AcDbBlockReference", paper)
    return d


def gears():
    d = Drawing("AC1032")
    d.layer("Teeth", 7)
    for cx, teeth in ((0, 24), (110, 18)):
        outer, inner = 2.5 * teeth + 4, 2.5 * teeth - 4
        d.circle(cx, 0, 10)
        for i in range(teeth):
            a, b = (math.radians(360 * (i + part) / teeth) for part in (0, 0.5))
            d.line(cx + inner * math.cos(a), inner * math.sin(a), cx + outer * math.cos(b),
                   outer * math.sin(b), "Teeth")
    return d


def survey():
    d = Drawing("AC1032")
    d.layer("Points", 7)
    d.layer("Contours", 34)
    for i in range(40):
        for k in range(25):
            d.point(512000 + 25 * i, 5403000 + 25 * k, "Points" if (i + k) % 3 else "0")
    for level in range(20):
        last = None
        for i in range(41):
            here = (512000 + 25 * i, 5403000 + 30 * level + 40 * math.sin(i / 6 + level / 4))
            if last:
                d.line(*last, *here, "Contours" if level % 5 else "0")
            last = here
    return d


DRAWINGS = [
    ("bracket-r12.dxf", bracket, "lf"),
    ("plate-r12-binary.dxf", plate, "binary"),
    ("workshop-r12-dos850.dxf", workshop, "crlf"),
    ("flange-r14.dxf", flange, "crlf"),
    ("rooms-2000.dxf", rooms, "crlf"),
    ("plan-2000-cyrillic.dxf", russian, "crlf"),
    ("plan-2004-japanese.dxf", japanese, "crlf"),
    ("garden-2007.dxf", garden, "lf"),
    ("parts-2010-blocks.dxf", parts, "crlf"),
    ("sheets-2013-layouts.dxf", sheets, "crlf"),
    ("gears-2018-binary.dxf", gears, "binary"),
    ("survey-2018.dxf", survey, "lf"),
]


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)),
                                                                "drawings")
    os.makedirs(folder, exist_ok=True)
    for name, make, form in DRAWINGS:
        drawing = make()
        data = drawing.binary() if form == "binary" else drawing.ascii("\n" if form == "lf" else "\r\n")
        with open(os.path.join(folder, name), "wb") as out:
            out.write(data)


if __name__ == "__main__":
    main()
