// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/MarkupParser.h"

#include "text/MarkupDocument.h"
#include "text/ResultReport.h"
#include "text/TextScanner.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct OpenTag {
    std::uint32_t Position;
    std::uint32_t NameOffset;
    std::uint32_t NameLength;
};

class Parser {
  public:
    Parser(const QString& text, std::uint32_t documentFlags, PositionIndex& positions, QString& report)
        : text(text),
          flags(documentFlags),
          positions(positions),
          report(report),
          scanner(text, documentFlags) {}

    bool Run() {
        NodeToken token;
        for (;;) {
            switch (scanner.Next(token)) {
                case TokenType::StartTag:
                    startTag(token);
                    break;
                case TokenType::EndTag:
                    endTag(token);
                    break;
                case TokenType::SyntaxError:
                    markStray();
                    if (report.size() < 1000) {
                        report += token.Report;
                    }
                    break;
                case TokenType::EndOfText:
                    return finish();
                default:
                    break;
            }
        }
    }

  private:
    QStringView name(std::uint32_t offset, std::uint32_t length) const {
        return QStringView(text).sliced(offset, length);
    }

    bool sameName(const OpenTag& open, const NodeToken& token) const {
        if (open.NameLength != token.NameLength) {
            return false;
        }
        const QStringView a = name(open.NameOffset, open.NameLength);
        const QStringView b = name(token.NameOffset, token.NameLength);
        if (flags & MarkupDocument::IgnoreCase) {
            return TokenMatches(a, b, flags);
        }
        return std::u16string_view(a.utf16(), std::size_t(a.size())) ==
               std::u16string_view(b.utf16(), std::size_t(b.size()));
    }

    /// Counts of the open names by a coarse hash: an end tag whose name cannot be open is known at once, so
    /// that a log of nothing but lone end tags does not search the whole stack for each.
    std::uint32_t& openCount(std::uint32_t offset, std::uint32_t length) {
        if (length == 0) {
            return openCounts[0];
        }
        const unsigned first = text[offset].unicode() | 0x20u;
        const unsigned last = text[offset + length - 1].unicode() | 0x20u;
        return openCounts[(first * 31 + last * 7 + length) & 255];
    }

    std::uint32_t current() const { return stack.empty() ? 0 : stack.back().Position; }

    void startTag(const NodeToken& token) {
        const std::uint32_t parent = current();
        const std::uint32_t added = positions.Add();
        ElementPosition& element = positions[added];
        element.Start = token.Offset;
        element.Length = token.Length;
        element.TagLengths = token.Length;
        element.Level = static_cast<std::uint32_t>(std::min<std::size_t>(stack.size(), 0xffff));
        element.Parent = parent;
        if (const std::uint32_t first = positions[parent].FirstChild; first == 0) {
            positions[parent].FirstChild = added;
            element.Level |= ElementPosition::FirstSibling;
            element.PreviousSibling = added;
        } else {
            const std::uint32_t last = positions[first].PreviousSibling;
            positions[last].NextSibling = added;
            element.PreviousSibling = last;
            positions[first].PreviousSibling = added;
        }
        if (!token.Empty) {
            stack.push_back({added, token.NameOffset, token.NameLength});
            ++openCount(token.NameOffset, token.NameLength);
        }
    }

    void endTag(const NodeToken& token) {
        std::size_t depth = stack.size();
        if (depth > 0 && !sameName(stack[depth - 1], token)) {
            if (openCount(token.NameOffset, token.NameLength) == 0) {
                depth = 0;
            }
            while (depth > 0 && !sameName(stack[depth - 1], token)) {
                --depth;
            }
        }
        if (depth == 0) {
            markStray();
            AddReport(report, u"lone_end_tag",
                      {{u"tagname", name(token.NameOffset, token.NameLength).toString()},
                       {u"offset", QString::number(token.Offset)}});
            return;
        }
        closeAbove(depth, token.Offset);
        ElementPosition& element = positions[stack.back().Position];
        element.Length = token.Offset + token.Length - element.Start;
        element.SetEndTagLength(token.Length);
        --openCount(stack.back().NameOffset, stack.back().NameLength);
        stack.pop_back();
    }

    /// Gives up on the open elements above a depth of the stack: each keeps its start tag alone, and what was
    /// inside of it follows it.
    void closeAbove(std::size_t depth, std::uint32_t endOffset) {
        if (stack.size() == depth) {
            return;
        }
        for (std::size_t i = stack.size(); i > depth; --i) {
            const OpenTag& open = stack[i - 1];
            ElementPosition& element = positions[open.Position];
            element.Level |= ElementPosition::NoEndTag;
            AddReport(report, u"unended_start_tag",
                      {{u"tagname", name(open.NameOffset, open.NameLength).toString()},
                       {u"offset", QString::number(element.Start)},
                       {u"offset2", QString::number(endOffset)}});
            --openCount(open.NameOffset, open.NameLength);
        }
        const std::uint32_t parent = depth == 0 ? 0 : stack[depth - 1].Position;
        const std::uint32_t head = positions[parent].FirstChild;
        // Each open element is the last child of the one below it, so its children always go to the end.
        for (std::size_t i = depth; i < stack.size(); ++i) {
            ElementPosition& element = positions[stack[i].Position];
            const std::uint32_t first = element.FirstChild;
            if (first == 0) {
                continue;
            }
            element.FirstChild = 0;
            element.NextSibling = first;
            positions[head].PreviousSibling = positions[first].PreviousSibling;
            positions[first].PreviousSibling = stack[i].Position;
            positions[first].Level &= ~std::uint32_t{ElementPosition::FirstSibling};
            for (std::uint32_t child = first; child != 0; child = positions[child].NextSibling) {
                positions[child].Parent = parent;
            }
        }
        stack.resize(depth);
        mark(parent, ElementPosition::IllFormed | ElementPosition::HoldsStray);
    }

    /// A tag that belongs nowhere stands inside of the current element.
    void markStray() {
        const std::uint32_t inside = current();
        mark(inside, ElementPosition::HoldsStray);
        mark(positions[inside].Parent, ElementPosition::IllFormed);
    }

    /// Sets marks on an element and all that enclose it.
    void mark(std::uint32_t i, std::uint32_t marks) {
        for (;; i = positions[i].Parent) {
            if ((positions[i].Level & marks) == marks) {
                return;
            }
            positions[i].Level |= marks;
            if (i == 0) {
                return;
            }
        }
    }

    bool finish() {
        if (!stack.empty()) {
            closeAbove(0, static_cast<std::uint32_t>(text.size()));
        }
        const std::uint32_t root = positions[0].FirstChild;
        if (root == 0) {
            if (!text.isEmpty()) {
                AddReport(report, u"no_root_element");
            }
            return false;
        }
        if (positions[root].NextSibling != 0) {
            AddReport(report, u"root_has_sibling");
            return false;
        }
        return (positions[0].Level & ElementPosition::IllFormed) == 0;
    }

    const QString& text;
    std::uint32_t flags;
    PositionIndex& positions;
    QString& report;
    TextScanner scanner;
    std::vector<OpenTag> stack;
    std::array<std::uint32_t, 256> openCounts{};
};

}  // namespace

bool ParseMarkup(const QString& text, std::uint32_t documentFlags, PositionIndex& positions,
                 QString& report) {
    const auto size = static_cast<std::uint32_t>(text.size());
    positions.Reset(size / 64 + 8);
    positions[0].Length = size;
    return Parser(text, documentFlags, positions, report).Run();
}
