// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Between two saves of a run only statuses change, while the queue may have ten thousand entries. So the last
// save is remembered together with what it was made from: when nothing but statuses differs, its bytes are
// brought up to date by a digit or two instead of being made again.
#include "engine/record/CheckedArray.h"

#include <cstdint>
#include <QByteArray>
#include <QString>
#include <vector>

struct CTarnelData;

class LastSave {
  public:
    /// Remembers the bytes of a full save and the text of all that stands before its queue.
    void Remember(const QString& path, const QString& head, const QByteArray& bytes, const CTarnelData& data);
    /// True when only statuses changed since: the bytes then tell them. False: everything is to be made anew.
    bool Update(const QString& path, const QString& head, const CTarnelData& data);
    const QByteArray& Bytes() const { return bytes; }

  private:
    bool sameQueue(const CTarnelData& data) const;

    QString path;
    QString head;
    QByteArray bytes;
    CheckedArray<QString> names;
    CheckedArray<QString> directories;
    std::vector<std::uint32_t> statuses;
    /// Where the digit of each entry's status stands.
    std::vector<qsizetype> places;
};
