// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LogTab.h"

#include "engine/RunState.h"
#include "html/HTMLayout.h"
#include "text/MarkupDocument.h"
#include "ui/Icons.h"
#include "ui_LogTab.h"
#include "zip/ZipArchive.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QSaveFile>

namespace {

const QString StyleHeader = QStringLiteral(
    "<html><style>html{background-color:threedface;}body{font-family:Arial;font-size:9pt;}</style>");
const QString NoLogPage = StyleHeader + QStringLiteral("<body><font size=+2 face=Arial>No log file present.");
const QString TopNote =
    StyleHeader + QStringLiteral(
                      "<body><font size=+2 face=Arial>Below is the log from the last time "
                      "<font color=blue>Tarnel</font> was run.<hr>");

QString runLogPath() {
    return DataFile(QStringLiteral("tnl log.html"));
}

QString archivePath() {
    return DataFile(QStringLiteral("TNLLog.zip"));
}

/// The page of a host log: a way back, the drawing's name, the text.
QString hostLogPage(const QString& name, const QString& text) {
    MarkupDocument page;
    page.AddElement(u"html");
    page.AddChildElement(u"body");
    page.IntoElement();
    page.AddChildElement(u"font");
    page.SetChildAttribute(u"size", u"+4");
    page.SetChildAttribute(u"face", u"Arial");
    page.IntoElement();
    page.AddChildElement(u"a", u"Back");
    page.SetChildAttribute(u"href", u"back");
    page.SetChildAttribute(u"title", u"Go back");
    page.AddChildElement(u"b", QStringLiteral(" - ") + name);
    page.OutOfElement();
    page.AddChildElement(u"hr");
    page.AddChildElement(u"pre", text);
    QString html = page.GetDocumentText();
    html.replace(QLatin1String("<hr/>"), QLatin1String("<hr />"));
    return html.replace(QLatin1String("<html>"), StyleHeader);
}

/// A page of the run log in which the name of each drawing is a link to its host log.
QString linkedRunLog(MarkupDocument& log) {
    log.FindElement(u"html");
    log.FindChildElement(u"body");
    log.IntoElement();
    while (log.FindChildElement(u"span")) {
        log.IntoElement();
        if (log.FindChildElement(u"span")) {
            const QString id = log.GetChildAttribute(u"id");
            const QString name = log.GetChildText();
            log.RemoveChildElement();
            log.AddChildElement(u"a", name);
            log.SetChildAttribute(u"href", QStringLiteral("logfile:%1:%2").arg(id, name));
            log.SetChildAttribute(u"title", u"View log");
        }
        log.OutOfElement();
    }
    QString html = log.GetDocumentText();
    html.replace(QLatin1String("<br/>"), QLatin1String("<br />"));
    return html.replace(QLatin1String("<html>"), StyleHeader);
}

}  // namespace

LogTab::LogTab(QWidget* parent) : MainPage(parent), ui(std::make_unique<Ui::LogTab>()) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    setFocusProxy(ui->log);
    ui->emailLog->SetInfo(ResourceIcon(QStringLiteral("email")), tr("Send the log to support"));
    ui->clearLog->SetInfo(ResourceIcon(QStringLiteral("clear")), tr("Delete the log of the last run"));
    ui->saveLog->SetInfo(ResourceIcon(QStringLiteral("save")), tr("Save a copy of the log"));
    ui->note->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->note->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->note->LoadHtml(TopNote);
    LoadRunLog();
    connect(ui->log, &CHTMLayout::OnLinkClick, this, &LogTab::ShowHostLog);
    connect(ui->log, &CHTMLayout::OnXButton1, this, &LogTab::LoadRunLog);
    connect(ui->emailLog, &QPushButton::clicked, this, [this] {
        if (EmailLog) {
            EmailLog(this);
        }
    });
    connect(ui->clearLog, &QPushButton::clicked, this, &LogTab::ClearLog);
    connect(ui->saveLog, &QPushButton::clicked, this, &LogTab::SaveLog);
}

LogTab::~LogTab() = default;

void LogTab::showNoLog() {
    ui->log->LoadHtml(NoLogPage);
}

void LogTab::LoadRunLog() {
    MarkupDocument log;
    if (!log.LoadFile(runLogPath())) {
        showNoLog();
        ui->emailLog->setEnabled(false);
        ui->saveLog->setEnabled(false);
        return;
    }
    ui->log->LoadHtml(linkedRunLog(log));
    ui->emailLog->setEnabled(true);
}

void LogTab::ShowHostLog(const QString& link, int* handled) {
    *handled = 0;
    if (link == u"back") {
        LoadRunLog();
        return;
    }
    const QString prefix = QStringLiteral("logfile:");
    if (!link.startsWith(prefix)) {
        return;
    }
    const QString rest = link.mid(prefix.size());
    const qsizetype colon = rest.indexOf(u':');
    const QString id = rest.left(colon);
    const QString name = colon < 0 ? QString() : rest.mid(colon + 1);
    try {
        CZipArchive archive;
        if (!archive.Open(QFile::encodeName(archivePath()).toStdString(), CZipArchive::Existing)) {
            return;
        }
        const int index = archive.FindFile(id.toStdString(), false);
        if (index < 0) {
            return;
        }
        const std::string text = archive.ReadWholeFile(index);
        archive.Close();
        ui->log->LoadHtml(
            hostLogPage(name, QString::fromLocal8Bit(text.c_str(), static_cast<qsizetype>(text.size()))));
    } catch (const CZipException&) {
        // A damaged archive leaves the view as it was, like an entry that has been lost.
    }
}

void LogTab::ClearLog() {
    showNoLog();
    QFile::remove(runLogPath());
    QFile::remove(archivePath());
    ui->saveLog->setEnabled(false);
}

void LogTab::SaveLog() {
    const QString path = QFileDialog::getSaveFileName(this, tr("Save Log"), QString(),
                                                      tr("Html Files (*.html);;All Files (*)"));
    if (path.isEmpty()) {
        return;
    }
    const QString target = QFileInfo(path).suffix().isEmpty() ? path + QStringLiteral(".html") : path;
    // What the file held goes only once the copy is whole.
    QFile log(runLogPath());
    QSaveFile copy(target);
    if (log.open(QIODevice::ReadOnly) && copy.open(QIODevice::WriteOnly)) {
        copy.write(log.readAll());
        copy.commit();
    }
}
