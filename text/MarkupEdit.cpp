// SPDX-License-Identifier: GPL-3.0-or-later
// Changes of a document: each edits the text in place and moves the positions behind the change. Adding at
// the end of a document touches only what encloses the new element, so that building one up is linear.
#include "text/Entities.h"
#include "text/MarkupDocument.h"
#include "text/TextScanner.h"

#include <array>
#include <charconv>
#include <cstring>

namespace {

/// Adds a difference to the start of an element and of everything inside of it.
void shiftTree(PositionIndex& positions, std::uint32_t top, std::uint32_t difference) {
    std::uint32_t i = top;
    for (;;) {
        positions[i].Start += difference;
        if (positions[i].FirstChild != 0) {
            i = positions[i].FirstChild;
            continue;
        }
        while (i != top && positions[i].NextSibling == 0) {
            i = positions[i].Parent;
        }
        if (i == top) {
            return;
        }
        i = positions[i].NextSibling;
    }
}

void appendTag(MarkupBuffer& out, QStringView open, QStringView name, QStringView close) {
    out.Append(open);
    out.Append(name);
    out.Append(close);
}

/// Writes an element. Its lengths; where it stands is not known here.
ElementPosition appendElement(MarkupBuffer& out, QStringView name, QStringView value) {
    ElementPosition element{};
    const qsizetype before = out.Size();
    if (value.isEmpty()) {
        appendTag(out, u"<", name, u"/>");
        element.SetStartTagLength(static_cast<std::uint32_t>(name.size()) + 3);
    } else {
        appendTag(out, u"<", name, u">");
        AppendEscapedText(out, value);
        appendTag(out, u"</", name, u">");
        element.SetStartTagLength(static_cast<std::uint32_t>(name.size()) + 2);
        element.SetEndTagLength(static_cast<std::uint32_t>(name.size()) + 3);
    }
    element.Length = static_cast<std::uint32_t>(out.Size() - before);
    return element;
}

}  // namespace

void MarkupDocument::splice(std::uint32_t offset, std::uint32_t removed, QStringView insertion) {
    const qsizetype oldSize = text.size();
    const qsizetype newSize = oldSize - removed + insertion.size();
    if (newSize > oldSize) {
        if (newSize > text.capacity()) {
            text.reserve(std::max(newSize, text.capacity() * 2));
        }
        text.resize(newSize);
    }
    auto* units = reinterpret_cast<char16_t*>(text.data());
    const std::size_t tail = static_cast<std::size_t>(oldSize - offset - removed);
    std::memmove(units + offset + insertion.size(), units + offset + removed, tail * sizeof(char16_t));
    if (!insertion.isEmpty()) {
        std::memcpy(units + offset, insertion.utf16(), std::size_t(insertion.size()) * sizeof(char16_t));
    }
    if (newSize < oldSize) {
        text.resize(newSize);
    }
}

/// Moves everything behind an element, and makes longer or shorter what encloses it. Differences are taken
/// modulo 2^32, so that they may be negative.
void MarkupDocument::shift(std::uint32_t from, std::int64_t difference) {
    const auto d = static_cast<std::uint32_t>(difference);
    for (std::uint32_t i = from; i != 0;) {
        for (std::uint32_t next = positions[i].NextSibling; next != 0; next = positions[next].NextSibling) {
            shiftTree(positions, next, d);
        }
        i = positions[i].Parent;
        positions[i].Length += d;
    }
}

MarkupDocument::Gap MarkupDocument::gapFor(std::uint32_t parent, std::uint32_t after) const {
    const ElementPosition& element = positions[parent];
    if (after == 0 && parent != 0 && element.ContentStart() == element.ContentEnd()) {
        std::uint32_t place = element.ContentStart() - 1;
        if (element.IsEmptyElement() && (element.Level & ElementPosition::NoEndTag) == 0) {
            while (text[place - 1] == u'/' || IsMarkupSpace(text[place - 1].unicode())) {
                --place;
            }
        }
        return {place, element.ContentStart() - place, true};
    }
    const std::uint32_t place = after != 0    ? positions[after].End()
                                : parent == 0 ? static_cast<std::uint32_t>(text.size())
                                              : element.ContentEnd();
    std::uint32_t next = place;
    while (next < text.size() && IsMarkupSpace(text[next].unicode())) {
        ++next;
    }
    return {next == text.size() || text[next] == u'<' ? next : place, 0, false};
}

