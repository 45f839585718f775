// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Conversion with the pages that ICU knows, mended where its tables are another maker's.
#include <memory>
#include <QByteArray>
#include <QString>
#include <QStringView>

struct UConverter;

class IcuConverter {
  public:
    /// For a page; 0 and less are the locale's encoding.
    explicit IcuConverter(int page);
    IcuConverter(const IcuConverter&) = delete;
    IcuConverter& operator=(const IcuConverter&) = delete;
    ~IcuConverter();

    bool IsOpen() const { return converter != nullptr; }
    /// One byte is one character and the other way round.
    bool IsSingleByte() const;
    /// What means nothing becomes the character unknown.
    QString Decode(QByteArrayView bytes, char16_t unknown);
    /// What the page lacks becomes the substitute and sets lossy.
    QByteArray Encode(QStringView text, char substitute, bool& lossy);

    /// True when ICU knows an encoding of that name.
    static bool Knows(const QByteArray& name);

  private:
    int page;
    UConverter* converter;
    /// The three control characters that some makers have in each other's places.
    bool rotatesControls = false;
};
