#include "app/QueueFile.h"

#include "state/FileName.h"
#include "state/MarkupDocument.h"

#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <QString>

namespace {

constexpr std::array<const char*, 7> kWords = {"ToDo",   "Done",  "FailOpen", "Timeout",
                                               "Locked", "Error", "Canceled"};

/// Moves to a child of the current element and gives its text; the value as it was when there is none.
int ReadNumber(MarkupDocument* document, QStringView name, int value) {
    return document->FindChildElement(name) ? document->GetChildText().toInt() : value;
}

}  // namespace

const char* StatusWord(DrawingStatus status) {
    return kWords[static_cast<std::size_t>(status)];
}

bool StatusFromWord(const std::string& word, DrawingStatus* status) {
    const auto found = std::find(kWords.begin(), kWords.end(), word);
    if (found == kWords.end()) {
        return false;
    }
    *status = static_cast<DrawingStatus>(found - kWords.begin());
    return true;
}

bool QueueFile::Load(const std::string& path, std::string* error) {
    entries.clear();
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        *error = path + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    close(descriptor);

    MarkupDocument document;
    const bool wellFormed = document.LoadFile(QString::fromStdString(path));
    if (!wellFormed || !document.FindElement(u"TarnelRunner")) {
        *error = path + ": does not hold the state of a run" + (wellFormed ? "" : " (cut off or damaged)");
        return false;
    }
    int sortKey = 0;
    int sortReverse = 0;
    if (document.FindChildElement(u"Options")) {
        document.IntoElement();
        maxTime = static_cast<unsigned>(std::max(0, ReadNumber(&document, u"MaxTime", 60)));
        sortKey = ReadNumber(&document, u"SortIdx", 0);
        sortReverse = ReadNumber(&document, u"SortReverse", 0);
        document.OutOfElement();
    }
    if (document.FindChildElement(u"Files")) {
        document.IntoElement();
        while (document.FindChildElement(u"File")) {
            const unsigned number = document.GetChildAttribute(u"Status").toUInt();
            entries.push_back({document.GetChildText().toStdString(),
                               number < kWords.size() ? DrawingStatus(number) : DrawingStatus::Error});
        }
    }
    Sort(sortKey, sortReverse != 0);
    return true;
}

std::size_t QueueFile::Count(DrawingStatus status) const {
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.end(),
                      [status](const QueueEntry& entry) { return entry.Status == status; }));
}

void QueueFile::Sort(int key, bool reverse) {
    if (key == 6) {
        if (reverse) {
            std::reverse(entries.begin(), entries.end());
        }
        return;
    }
    const auto compare = [key](const QueueEntry& left, const QueueEntry& right) {
        const CFileName leftName(QString::fromStdString(left.Path));
        const CFileName rightName(QString::fromStdString(right.Path));
        const int name = leftName.GetNameExt().compare(rightName.GetNameExt(), Qt::CaseInsensitive);
        const int folder = leftName.GetDirectory().compare(rightName.GetDirectory(), Qt::CaseInsensitive);
        const int status = static_cast<int>(left.Status) - static_cast<int>(right.Status);
        switch (key) {
            case 0:
                return name ? name : folder ? folder : status;
            case 1:
                return name ? name : status ? status : folder;
            case 2:
                return folder ? folder : name ? name : status;
            case 3:
                return folder ? folder : status ? status : name;
            case 4:
                return status ? status : name ? name : folder;
            default:
                return status ? status : folder ? folder : name;
        }
    };
    std::stable_sort(entries.begin(), entries.end(), [&](const QueueEntry& left, const QueueEntry& right) {
        return reverse ? compare(right, left) < 0 : compare(left, right) < 0;
    });
}