void MarkupDocument::openTag(std::uint32_t i, std::uint32_t bracket, MarkupBuffer& added) {
    ElementPosition& element = positions[i];
    if (element.IsEmptyElement()) {
        const QStringView name = nameOf(i);
        appendTag(added, u"</", name, u">");
        element.SetEndTagLength(static_cast<std::uint32_t>(name.size()) + 3);
        element.Level &= ~std::uint32_t{ElementPosition::NoEndTag};
    }
    element.SetStartTagLength(bracket + 1 - element.Start);
}

void MarkupDocument::link(std::uint32_t i, std::uint32_t parent, std::uint32_t after) {
    ElementPosition& element = positions[i];
    element.Level = parent == 0 ? 0 : std::min<std::uint32_t>((positions[parent].Level & 0xffff) + 1, 0xffff);
    element.Parent = parent;
    if (after == 0) {
        element.Level |= ElementPosition::FirstSibling;
        element.PreviousSibling = i;
        positions[parent].FirstChild = i;
        return;
    }
    element.PreviousSibling = after;
    element.NextSibling = positions[after].NextSibling;
    positions[after].NextSibling = i;
    const std::uint32_t follower =
        element.NextSibling != 0 ? element.NextSibling : positions[parent].FirstChild;
    positions[follower].PreviousSibling = i;
}

std::uint32_t MarkupDocument::insert(std::uint32_t parent, std::uint32_t after, QStringView name,
                                     QStringView value, bool noLineBreaks) {
    if (const std::uint32_t first = positions[parent].FirstChild; after == 0 && first != 0) {
        after = positions[first].PreviousSibling;
    }
    const Gap gap = gapFor(parent, after);
    MarkupBuffer added;
    if (gap.OpensParent) {
        added.Append(noLineBreaks ? QStringView(u">") : QStringView(u">\r\n"));
    }
    const auto before = static_cast<std::uint32_t>(added.Size());
    ElementPosition element = appendElement(added, name, value);
    element.Start = gap.Place + before;
    if (!noLineBreaks) {
        added.Append(u"\r\n");
    }
    if (gap.OpensParent) {
        openTag(parent, gap.Place, added);
    }
    splice(gap.Place, gap.Removed, added.View());
    const std::uint32_t i = positions.Add();
    positions[i] = element;
    link(i, parent, after);
    shift(i, added.Size() - std::int64_t{gap.Removed});
    return i;
}

bool MarkupDocument::AddElement(QStringView name, QStringView value, bool noLineBreaks) {
    if (name.isEmpty() || name.size() + 3 > ElementPosition::MaxEndTag) {
        return false;
    }
    mainPos = insert(parentPos, mainPos, name, value, noLineBreaks);
    childPos = 0;
    return true;
}

bool MarkupDocument::AddChildElement(QStringView name, QStringView value) {
    if (mainPos == 0 || name.isEmpty() || name.size() + 3 > ElementPosition::MaxEndTag) {
        return false;
    }
    childPos = insert(mainPos, childPos, name, value, false);
    return true;
}

