// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A folder of its own for a test, with files and folders made in it by their names.
#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <string>

class Folder {
  public:
    QString Path() const { return folder.path(); }
    QString Path(const std::string& name) const { return folder.filePath(QString::fromStdString(name)); }
    QByteArray Bytes(const std::string& name = {}) const {
        return QFile::encodeName(name.empty() ? Path() : Path(name));
    }
    void Make(const std::string& name) const { ASSERT_TRUE(QDir().mkpath(Path(name))); }
    void Write(const std::string& name, const QByteArray& content = "x") const {
        QDir().mkpath(QFileInfo(Path(name)).path());
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name;
        file.write(content);
    }
    void Link(const std::string& target, const std::string& name) const {
        ASSERT_TRUE(QFile::link(QString::fromStdString(target), Path(name)));
    }
    void Rename(const std::string& from, const std::string& to) const {
        ASSERT_EQ(std::rename(Bytes(from).constData(), Bytes(to).constData()), 0);
    }
    void Remove(const std::string& name) const { ASSERT_TRUE(QFile::remove(Path(name))); }

  private:
    QTemporaryDir folder;
};
