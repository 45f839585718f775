// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The way of markup text in and out of files. A file's encoding goes by its mark, then by what it declares,
// then by its bytes; what is written keeps what the document declares, and is UTF-8 otherwise.
#include <cstdint>
#include <QByteArray>
#include <QString>
#include <QStringView>

/// Reads a whole file as text and sets the document flags for its mark. False when it cannot be opened or
/// read, or is in an encoding for which nobody has a table. The report tells what was done.
bool ReadMarkupFile(const QString& path, QString& text, QString& report, std::uint32_t& flags);
/// Turns the bytes of a file into text; what ReadMarkupFile does behind the reading.
QString DecodeMarkup(QByteArrayView bytes, QString& report, std::uint32_t& flags);

/// Writes a whole file, with the mark that the flags ask for. False when that fails, or when nobody has a
/// table for the encoding; the old file is then as it was.
bool WriteMarkupFile(const QString& path, const QString& text, QString& report, std::uint32_t flags);
/// Turns text into the bytes of a file; what WriteMarkupFile does before the writing.
QByteArray EncodeMarkup(const QString& text, QString& report, std::uint32_t flags);

/// The encoding that a text names, in its XML declaration or in the head of an HTML page; else empty.
QString DeclaredEncoding(QStringView text);
