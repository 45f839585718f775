// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one reader and writer of XML and of loose HTML. The document stays one text, exactly as it was read;
// beside it lies an index of where each element starts and ends. Reading scans the text on demand, changing
// edits it in place, and what is not touched (comments, white space, unknown elements) comes out unchanged.
// Any text yields an index: what is wrong with it goes into the report, which is what lets a half-written
// log or a hand-edited state file be used at all. One object per use; never shared between threads.
#include "text/ElementPosition.h"

#include <cstdint>
#include <QString>
#include <QStringView>

class MarkupBuffer;

class MarkupDocument {
  public:
    /// Document flags: what a file's mark said, and how names compare.
    enum Flag : std::uint32_t {
        Utf16LittleEndian = 1,
        Utf8Mark = 4,
        /// Names compare without regard to ASCII case.
        IgnoreCase = 8,
        Utf16BigEndian = 128,
    };

    explicit MarkupDocument(std::uint32_t documentFlags = 0) : flags(documentFlags) {}

    /// Empties the document and keeps its room, for one that is built up again and again.
    void Clear();
    /// Replaces the text and parses it. True when it is well-formed; elements are found in any case.
    bool SetDocumentText(const QString& newText);
    /// Reads and parses a file. False when it cannot be read or is not well-formed; Result() tells which.
    bool LoadFile(const QString& path);
    /// Writes the text beside the file and renames it over the file. False, with the old file whole, when
    /// that fails.
    bool SaveFile(const QString& path);
    const QString& GetDocumentText() const { return text; }
    /// The report of the last parse or file operation: XML elements one after another, without a root.
    const QString& Result() const { return result; }
    std::uint32_t Flags() const { return flags; }

    /// Moves to the next element of that name at the main level; an empty name takes any. The search only
    /// goes forward from the main position. On failure nothing moves.
    bool FindElement(QStringView name = {});
    /// The same among the children of the main element, forward from the child position.
    bool FindChildElement(QStringView name = {});
    /// The child position becomes the main position, and its children the children to search.
    bool IntoElement();
    /// Back out: the main position becomes the child position.
    bool OutOfElement();

    /// Text of the child element, unescaped; empty when it has an element inside.
    QString GetChildText() const;
    /// Unescaped value of an attribute of the child element; empty when there is none.
    QString GetChildAttribute(QStringView name) const;
    /// Name of the child element, empty without one.
    QStringView GetChildName() const;

    /// Adds an element behind the main position (at the end of the level without one) and makes it the main
    /// position. The value is escaped; an empty one gives an empty element.
    bool AddElement(QStringView name, QStringView value = {}, bool noLineBreaks = false);
    /// Adds a child behind the child position (as last child without one) and makes it the child position.
    /// False without a main position.
    bool AddChildElement(QStringView name, QStringView value = {});
    /// Sets an attribute of the main element.
    bool SetAttribute(QStringView name, QStringView value);
    /// Sets an attribute of the child element.
    bool SetChildAttribute(QStringView name, QStringView value);
    bool SetChildAttribute(QStringView name, int value);
    /// Removes the child element and the white space up to a "<" behind it. The child position falls back to
    /// the previous sibling.
    bool RemoveChildElement();

    /// The index, for those that look at positions.
    const PositionIndex& Positions() const { return positions; }
    std::uint32_t MainPosition() const { return mainPos; }
    std::uint32_t ChildPosition() const { return childPos; }

  private:
    bool parse();
    QStringView nameOf(std::uint32_t i) const;
    std::uint32_t nextNamed(std::uint32_t i, QStringView name) const;
    QString textOf(std::uint32_t i) const;
    /// Where new text goes: in place of so many units, and whether those are the end of a start tag whose
    /// element gets its first content.
    struct Gap {
        std::uint32_t Place;
        std::uint32_t Removed;
        bool OpensParent;
    };
    Gap gapFor(std::uint32_t parent, std::uint32_t after) const;
    /// An element whose start tag ends with the ">" at a place now; one that was empty gets an end tag.
    void openTag(std::uint32_t i, std::uint32_t bracket, MarkupBuffer& added);
    /// Hangs a new element between its relatives; behind none it is the first child.
    void link(std::uint32_t i, std::uint32_t parent, std::uint32_t after);
    std::uint32_t insert(std::uint32_t parent, std::uint32_t after, QStringView name, QStringView value,
                         bool noLineBreaks);
    bool setAttribute(std::uint32_t i, QStringView name, QStringView value);
    void splice(std::uint32_t offset, std::uint32_t removed, QStringView insertion);
    void shift(std::uint32_t from, std::int64_t difference);

    QString text;
    QString result;
    std::uint32_t parentPos = 0;
    std::uint32_t mainPos = 0;
    std::uint32_t childPos = 0;
    std::uint32_t flags = 0;
    PositionIndex positions;
};
