// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Small helpers of these tests: files in a temporary folder, and texts that a failed test can print.
#include <gtest/gtest.h>
#include <ostream>
#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <string>

inline std::string Plain(const QString& text) {
    return text.toStdString();
}

inline QByteArray ReadBytes(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << Plain(path);
    return file.readAll();
}

inline void WriteBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << Plain(path);
    ASSERT_EQ(file.write(bytes), bytes.size());
}
