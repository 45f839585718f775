// SPDX-License-Identifier: GPL-3.0-or-later
// Load Group and Save Group with the file dialog, every form and every refusal.
#include "engine/record/FileQueue.h"
#include "tests/files/PageFixture.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>

namespace {

class GroupDialogTest : public PageFixture {
  protected:
    void SetUp() override {
        PageFixture::SetUp();
        addEntry("/q/One.dwg", Done);
        addEntry("/q/two.dwg", ToDo);
        TarnelData().Script = "zoom e\r\n";
        TarnelData().MaxTime = 77;
        open();
    }
    /// Presses a button and gives the file dialog that comes up a name; an empty one cancels it. Boxes that
    /// come up after it are told and closed.
    void inDialog(const char* button, const QString& name) {
        QTimer::singleShot(5, qApp, [this, name] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            title = dialog->windowTitle();
            filters = dialog->nameFilters();
            place = dialog->directory().path();
            if (name.isEmpty()) {
                dialog->reject();
                return;
            }
            dialog->findChild<QLineEdit*>()->setText(name);
            if (vanishes) {
                QObject::connect(dialog, &QDialog::accepted, qApp, [name] { QFile::remove(name); });
            }
            readBoxes(200);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        told.clear();
        press(button);
        QTest::qWait(20);
        waiting = false;
    }
    std::string queueText() const {
        std::string all;
        for (std::size_t i = 0; i < TarnelData().FileNames.size(); ++i) {
            all += EntryPath(TarnelData(), i).toStdString() + ':' +
                   std::to_string(EntryStatus(TarnelData(), i)) + ' ';
        }
        return all;
    }
    void expectUnchanged() {
        EXPECT_EQ(queueText(), "/q/One.dwg:1 /q/two.dwg:0 ");
        EXPECT_EQ(TarnelData().Script, QByteArray("zoom e\r\n"));
        EXPECT_EQ(TarnelData().MaxTime, 77U);
    }

    QString title, place;
    QStringList filters, told;
    /// The file goes while the dialog closes.
    bool vanishes = false;

  private:
    void readBoxes(int patience) {
        waiting = true;
        QTimer::singleShot(5, qApp, [this, patience] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box != nullptr) {
                told << box->text();
                QTest::mouseClick(box->buttons().first(), Qt::LeftButton);
            }
            if (waiting && patience > 0) {
                readBoxes(patience - 1);
            }
        });
    }
    bool waiting = false;
};

TEST_F(GroupDialogTest, SavedChangedAndLoadedAgain) {
    int collected = 0;
    const auto connection =
        QObject::connect(&TarnelData().Signals, &TarnelSignals::CollectSignal, qApp, [&] { ++collected; });
    inDialog("saveGroup", folder.Path("kept"));
    EXPECT_EQ(title, QStringLiteral("Save Group"));
    EXPECT_EQ(filters, QStringList({QStringLiteral("XML Files (*.xml)"), QStringLiteral("All Files (*)")}));
    EXPECT_EQ(place, folder.Path());
    EXPECT_EQ(collected, 1) << "the pages hand over what they hold first";
    ASSERT_TRUE(QFile::exists(folder.Path("kept.xml"))) << "the extension that none was typed for";
    inDialog("saveGroup", {});
    EXPECT_EQ(collected, 1);
    QObject::disconnect(connection);
    TarnelData().MaxTime = 5;
    TarnelData().Script = "other";
    press("removeAll");
    addEntry("/new.dwg");
    int refreshed = 0;
    const auto refresh =
        QObject::connect(&TarnelData().Signals, &TarnelSignals::RefreshSignal, qApp, [&] { ++refreshed; });
    inDialog("loadGroup", folder.Path("kept.xml"));
    QObject::disconnect(refresh);
    EXPECT_EQ(title, QStringLiteral("Load Group"));
    EXPECT_EQ(filters, QStringList({QStringLiteral("Tarnel Script Files (*.xml *.grp *.lst *.txt)"),
                                    QStringLiteral("All Files (*)")}));
    EXPECT_EQ(refreshed, 1);
    EXPECT_TRUE(told.isEmpty());
    expectUnchanged();
    EXPECT_EQ(rows(queue()), "One.dwg two.dwg ");
}

TEST_F(GroupDialogTest, OldFormsAreLoaded) {
    folder.Write("LIST.LST", "@comment\r\n/d/Plan.dwg\r\nC:\\Work\\B.DWG\r\n\r\n");
    inDialog("loadGroup", folder.Path("LIST.LST"));
    EXPECT_EQ(queueText(), "/d/Plan.dwg:0 c:\\work\\b.dwg:0 :0 ");
    EXPECT_EQ(queue()->RowCount(), 3);
    folder.Write("clean.scr", "-purge\r\n");
    folder.Write("old.grp", "Tarnel V2 Script File\r\n" + folder.Bytes("clean.scr") +
                                "\r\n30\r\n20\r\n5     /d/Done.dwg\r\n4     /d/next.dwg\r\n");
    inDialog("loadGroup", folder.Path("old.grp"));
    EXPECT_EQ(queueText(), "/d/Done.dwg:1 /d/next.dwg:0 ");
    EXPECT_EQ(TarnelData().MaxTime, 30U);
    EXPECT_EQ(TarnelData().Script, QByteArray("-purge\r\n"));
    folder.Write("DATA.XML",
                 "<TarnelRunner><Files><File Status=\"4\">/d/L.dwg</File></Files></TarnelRunner>");
    inDialog("loadGroup", folder.Path("DATA.XML"));
    EXPECT_EQ(queueText(), "/d/L.dwg:4 ");
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(GroupDialogTest, RefusalsChangeNothing) {
    folder.Write("blank.grp", "Tarnel V2 Script File \r\n");
    inDialog("loadGroup", folder.Path("blank.grp"));
    EXPECT_EQ(told, QStringList(QStringLiteral("Invalid file contents.")));
    expectUnchanged();
    folder.Write("moved.grp", "Tarnel V2.6.5 Script File\r\n/no/where.scr\r\n1\r\n1\r\n4     /d/a.dwg\r\n");
    inDialog("loadGroup", folder.Path("moved.grp"));
    EXPECT_EQ(told, QStringList(QStringLiteral("Invalid script file location.")));
    expectUnchanged();
    for (const char* name : {"gone.lst", "gone.grp", "gone.xml"}) {
        folder.Write(name);
        vanishes = true;
        inDialog("loadGroup", folder.Path(name));
        EXPECT_EQ(told, QStringList(QStringLiteral("Could not open file."))) << name;
        expectUnchanged();
    }
    vanishes = false;
    inDialog("loadGroup", {});
    expectUnchanged();
    inDialog("saveGroup", QStringLiteral("/proc/none.xml"));
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].contains(QStringLiteral("/proc/none.xml"))) << told[0].toStdString();
}

}  // namespace
