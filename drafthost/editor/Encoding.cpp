#include "drafthost/editor/Encoding.h"

#include <QString>
#include <QStringConverter>

namespace drafthost {
namespace {

/// Characters of Windows 1252 at 0x80 to 0x9F; the rest is Latin 1.
constexpr char16_t Windows1252[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                      0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

std::string decode(std::string_view bytes, QStringConverter::Encoding encoding) {
    QStringDecoder decoder(encoding);
    QString text = decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    return text.toStdString();
}

}  // namespace

std::string toUtf8(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
        return std::string(bytes);
    }
    if (bytes.starts_with("\xFF\xFE")) {
        return decode(bytes.substr(2), QStringConverter::Utf16LE);
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return decode(bytes.substr(2), QStringConverter::Utf16BE);
    }
    QStringDecoder decoder(QStringConverter::Utf8);
    QString text = decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    if (!decoder.hasError()) {
        return std::string(bytes);
    }
    text.clear();
    for (unsigned char c : bytes) {
        text += QChar(c >= 0x80 && c < 0xA0 ? Windows1252[c - 0x80] : char16_t(c));
    }
    return text.toStdString();
}

}  // namespace drafthost
