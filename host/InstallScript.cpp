// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/InstallScript.h"

#include "engine/record/TarnelData.h"
#include "engine/RegistryValue.h"
#include "engine/Restartable.h"

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
}
