// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/TextScanner.h"

#include "text/Entities.h"
#include "text/MarkupDocument.h"
#include "text/ResultReport.h"

#include <bit>
#include <string_view>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

char16_t lower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

bool startsName(char16_t c) {
    return c >= u'a' || (c >= u'A' && c <= u'Z') || c == u'_' || c == u':';
}

bool isQuote(char16_t c) {
    return c == u'"' || c == u'\'';
}

/// The first "<" or ">" from an offset, or the size. Most of a document is looked at here.
std::uint32_t findAngle(const char16_t* text, std::uint32_t from, std::uint32_t size) {
#ifdef __SSE2__
    const __m128i less = _mm_set1_epi16(u'<');
    const __m128i greater = _mm_set1_epi16(u'>');
    for (; from + 8 <= size; from += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + from));
        const int hits =
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(units, less), _mm_cmpeq_epi16(units, greater)));
        if (hits != 0) {
            return from + static_cast<std::uint32_t>(std::countr_zero(static_cast<unsigned>(hits))) / 2;
        }
    }
#endif
    while (from < size && text[from] != u'<' && text[from] != u'>') {
        ++from;
    }
    return from;
}

constexpr std::u16string_view WordEnds = u" \t\n\r<>=\\/?!\"';";

}  // namespace

bool TokenMatches(QStringView token, QStringView name, std::uint32_t documentFlags) {
    if (token.isEmpty() || name.size() < token.size()) {
        return false;
    }
    const char16_t* a = token.utf16();
    const char16_t* b = name.utf16();
    const bool ignoreCase = (documentFlags & MarkupDocument::IgnoreCase) != 0;
    for (qsizetype i = 0; i < token.size(); ++i) {
        if (a[i] != b[i] && !(ignoreCase && lower(a[i]) == lower(b[i]))) {
            return false;
        }
    }
    if (name.size() == token.size()) {
        return true;
    }
    const char16_t next = b[token.size()];
    return next == u' ' || next == u'=' || next == u'/' || next == u'[' || next == u']';
}

void TextScanner::finish(NodeToken& token, TokenType type, std::uint32_t end) {
    token.Type = type;
    token.Length = end - token.Offset;
    offset = end;
}

void TextScanner::syntaxError(NodeToken& token, QStringView word, std::uint32_t at) {
    AddReport(token.Report, word, {{u"offset", QString::number(at)}});
    const std::uint32_t end = findAngle(text, at + 1, size);
    finish(token, TokenType::SyntaxError, end < size && text[end] == u'>' ? end + 1 : end);
}

void TextScanner::unterminated(NodeToken& token, QStringView typeName) {
    AddReport(token.Report, u"unterminated_tag_syntax",
              {{u"type", typeName.toString()}, {u"offset", QString::number(token.Offset)}});
    const std::uint32_t end = findAngle(text, token.Offset + 1, size);
    finish(token, TokenType::SyntaxError, end < size && text[end] == u'>' ? end + 1 : end);
}

TokenType TextScanner::Next(NodeToken& token) {
    token.Offset = offset;
    token.Empty = false;
    if (!token.Report.isEmpty()) {
        token.Report.clear();
    }
    if (offset >= size) {
        token.Length = 0;
        return token.Type = TokenType::EndOfText;
    }
    if (text[offset] != u'<') {
        std::uint32_t at = offset;
        while (at < size && IsMarkupSpace(text[at])) {
            ++at;
        }
        if (at == size || text[at] == u'<') {
            finish(token, TokenType::WhiteSpace, at);
        } else {
            at = findAngle(text, at, size);
            finish(token, TokenType::Text, at < size && text[at] == u'>' ? at + 1 : at);
        }
        return token.Type;
    }
    const char16_t next = offset + 1 < size ? text[offset + 1] : u'\0';
    if (startsName(next)) {
        readStartTag(token);
    } else if (next == u'/') {
        readEndTag(token);
    } else if (next == u'!') {
        readExclamation(token);
    } else if (next == u'?') {
        readInstruction(token);
    } else {
        syntaxError(token, u"first_tag_syntax", offset);
    }
    return token.Type;
}

void TextScanner::readStartTag(NodeToken& token) {
    std::uint32_t at = offset + 1;
    token.NameOffset = at;
    while (at < size && !IsMarkupSpace(text[at]) && text[at] != u'/' && text[at] != u'>') {
        ++at;
    }
    const std::uint32_t nameEnd = at;
    token.NameLength = nameEnd - token.NameOffset;
    while (at < size && text[at] != u'>') {
        if (text[at++] != u'=') {
            continue;
        }
        while (at < size && IsMarkupSpace(text[at])) {
            ++at;
        }
        if (at < size && isQuote(text[at])) {
            const char16_t quote = text[at++];
            while (at < size && text[at] != quote) {
                ++at;
            }
            if (at < size) {
                ++at;
            }
        }
    }
    if (at >= size || at - token.Offset >= ElementPosition::MaxStartTag) {
        return unterminated(token, u"start_tag");
    }
    if (text[at - 1] == u'/') {
        const char16_t before = text[at - 2];
        token.Empty = at - 1 == nameEnd || IsMarkupSpace(before) || isQuote(before);
    }
    finish(token, TokenType::StartTag, at + 1);
}

void TextScanner::readEndTag(NodeToken& token) {
    std::uint32_t at = offset + 2;
    token.NameOffset = at;
    while (at < size && !IsMarkupSpace(text[at]) && text[at] != u'/' && text[at] != u'>') {
        ++at;
    }
    token.NameLength = at - token.NameOffset;
    while (at < size && text[at] != u'>') {
        ++at;
    }
    if (at >= size || at - token.Offset >= ElementPosition::MaxEndTag) {
        return unterminated(token, u"end_tag");
    }
    finish(token, TokenType::EndTag, at + 1);
}

