// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/InsertBlock.h"

#include <cmath>
#include <filesystem>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/EntityTransform.h"
#include "drafthost/drawing/Explode.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Import.h"

namespace drafthost {

namespace {

constexpr std::int64_t ConstantAttribute = 2;

/// The groups of an attribute's text, from its definition.
void appendAttributeText(Drawing& drawing, RecordId made, RecordId definition, const std::string& value) {
    const bool marked = drawing.versionNumber() >= 1012;
    std::string part;
    for (std::size_t i = 1; i < drawing.record(definition).xdata(); ++i) {
        const Record source = drawing.record(definition);
        const int code = source.code(i);
        if (code == 100) {
            part = source.text(i);
            if (part != "AcDbEntity" && marked) {
                drawing.appendTag(made, 100, part == "AcDbAttributeDefinition" ? "AcDbAttribute" : part);
            }
            continue;
        }
        const bool head =
            code == 5 || code == 330 || code == 102 || code == 360 || code == 8 || code == 67 || code == 999;
        if (head || code == 3) {
            continue;
        }
        if (code == 1) {
            drawing.appendTag(made, 1, value);
        } else {
            drawing.appendTag(made, code, source.value(i));
        }
    }
}

}  // namespace

std::vector<RecordId> attributeDefinitions(const Drawing& drawing, const Block& block) {
    std::vector<RecordId> result;
    for (const RecordId id : entitiesOf(drawing, block)) {
        if (drawing.type(id) == "ATTDEF" && (drawing.record(id).integerOr(70, 0) & ConstantAttribute) == 0) {
            result.push_back(id);
        }
    }
    return result;
}

void takeCurrentProperties(Drawing& drawing, RecordId id) {
    const std::int64_t color = headerInteger(drawing, "$CECOLOR", 256);
    const std::string linetype = headerText(drawing, "$CELTYPE", "ByLayer");
    const double scale = headerReal(drawing, "$CELTSCALE", 1);
    const std::int64_t weight = headerInteger(drawing, "$CELWEIGHT", -1);
    if (foldCase(linetype) != foldCase("ByLayer")) {
        drawing.appendTag(id, 6, linetype);
    }
    if (color != 256) {
        drawing.appendTag(id, 62, color);
    }
    if (scale != 1 && drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 48, scale);
    }
    if (weight != -1 && drawing.versionNumber() >= 1015) {
        drawing.appendTag(id, 370, weight);
    }
}

RecordId insertBlockReference(Drawing& drawing, const InsertRequest& request, const AttributeValue& value) {
    const Block* found = findBlock(drawing, request.block);
    if (found == nullptr) {
        return NoRecord;
    }
    const std::string name = found->name;
    const std::string layer = headerText(drawing, "$CLAYER", "0");
    const RecordId insert = addEntityTo(drawing, request.target, "INSERT", layer);
    if (insert == NoRecord) {
        return NoRecord;
    }
    takeCurrentProperties(drawing, insert);
    const bool marked = drawing.versionNumber() >= 1012;
    if (marked) {
        drawing.appendTag(insert, 100, "AcDbBlockReference");
    }
    drawing.appendTag(insert, 2, name);
    drawing.appendTag(insert, 10, request.place.x);
    drawing.appendTag(insert, 20, request.place.y);
    drawing.appendTag(insert, 30, request.place.z);
    for (int axis = 0; axis < 3; ++axis) {
        if (request.scale[static_cast<std::size_t>(axis)] != 1) {
            drawing.appendTag(insert, 41 + axis, request.scale[static_cast<std::size_t>(axis)]);
        }
    }
    if (request.rotation != 0) {
        drawing.appendTag(insert, 50, degreesOf(request.rotation));
    }
    addAttributes(drawing, insert, value);
    return insert;
}