bool MarkupDocument::setAttribute(std::uint32_t i, QStringView name, QStringView value) {
    if (i == 0 || name.isEmpty()) {
        return false;
    }
    const std::uint32_t start = positions[i].Start;
    const std::uint32_t oldLength = positions[i].StartTagLength();
    const QStringView tag = QStringView(text).sliced(start, oldLength);
    const AttributeSpan span = FindAttribute(tag, name, flags);

    MarkupBuffer changed;
    std::uint32_t place = span.End;
    std::uint32_t removed = 0;
    if (span.Found && span.HasValue) {
        place = span.Quoted ? span.ValueStart - 1 : span.ValueStart;
        removed = span.End - place;
    } else if (span.Found) {
        changed.Append(u"=");
    } else {
        if (span.HasValue && !span.Quoted && span.ValueStart == span.ValueEnd) {
            changed.Append(u"\"\"");
        }
        changed.Append(u" ");
        changed.Append(name);
        changed.Append(u"=");
    }
    changed.Append(u"\"");
    AppendEscapedAttribute(changed, value);
    changed.Append(u"\"");
    const QStringView insertion = changed.View();
    const bool wasEmpty =
        positions[i].IsEmptyElement() && (positions[i].Level & ElementPosition::NoEndTag) == 0;
    // A slash at the end of a tag that is not empty is a stray; behind a quote it would end the element.
    if (!wasEmpty && place + removed + 2 == oldLength && tag[oldLength - 2] == u'/') {
        ++removed;
    }

    const std::int64_t difference = changed.Size() - std::int64_t{removed};
    if (oldLength + difference > ElementPosition::MaxStartTag) {
        return false;
    }
    if (span.Found || (span.HasValue && !span.Quoted)) {
        // Loose text may hold quotes and brackets that only made sense together with the old value.
        const QString whole = tag.first(place) + insertion + tag.sliced(place + removed);
        NodeToken token;
        if (TextScanner(whole, flags).Next(token) != TokenType::StartTag || token.Length != whole.size() ||
            token.Empty != wasEmpty) {
            return false;
        }
    }
    splice(start + place, removed, insertion);

    ElementPosition& element = positions[i];
    element.SetStartTagLength(oldLength + static_cast<std::uint32_t>(difference));
    element.Length += static_cast<std::uint32_t>(difference);
    for (std::uint32_t child = element.FirstChild; child != 0; child = positions[child].NextSibling) {
        shiftTree(positions, child, static_cast<std::uint32_t>(difference));
    }
    shift(i, difference);
    return true;
}

bool MarkupDocument::SetAttribute(QStringView name, QStringView value) {
    return setAttribute(mainPos, name, value);
}

bool MarkupDocument::SetChildAttribute(QStringView name, QStringView value) {
    return setAttribute(childPos, name, value);
}

bool MarkupDocument::SetChildAttribute(QStringView name, int value) {
    std::array<char, 12> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    std::array<char16_t, 12> units{};
    std::copy(digits.data(), end, units.begin());
    return setAttribute(childPos, name, QStringView(units.data(), end - digits.data()));
}

bool MarkupDocument::RemoveChildElement() {
    if (childPos == 0) {
        return false;
    }
    const std::uint32_t gone = childPos;
    const ElementPosition element = positions[gone];
    std::uint32_t end = element.End();
    while (end < text.size() && IsMarkupSpace(text[end].unicode())) {
        ++end;
    }
    if (end == text.size() || text[end] != u'<') {
        end = element.End();
    }
    const std::uint32_t removed = end - element.Start;
    splice(element.Start, removed, {});
    shift(gone, -std::int64_t{removed});

    const bool isFirst = positions[element.Parent].FirstChild == gone;
    if (isFirst) {
        positions[element.Parent].FirstChild = element.NextSibling;
        if (element.NextSibling != 0) {
            positions[element.NextSibling].Level |= ElementPosition::FirstSibling;
        }
    } else {
        positions[element.PreviousSibling].NextSibling = element.NextSibling;
    }
    if (element.NextSibling != 0) {
        positions[element.NextSibling].PreviousSibling = element.PreviousSibling;
    } else if (!isFirst) {
        positions[positions[element.Parent].FirstChild].PreviousSibling = element.PreviousSibling;
    }
    childPos = isFirst ? 0 : element.PreviousSibling;

    // What is removed is not given out again before the next parse.
    for (std::uint32_t i = gone;;) {
        positions[i].Level |= ElementPosition::Removed;
        if (positions[i].FirstChild != 0) {
            i = positions[i].FirstChild;
            continue;
        }
        while (i != gone && positions[i].NextSibling == 0) {
            i = positions[i].Parent;
        }
        if (i == gone) {
            return true;
        }
        i = positions[i].NextSibling;
    }
}
