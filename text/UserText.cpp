// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/UserText.h"

#include "system/UserLanguage.h"
#include "text/CodePage.h"

#include <algorithm>
#include <array>
#include <QStringDecoder>

namespace {

/// UTF-16 without a mark: letters of most languages' scripts leave zeros in one half of the units.
int unmarkedWidePage(QByteArrayView bytes) {
    if (bytes.isEmpty() || bytes.size() % 2 != 0 || !bytes.contains('\0')) {
        return LocalePage;
    }
    std::array<qsizetype, 2> zeros = {0, 0};
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        zeros[std::size_t(i % 2)] += bytes[i] == '\0' ? 1 : 0;
    }
    return zeros[0] == 0 ? Utf16Page : zeros[1] == 0 ? Utf16Page + 1 : LocalePage;
}

/// A character that no file holds unless it was damaged before, but for the encodings that can write it.
bool isDamaged(QStringView text) {
    return text.contains(QChar(QChar::ReplacementCharacter));
}

qsizetype firstDamagedLine(QStringView text) {
    const qsizetype place = text.indexOf(QChar(QChar::ReplacementCharacter));
    return place < 0 ? 0 : text.first(place).count(u'\n') + 1;
}

/// True, with the text, when the bytes are text in that page.
bool decodes(QByteArrayView bytes, int page, QString& text) {
    if (!IsUtf8Page(page)) {
        text = DecodeText(bytes, page);
        return !isDamaged(text);
    }
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    text = decoder(bytes);
    return !decoder.hasError();
}

UserText decodeWide(QByteArrayView bytes, int page) {
    QStringDecoder decoder(page == Utf16Page ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    UserText result;
    result.Text = decoder(bytes);
    // Half a pair of surrogates passes the decoder.
    if (decoder.hasError() || bytes.size() % 2 != 0 || !result.Text.isValidUtf16()) {
        result.BadLine = std::max<qsizetype>(firstDamagedLine(result.Text), 1);
    }
    return result;
}

}  // namespace

int WindowsPage() {
    return files::LanguagePage();
}

QString UserText::Note() const {
    if (ForeignLine == 0) {
        return {};
    }
    return QStringLiteral("line %1 is not in %2; it and others like it are read as Windows code page %3")
        .arg(ForeignLine)
        .arg(QString::fromLatin1(LocaleEncoding()))
        .arg(WindowsPage());
}

QString UserText::Fault() const {
    if (BadLine == 0) {
        return {};
    }
    return QStringLiteral("line %1 is no text in UTF-16, in %2 or in Windows code page %3")
        .arg(BadLine)
        .arg(QString::fromLatin1(LocaleEncoding()))
        .arg(WindowsPage());
}

UserText DecodeUserText(QByteArrayView bytes) {
    constexpr QByteArrayView NarrowMark = "\xEF\xBB\xBF";
    if (bytes.startsWith("\xFF\xFE")) {
        return decodeWide(bytes.sliced(2), Utf16Page);
    }
    if (bytes.startsWith("\xFE\xFF")) {
        return decodeWide(bytes.sliced(2), Utf16Page + 1);
    }
    int page = LocalePage;
    if (bytes.startsWith(NarrowMark)) {
        bytes = bytes.sliced(NarrowMark.size());
        page = Utf8Page;
    } else if (const int wide = unmarkedWidePage(bytes); wide != LocalePage) {
        return decodeWide(bytes, wide);
    }
    UserText result;
    if (decodes(bytes, page, result.Text)) {
        return result;
    }
    result.Text.clear();
    QString line;
    for (qsizetype number = 1; !bytes.isEmpty(); ++number) {
        const qsizetype end = bytes.indexOf('\n');
        const QByteArrayView piece = bytes.first(end < 0 ? bytes.size() : end + 1);
        bytes = bytes.sliced(piece.size());
        if (!decodes(piece, page, line)) {
            if (result.ForeignLine == 0) {
                result.ForeignLine = number;
            }
            if (!decodes(piece, WindowsPage(), line) && result.BadLine == 0) {
                result.BadLine = number;
            }
        }
        result.Text += line;
    }
    return result;
}
