// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/JapaneseMail.h"

#include "text/IcuConverter.h"

#include <array>
#include <unordered_map>

namespace {

constexpr int WidePage = 50220;
constexpr int ShiftPage = 50222;
constexpr char Escape = '\x1b';
constexpr char ShiftOut = '\x0e';
constexpr char ShiftIn = '\x0f';
constexpr int KanjiPage = 932;
constexpr int EucPage = 51932;

enum class Set { Ascii, Katakana, Kanji, MoreKanji };

struct Sequence {
    QByteArrayView Bytes;
    Set Meaning;
};
constexpr std::array Sequences = {
    Sequence{"$(D", Set::MoreKanji}, Sequence{"$(B", Set::Kanji}, Sequence{"$(@", Set::Kanji},
    Sequence{"$B", Set::Kanji},      Sequence{"$@", Set::Kanji},  Sequence{"(B", Set::Ascii},
    Sequence{"(J", Set::Ascii},      Sequence{"(H", Set::Ascii},  Sequence{"(I", Set::Katakana},
};

bool isPlace(int byte) {
    return byte >= 0x21 && byte <= 0x7e;
}

/// A place of the standard in the form of page 932.
std::array<char, 2> shifted(int row, int column) {
    int lead = (row - 0x21) / 2 + 0x81;
    lead += lead >= 0xa0 ? 0x40 : 0;
    const int trail = row % 2 == 0 ? column + 0x7e : column + (column < 0x60 ? 0x1f : 0x20);
    return {static_cast<char>(lead), static_cast<char>(trail)};
}

/// Where each character stands: row and column as one number.
const std::unordered_map<char16_t, int>& kanjiPlaces() {
    static const std::unordered_map<char16_t, int> places = [] {
        std::unordered_map<char16_t, int> found;
        IcuConverter icu(KanjiPage);
        for (int row = 0x21; row <= 0x7e; ++row) {
            for (int column = 0x21; column <= 0x7e; ++column) {
                const std::array<char, 2> bytes = shifted(row, column);
                const QString text = icu.Decode({bytes.data(), 2}, 0);
                if (text.size() == 1 && text[0].unicode() != 0) {
                    found.emplace(text[0].unicode(), row << 8 | column);
                }
            }
        }
        return found;
    }();
    return places;
}

bool isNarrowKatakana(QChar c) {
    return c >= u'\uff61' && c <= u'\uff9f';
}

/// Narrow katakana as wide ones, a sign for the voice joined to the letter in front of it.
QString widened(QStringView text) {
    QString out;
    for (qsizetype i = 0; i < text.size();) {
        qsizetype end = i;
        while (end < text.size() && isNarrowKatakana(text[end])) {
            ++end;
        }
        if (end == i) {
            out += text[i++];
            continue;
        }
        out += text.sliced(i, end - i).toString().normalized(QString::NormalizationForm_KC);
        i = end;
    }
    return out;
}

class Writer {
  public:
    explicit Writer(bool shifts) : shifts(shifts) {}
    void Put(Set set, QByteArrayView bytes) {
        if (set != current) {
            // A shift leaves the set below it as it was, so that is made ASCII around one.
            if (shifts && current == Set::Katakana) {
                out += ShiftIn;
            }
            if (shifts && set == Set::Katakana && current == Set::Kanji) {
                out += "\x1b(B";
            }
            if (shifts && set == Set::Katakana) {
                out += ShiftOut;
            } else if (set == Set::Kanji) {
                out += "\x1b$B";
            } else if (set == Set::Katakana) {
                out += "\x1b(I";
            } else if (!shifts || current == Set::Kanji) {
                out += "\x1b(B";
            }
            current = set;
        }
        out.append(bytes.data(), bytes.size());
    }
    QByteArray Take() {
        Put(Set::Ascii, {});
        return out;
    }

  private:
    bool shifts;
    Set current = Set::Ascii;
    QByteArray out;
};

}  // namespace

bool IsJapaneseMailPage(int page) {
    return page >= WidePage && page <= ShiftPage;
}

QString DecodeJapaneseMail(QByteArrayView bytes, char16_t unknown) {
    QString out;
    IcuConverter kanji(KanjiPage);
    IcuConverter euc(EucPage);
    Set set = Set::Ascii;
    bool isShifted = false;
    for (qsizetype i = 0; i < bytes.size();) {
        const int byte = static_cast<unsigned char>(bytes[i]);
        const QByteArrayView rest = bytes.sliced(i + 1);
        if (byte == Escape) {
            const Sequence* found = nullptr;
            for (const Sequence& sequence : Sequences) {
                if (found == nullptr && rest.startsWith(sequence.Bytes)) {
                    found = &sequence;
                }
            }
            if (found != nullptr) {
                set = found->Meaning;
                i += 1 + found->Bytes.size();
                continue;
            }
        }
        if (byte == ShiftOut || byte == ShiftIn) {
            isShifted = byte == ShiftOut;
            ++i;
            continue;
        }
        const bool isKatakana = isShifted || set == Set::Katakana;
        const int next = rest.isEmpty() ? 0 : static_cast<unsigned char>(rest[0]);
        const bool isPair = !isKatakana && set != Set::Ascii && isPlace(byte) && isPlace(next);
        i += isPair ? 2 : 1;
        if (isPair && set == Set::Kanji) {
            const std::array<char, 2> pair = shifted(byte, next);
            out += kanji.Decode({pair.data(), 2}, unknown);
        } else if (isPair) {
            const std::array<char, 3> triple = {'\x8f', static_cast<char>(byte | 0x80),
                                                static_cast<char>(next | 0x80)};
            out += euc.Decode({triple.data(), 3}, unknown);
        } else if (isKatakana && byte >= 0x21 && byte <= 0x5f) {
            out += QChar(0xff40 + byte);
        } else if (byte >= 0xa1 && byte <= 0xdf) {
            out += QChar(0xfec0 + byte);
        } else {
            const bool means = byte <= 0x20 || (byte < 0x80 && set == Set::Ascii && !isKatakana);
            out += means ? QChar(byte) : QChar(unknown);
        }
    }
    return out;
}

QByteArray EncodeJapaneseMail(QStringView text, int page, char substitute, bool& lossy) {
    const QString wide = page == WidePage ? widened(text) : text.toString();
    Writer writer(page == ShiftPage);
    for (qsizetype i = 0; i < wide.size(); ++i) {
        const QChar c = wide[i];
        if (c.unicode() < 0x80) {
            const char byte = static_cast<char>(c.unicode());
            writer.Put(Set::Ascii, {&byte, 1});
        } else if (isNarrowKatakana(c)) {
            const char byte = static_cast<char>(c.unicode() - 0xff40);
            writer.Put(Set::Katakana, {&byte, 1});
        } else if (const auto place = kanjiPlaces().find(c.unicode()); place != kanjiPlaces().end()) {
            const std::array<char, 2> pair = {static_cast<char>(place->second >> 8),
                                              static_cast<char>(place->second & 0xff)};
            writer.Put(Set::Kanji, {pair.data(), 2});
        } else {
            lossy = true;
            writer.Put(Set::Ascii, {&substitute, 1});
            i += c.isHighSurrogate() && i + 1 < wide.size() && wide[i + 1].isLowSurrogate() ? 1 : 0;
        }
    }
    return writer.Take();
}
