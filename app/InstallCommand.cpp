// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"

#include "app/DataFolder.h"
#include "app/NameText.h"
#include "system/OwnFile.h"
#include "text/ScriptText.h"
#include "text/WholeFile.h"

#include <QFile>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

bool readScript(const std::string& file, QByteArray* bytes, std::string* error) {
    std::error_code failure;
    if (fs::exists(file, failure) && !fs::is_regular_file(file, failure)) {
        *error = file + ": this is no script file";
        return false;
    }
    if (const int cause = ReadWholeFile(QFile::decodeName(file.c_str()), *bytes)) {
        *error = file + ": cannot be read: " + files::Because(cause);
        return false;
    }
    if (const QString fault = DecodeScript(*bytes).Fault; !fault.isEmpty()) {
        *error = file + ": " + fault.toStdString();
        return false;
    }
    return true;
}

/// False with one line when it cannot be put there.
bool putScript(const std::string& target, const QByteArray& bytes, bool replace, std::string* error) {
    const QString path = QFile::decodeName(target.c_str());
    std::error_code failure;
    QByteArray present;
    if (!replace && fs::exists(target, failure)) {
        if (ReadWholeFile(path, present) == 0 && present == bytes) {
            return true;
        }
        *error = target + ": another script of this name is there; --replace puts the new one in its place";
        return false;
    }
    int cause = files::MakeFolder(files::FolderOf(target));
    cause = cause == 0 ? WriteWholeFile(path, bytes) : cause;
    if (cause != 0) {
        *error = target + ": cannot be written: " + files::Because(cause);
    }
    return cause == 0;
}

}  // namespace

ExitStatus InstallScript(const std::string& file, const std::string& dataDir, bool replace) {
    const DataFolder folder(dataDir);
    const std::string target = folder.Path() + "/Scripts/" + fs::path(file).stem().string() + ".scr";
    std::string error;
    QByteArray bytes;
    if (!readScript(file, &bytes, &error)) {
        Complain(error);
        return WrongUsage;
    }
    if (!putScript(target, bytes, replace, &error)) {
        Complain(error);
        return BrokenOff;
    }
    PrintName(target);
    return AllDone;
}
