#include "state/GroupFile.h"

#include "state/CodePage.h"
#include "state/FileName.h"
#include "state/NumberText.h"
#include "state/StateFile.h"
#include "state/StdioFileEx.h"
#include "state/WholeFile.h"

#include "engine/TarnelData.h"

#include <array>
#include <QFile>
#include <QLocale>
#include <QStringDecoder>

namespace {

constexpr int firstLinesOfScriptFile = 4;

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

void appendPath(CTarnelData& data, const QString& path) {
    const CFileName name(path);
    data.FileDirs.push_back(name.GetDirectory());
    data.FileNames.push_back(name.GetNameExt());
}

/// A line of a plain list as a path of this system. Paths with drives come from systems on which case means
/// nothing and are kept in small letters; a relative one with backslashes gets this system's separators,
/// unless a file has just that name.
QString listedPath(const QString& line) {
    if (IsWindowsPath(line))
        return line.toLower();
    if (!line.contains(u'\\') || line.contains(u'/') || QFile::exists(line))
        return line;
    QString path = line;
    return path.replace(u'\\', u'/');
}

bool loadPlainList(CTarnelData& data, const QString& path, QString* message) {
    CStdioFileEx file;
    if (!openList(file, path)) {
        *message = QStringLiteral("Could not open file.");
        return false;
    }
    data.FileNames.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
    QString line;
    for (bool first = true; readLine(file, line, first); first = false) {
        if (line.startsWith(u'@'))
            continue;
        appendPath(data, listedPath(line));
        data.FileStatus.push_back(ToDo);
    }
    BuildFileOrder(data);
    return true;
}

bool loadScriptFile(CTarnelData& data, const QString& path, QString* message) {
    constexpr std::array statuses = {Error, FailOpen, Timeout, Locked, ToDo, Done};
    constexpr qsizetype pathColumn = 6;
    CStdioFileEx file;
    if (!openList(file, path)) {
        *message = QStringLiteral("Could not open file.");
        return false;
    }
    std::array<QString, firstLinesOfScriptFile> head;
    readLine(file, head[0], true);
    if (head[0] != u"Tarnel V2 Script File" && head[0] != u"Tarnel V2.6.5 Script File") {
        *message = QStringLiteral("Invalid file contents.");
        return false;
    }
    readLine(file, head[1]);
    QByteArray script;
    if (ReadWholeFile(head[1], script) != 0) {
        *message = QStringLiteral("Invalid script file location.");
        return false;
    }
    readLine(file, head[2]);
    readLine(file, head[3]);
    data.LastScriptFile = head[1];
    data.Script = script;
    data.MaxTime = static_cast<std::uint32_t>(ParseNumber(head[2]));
    data.AlarmTime = static_cast<std::uint32_t>(ParseNumber(head[3]));
    data.FileNames.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
    QString line;
    while (readLine(file, line)) {
        appendPath(data, line.sliced(std::min(pathColumn, line.size())));
        const int status = ParseNumber(line);
        if (status >= 0 && status < int(statuses.size()))
            data.FileStatus.push_back(statuses[std::size_t(status)]);
    }
    BuildFileOrder(data);
    return true;
}

}  // namespace

bool LoadGroupFile(const QString& path, QString* message) {
    CTarnelData& data = TarnelData();
    const QString extension = CFileName(path).GetExt().toLower();
    if (extension == u".grp")
        return loadScriptFile(data, path, message);
    if (extension != u".xml")
        return loadPlainList(data, path, message);
    if (!QFile(path).open(QIODevice::ReadOnly)) {
        *message = QStringLiteral("Could not open file.");
        return false;
    }
    LoadState(&path, 0);
    return true;
}

bool SaveGroupFile(const QString& path) {
    SaveState(&path, 0);
    return LastStateError().isEmpty();
}
