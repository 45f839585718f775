// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/MarkupFile.h"

#include "text/CodePage.h"
#include "text/MarkupDocument.h"
#include "text/ResultReport.h"
#include "text/TextScanner.h"
#include "text/WholeFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <QList>
#include <QtEndian>

namespace {

struct ByteOrderMark {
    QByteArrayView Bytes;
    QStringView Encoding;
    std::uint32_t Flag;
    int UnitSize;
};

constexpr std::array Marks = {
    ByteOrderMark{"\xEF\xBB\xBF", u"UTF-8", MarkupDocument::Utf8Mark, 1},
    ByteOrderMark{"\xFF\xFE", u"UTF-16LE", MarkupDocument::Utf16LittleEndian, 2},
    ByteOrderMark{"\xFE\xFF", u"UTF-16BE", MarkupDocument::Utf16BigEndian, 2},
};
constexpr std::uint32_t MarkFlags =
    MarkupDocument::Utf8Mark | MarkupDocument::Utf16LittleEndian | MarkupDocument::Utf16BigEndian;

void addFileError(QString& report, int error) {
    constexpr qsizetype LongestMessage = 100;
    QString message = SystemMessage(error);
    const auto end =
        std::find_if(message.cbegin(), message.cend(), [](QChar c) { return c == u'\r' || c == u'\n'; });
    message.truncate(std::min<qsizetype>(end - message.cbegin(), LongestMessage));
    AddReport(report, u"file_error", {{u"msg", message}, {u"n", QString::number(error)}});
}

void addTransfer(QString& report, QStringView word, QStringView encoding, qsizetype length) {
    AddReport(report, word, {{u"encoding", encoding.toString()}, {u"length", QString::number(length)}});
}

/// True, and told, when nobody has a table for the encoding and there is something that would need one.
template <class Text>
bool lacksPage(const Text& text, QStringView encoding, QString& report) {
    const int page = std::max(EncodingToCodePage(encoding), LocalePage);
    const bool lacks =
        page != Utf32Page && !HasCodePage(page) &&
        std::any_of(text.begin(), text.end(), [](auto c) { return QChar(c).unicode() >= 0x80; });
    if (lacks) {
        AddReport(report, u"encoding_unavailable", {{u"encoding", encoding.toString()}});
    }
    return lacks;
}

/// Looser than the definition on purpose: overlong forms and a continuation byte in front pass, so that files
/// of writers that were not exact either are still taken as UTF-8.
bool looksLikeUtf8(QByteArrayView bytes) {
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* end = at + bytes.size();
    while (at != end && *at != 0) {
        const unsigned char lead = *at++;
        if (lead < 0x80) {
            continue;
        }
        if ((lead & 0x38) == 0x38) {
            return false;
        }
        int following = 1;
        if (lead & 0x20) {
            following = lead & 0x10 ? 3 : 2;
        }
        for (; following > 0; --following) {
            if (at == end || *at++ < 0x80) {
                return false;
            }
        }
    }
    return true;
}

QByteArray withoutNulls(QByteArrayView bytes, qsizetype& removed) {
    QByteArray kept = bytes.toByteArray();
    removed = kept.end() - std::remove(kept.begin(), kept.end(), '\0');
    kept.chop(removed);
    return kept;
}

QString decodeWide(QByteArrayView bytes, const ByteOrderMark& mark, QString& report) {
    QString text(bytes.size() / 2, Qt::Uninitialized);
    std::memcpy(text.data(), bytes.data(), std::size_t(text.size()) * 2);
    const qsizetype length = text.size();
    text.remove(QChar(u'\0'));
    if (text.size() != length) {
        AddReport(report, u"nulls_removed", {{u"count", QString::number(length - text.size())}});
    }
    addTransfer(report, u"read", mark.Encoding, text.size());
    if (mark.Flag == MarkupDocument::Utf16BigEndian) {
        for (QChar& c : text) {
            c = QChar(qbswap(c.unicode()));
        }
        AddReport(report, u"endian_swap");
    }
    return text;
}

}  // namespace

bool ReadMarkupFile(const QString& path, QString& text, QString& report, std::uint32_t& flags) {
    QByteArray bytes;
    if (const int error = ReadWholeFile(path, bytes)) {
        addFileError(report, error);
        return false;
    }
    text = DecodeMarkup(bytes, report, flags);
    return !report.contains(u"<encoding_unavailable");
}

