#include "host/InstallScript.h"

#include "engine/RegistryValue.h"
#include "engine/Restartable.h"
#include "engine/TarnelData.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

const QString& classId() {
    static const QString id = QStringLiteral("TarnelRunner.InstallScript");
    return id;
}

const QString& contentType() {
    static const QString type = QStringLiteral("application/TarnelRunner-InstallScript");
    return type;
}

const QString& description() {
    static const QString text = QStringLiteral("TarnelRunner Install Script");
    return text;
}

void setString(const QString& path, const QString& text) {
    RegistryString value(path, text, true, QStringLiteral("HKEY_CLASSES_ROOT"));
    value = text;
}

void setDword(const QString& path, unsigned number) {
    RegistryDword value(path, number, true, QStringLiteral("HKEY_CLASSES_ROOT"));
    value = number;
}

/// Leaves a file alone that holds the text already, so that a start writes nothing.
void writeIfDifferent(const QString& path, const QByteArray& text) {
    QFile present(path);
    if (present.open(QIODevice::ReadOnly) && present.size() == text.size() && present.readAll() == text)
        return;
    if (!QDir().mkpath(QFileInfo(path).path()))
        return;
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size())
        file.commit();
}

QString userShareDir() {
    const QString dir = qEnvironmentVariable("XDG_DATA_HOME");
    return QDir::isAbsolutePath(dir) ? dir : QDir::homePath() + QStringLiteral("/.local/share");
}

/// A path as an argument of a desktop entry: quoted, with the four characters escaped that the quotes do not
/// cover, and once more for the entry's own backslashes; "%" doubled.
QString desktopArgument(const QString& path) {
    QString out;
    for (const QChar c : path) {
        if (c == QLatin1Char('\\'))
            out += QStringLiteral("\\\\\\\\");
        else if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$'))
            out += QStringLiteral("\\\\") + c;
        else if (c == QLatin1Char('%'))
            out += QStringLiteral("%%");
        else
            out += c;
    }
    return QLatin1Char('"') + out + QLatin1Char('"');
}

QByteArray mimeText() {
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
               "  <mime-type type=\"%1\">\n"
               "    <comment>%2</comment>\n"
               "    <glob pattern=\"*.iscr\"/>\n"
               "  </mime-type>\n"
               "</mime-info>\n")
        .arg(contentType(), description())
        .toUtf8();
}

QByteArray desktopText(const QString& program) {
    return QStringLiteral(
               "[Desktop Entry]\n"
               "Type=Application\n"
               "Name=%1\n"
               "Exec=%2 /install %f\n"
               "MimeType=%3;\n"
               "NoDisplay=true\n")
        .replace(QStringLiteral("%1"), description())
        .replace(QStringLiteral("%3"), contentType())
        .replace(QStringLiteral("%2"), desktopArgument(program))
        .toUtf8();
}

}  // namespace

void InstallScriptHandler() {
    const QString& moduleDir = TarnelData().ModuleDir;
    const QString program = moduleDir + QStringLiteral("TNLWatch.exe");
    setString(QStringLiteral(".iscr\\"), classId());
    setString(QStringLiteral(".iscr\\Content Type"), contentType());
    setString(classId() + QStringLiteral("\\"), description());
    setDword(classId() + QStringLiteral("\\EditFlags"), 0x10000);
    setString(classId() + QStringLiteral("\\DefaultIcon\\"),
              moduleDir + QString::fromLatin1(ModuleFileName) + QStringLiteral(",0"));
    setString(classId() + QStringLiteral("\\shell\\open\\command\\"),
              QLatin1Char('"') + program + QStringLiteral("\" /install \"%1\""));
    const QString share = userShareDir();
    writeIfDifferent(share + QStringLiteral("/mime/packages/tarnelrunner-installscript.xml"), mimeText());
    writeIfDifferent(share + QStringLiteral("/applications/tarnelrunner-installscript.desktop"),
                     desktopText(program));
}
