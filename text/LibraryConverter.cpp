// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/LibraryConverter.h"

#include "text/PageTables.h"

#include <iconv.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace {

constexpr int JohabPage = 1361;

struct Row {
    int Page;
    const char* Name;
};

constexpr std::array Rows = {
    Row{154, "PT154"},       Row{JohabPage, "JOHAB"}, Row{20106, "DIN_66003"}, Row{20107, "SEN_850200_C"},
    Row{20108, "NS_4551-1"}, Row{20261, "T.61-8BIT"}, Row{20269, "ISO_6937"},
};

const char* nameOf(int page) {
    const auto* row = std::find_if(Rows.begin(), Rows.end(), [page](const Row& r) { return r.Page == page; });
    return row != Rows.end() ? row->Name : nullptr;
}

class LibraryConverter {
  public:
    LibraryConverter(const char* to, const char* from) : handle(iconv_open(to, from)) {}
    LibraryConverter(const LibraryConverter&) = delete;
    LibraryConverter& operator=(const LibraryConverter&) = delete;
    ~LibraryConverter() {
        if (IsOpen()) {
            iconv_close(handle);
        }
    }
    // The error value is the interface's own: a number for a pointer.
    bool IsOpen() const {
        return handle != reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
    }

    /// Converts all; fallback is called for what cannot be, and tells how many bytes of it to pass over.
    template <class Fallback>
    QByteArray Run(QByteArrayView bytes, Fallback fallback) {
        QByteArray out(bytes.size() * 4 + 64, Qt::Uninitialized);
        char* source = const_cast<char*>(bytes.data());
        std::size_t left = std::size_t(bytes.size());
        char* target = out.data();
        std::size_t room = std::size_t(out.size());
        while (iconv(handle, &source, &left, &target, &room) == std::size_t(-1)) {
            if (errno == E2BIG) {
                const qsizetype used = target - out.data();
                out.resize(out.size() * 2);
                target = out.data() + used;
                room = std::size_t(out.size() - used);
                continue;
            }
            const std::size_t passed = std::min(left, fallback(source, left, target, room));
            source += passed;
            left -= passed;
            if (left == 0) {
                break;
            }
        }
        iconv(handle, nullptr, nullptr, &target, &room);
        out.resize(target - out.data());
        return out;
    }

  private:
    iconv_t handle;
};

/// Puts what stands for bytes or a character that cannot be converted.
void put(QByteArrayView piece, char*& target, std::size_t& room) {
    if (room < std::size_t(piece.size())) {
        return;
    }
    std::memcpy(target, piece.data(), std::size_t(piece.size()));
    target += piece.size();
    room -= std::size_t(piece.size());
}

}  // namespace

bool HasLibraryPage(int page) {
    return nameOf(page) != nullptr && LibraryConverter("UTF-16LE", nameOf(page)).IsOpen();
}

QString DecodeByLibrary(QByteArrayView bytes, int page, char16_t unknown) {
    LibraryConverter converter("UTF-16LE", nameOf(page));
    const QByteArray units =
        converter.Run(bytes, [&](const char* source, std::size_t left, char*& target, std::size_t& room) {
            const auto byte = [source](int i) { return unsigned{static_cast<unsigned char>(source[i])}; };
            std::size_t passed = 1;
            char16_t character = unknown;
            for (const PagePlace& place : DifferingPlaces(page)) {
                if (left > 1 && place.Bytes == (byte(0) << 8 | byte(1))) {
                    character = place.Character;
                    passed = 2;
                }
            }
            put({reinterpret_cast<const char*>(&character), sizeof character}, target, room);
            return passed;
        });
    QString text(reinterpret_cast<const QChar*>(units.constData()), units.size() / 2);
    // The C library has the won sign in the place of the backslash, as the national standard does.
    return page == JohabPage ? text.replace(u'\u20a9', u'\\') : text;
}

QByteArray EncodeByLibrary(QStringView text, int page, char substitute, bool& lossy) {
    QString changed;
    if (page == JohabPage) {
        changed = text.toString();
        for (QChar& c : changed) {
            c = c == u'\\' ? QChar(u'\u20a9') : c == u'\u20a9' ? QChar(QChar::ReplacementCharacter) : c;
        }
        text = changed;
    }
    LibraryConverter converter(nameOf(page), "UTF-16LE");
    const QByteArrayView units(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    return converter.Run(units, [&](const char* source, std::size_t, char*& target, std::size_t& room) {
        lossy = true;
        put({&substitute, 1}, target, room);
        char16_t unit = 0;
        std::memcpy(&unit, source, sizeof unit);
        return std::size_t{QChar::isHighSurrogate(unit) ? 4U : 2U};
    });
}
