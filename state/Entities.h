#pragma once
// Escaping of markup text, and the character entities of HTML that a reader meets. Entity names are looked up
// in small letters and the capital form of a pair wins ("&oslash;" gives U+00D8): files in use were written
// and read by that rule.
#include <QString>
#include <QStringView>

/// Appends element text with "<", "&" and ">" escaped.
void AppendEscapedText(QString& out, QStringView text);
/// Appends an attribute's value with both quotes escaped as well.
void AppendEscapedAttribute(QString& out, QStringView value);
/// Replaces entities and character numbers by their characters. What is none stays as it stands.
QString UnescapeMarkup(QStringView text);
