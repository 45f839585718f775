// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// State files of any size for measuring: the shape of a real one, with paths as a drawing office has them.
#include <cstdint>
#include <QByteArray>
#include <QString>

/// Directory and name of drawing i.
QString SampleDirectory(std::int64_t i);
QString SampleName(std::int64_t i);
/// A whole state file of so many drawings.
QByteArray SampleState(std::int64_t files);
