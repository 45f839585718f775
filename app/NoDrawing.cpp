// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NoDrawing.h"

#include "app/NameText.h"
#include "state/DrawingName.h"

#include <sys/stat.h>
#include <QString>

std::string WhyNoDrawing(const std::string& path, bool anyName) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        const char* kind = S_ISDIR(status.st_mode)    ? "a folder"
                           : S_ISFIFO(status.st_mode) ? "a pipe"
                           : S_ISSOCK(status.st_mode) ? "a socket"
                                                      : "a device";
        return std::string("is ") + kind + ", no drawing";
    }
    if (const std::string bytes = BytesOf(path); bytes != path && lstat(bytes.c_str(), &status) == 0) {
        return "has a name that is not UTF-8 and cannot be given to the host; rename it";
    }
    if (!anyName && !IsDrawingName(QString::fromStdString(path))) {
        return "is no drawing by its name, which ends in none of .dxf, .dwg, .dwt and .dws";
    }
    return {};
}
