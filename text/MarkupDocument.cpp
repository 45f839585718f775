// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/MarkupDocument.h"

#include "text/Entities.h"
#include "text/MarkupFile.h"
#include "text/MarkupParser.h"
#include "text/TextScanner.h"

bool MarkupDocument::SetDocumentText(const QString& newText) {
    text = newText;
    result.clear();
    return parse();
}

void MarkupDocument::Clear() {
    text.resize(0);
    result.clear();
    parentPos = mainPos = childPos = 0;
    positions.Reset(0);
}

bool MarkupDocument::LoadFile(const QString& path) {
    result.clear();
    const bool read = ReadMarkupFile(path, text, result, flags);
    if (!read) {
        text.clear();
    }
    return parse() && read;
}

bool MarkupDocument::SaveFile(const QString& path) {
    result.clear();
    return WriteMarkupFile(path, text, result, flags);
}

bool MarkupDocument::parse() {
    parentPos = mainPos = childPos = 0;
    return ParseMarkup(text, flags, positions, result);
}

QStringView MarkupDocument::nameOf(std::uint32_t i) const {
    const std::uint32_t start = positions[i].Start + 1;
    const std::uint32_t end = positions[i].ContentStart() - 1;
    std::uint32_t at = start;
    const char16_t* units = reinterpret_cast<const char16_t*>(text.utf16());
    while (at < end && !IsMarkupSpace(units[at]) && units[at] != u'/') {
        ++at;
    }
    return {units + start, at - start};
}

std::uint32_t MarkupDocument::nextNamed(std::uint32_t i, QStringView name) const {
    while (i != 0 && !name.isEmpty() && !TokenMatches(nameOf(i), name, flags)) {
        i = positions[i].NextSibling;
    }
    return i;
}

bool MarkupDocument::FindElement(QStringView name) {
    const std::uint32_t first =
        mainPos != 0 ? positions[mainPos].NextSibling : positions[parentPos].FirstChild;
    const std::uint32_t found = nextNamed(first, name);
    if (found == 0) {
        return false;
    }
    mainPos = found;
    childPos = 0;
    return true;
}

bool MarkupDocument::FindChildElement(QStringView name) {
    if (mainPos == 0 && !FindElement()) {
        return false;
    }
    const std::uint32_t first =
        childPos != 0 ? positions[childPos].NextSibling : positions[mainPos].FirstChild;
    const std::uint32_t found = nextNamed(first, name);
    if (found == 0) {
        return false;
    }
    childPos = found;
    return true;
}

bool MarkupDocument::IntoElement() {
    if (mainPos == 0) {
        return false;
    }
    parentPos = mainPos;
    mainPos = childPos;
    childPos = 0;
    return true;
}

bool MarkupDocument::OutOfElement() {
    if (parentPos == 0) {
        return false;
    }
    childPos = mainPos;
    mainPos = parentPos;
    parentPos = positions[parentPos].Parent;
    return true;
}

QString MarkupDocument::GetChildText() const {
    return childPos == 0 ? QString() : textOf(childPos);
}

QString MarkupDocument::GetChildAttribute(QStringView name) const {
    if (childPos == 0) {
        return {};
    }
    const ElementPosition& element = positions[childPos];
    return AttributeValue(QStringView(text).sliced(element.Start, element.StartTagLength()), name, flags);
}

QStringView MarkupDocument::GetChildName() const {
    return childPos == 0 ? QStringView() : nameOf(childPos);
}

QString MarkupDocument::textOf(std::uint32_t i) const {
    const ElementPosition& element = positions[i];
    if (element.FirstChild != 0 || element.IsEmptyElement()) {
        return {};
    }
    const QStringView content =
        QStringView(text).sliced(element.ContentStart(), element.ContentEnd() - element.ContentStart());
    if (!content.contains(u'<')) {
        return UnescapeMarkup(content);
    }
    QString out;
    TextScanner scanner(content, flags);
    NodeToken token;
    while (scanner.Next(token) != TokenType::EndOfText) {
        const QStringView piece = scanner.Text(token);
        if (token.Type == TokenType::Text) {
            out += UnescapeMarkup(piece);
        } else if (token.Type == TokenType::CDataSection) {
            const qsizetype start = piece.indexOf(u'[', 3) + 1;
            if (start > 0 && start <= piece.size() - 3) {
                out += piece.sliced(start, piece.size() - 3 - start);
            }
        }
    }
    return out;
}
