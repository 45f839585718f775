// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/StateDigest.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "text/UserText.h"

#include <QCryptographicHash>

namespace {

/// The length goes first, so that no two lists of texts make the same bytes.
void add(QCryptographicHash& hash, QStringView text) {
    const QByteArray bytes = text.toUtf8();
    hash.addData(QByteArray(QByteArray::number(bytes.size()) + ':' + bytes));
}

void addQueue(QCryptographicHash& hash, const CTarnelData& data) {
    for (std::size_t i = 0; i < data.FileNames.size(); ++i) {
        add(hash, EntryPath(data, i));
    }
}

}  // namespace

QByteArray QueueDigest(const CTarnelData& data) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    addQueue(hash, data);
    return hash.result().toHex();
}

QByteArray ScriptDigest(const CTarnelData& data) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    add(hash, DecodeUserText(data.Script).Text);
    return hash.result().toHex();
}

QByteArray RunDigest(const CTarnelData& data) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    addQueue(hash, data);
    add(hash, DecodeUserText(data.Script).Text);
    for (const std::uint32_t value : {data.MaxTime, data.AlarmTime, std::uint32_t(data.ProcessReadOnly),
                                      std::uint32_t(data.SortIdx), std::uint32_t(data.SortReverse)}) {
        add(hash, QString::number(value));
    }
    return hash.result().toHex();
}