void TextScanner::readInstruction(NodeToken& token) {
    std::uint32_t at = offset + 2;
    token.NameOffset = at;
    while (at < size && !IsMarkupSpace(text[at]) && text[at] != u'/' && text[at] != u'>' &&
           text[at] != u'?') {
        ++at;
    }
    token.NameLength = at - token.NameOffset;
    char16_t quote = 0;
    for (; at < size; ++at) {
        if (quote != 0) {
            if (text[at] == quote) {
                quote = 0;
            }
        } else if (isQuote(text[at])) {
            quote = text[at];
        } else if (text[at] == u'?' && at + 1 < size && text[at + 1] == u'>') {
            return finish(token, TokenType::ProcessingInstruction, at + 2);
        }
    }
    unterminated(token, u"processing_instruction");
}

void TextScanner::readUntil(NodeToken& token, TokenType type, QStringView end, QStringView typeName) {
    const std::u16string_view whole(text, size);
    const std::size_t at = whole.find(std::u16string_view(end.utf16(), std::size_t(end.size())), offset + 4);
    if (at == std::u16string_view::npos) {
        return unterminated(token, typeName);
    }
    finish(token, type, static_cast<std::uint32_t>(at) + static_cast<std::uint32_t>(end.size()));
}

void TextScanner::readExclamation(NodeToken& token) {
    const char16_t third = offset + 2 < size ? text[offset + 2] : u'\0';
    const char16_t fourth = offset + 3 < size ? text[offset + 3] : u'\0';
    if (third == u'-') {
        if (fourth == u'-') {
            return readUntil(token, TokenType::Comment, u"-->", u"comment");
        }
        return syntaxError(token, u"comment_tag_syntax", offset);
    }
    if (third == u'[') {
        if (fourth == u'C') {
            return readUntil(token, TokenType::CDataSection, u"]]>", u"cdata_section");
        }
        return syntaxError(token, u"cdata_section_syntax", offset);
    }
    if (third == u'D') {
        return readDocumentType(token);
    }
    syntaxError(token, u"exclamation_tag_syntax", offset);
}

void TextScanner::readDocumentType(NodeToken& token) {
    std::uint32_t depth = 1;
    char16_t quote = 0;
    for (std::uint32_t at = offset + 3; at < size; ++at) {
        const char16_t c = text[at];
        if (quote != 0) {
            if (c == quote) {
                quote = 0;
            }
        } else if (isQuote(c)) {
            quote = c;
        } else if (c == u'>') {
            if (--depth == 0) {
                return finish(token, TokenType::DocumentType, at + 1);
            }
        } else if (c == u'<') {
            const char16_t kind = at + 2 < size && text[at + 1] == u'!' ? text[at + 2] : u'\0';
            if (kind != u'E' && kind != u'A' && kind != u'N') {
                return syntaxError(token, u"doctype_tag_syntax", at);
            }
            ++depth;
        }
    }
    unterminated(token, u"document_type");
}

QStringView TextScanner::NextWord() {
    while (offset < size && WordEnds.find(text[offset]) != std::u16string_view::npos) {
        ++offset;
    }
    const std::uint32_t start = offset;
    while (offset < size && WordEnds.find(text[offset]) == std::u16string_view::npos) {
        ++offset;
    }
    return {text + start, offset - start};
}

AttributeSpan FindAttribute(QStringView tag, QStringView name, std::uint32_t documentFlags) {
    const char16_t* text = tag.utf16();
    const auto size = static_cast<std::uint32_t>(tag.size());
    std::uint32_t at = size > 1 && text[1] == u'?' ? 2 : 1;
    const auto skipSpace = [&] {
        while (at < size && IsMarkupSpace(text[at])) {
            ++at;
        }
    };
    while (at < size && !IsMarkupSpace(text[at]) && text[at] != u'/' && text[at] != u'>' &&
           text[at] != u'?') {
        ++at;
    }
    AttributeSpan span;
    span.End = at;
    for (;;) {
        skipSpace();
        if (at >= size || text[at] == u'>' || text[at] == u'/' || text[at] == u'?') {
            return span;
        }
        span = {};
        span.NameStart = at;
        while (at < size && !IsMarkupSpace(text[at]) && text[at] != u'=' && text[at] != u'>' &&
               text[at] != u'/' && text[at] != u'?') {
            ++at;
        }
        span.NameEnd = span.End = at;
        span.ValueStart = span.NameStart;
        span.ValueEnd = span.NameEnd;
        skipSpace();
        if (at < size && text[at] == u'=') {
            ++at;
            span.HasValue = true;
            span.End = at;
            skipSpace();
            if (at < size && isQuote(text[at])) {
                const char16_t quote = text[at++];
                span.Quoted = true;
                span.ValueStart = at;
                while (at < size && text[at] != quote) {
                    ++at;
                }
                span.ValueEnd = at;
                if (at < size) {
                    ++at;
                }
                span.End = at;
            } else {
                span.ValueStart = at;
                while (at < size && !IsMarkupSpace(text[at]) && text[at] != u'>') {
                    ++at;
                }
                span.ValueEnd = at;
                span.End = at;
            }
        }
        if (TokenMatches(tag.sliced(span.NameStart, span.NameEnd - span.NameStart), name, documentFlags)) {
            span.Found = true;
            return span;
        }
    }
}

QString AttributeValue(QStringView tag, QStringView name, std::uint32_t documentFlags) {
    const AttributeSpan span = FindAttribute(tag, name, documentFlags);
    if (!span.Found) {
        return {};
    }
    return UnescapeMarkup(tag.sliced(span.ValueStart, span.ValueEnd - span.ValueStart));
}
