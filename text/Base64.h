// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Base64 as the state file holds it: standard alphabet, "=" padding, lines of 76 characters.
#include <optional>
#include <QByteArray>
#include <QString>
#include <QStringView>

/// Lines of 76 characters with CR LF between them.
QString Base64Encode(const QByteArray& bytes);
/// Skips white space and stops at the first "=". Nothing when the first foreign character is no "=" or stands
/// where a group has fewer than two characters.
std::optional<QByteArray> Base64Decode(QStringView text);
