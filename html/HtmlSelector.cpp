// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlSelector.h"

#include <QStringList>

namespace {

class Reader {
  public:
    explicit Reader(const QString& selector) : text(selector) {}

    bool AtEnd() const { return at >= text.size(); }
    QChar Peek() const { return AtEnd() ? QChar() : text[at]; }
    void Skip() { ++at; }
    bool SkipBlanks() {
        const qsizetype before = at;
        while (!AtEnd() && text[at].isSpace()) {
            ++at;
        }
        return at != before;
    }
    QString Name() {
        const qsizetype begin = at;
        while (!AtEnd() && (text[at].isLetterOrNumber() || text[at] == u'-' || text[at] == u'_')) {
            ++at;
        }
        return text.mid(begin, at - begin);
    }
    /// Value of an attribute test up to its closing bracket.
    bool Value(QString& result) {
        const QChar quote = Peek();
        qsizetype end;
        if (quote == u'"' || quote == u'\'') {
            end = text.indexOf(quote, at + 1);
            if (end < 0) {
                return false;
            }
            result = text.mid(at + 1, end - at - 1);
            at = end + 1;
            SkipBlanks();
            return Peek() == u']';
        }
        end = text.indexOf(u']', at);
        if (end < 0) {
            return false;
        }
        result = text.mid(at, end - at).trimmed();
        at = end;
        return true;
    }

  private:
    const QString& text;
    qsizetype at = 0;
};

bool readTest(Reader& reader, HtmlCompound& compound) {
    reader.Skip();
    reader.SkipBlanks();
    HtmlAttributeTest test;
    test.Name = reader.Name().toLower();
    if (test.Name.isEmpty()) {
        return false;
    }
    reader.SkipBlanks();
    if (reader.Peek() == u'=') {
        reader.Skip();
        reader.SkipBlanks();
        test.HasValue = true;
        if (!reader.Value(test.Value)) {
            return false;
        }
    }
    if (reader.Peek() != u']') {
        return false;
    }
    reader.Skip();
    compound.Tests.push_back(test);
    return true;
}

bool readCompound(Reader& reader, HtmlCompound& compound) {
    bool any = false;
    while (!reader.AtEnd() && !reader.Peek().isSpace() && reader.Peek() != u',') {
        any = true;
        const QChar first = reader.Peek();
        if (first == u'[') {
            if (!readTest(reader, compound)) {
                return false;
            }
        } else if (first == u'*') {
            reader.Skip();
        } else if (first == u'#' || first == u'.') {
            reader.Skip();
            const QString word = reader.Name();
            if (word.isEmpty()) {
                return false;
            }
            if (first == u'#') {
                compound.Tests.push_back({QStringLiteral("id"), word, true});
            } else {
                compound.Classes.push_back(word);
            }
        } else {
            compound.Tag = reader.Name().toLower();
            if (compound.Tag.isEmpty()) {
                return false;
            }
        }
    }
    return any;
}

bool matches(const litehtml::element& element, const HtmlCompound& compound) {
    const char* tag = element.get_tagName();
    if (tag == nullptr || *tag == '\0') {
        return false;
    }
    if (!compound.Tag.isEmpty() && compound.Tag != QString::fromUtf8(tag)) {
        return false;
    }
    for (const HtmlAttributeTest& test : compound.Tests) {
        const char* value = element.get_attr(test.Name.toUtf8().constData());
        if (value == nullptr || (test.HasValue && QString::fromUtf8(value) != test.Value)) {
            return false;
        }
    }
    const QStringList classes =
        QString::fromUtf8(element.get_attr("class", "")).split(u' ', Qt::SkipEmptyParts);
    for (const QString& name : compound.Classes) {
        if (!classes.contains(name)) {
            return false;
        }
    }
    return true;
}

bool matchesChain(const litehtml::element::ptr& element, const std::vector<HtmlCompound>& chain) {
    if (!matches(*element, chain.back())) {
        return false;
    }
    auto wanted = static_cast<std::ptrdiff_t>(chain.size()) - 2;
    for (litehtml::element::ptr outer = element->parent(); wanted >= 0 && outer; outer = outer->parent()) {
        if (matches(*outer, chain[static_cast<std::size_t>(wanted)])) {
            --wanted;
        }
    }
    return wanted < 0;
}

bool walk(const litehtml::element::ptr& element, const HtmlSelector& selector,
          const std::function<bool(const litehtml::element::ptr&)>& found) {
    for (const auto& chain : selector) {
        if (matchesChain(element, chain)) {
            if (found(element)) {
                return true;
            }
            break;
        }
    }
    const auto count = static_cast<int>(element->get_children_count());
    for (int i = 0; i < count; ++i) {
        if (walk(element->get_child(i), selector, found)) {
            return true;
        }
    }
    return false;
}

}  // namespace

HtmlSelector ParseHtmlSelector(const QString& text) {
    HtmlSelector selector;
    Reader reader(text);
    reader.SkipBlanks();
    while (!reader.AtEnd()) {
        std::vector<HtmlCompound> chain;
        while (!reader.AtEnd() && reader.Peek() != u',') {
            HtmlCompound compound;
            if (!readCompound(reader, compound)) {
                return {};
            }
            chain.push_back(compound);
            reader.SkipBlanks();
        }
        if (chain.empty()) {
            return {};
        }
        selector.push_back(chain);
        if (!reader.AtEnd()) {
            reader.Skip();
            reader.SkipBlanks();
            if (reader.AtEnd()) {
                return {};
            }
        }
    }
    return selector;
}

void SelectHtml(const litehtml::element::ptr& root, const HtmlSelector& selector,
                const std::function<bool(const litehtml::element::ptr&)>& found) {
    if (root && !selector.empty()) {
        walk(root, selector, found);
    }
}
