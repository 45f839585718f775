// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/ApplicationData.h"

#include <algorithm>
#include <string>

#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

std::pair<size_t, size_t> xdataRange(const Record& record, std::string_view application) {
    for (size_t i = record.xdata(); i < record.size(); ++i) {
        if (record.code(i) == 1001 && foldCase(record.text(i)) == foldCase(application)) {
            size_t end = i + 1;
            while (end < record.size() && record.code(end) != 1001) {
                ++end;
            }
            return {i + 1, end};
        }
    }
    return {record.size(), record.size()};
}

void setXdata(Drawing& drawing, RecordId id, const char* application, const std::vector<XdataTag>& tags) {
    if (findEntry(drawing, Table::Appid, application) == NoRecord) {
        addEntry(drawing, Table::Appid, application);
    }
    auto [begin, end] = xdataRange(drawing.record(id), application);
    if (begin == drawing.record(id).size() && begin == end) {
        bool named = begin > 0 && drawing.record(id).code(begin - 1) == 1001 &&
                     drawing.record(id).text(begin - 1) == application;
        if (!named) {
            drawing.appendTag(id, 1001, std::string(application));
            begin = end = drawing.record(id).size();
        }
    }
    size_t common = std::min(end - begin, tags.size());
    bool sameCodes = end - begin == tags.size();
    for (size_t i = 0; sameCodes && i < common; ++i) {
        sameCodes = drawing.record(id).code(begin + i) == tags[i].first;
    }
    if (sameCodes) {
        for (size_t i = 0; i < tags.size(); ++i) {
            drawing.setTag(id, begin + i, tags[i].second);
        }
        return;
    }
    while (end > begin) {
        drawing.removeTag(id, --end);
    }
    for (size_t i = 0; i < tags.size(); ++i) {
        if (begin + i < drawing.record(id).size()) {
            drawing.insertTag(id, begin + i, tags[i].first, tags[i].second);
        } else {
            drawing.appendTag(id, tags[i].first, tags[i].second);
        }
    }
}

}  // namespace drafthost