QString DecodeMarkup(QByteArrayView bytes, QString& report, std::uint32_t& flags) {
    flags &= ~MarkFlags;
    if (bytes.isEmpty()) {
        addTransfer(report, u"read", {}, 0);
        return {};
    }
    const auto mark = std::find_if(Marks.begin(), Marks.end(),
                                   [&](const ByteOrderMark& m) { return bytes.startsWith(m.Bytes); });
    QString encoding;
    if (mark != Marks.end()) {
        flags |= mark->Flag;
        encoding = mark->Encoding.toString();
        bytes = bytes.sliced(mark->Bytes.size());
        AddReport(report, u"bom");
        if (mark->UnitSize == 2) {
            return decodeWide(bytes, *mark, report);
        }
    } else {
        // Korean mail announces its second set ahead of everything, some writers of Chinese mail that they
        // begin with ASCII.
        constexpr std::array<QByteArrayView, 2> Announcers = {"\x1b$)C", "~}"};
        QByteArrayView start = bytes;
        for (const QByteArrayView announcer : Announcers) {
            start = start.startsWith(announcer) ? start.sliced(announcer.size()) : start;
        }
        constexpr qsizetype SampleSize = 1024;
        encoding = DeclaredEncoding(DecodeText(start.first(std::min(start.size(), SampleSize)), Utf8Page));
        if (encoding.isEmpty() && bytes.front() == '<') {
            encoding = QStringLiteral("UTF-8");
        }
    }

    qsizetype removed = 0;
    QByteArray kept;
    if (std::memchr(bytes.data(), 0, std::size_t(bytes.size())) != nullptr) {
        kept = withoutNulls(bytes, removed);
        bytes = kept;
        AddReport(report, u"nulls_removed", {{u"count", QString::number(removed)}});
    }
    const bool detect = encoding.isEmpty();
    if (detect && looksLikeUtf8(bytes)) {
        encoding = QStringLiteral("UTF-8");
    }
    addTransfer(report, u"read", encoding, bytes.size());
    if (detect) {
        AddReport(report, u"utf8_detection");
    }

    const int page = std::max(EncodingToCodePage(encoding), LocalePage);
    QString text;
    if (page == Utf32Page) {
        const QByteArray units = bytes.first(bytes.size() & ~qsizetype{3}).toByteArray();
        text = QString::fromUcs4(reinterpret_cast<const char32_t*>(units.constData()), units.size() / 4);
    } else if (page == Utf16Page || page == Utf16Page + 1) {
        // The declaration was read as bytes, so whatever it says the text is not in wide units.
        text = DecodeText(bytes, Utf8Page);
    } else {
        lacksPage(QString::fromLatin1(bytes), encoding, report);
        text = DecodeText(bytes, page);
    }
    addTransfer(report, u"converted_to", u"UTF-16", text.size());
    return text;
}

bool WriteMarkupFile(const QString& path, const QString& text, QString& report, std::uint32_t flags) {
    if ((flags & MarkFlags) == 0 && lacksPage(text, DeclaredEncoding(text), report)) {
        return false;
    }
    const QByteArray bytes = EncodeMarkup(text, report, flags);
    if (const int error = WriteWholeFile(path, bytes)) {
        addFileError(report, error);
        return false;
    }
    return true;
}

QByteArray EncodeMarkup(const QString& text, QString& report, std::uint32_t flags) {
    QByteArray bytes;
    QString encoding;
    const auto mark =
        std::find_if(Marks.begin(), Marks.end(), [&](const ByteOrderMark& m) { return flags & m.Flag; });
    if (mark != Marks.end()) {
        encoding = mark->Encoding.toString();
        bytes = mark->Bytes.toByteArray();
        AddReport(report, u"bom");
    } else if (!text.isEmpty()) {
        encoding = DeclaredEncoding(text);
        if (encoding.isEmpty()) {
            encoding = QStringLiteral("UTF-8");
        }
    }
    if (text.isEmpty()) {
        addTransfer(report, u"write", encoding, 0);
        return bytes;
    }
    if (mark != Marks.end() && mark->UnitSize == 2) {
        QString units = text;
        if (mark->Flag == MarkupDocument::Utf16BigEndian) {
            for (QChar& c : units) {
                c = QChar(qbswap(c.unicode()));
            }
            AddReport(report, u"endian_swap");
        }
        bytes.append(reinterpret_cast<const char*>(units.constData()), units.size() * 2);
        addTransfer(report, u"write", encoding, units.size());
        return bytes;
    }
    const int page = std::max(EncodingToCodePage(encoding), LocalePage);
    bool lossy = false;
    QByteArray converted;
    if (page == Utf32Page) {
        const QList<uint> units = text.toUcs4();
        converted = QByteArray(reinterpret_cast<const char*>(units.constData()), units.size() * 4);
    } else if (page == Utf16Page || page == Utf16Page + 1) {
        converted = EncodeText(text, Utf8Page);
    } else {
        converted = EncodeText(text, page, '?', &lossy);
    }
    bytes = bytes.isEmpty() ? converted : bytes + converted;
    addTransfer(report, u"converted_from", u"UTF-16", text.size());
    if (lossy) {
        AddReport(report, u"conversion_loss");
    }
    addTransfer(report, u"write", encoding, converted.size());
    return bytes;
}

QString DeclaredEncoding(QStringView text) {
    TextScanner scanner(text, MarkupDocument::IgnoreCase);
    NodeToken token;
    bool inHtml = false;
    while (scanner.Next(token) != TokenType::EndOfText) {
        if (token.Type == TokenType::SyntaxError ||
            (token.Type == TokenType::EndTag && scanner.NameIs(token, u"head"))) {
            return {};
        }
        if (token.Type == TokenType::ProcessingInstruction && token.Offset == 0 &&
            scanner.NameIs(token, u"xml")) {
            return AttributeValue(scanner.Text(token), u"encoding", MarkupDocument::IgnoreCase);
        }
        if (token.Type != TokenType::StartTag) {
            continue;
        }
        if (!inHtml) {
            if (!scanner.NameIs(token, u"html")) {
                return {};
            }
            inHtml = true;
            continue;
        }
        if (!scanner.NameIs(token, u"meta")) {
            continue;
        }
        const QStringView tag = scanner.Text(token);
        const QString kind = AttributeValue(tag, u"http-equiv", MarkupDocument::IgnoreCase);
        if (kind.compare(u"Content-Type", Qt::CaseInsensitive) != 0) {
            continue;
        }
        const QString content = AttributeValue(tag, u"content", MarkupDocument::IgnoreCase);
        TextScanner words(content, MarkupDocument::IgnoreCase);
        for (QStringView word = words.NextWord(); !word.isEmpty(); word = words.NextWord()) {
            if (word.compare(u"charset", Qt::CaseInsensitive) != 0) {
                continue;
            }
            const qsizetype behind = word.end() - QStringView(content).begin();
            if (QStringView(content).sliced(behind).trimmed().startsWith(u'=')) {
                return words.NextWord().toString();
            }
        }
        return {};
    }
    return {};
}
