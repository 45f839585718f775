// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainPages.h"

#include "files/FilesTab.h"
#include "script/ScriptTab.h"
#include "ui/LogTab.h"
#include "ui/SettingsTab.h"
#include "ui/StartTab.h"

#include <algorithm>

namespace {

template <class Page>
MainPage* make(QWidget* parent) {
    return new Page(parent);
}

}  // namespace

std::span<const MainPageEntry> MainPages() {
    static const MainPageEntry pages[] = {
        {QStringLiteral("start"), "Start", QT_TRANSLATE_NOOP("TarnelDlg", "St&art Page"),
         QStringLiteral("tabstart"), make<StartTab>},
        {QStringLiteral("files"), "File", QT_TRANSLATE_NOOP("TarnelDlg", "&Files for Processing"),
         QStringLiteral("tabfiles"), make<FilesTab>},
        {QStringLiteral("script"), "Script", QT_TRANSLATE_NOOP("TarnelDlg", "&Script"),
         QStringLiteral("tabscript"), make<ScriptTab>},
        {QStringLiteral("settings"), "Settings", QT_TRANSLATE_NOOP("TarnelDlg", "S&ettings"),
         QStringLiteral("tabsettings"), make<SettingsTab>},
        {QStringLiteral("log"), "Log", QT_TRANSLATE_NOOP("TarnelDlg", "&Log"), QStringLiteral("tablog"),
         make<LogTab>},
    };
    return pages;
}

int MainPageIndex(QStringView name) {
    const std::span<const MainPageEntry> pages = MainPages();
    const auto found = std::find_if(pages.begin(), pages.end(),
                                    [&](const MainPageEntry& page) { return page.Name == name; });
    return found == pages.end() ? -1 : static_cast<int>(found - pages.begin());
}
