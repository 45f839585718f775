// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/Base64.h"

namespace {

constexpr qsizetype LineLength = 76;

int valueOf(char16_t c) {
    if (c >= u'A' && c <= u'Z') {
        return c - u'A';
    }
    if (c >= u'a' && c <= u'z') {
        return c - u'a' + 26;
    }
    if (c >= u'0' && c <= u'9') {
        return c - u'0' + 52;
    }
    if (c == u'+') {
        return 62;
    }
    return c == u'/' ? 63 : -1;
}

bool isSpace(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

}  // namespace

QString Base64Encode(const QByteArray& bytes) {
    const QString text = QString::fromLatin1(bytes.toBase64());
    QString out;
    out.reserve(text.size() + text.size() / LineLength * 2);
    for (qsizetype at = 0; at < text.size(); at += LineLength) {
        if (at > 0) {
            out += u"\r\n";
        }
        out += QStringView(text).sliced(at, std::min(LineLength, text.size() - at));
    }
    return out;
}

std::optional<QByteArray> Base64Decode(QStringView text) {
    QByteArray out;
    unsigned bits = 0;
    int inGroup = 0;
    for (const QChar c : text) {
        if (isSpace(c.unicode())) {
            continue;
        }
        const int value = valueOf(c.unicode());
        if (value < 0) {
            if (c != u'=' || inGroup < 2) {
                return std::nullopt;
            }
            break;
        }
        bits = bits << 6 | static_cast<unsigned>(value);
        if (++inGroup == 4) {
            out.append(char(bits >> 16)).append(char(bits >> 8)).append(char(bits));
            inGroup = 0;
        }
    }
    if (inGroup >= 2) {
        out.append(char(bits >> (inGroup * 6 - 8)));
    }
    if (inGroup == 3) {
        out.append(char(bits >> 2));
    }
    return out;
}
