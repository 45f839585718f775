// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/LastSave.h"

#include "engine/record/TarnelData.h"

#include <algorithm>

namespace {

constexpr char StatusHead[] = "<File Status=\"";
constexpr qsizetype StatusHeadLength = sizeof StatusHead - 1;

/// Strings that are copies of one another share their text, so most comparisons end at the pointer.
bool same(const CheckedArray<QString>& a, const CheckedArray<QString>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const QString& left, const QString& right) {
        return (left.constData() == right.constData() && left.size() == right.size()) || left == right;
    });
}

}  // namespace

bool LastSave::sameQueue(const CTarnelData& data) const {
    return statuses.size() == data.FileStatus.size() && same(names, data.FileNames) &&
           same(directories, data.FileDirs);
}

void LastSave::Remember(const QString& newPath, const QString& newHead, const QByteArray& newBytes,
                        const CTarnelData& data) {
    path = newPath;
    head = newHead;
    bytes = newBytes;
    names = data.FileNames;
    directories = data.FileDirs;
    statuses.assign(data.FileStatus.begin(), data.FileStatus.end());
    places.clear();
    places.reserve(statuses.size());
    // Text of the file holds no "<" of its own: each of these is an entry of the queue.
    for (qsizetype at = bytes.indexOf(StatusHead); at >= 0;
         at = bytes.indexOf(StatusHead, at + StatusHeadLength)) {
        places.push_back(at + StatusHeadLength);
    }
}

bool LastSave::Update(const QString& newPath, const QString& newHead, const CTarnelData& data) {
    if (path != newPath || head != newHead || places.size() != data.FileNames.size() || !sameQueue(data)) {
        return false;
    }
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        const std::uint32_t status = data.FileStatus[i];
        if (status == statuses[i]) {
            continue;
        }
        if (status > 9 || statuses[i] > 9) {
            return false;
        }
        bytes[places[i]] = static_cast<char>('0' + status);
        statuses[i] = status;
    }
    return true;
}
