// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/DrawingName.h"

#include "engine/record/FileName.h"

#include <algorithm>
#include <array>

namespace {

/// The first two are those that are worked on.
constexpr std::array<QStringView, 4> Extensions = {u".dwg", u".dxf", u".dwt", u".dws"};

bool isOneOf(QStringView path, std::size_t count) {
    const QStringView name = path.sliced(NameOffset(path));
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot >= 0 &&
           std::any_of(Extensions.begin(), Extensions.begin() + count, [&](QStringView extension) {
               return name.sliced(dot).compare(extension, Qt::CaseInsensitive) == 0;
           });
}

}  // namespace

bool IsDrawingName(QStringView path) {
    return isOneOf(path, Extensions.size());
}

bool IsEditableDrawingName(QStringView path) {
    return isOneOf(path, 2);
}