void addAttributes(Drawing& drawing, RecordId insert, const AttributeValue& value) {
    const Record reference = drawing.record(insert);
    const Block* block = findBlock(drawing, reference.textOr(2, ""));
    const std::vector<RecordId> definitions =
        block == nullptr ? std::vector<RecordId>() : attributeDefinitions(drawing, *block);
    const auto follow = reference.find(66);
    if (definitions.empty()) {
        if (follow) {
            drawing.removeTag(insert, *follow);
        }
        return;
    }
    if (!follow) {
        drawing.insertTag(insert, *reference.find(2), 66, std::int64_t{1});
    }
    const std::string layer = drawing.record(insert).textOr(8, "0");
    const double height = std::abs(drawing.record(insert).realOr(42, 1));
    const Transform map = insertTransform(drawing, insert);
    RecordId behind = insert;
    for (const RecordId definition : definitions) {
        const std::string text = value ? value(definition) : drawing.record(definition).textOr(1, "");
        const std::string own = drawing.record(definition).textOr(8, "0");
        const RecordId made = addPart(drawing, insert, behind, "ATTRIB", own == "0" ? layer : own);
        behind = made;
        appendAttributeText(drawing, made, definition, text);
        std::string error;
        if (!transformEntity(drawing, made, map, {.mirrorText = true}, error)) {
            // Stretched along one axis: the place is right, the size that of the vertical scale.
            const Point p = drawing.record(made).pointOr(10, {});
            drawing.putPoint(made, 10, map(p), true);
            drawing.put(made, 40, drawing.record(made).realOr(40, 1) * height);
        }
    }
    addPart(drawing, insert, behind, "SEQEND", layer);
}

std::optional<std::string> importFileAsBlock(Drawing& drawing, const std::string& path, std::string& error) {
    const std::string name = std::filesystem::path(path).stem().string();
    if (findBlock(drawing, name) != nullptr) {
        return name;
    }
    const auto other = Drawing::open(path, error);
    if (other == nullptr) {
        return std::nullopt;
    }
    if (!Importer(*other, drawing).drawingAsBlock(name)) {
        error = path + ": the drawing has no section for blocks";
        return std::nullopt;
    }
    return name;
}

std::optional<SplineData> fitSpline(const std::vector<Point>& points, const Point& start, const Point& end) {
    const std::size_t count = points.size();
    if (count < 2) {
        return std::nullopt;
    }
    // Parameters by chord length; one more control at each end carries the tangents.
    std::vector<double> t(count, 0);
    for (std::size_t i = 1; i < count; ++i) {
        t[i] = t[i - 1] + length(points[i] - points[i - 1]);
    }
    if (!(t.back() > 0)) {
        return std::nullopt;
    }
    // A cubic in pieces with continuous curvature: slopes by a tridiagonal system.
    std::vector<Point> slope(count);
    std::vector<double> upper(count, 0);
    std::vector<Point> right(count);
    const auto chord = [&](std::size_t i) {
        return (points[i + 1] - points[i]) * (1 / std::max(t[i + 1] - t[i], 1e-12));
    };
    for (std::size_t i = 0; i < count; ++i) {
        double low = 0;
        double middle = 2;
        double high = 0;
        Point r;
        if (i == 0 || i + 1 == count) {
            const Point given = i == 0 ? start : end;
            const bool fixed = length(given) > 0;
            const Point along = chord(i == 0 ? 0 : count - 2);
            middle = fixed ? 1 : 2;
            (i == 0 ? high : low) = fixed ? 0 : 1;
            r = fixed ? normalised(given) * length(along) : along * 3;
        } else {
            const double before = t[i] - t[i - 1];
            const double after = t[i + 1] - t[i];
            low = after;
            middle = 2 * (before + after);
            high = before;
            r = (chord(i - 1) * after + chord(i) * before) * 3;
        }
        const double pivot = middle - (i == 0 ? 0 : low * upper[i - 1]);
        upper[i] = high / pivot;
        right[i] = (r - (i == 0 ? Point{} : right[i - 1] * low)) * (1 / pivot);
    }
    for (std::size_t i = count; i-- > 0;) {
        slope[i] = right[i] - (i + 1 == count ? Point{} : slope[i + 1] * upper[i]);
    }
    SplineData data;
    for (int k = 0; k < 4; ++k) {
        data.knots.push_back(t[0]);
    }
    data.controls.push_back(points[0]);
    for (std::size_t i = 0; i + 1 < count; ++i) {
        const double h = (t[i + 1] - t[i]) / 3;
        data.controls.push_back(points[i] + slope[i] * h);
        data.controls.push_back(points[i + 1] - slope[i + 1] * h);
        if (i + 2 < count) {
            data.knots.push_back(t[i + 1]);
            data.knots.push_back(t[i + 1]);
        }
    }
    data.controls.push_back(points.back());
    for (int k = 0; k < 4; ++k) {
        data.knots.push_back(t.back());
    }
    return data;
}

}  // namespace drafthost
