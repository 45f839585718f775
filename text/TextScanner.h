// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Cuts a markup text into tokens. It never gives up: what cannot be a tag becomes a token of its own type
// with a report, and the scan goes on behind it.
#include <cstdint>
#include <QString>
#include <QStringView>

enum class TokenType : int {
    EndOfText = -2,
    SyntaxError = -1,
    EndTag = 0,
    StartTag = 1,
    Text = 2,
    WhiteSpace = 4,
    CDataSection = 8,
    ProcessingInstruction = 16,
    Comment = 32,
    DocumentType = 64,
};

struct NodeToken {
    TokenType Type = TokenType::EndOfText;
    std::uint32_t Offset = 0;
    std::uint32_t Length = 0;
    /// Place of the name in a tag or processing instruction.
    std::uint32_t NameOffset = 0;
    std::uint32_t NameLength = 0;
    /// A start tag that needs no end tag.
    bool Empty = false;
    /// For a syntax error, the words to add to the report.
    QString Report;
};

/// White space of markup: blank, tab, line feed, carriage return.
inline bool IsMarkupSpace(char16_t c) {
    return c == u' ' || c == u'\n' || c == u'\r' || c == u'\t';
}

/// True when the name begins with the token and ends there, or goes on with one of " =/[]". The document flag
/// IgnoreCase applies.
bool TokenMatches(QStringView token, QStringView name, std::uint32_t documentFlags);

class TextScanner {
  public:
    TextScanner(QStringView text, std::uint32_t documentFlags, std::uint32_t offset = 0)
        : text(text.utf16()),
          size(static_cast<std::uint32_t>(text.size())),
          offset(offset),
          flags(documentFlags) {}

    /// Reads the next token and gives its type.
    TokenType Next(NodeToken& token);
    QStringView Name(const NodeToken& token) const { return {text + token.NameOffset, token.NameLength}; }
    QStringView Text(const NodeToken& token) const { return {text + token.Offset, token.Length}; }
    bool NameIs(const NodeToken& token, QStringView name) const {
        return TokenMatches(Name(token), name, flags);
    }
    /// The next word from the offset: ends at white space and at any of `<>=\/?!"';`. What cannot begin a
    /// word is passed over. Empty at the end of the text.
    QStringView NextWord();

  private:
    void readStartTag(NodeToken& token);
    void readEndTag(NodeToken& token);
    void readInstruction(NodeToken& token);
    void readExclamation(NodeToken& token);
    void readDocumentType(NodeToken& token);
    void readUntil(NodeToken& token, TokenType type, QStringView end, QStringView typeName);
    void finish(NodeToken& token, TokenType type, std::uint32_t end);
    void syntaxError(NodeToken& token, QStringView word, std::uint32_t at);
    void unterminated(NodeToken& token, QStringView typeName);

    const char16_t* text;
    std::uint32_t size;
    std::uint32_t offset;
    std::uint32_t flags;
};

/// An attribute inside of a tag; places count from the tag's start.
struct AttributeSpan {
    bool Found = false;
    /// False for an attribute that is a bare name.
    bool HasValue = false;
    bool Quoted = false;
    std::uint32_t NameStart = 0;
    std::uint32_t NameEnd = 0;
    /// The value without its quotes.
    std::uint32_t ValueStart = 0;
    std::uint32_t ValueEnd = 0;
    /// Behind the whole attribute.
    std::uint32_t End = 0;
};

/// Looks for an attribute in a tag or processing instruction that begins at "<". Without success, Found is
/// false and the rest tells of the last attribute there (with End behind the tag's name when there is none).
AttributeSpan FindAttribute(QStringView tag, QStringView name, std::uint32_t documentFlags);
/// The unescaped value of an attribute, its own name for a bare one, empty when there is none.
QString AttributeValue(QStringView tag, QStringView name, std::uint32_t documentFlags);
