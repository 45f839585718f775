// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"
#include "support/MapiSession.h"
#include "support/SupportBundle.h"
#include "support/SupportInfo.h"
#include "tests/recording/RecordingHost.h"
#include "zip/ZipArchive.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <map>

namespace {

void Write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray Read(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

// Names in order with what is in them.
std::vector<std::pair<std::string, std::string>> Entries(const QString& path) {
    std::vector<std::pair<std::string, std::string>> entries;
    CZipArchive archive;
    EXPECT_TRUE(archive.Open(path.toStdString(), CZipArchive::Existing));
    for (int i = 0; i < archive.Count(); ++i) {
        CFileHeader header;
        archive.GetFileInfo(header, i);
        entries.emplace_back(header.Name, archive.ReadWholeFile(i));
    }
    return entries;
}

// A host with one module besides the C library, which stands for a module that the loader knows.
int AnswerArx(const resbuf* call, resbuf** out) {
    if (TextOf(call->resval.rstring) != QLatin1String("veval-str+") ||
        TextOf(call->rbnext->resval.rstring) != QLatin1String("(arx)")) {
        return RTERROR;
    }
    *out = acutBuildList(RTSTR, u"LIBC.SO.6", RTSTR, u"gone & lost.arx", RTNONE);
    return RTNORM;
}

}  // namespace

class Support : public testing::Test {
  protected:
    void SetUp() override {
        host.Reset();
        data = dir.path() + "/data";
        bin = dir.path() + "/bin";
        QDir().mkpath(data);
        QDir().mkpath(bin);
        oldPath = qgetenv("PATH");
        TarnelData().DataDir = data;
        TarnelData().ModuleDir = "/opt/tarnel/";
        TarnelData().StateFile.clear();
        ResolveStateFile();
        Write(data + "/tnl log.html", "<html><body></body></html>");
        Write(data + "/TNLapp.log", "DoStartBatch\r\n");
    }
    void TearDown() override {
        qputenv("PATH", oldPath);
        qunsetenv("TARNEL_SUPPORT_ADDRESS");
    }
    // A mail program that notes its arguments, one a line, and ends with a status.
    void InstallMail(int status = 0) {
        const QString path = bin + "/xdg-email";
        Write(path, "#!/bin/sh\nprintf '%s\\n' \"$@\" >'" + dir.path().toUtf8() +
                        "/args'\necho trouble >&2\nexit " + QByteArray::number(status) + "\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
        qputenv("PATH", bin.toUtf8() + ":" + oldPath);
    }
    QString Archive() const { return data + "/TNLLog.zip"; }

    QTemporaryDir dir;
    QString data;
    QString bin;
    QByteArray oldPath;
    RecordingHost& host = RecordingHost::Get();
};

TEST_F(Support, PacksEverythingInOrderAndOpensTheMail) {
    InstallMail();
    host.OnInvoke = AnswerArx;
    TarnelData().ScriptDescription = "before";
    const auto connection = QObject::connect(&TarnelData().Signals, &TarnelSignals::CollectSignal,
                                             [] { TarnelData().ScriptDescription = "as on the screen"; });
    CMapiSession session;
    ASSERT_TRUE(session.MapiInstalled());
    QString error;
    EXPECT_TRUE(BuildSupportBundle(session, &error)) << error.toStdString();
    QObject::disconnect(connection);
    EXPECT_EQ(error, QString());

    const auto entries = Entries(Archive());
    ASSERT_EQ(entries.size(), 4U);
    EXPECT_EQ(entries[0].first, "info.xml");
    EXPECT_EQ(entries[1].first, "TarnelRunner.xml");
    EXPECT_EQ(entries[1].second, Read(TarnelData().StateFile).toStdString());
    EXPECT_NE(entries[1].second.find("as on the screen"), std::string::npos);
    EXPECT_EQ(entries[2].first, "TNL Log.html");
    EXPECT_EQ(entries[2].second, "<html><body></body></html>");
    EXPECT_EQ(entries[3].first, "TNLapp.log");
    EXPECT_EQ(entries[3].second, "DoStartBatch\r\n");
    EXPECT_EQ(QString::fromUtf8(Read(dir.path() + "/args")).split('\n'),
              QStringList({"--utf8", "--subject", "TNL Support", "--attach", Archive(),
                           "support@ovrix.example", ""}));

    // Once more, to an office's own desk: a second set behind the first.
    qputenv("TARNEL_SUPPORT_ADDRESS", "cad@office.example");
    EXPECT_TRUE(BuildSupportBundle(session, &error));
    EXPECT_EQ(Entries(Archive()).size(), 8U);
    EXPECT_TRUE(Read(dir.path() + "/args").contains("cad@office.example\n"));
}

TEST_F(Support, InfoTellsHostAndModulesCutInHalf) {
    host.OnInvoke = AnswerArx;
    const SupportInfo info = CollectSupportInfo();
    ASSERT_TRUE(info.Modules.has_value());
    ASSERT_EQ(info.Modules->size(), 2);
    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&std::abort), &library), 0);
    EXPECT_EQ(info.Modules->at(0).toStdString(), library.dli_fname);
    EXPECT_EQ(info.Modules->at(1), "gone & lost.arx");
    const QString text = SupportInfoText(info);
    EXPECT_TRUE(text.contains("<TNL Build=\"0\">3.0.0</TNL>")) << text.toStdString();
    EXPECT_TRUE(text.contains("<AutoCAD>18.2s</AutoCAD>"));
    EXPECT_TRUE(text.contains("<ARX>gone &amp; lost.arx</ARX>"));
    EXPECT_TRUE(text.contains("<LoadedFrom>/opt/tarnel/</LoadedFrom>"));
    EXPECT_LT(text.indexOf("</LoadARXs>"), text.indexOf("<LoadedFrom>"));

    const QByteArray bytes = SupportInfoBytes(text);
    ASSERT_EQ(bytes.size(), text.size());
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()), bytes.size() / 2),
              text.first(text.size() / 2));

    host.OnInvoke = nullptr;
    EXPECT_FALSE(SupportInfoText(CollectSupportInfo()).contains("ARX"));
}

