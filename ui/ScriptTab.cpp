// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ScriptTab.h"

#include "engine/record/TarnelData.h"
#include "ui_ScriptTab.h"

#include <QFontDatabase>

ScriptTab::ScriptTab(QWidget* parent) : MainPage(parent), ui(std::make_unique<Ui::ScriptTab>()) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    setFocusProxy(ui->script);
    ui->script->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    ui->script->setLineWrapMode(QPlainTextEdit::NoWrap);
    const TarnelSignals& record = TarnelData().Signals;
    connect(&record, &TarnelSignals::CollectSignal, this, &ScriptTab::OnCollect);
    connect(&record, &TarnelSignals::RefreshSignal, this, &ScriptTab::OnRefresh);
    OnRefresh();
}

ScriptTab::~ScriptTab() = default;

void ScriptTab::OnRefresh() {
    QString text = QString::fromLocal8Bit(TarnelData().Script);
    ui->script->setPlainText(text.replace(QLatin1String("\r\n"), QLatin1String("\n")));
    ui->script->document()->setModified(TarnelData().ScriptModified());
}

void ScriptTab::OnCollect() {
    CTarnelData& data = TarnelData();
    // What nobody has edited stays as it is, byte for byte.
    if (!ui->script->document()->isModified()) {
        return;
    }
    QString text = ui->script->toPlainText();
    const QByteArray script = text.replace(u'\n', QLatin1String("\r\n")).toLocal8Bit();
    if (script != data.Script) {
        data.Script = script;
        data.SetScriptModified(true);
    }
}
