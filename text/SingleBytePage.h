// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Pages on which each byte is a character: a table for one way and a search for the other, made once.
#include <array>
#include <memory>
#include <QByteArray>
#include <QString>
#include <QStringView>
#include <unordered_map>

class SingleBytePage {
  public:
    /// The page; null when it is none of this kind.
    static const SingleBytePage* Of(int page);

    /// What means nothing becomes the character unknown.
    QString Decode(QByteArrayView bytes, char16_t unknown) const;
    /// What the page lacks becomes the substitute and sets lossy.
    QByteArray Encode(QStringView text, char substitute, bool& lossy) const;

  private:
    explicit SingleBytePage(int page);
    static std::unique_ptr<SingleBytePage> make(int page);

    int page;
    /// 0 where a byte means nothing, but for byte 0.
    std::array<char16_t, 256> characters{};
    std::unordered_map<char16_t, char> bytes;
};
