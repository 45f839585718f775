// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a markup file: the index must lie inside of the text and hang together, edits must keep it so,
// and what an edit leaves must read the same again.
#include "text/MarkupDocument.h"
#include "text/MarkupFile.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void checkLevel(const MarkupDocument& document, std::uint32_t parent, int depth) {
    constexpr int Deepest = 2000;
    if (depth > Deepest) {
        return;
    }
    const PositionIndex& positions = document.Positions();
    const auto size = static_cast<std::uint32_t>(document.GetDocumentText().size());
    std::uint32_t last = 0;
    std::uint32_t end = 0;
    for (std::uint32_t i = positions[parent].FirstChild; i != 0; i = positions[i].NextSibling) {
        const ElementPosition& element = positions[i];
        require(element.Parent == parent && element.Start >= end && element.End() <= size);
        require(element.StartTagLength() + element.EndTagLength() <= element.Length);
        require(((element.Level & ElementPosition::FirstSibling) != 0) == (last == 0));
        if (last != 0) {
            require(element.PreviousSibling == last);
        }
        last = i;
        end = element.End();
        checkLevel(document, i, depth + 1);
    }
    if (last != 0) {
        require(positions[positions[parent].FirstChild].PreviousSibling == last);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QString report;
    std::uint32_t flags = 0;
    const QString text =
        DecodeMarkup(QByteArrayView(reinterpret_cast<const char*>(data), qsizetype(size)), report, flags);
    MarkupDocument document;
    const bool wellFormed = document.SetDocumentText(text);
    checkLevel(document, 0, 0);
    EncodeMarkup(text, report, flags);

    while (document.FindChildElement()) {
        document.GetChildText();
        document.GetChildAttribute(u"a");
        if (document.ChildPosition() % 3 == 0) {
            document.IntoElement();
            document.FindChildElement();
            document.AddChildElement(u"n", u"<&>");
            document.OutOfElement();
        } else if (document.ChildPosition() % 3 == 1) {
            document.SetChildAttribute(u"a", u"'\"");
        } else {
            document.RemoveChildElement();
        }
    }
    document.AddElement(u"last");
    checkLevel(document, 0, 0);
    if (wellFormed) {
        MarkupDocument again;
        again.SetDocumentText(document.GetDocumentText());
        checkLevel(again, 0, 0);
    }
    return 0;
}
