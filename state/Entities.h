#pragma once
// Escaping of markup text, and the character entities of HTML that a reader meets. Entity names are looked up
// in small letters and the capital form of a pair wins ("&oslash;" gives U+00D8): files in use were written
// and read by that rule.
#include <QString>
#include <QStringView>
#include <QVarLengthArray>

/// Where a piece of markup is put together before it goes into a document; most never leave the stack.
using MarkupBuffer = QVarLengthArray<char16_t, 512>;
void AppendMarkup(MarkupBuffer& out, QStringView text);
/// Appends element text with "<", "&" and ">" escaped.
void AppendEscapedText(MarkupBuffer& out, QStringView text);
/// Appends an attribute's value with both quotes escaped as well.
void AppendEscapedAttribute(MarkupBuffer& out, QStringView value);
/// Replaces entities and character numbers by their characters. What is none stays as it stands.
QString UnescapeMarkup(QStringView text);
