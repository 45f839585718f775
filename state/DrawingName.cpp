// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/DrawingName.h"

#include "engine/record/FileName.h"

#include <algorithm>
#include <array>

namespace {

/// The first two are those that are worked on.
constexpr std::array<QStringView, 4> extensions = {u".dwg", u".dxf", u".dwt", u".dws"};

bool isOneOf(QStringView path, std::size_t count) {
    const QStringView name = path.sliced(NameOffset(path));
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot >= 0 &&
           std::any_of(extensions.begin(), extensions.begin() + count, [&](QStringView extension) {
               return name.sliced(dot).compare(extension, Qt::CaseInsensitive) == 0;
           });
}

}  // namespace

bool IsDrawingName(QStringView path) {
    return isOneOf(path, extensions.size());
}

bool IsEditableDrawingName(QStringView path) {
    return isOneOf(path, 2);
}
