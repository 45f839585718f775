// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/TextConverter.h"

#include "text/CodePage.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

int pageOf(const QString& name) {
    return std::max(EncodingToCodePage(name), 0);
}

QString fromUtf32(const TextConverter& converter) {
    QString out;
    const auto* units = static_cast<const char32_t*>(converter.Source);
    for (qsizetype i = 0; i < converter.SourceLength; ++i) {
        const char32_t c = units[i];
        if (c > QChar::LastValidCodePoint) {
            out += u'?';
        } else if (c > 0xffff) {
            out.append(QChar::highSurrogate(c)).append(QChar::lowSurrogate(c));
        } else {
            out += QChar(static_cast<char16_t>(c));
        }
    }
    return out;
}

std::vector<char32_t> toUtf32(QStringView text) {
    std::vector<char32_t> out;
    out.reserve(std::size_t(text.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (!c.isSurrogate()) {
            out.push_back(c.unicode());
        } else if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            out.push_back(QChar::surrogateToUcs4(c, text[i + 1]));
            ++i;
        } else {
            out.push_back(U'?');
        }
    }
    return out;
}

qsizetype deliver(const TextConverter& converter, void* target, const void* units, qsizetype count,
                  std::size_t unitSize) {
    if (target == nullptr) {
        return count;
    }
    count = std::min(count, converter.TargetCapacity);
    std::memcpy(target, units, std::size_t(count) * unitSize);
    return count;
}

}  // namespace

qsizetype Convert(TextConverter& converter, void* target, const QString* targetEncoding) {
    if (targetEncoding != nullptr) {
        converter.TargetEncoding = *targetEncoding;
    }
    const int from = pageOf(converter.SourceEncoding);
    const int to = pageOf(converter.TargetEncoding);
    if (from == Utf32Page && to != Utf8Page && to != Utf16Page) {
        return 0;
    }

    const auto cannotBeHad = [](int page) {
        return page != Utf16Page && page != Utf32Page && !HasCodePage(page);
    };
    converter.Unavailable = cannotBeHad(from) || cannotBeHad(to);
    if (converter.Unavailable) {
        return 0;
    }

    QString text;
    if (from == Utf32Page) {
        text = fromUtf32(converter);
    } else if (from == Utf16Page) {
        text = QString(static_cast<const QChar*>(converter.Source), converter.SourceLength);
    } else {
        const char16_t unknown = to == Utf32Page ? u'?' : char16_t(QChar::ReplacementCharacter);
        text =
            DecodeText({static_cast<const char*>(converter.Source), converter.SourceLength}, from, unknown);
    }

    if (to == Utf16Page) {
        return deliver(converter, target, text.constData(), text.size(), sizeof(QChar));
    }
    if (to == Utf32Page) {
        const std::vector<char32_t> units = toUtf32(text);
        return deliver(converter, target, units.data(), qsizetype(units.size()), sizeof(char32_t));
    }
    const QByteArray bytes = EncodeText(text, to, '?', &converter.Lossy);
    return deliver(converter, target, bytes.constData(), bytes.size(), 1);
}
