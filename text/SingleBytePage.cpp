// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/SingleBytePage.h"

#include "text/IcuConverter.h"
#include "text/PageTables.h"

#include <map>
#include <mutex>

const SingleBytePage* SingleBytePage::Of(int page) {
    static std::mutex guard;
    static std::map<int, std::unique_ptr<SingleBytePage>> pages;
    const std::lock_guard<std::mutex> lock(guard);
    auto found = pages.find(page);
    if (found == pages.end()) {
        found = pages.emplace(page, make(page)).first;
    }
    return found->second.get();
}

std::unique_ptr<SingleBytePage> SingleBytePage::make(int page) {
    if (UpperHalf(page) == nullptr) {
        const IcuConverter icu(page);
        if (!icu.IsOpen() || !icu.IsSingleByte()) {
            return nullptr;
        }
    }
    return std::unique_ptr<SingleBytePage>(new SingleBytePage(page));
}

SingleBytePage::SingleBytePage(int page) : page(page) {
    const std::array<char16_t, 128>* half = UpperHalf(page);
    IcuConverter icu(half == nullptr ? page : 20127);
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const char byte = static_cast<char>(i);
        if (half != nullptr && i >= half->size()) {
            characters[i] = (*half)[i - half->size()];
        } else {
            const QString text = icu.Decode({&byte, 1}, 0);
            characters[i] = text.size() == 1 ? text[0].unicode() : u'\0';
        }
    }
    for (const PagePlace& place : DifferingPlaces(page)) {
        characters[place.Bytes] = place.Character;
    }
    // The first place of a character counts, which is that of ASCII.
    for (std::size_t i = 0; i < characters.size(); ++i) {
        if (i == 0 || characters[i] != 0) {
            bytes.emplace(characters[i], static_cast<char>(i));
        }
    }
}

QString SingleBytePage::Decode(QByteArrayView text, char16_t unknown) const {
    QString out(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = characters[static_cast<unsigned char>(text[i])];
        out[i] = c != 0 || text[i] == '\0' ? c : unknown;
    }
    return out;
}

QByteArray SingleBytePage::Encode(QStringView text, char substitute, bool& lossy) const {
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto found = bytes.find(text[i].unicode());
        if (found != bytes.end()) {
            out += found->second;
            continue;
        }
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        // Characters that have no place of their own may have one that looks the same.
        QByteArray near(1, substitute);
        if (bool lost = false; UpperHalf(page) == nullptr && !isPair) {
            const QByteArray found = IcuConverter(page).Encode(text.sliced(i, 1), substitute, lost);
            near = lost ? near : found;
            lossy = lossy || lost;
        } else {
            lossy = true;
        }
        out += near;
        i += isPair ? 1 : 0;
    }
    return out;
}
