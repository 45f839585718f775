// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StartTab.h"

#include "acedads.h"
#include "engine/record/HostText.h"
#include "html/HTMLayout.h"
#include "ui/MainPages.h"
#include "ui_StartTab.h"

namespace {

/// The page that a link such as "filestab" leads to, empty for other links.
QString pageOf(const QString& link) {
    const QLatin1String ending("tab");
    const QString name = link.endsWith(ending) ? link.chopped(ending.size()) : QString();
    return MainPageIndex(name) >= 0 ? name : QString();
}

}  // namespace

StartTab::StartTab(QWidget* parent) : MainPage(parent), ui(std::make_unique<Ui::StartTab>()) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    setFocusProxy(ui->view);
    ui->view->LoadHtmlResource(QStringLiteral("Startpage"));
    connect(ui->view, &CHTMLayout::OnLinkClick, this, &StartTab::OnLink);
    connect(ui->view, &CHTMLayout::OnXButton1, this,
            [this] { ui->view->LoadHtmlResource(QStringLiteral("Startpage")); });
}

StartTab::~StartTab() = default;

void StartTab::OnLink(const QString& href, int* openExternally) {
    const QString link = href.toLower();
    *openExternally = 0;
    // Posted, so that the handling of the link ends before the page changes.
    const auto post = [this](auto signal) { QMetaObject::invokeMethod(this, signal, Qt::QueuedConnection); };
    if (link == u"help") {
        post([this] { Q_EMIT HelpWanted(); });
    } else if (const QString page = pageOf(link); !page.isEmpty()) {
        post([this, page] { Q_EMIT PageWanted(page); });
    } else if (link == u"acadscripthelp") {
        // The host's own help is looked up and not shown, as it always was.
        ACHAR found[2048];
        acedFindFile(ACRX_T("acad_acg.chm"), found, 2048);
    } else if (link.startsWith(QLatin1String("http:"))) {
        *openExternally = 1;
    } else if (link.startsWith(QLatin1String("res:"))) {
        ui->view->LoadHtmlResource(link.mid(4));
    } else {
        ui->view->LoadFile(link);
    }
}
