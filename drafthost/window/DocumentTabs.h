// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A tab for each open drawing, with a button that closes it and a star for one that has unsaved changes.
#include <QTabBar>

namespace drafthost {

class Host;

class DocumentTabs : public QTabBar {
    Q_OBJECT
  public:
    explicit DocumentTabs(QWidget* parent);
    /// Tabs in the order of the host's documents.
    void showDocuments(Host& host);
};

}  // namespace drafthost