TEST_F(Support, AddsBehindTheHostLogs) {
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(Archive().toStdString(), CZipArchive::Create));
    CFileHeader header;
    header.Name = "_tmp_a.log";
    archive.OpenNewFile(header, 9);
    archive.WriteNewFile("Command:", 8);
    archive.Close();
    Write(data + "/TarnelRunner.xml", "<state/>");
    QString error;
    EXPECT_TRUE(PackSupportBundle(SupportFilesIn(data), "info", &error)) << error.toStdString();
    const auto entries = Entries(Archive());
    ASSERT_EQ(entries.size(), 5U);
    EXPECT_EQ(entries[0].second, "Command:");
    EXPECT_EQ(entries[1].second, "info");
}

TEST_F(Support, AFailureNamesFileAndCauseAndLeavesTheArchive) {
    InstallMail();
    CMapiSession session;
    QFile::remove(data + "/tnl log.html");
    QString error;
    EXPECT_FALSE(BuildSupportBundle(session, &error));
    EXPECT_EQ(error, data + "/tnl log.html: No such file or directory");
    EXPECT_FALSE(QFile::exists(Archive()));
    EXPECT_FALSE(QFile::exists(dir.path() + "/args"));

    Write(data + "/tnl log.html", "");
    Write(Archive(), "no archive");
    EXPECT_FALSE(BuildSupportBundle(session, &error));
    EXPECT_EQ(error, Archive() + ": is too short for a zip archive");
    EXPECT_EQ(Read(Archive()), "no archive");
}

TEST_F(Support, TellsWhyNoMailWent) {
    InstallMail(3);
    CMapiSession session;
    QString error;
    EXPECT_FALSE(BuildSupportBundle(session, &error));
    EXPECT_TRUE(QFile::exists(Archive()));
    EXPECT_EQ(error, bin + "/xdg-email: no mail program was found (trouble)");

    qputenv("PATH", dir.path().toUtf8());
    CMapiSession none;
    EXPECT_FALSE(none.MapiInstalled());
    EXPECT_FALSE(none.Send({}));
    EXPECT_EQ(none.LastError(), "xdg-email is not installed");
}
