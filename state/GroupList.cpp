#include "state/GroupList.h"

#include "state/CodePage.h"
#include "state/FileName.h"
#include "state/NumberText.h"
#include "state/StdioFileEx.h"
#include "state/WholeFile.h"

#include <array>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QStringDecoder>

namespace {

/// The page in which a list made on another system by a user of this language most likely is.
int windowsPage() {
    switch (QLocale::system().language()) {
        case QLocale::Polish:
        case QLocale::Czech:
        case QLocale::Slovak:
        case QLocale::Hungarian:
        case QLocale::Slovenian:
        case QLocale::Croatian:
        case QLocale::Romanian:
            return 1250;
        case QLocale::Russian:
        case QLocale::Ukrainian:
        case QLocale::Bulgarian:
        case QLocale::Serbian:
        case QLocale::Belarusian:
        case QLocale::Macedonian:
            return 1251;
        case QLocale::Greek:
            return 1253;
        case QLocale::Turkish:
            return 1254;
        case QLocale::Hebrew:
            return 1255;
        case QLocale::Arabic:
        case QLocale::Persian:
            return 1256;
        case QLocale::Estonian:
        case QLocale::Latvian:
        case QLocale::Lithuanian:
            return 1257;
        case QLocale::Vietnamese:
            return 1258;
        case QLocale::Thai:
            return 874;
        case QLocale::Japanese:
            return 932;
        case QLocale::Korean:
            return 949;
        case QLocale::Chinese:
            return QLocale::system().script() == QLocale::TraditionalChineseScript ? 950 : 936;
        default:
            return 1252;
    }
}

/// Lists are in the locale's encoding; where that is UTF-8 and the file is not, it was made elsewhere.
int pageOfList(const QString& path) {
    QByteArray bytes;
    if (!IsUtf8Page(LocalePage) || ReadWholeFile(path, bytes) != 0)
        return LocalePage;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? windowsPage() : Utf8Page;
}

bool openList(CStdioFileEx& file, const QString& path) {
    file.TextPage = pageOfList(path);
    return file.Open(path, CStdioFileEx::modeRead);
}

/// The next line, without the mark that some editors put at a file's start.
bool readLine(CStdioFileEx& file, QString& line, bool first = false) {
    line.clear();
    if (!file.ReadString(line))
        return false;
    if (first && line.startsWith(QChar(QChar::ByteOrderMark)))
        line.remove(0, 1);
    return true;
}

}  // namespace

GroupListError ReadPathList(const QString& path, const QString& folder, std::vector<QString>* entries) {
    CStdioFileEx file;
    if (!openList(file, path))
        return GroupListError::CannotOpen;
    entries->clear();
    QString line;
    for (bool first = true; readLine(file, line, first); first = false) {
        if (!line.startsWith(u'@'))
            entries->push_back(IsWindowsPath(line) ? line.toLower() : LocalPath(line, folder));
    }
    return GroupListError::None;
}

GroupListError ReadScriptFileGroup(const QString& path, ScriptFileGroup* group) {
    constexpr qsizetype pathColumn = 6;
    CStdioFileEx file;
    if (!openList(file, path))
        return GroupListError::CannotOpen;
    QString line;
    readLine(file, line, true);
    if (line != u"Tarnel V2 Script File" && line != u"Tarnel V2.6.5 Script File")
        return GroupListError::NoScriptFile;
    readLine(file, group->Script);
    readLine(file, line);
    group->MaxTime = static_cast<std::uint32_t>(ParseNumber(line));
    readLine(file, line);
    group->AlarmTime = static_cast<std::uint32_t>(ParseNumber(line));
    group->Entries.clear();
    while (readLine(file, line))
        group->Entries.push_back({line.sliced(std::min(pathColumn, line.size())), ParseNumber(line)});
    return GroupListError::None;
}

QString LocalPath(const QString& path, const QString& folder) {
    if (!path.contains(u'\\') || path.contains(u'/') || IsWindowsPath(path) ||
        QFile::exists(folder.isEmpty() ? path : QDir(folder).filePath(path)))
        return path;
    QString local = path;
    return local.replace(u'\\', u'/');
}
