// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SettingsTab.h"

#include "engine/record/TarnelData.h"
#include "html/FormValue.h"
#include "html/HTMLayout.h"
#include "log/Trace.h"
#include "ui_SettingsTab.h"

namespace {

struct CheckField {
    const char16_t* Name;
    bool CTarnelData::*Field;
};

constexpr CheckField CheckFields[] = {
    {u"readonly", &CTarnelData::ProcessReadOnly},
    {u"recover", &CTarnelData::RecoverMode},
    {u"disablescriptchain", &CTarnelData::DisableScriptChain},
    {u"filetabbuttontext", &CTarnelData::FileTabButtonText},
    {u"dodirrefresh", &CTarnelData::DoDirRefresh},
    {u"warnnosave", &CTarnelData::WarnNoSave},
    {u"warndialogcommand", &CTarnelData::WarnDialogCommand},
    {u"warndialogcmdreplacement", &CTarnelData::WarnDialogCmdReplacement},
};

/// The number that a text begins with, 0 without one.
std::uint32_t leadingNumber(const QString& text) {
    return static_cast<std::uint32_t>(std::max(0, std::atoi(text.toUtf8().constData())));
}

}  // namespace

SettingsTab::SettingsTab(QWidget* parent) : MainPage(parent), ui(std::make_unique<Ui::SettingsTab>()) {
    Trace("SettingsTab: Default OnInitDialog\n");
    SetPage();
    ui->setupUi(this);
    ui->view->LoadHtmlResource(QStringLiteral("settings"));
    Trace("SettingsTab: AddAnchor\n");
    InitLayout();
    setFocusProxy(ui->view);
    Trace("SettingsTab: Connect signals\n");
    const TarnelSignals& record = TarnelData().Signals;
    connect(&record, &TarnelSignals::CollectSignal, this, &SettingsTab::OnCollect);
    connect(&record, &TarnelSignals::RefreshSignal, this, &SettingsTab::OnRefresh);
    Trace("SettingsTab: OnRefresh\n");
    OnRefresh();
    Trace("Create Settings Tab: 1\n");
    Trace("Create Settings Tab: MoveWindow\n");
}

SettingsTab::~SettingsTab() = default;

void SettingsTab::OnRefresh() {
    const CTarnelData& data = TarnelData();
    const HtmlElement root = ui->view->GetRoot();
    FindFirst(root, QStringLiteral("[id=alarmtime]")).SetText(QString::number(data.AlarmTime));
    FindFirst(root, QStringLiteral("[id=maxtime]")).SetText(QString::number(data.MaxTime));
    FormValues values;
    for (const CheckField& field : CheckFields) {
        values.emplace(QString::fromUtf16(field.Name), FormValue(data.*field.Field));
    }
    SetFormValues(root, values);
}

void SettingsTab::OnCollect() {
    CTarnelData& data = TarnelData();
    const HtmlElement root = ui->view->GetRoot();
    data.AlarmTime = leadingNumber(FindFirst(root, QStringLiteral("[id=alarmtime]")).Text());
    data.MaxTime = leadingNumber(FindFirst(root, QStringLiteral("[id=maxtime]")).Text());
    FormValues values;
    GetFormValues(root, values);
    for (const CheckField& field : CheckFields) {
        const auto found = values.find(QString::fromUtf16(field.Name));
        data.*field.Field = found != values.end() && found->second.IsTrue();
    }
}
