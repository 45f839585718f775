// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Page of the script that a run executes on each drawing: the editor, the script's file and description, and
// a list of ready scripts. The record holds the script; this page shows it and takes it up again.
#include "files/DirWatcher.h"
#include "widgets/MainPage.h"

#include <memory>
#include <vector>

class QListWidgetItem;

namespace Ui {
class ScriptTab;
}

class ScriptTab : public MainPage {
    Q_OBJECT
  public:
    explicit ScriptTab(QWidget* parent = nullptr);
    ~ScriptTab() override;

    /// Shows the script of a file. One that cannot be read gives an empty script under that name.
    void LoadScript(const QString& path);
    /// Lists the scripts of the module's folder "Scripts" and of the user's own.
    void FillQuickScripts();
    /// Shows what the record holds; the file of an unchanged script wins over the record.
    void OnRefresh();
    /// Puts what the page shows into the record, line ends as CR LF, and asks whether a changed script is to
    /// be saved. What is longer than 99,999 bytes is cut.
    void GatherFromUi();
    void OnModifiedChanged(bool modified);

    void OnNew();
    void OnLoad();
    void OnSave();
    void OnSaveAs();
    void OnQuickScript();
    /// These leave the dialog for what works in the drawing itself.
    void OnStepThru();
    void OnCapture();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void setUpEditor();
    void setUpButtons();
    void setUpQuickScripts();
    void watchFolders();
    void onChanged();
    void showText();
    void showFileName();
    void takeText();
    bool mayDiscard();
    void writeScript(const QString& path);
    void selectLoaded();
    QString pathOf(const QListWidgetItem* item) const;

    std::unique_ptr<Ui::ScriptTab> ui;
    /// Paths of the list's entries, which hold an index here. A new list is appended, so that an index stays
    /// good.
    std::vector<QString> quickScriptPaths;
    bool updating = false;
    bool inSave = false;
    DirWatcher moduleScripts;
    DirWatcher ownScripts;
};
