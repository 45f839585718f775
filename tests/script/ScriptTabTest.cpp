// SPDX-License-Identifier: GPL-3.0-or-later
// The page of the script by keys and mouse: typed, saved, loaded, changed outside, and every question both
// ways.
#include "engine/record/TarnelData.h"
#include "html/HTMLayout.h"
#include "script/ScriptEditor.h"
#include "script/ScriptTab.h"
#include "tests/files/Folder.h"
#include "tests/files/Language.h"
#include "tests/recording/RecordingHost.h"
#include "widgets/XPStyleButton.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

/// A desktop on which one click opens what a list shows.
class OneClick : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_ItemView_ActivateItemOnSingleClick
                   ? 1
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

class ScriptTabTest : public ::testing::Test {
  protected:
    void SetUp() override {
        RecordingHost::Get().Reset();
        ResetTarnelData();
        CTarnelData& data = TarnelData();
        data.ModuleDir = folder.Path("module/");
        data.DataDir = folder.Path("data");
        folder.Make("module/Scripts");
        folder.Make("data");
    }
    void TearDown() override {
        tab.reset();
        ResetTarnelData();
    }
    void open() {
        tab = std::make_unique<ScriptTab>();
        tab->resize(900, 500);
        tab->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(tab.get()));
        editor()->setFocus();
    }
    ScriptEditor* editor() const { return tab->findChild<ScriptEditor*>(); }
    QListWidget* scripts() const { return tab->findChild<QListWidget*>(); }
    CXPStyleButtonST* button(const char* name) const {
        return tab->findChild<CXPStyleButtonST*>(QLatin1String(name));
    }
    QString text(const char* name) const { return tab->findChild<QLineEdit*>(QLatin1String(name))->text(); }
    std::string strip() const {
        return tab->findChild<CHTMLayout*>(QStringLiteral("modified"))->PageText().trimmed().toStdString();
    }
    void type(const char* what) { QTest::keyClicks(editor(), QString::fromUtf8(what)); }
    static void collect() { Q_EMIT TarnelData().Signals.CollectSignal(); }
    QByteArray content(const char* name) const {
        QFile file(folder.Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
    }
    /// Runs something that asks, one box after the other, with the answers given; the boxes go into asked.
    void answer(std::vector<QMessageBox::StandardButton> answers, const std::function<void()>& action) {
        asked.clear();
        QTimer clock;
        std::size_t next = 0;
        QObject::connect(&clock, &QTimer::timeout, qApp, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr) {
                return;
            }
            asked.push_back(box->windowTitle().toStdString() + '|' + box->text().left(40).toStdString() +
                            '|' +
                            (box->standardButton(box->defaultButton()) == QMessageBox::Yes ? "yes" : "no"));
            const bool more = next < answers.size();
            EXPECT_TRUE(more) << "a question too many: " << asked.back();
            QTest::mouseClick(box->button(more ? answers[next] : QMessageBox::No), Qt::LeftButton);
            ++next;
        });
        clock.start(5);
        action();
        EXPECT_EQ(next, answers.size());
    }
    void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
    /// Presses a button that asks for a file, and names one.
    void inDialog(const char* name, const QString& path) {
        QTimer::singleShot(20, qApp, [this, path] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            place = dialog->directory().path();
            filters = dialog->nameFilters();
            dialog->findChild<QLineEdit*>()->setText(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        click(name);
    }
    std::string listed() const {
        std::string all;
        for (int row = 0; row < scripts()->count(); ++row) {
            all += scripts()->item(row)->text().toStdString() +
                   (scripts()->item(row)->isSelected() ? "*, " : ", ");
        }
        return all;
    }
    void clickScript(const char* title) {
        for (QListWidgetItem* item : scripts()->findItems(QString::fromUtf8(title), Qt::MatchExactly)) {
            QTest::mouseClick(scripts()->viewport(), Qt::LeftButton, {},
                              scripts()->visualItemRect(item).center());
        }
    }

    static constexpr auto Yes = QMessageBox::Yes;
    static constexpr auto No = QMessageBox::No;
    Folder folder;
    std::unique_ptr<ScriptTab> tab;
    std::vector<std::string> asked;
    QString place;
    QStringList filters;
};

TEST_F(ScriptTabTest, TypedAndSavedUnderANameAndLoadedAgain) {
    open();
    EXPECT_EQ(strip(), "");
    EXPECT_FALSE(button("save")->isEnabled());
    type("zoom");
    QTest::keyClick(editor(), Qt::Key_Return);
    type("e");
    EXPECT_EQ(strip(), "---------------Script Modified---------------");
    EXPECT_TRUE(button("save")->isEnabled());
    click("save");
    EXPECT_TRUE(TarnelData().ScriptModified()) << "without a file there is nowhere to save to";
    QTest::keyClicks(tab->findChild<QLineEdit*>(QStringLiteral("description")), QStringLiteral("Zooms"));
    inDialog("saveAs", folder.Path("my.scr"));
    EXPECT_EQ(place, folder.Path("module/Scripts"));
    EXPECT_EQ(filters,
              (QStringList{QStringLiteral("Script Files (*.scr)"), QStringLiteral("All Files (*)")}));
    EXPECT_EQ(content("my.scr"), QByteArray(";DESCRIPTION:Zooms\r\nzoom\r\ne"));
    EXPECT_EQ(TarnelData().Script, QByteArray("zoom\r\ne"));
    EXPECT_EQ(TarnelData().LastScriptFile, folder.Path("my.scr"));
    EXPECT_EQ(text("fileName"), folder.Path("my.scr"));
    EXPECT_EQ(strip(), "");

    folder.Write("my.scr", ";DESCRIPTION:Changed outside\r\nregen\r\n");
    Q_EMIT TarnelData().Signals.RefreshSignal();
    EXPECT_EQ(text("description"), QStringLiteral("Changed outside"));
    EXPECT_EQ(editor()->Text(), QByteArray("regen\r"));
    EXPECT_FALSE(TarnelData().ScriptModified()) << "what the program does itself is no change";
    // A change of the user's own wins over the file.
    type("x");
    folder.Write("my.scr", "lost\r\n");
    answer({No}, collect);
    Q_EMIT TarnelData().Signals.RefreshSignal();
    EXPECT_EQ(editor()->Text(), QByteArray("xregen\r"));
    EXPECT_EQ(content("my.scr"), QByteArray("lost\r\n"));
    answer({Yes}, collect);
    EXPECT_EQ(asked.front(), "Save Script?|You have made modifications to the scrip|yes");
    EXPECT_EQ(content("my.scr"), QByteArray(";DESCRIPTION:Changed outside\r\nxregen\r\n"));
    EXPECT_FALSE(TarnelData().ScriptModified());
    answer({}, collect);
}

TEST_F(ScriptTabTest, SaveAsksAndWritesWhicheverTheAnswer) {
    folder.Write("s.scr", "zoom\r\n");
    TarnelData().LastScriptFile = folder.Path("s.scr");
    open();
    for (const auto& reply : {Yes, No}) {
        type("a");
        answer({reply}, [&] { click("save"); });
        EXPECT_FALSE(TarnelData().ScriptModified());
    }
    EXPECT_EQ(content("s.scr"), QByteArray(";DESCRIPTION:\r\naazoom\r\n"));
    EXPECT_EQ(editor()->Text(), QByteArray("aazoom\r")) << "line ends in the editor stay CR";
}

TEST_F(ScriptTabTest, NewAndLoadAskBeforeTheyDiscard) {
    folder.Write("s.scr", ";DESCRIPTION:One\nzoom\n");
    TarnelData().LastScriptFile = folder.Path("s.scr");
    open();
    type("a");
    answer({No}, [&] { click("newScript"); });
    EXPECT_EQ(asked.front(), "Load Script|Changes have been made to the script. Do|no");
    EXPECT_EQ(editor()->Text(), QByteArray("azoom\r"));
    answer({No}, [&] { click("load"); });
    EXPECT_EQ(editor()->Text(), QByteArray("azoom\r"));
    answer({Yes}, [&] { click("newScript"); });
    EXPECT_EQ(editor()->Text() + text("description").toUtf8() + text("fileName").toUtf8(), QByteArray());
    EXPECT_FALSE(TarnelData().ScriptModified());
    inDialog("load", folder.Path("s.scr"));
    EXPECT_EQ(text("description"), QStringLiteral("One"));
    EXPECT_EQ(editor()->Text(), QByteArray("zoom\r"));
    EXPECT_EQ(text("fileName"), folder.Path("s.scr"));
}

TEST_F(ScriptTabTest, FilesThatAreNotAsTheyShouldBe) {
    open();
    folder.Write("open.scr", ";DESCRIPTION:never closed");
    tab->LoadScript(folder.Path("open.scr"));
    EXPECT_EQ(text("description"), QString());
    EXPECT_EQ(editor()->Text(), QByteArray(";DESCRIPTION:never closed"));
    tab->LoadScript(folder.Path("gone.scr"));
    EXPECT_EQ(editor()->Text(), QByteArray());
    EXPECT_EQ(text("fileName"), folder.Path("gone.scr"));
    EXPECT_FALSE(TarnelData().ScriptModified());
    // Bytes that are no text come out of an edit elsewhere as they went in.
    folder.Write("old.scr",
                 "-layer m Stra\xDF"
                 "e\r\n\r\n");
    tab->LoadScript(folder.Path("old.scr"));
    type(" ");
    answer({Yes}, [&] { click("save"); });
    EXPECT_EQ(content("old.scr"), QByteArray(";DESCRIPTION:\r\n -layer m Stra\xDF"
                                             "e\r\n\r\n"));
    // A long script is cut.
    const QByteArray longOne(150000, 'x');
    folder.Write("long.scr", longOne);
    tab->LoadScript(folder.Path("long.scr"));
    collect();
    EXPECT_EQ(TarnelData().Script.size(), 99999);
    EXPECT_EQ(editor()->Text().size(), 150000);
    folder.Make("folder.scr");
    TarnelData().LastScriptFile = folder.Path("folder.scr");
    type("y");
    answer({Yes}, [&] { click("save"); });
    EXPECT_FALSE(TarnelData().ScriptModified()) << "cannot be written, and nothing says so";
}

TEST_F(ScriptTabTest, ReadyScriptsAreListedLoadedAndRefused) {
    folder.Write("module/Scripts/b.scr", ";DESCRIPTION:   Zoom and save\r\nzoom\r\n");
    folder.Write("module/Scripts/A.SCR", "regen\r\n");
    folder.Write("module/Scripts/c.txt", "no\r\n");
    folder.Write("data/Scripts/mine.scr", ";DESCRIPTION:Mine\nqsave\n");
    TarnelData().LastScriptFile = folder.Path("module/Scripts/b.scr");
    open();
    EXPECT_EQ(listed(), "A, Mine, Zoom and save*, ");
    clickScript("A");
    EXPECT_EQ(editor()->Text(), QByteArray("regen\r"));
    EXPECT_EQ(TarnelData().LastScriptFile, folder.Path("module/Scripts/A.SCR"));
    editor()->setFocus();
    type("x");
    answer({No}, [&] { clickScript("Mine"); });
    EXPECT_EQ(asked.front(), "Abort Changes?|The script has been modified.\nAbort chan|yes");
    EXPECT_EQ(listed(), "A*, Mine, Zoom and save, ");
    EXPECT_EQ(editor()->Text(), QByteArray("xregen\r"));
    // After a new list the entries lead to the same files.
    tab->FillQuickScripts();
    answer({Yes}, [&] { clickScript("Mine"); });
    EXPECT_EQ(editor()->Text(), QByteArray("qsave\r"));
    EXPECT_EQ(TarnelData().LastScriptFile, folder.Path("data/Scripts/mine.scr"));
}

TEST_F(ScriptTabTest, OneClickAsksOnceOnEveryDesktop) {
    for (const char* name : {"module/Scripts/a.scr", "module/Scripts/B.scr", "module/Scripts/c.scr"}) {
        folder.Write(name, "regen\r\n");
    }
    OneClick style;
    TarnelData().LastScriptFile = folder.Path("module/Scripts/a.scr");
    open();
    EXPECT_EQ(listed(), "a*, B, c, ") << "whatever the case of the letters";
    scripts()->setStyle(&style);
    type("x");
    answer({No}, [&] { clickScript("B"); });
    answer({Yes}, [&] { clickScript("c"); });
    EXPECT_EQ(editor()->Text(), QByteArray("regen\r"));
    scripts()->setStyle(nullptr);
}

TEST_F(ScriptTabTest, FilesOfOtherSystemsAreRead) {
    const QByteArray utf8 =
        ";DESCRIPTION:Stra\xC3\x9F"
        "e\r\n-layer m W\xC3\xA4nde\r\n";
    const QString description = QString::fromUtf8(
        "Stra\xC3\x9F"
        "e");
    const QString text16 = QString::fromUtf8(utf8);
    const QByteArray wide(reinterpret_cast<const char*>(text16.utf16()), text16.size() * 2);
    QByteArray page = utf8;
    page.replace("\xC3\x9F", "\xDF").replace("\xC3\xA4", "\xE4");
    const struct {
        QByteArray File;
        QByteArray Text;
    } cases[] = {
        {utf8, "-layer m W\xC3\xA4nde\r"},
        {"\xEF\xBB\xBF" + utf8, "-layer m W\xC3\xA4nde\r"},
        {"\xFF\xFE" + wide, "-layer m W\xC3\xA4nde\r"},
        {page, "-layer m W\xE4nde\r"},
    };
    for (const auto& one : cases) {
        folder.Write("module/Scripts/s.scr", one.File);
        open();
        // UTF-16 is listed by its name, as are files without a description.
        const bool isWide = one.File.startsWith('\xFF');
        EXPECT_EQ(scripts()->item(0)->text(), isWide ? QStringLiteral("s") : description);
        tab->LoadScript(folder.Path("module/Scripts/s.scr"));
        EXPECT_EQ(text("description"), description);
        EXPECT_EQ(editor()->Text(), one.Text);
        type("z");
        answer({Yes}, [&] { click("save"); });
        EXPECT_EQ(content("module/Scripts/s.scr"),
                  ";DESCRIPTION:Stra\xC3\x9F"
                  "e\r\nz" +
                      one.Text + '\n');
    }
}

TEST_F(ScriptTabTest, AScriptThatIsInstalledMeanwhileShows) {
    open();
    EXPECT_EQ(listed(), "");
    folder.Write("data/Scripts/new.scr", "zoom\r\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return listed() == "new, "; }, 5000));
    folder.Write("data/Scripts/second.scr", "zoom\r\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return listed() == "new, second, "; }, 5000));
    folder.Write("module/Scripts/other.scr", "zoom\r\n");
    QTest::qWait(500);
    EXPECT_EQ(listed(), "new, second, ") << "the module's folder is followed on request";
    TarnelData().DoDirRefresh = true;
    open();
    EXPECT_EQ(listed(), "new, other, second, ");
    folder.Remove("module/Scripts/other.scr");
    EXPECT_TRUE(QTest::qWaitFor([&] { return listed() == "new, second, "; }, 5000));
}

TEST_F(ScriptTabTest, WhatIsShownOfWhitespaceIsKept) {
    TarnelData().ShowEOL = 0;
    open();
    const auto isShown = [&](unsigned int message) { return editor()->SendScintilla(message) != 0; };
    auto* lineEnds = tab->findChild<QCheckBox*>(QStringLiteral("showLineEnds"));
    auto* whitespace = tab->findChild<QCheckBox*>(QStringLiteral("showWhitespace"));
    EXPECT_FALSE(isShown(QsciScintillaBase::SCI_GETVIEWEOL));
    EXPECT_TRUE(isShown(QsciScintillaBase::SCI_GETVIEWWS));
    lineEnds->click();
    whitespace->click();
    EXPECT_TRUE(isShown(QsciScintillaBase::SCI_GETVIEWEOL));
    EXPECT_FALSE(isShown(QsciScintillaBase::SCI_GETVIEWWS));
    EXPECT_EQ(TarnelData().ShowEOL, 0) << "until the page is gathered";
    collect();
    EXPECT_EQ(TarnelData().ShowEOL, 1);
    EXPECT_EQ(TarnelData().ShowWhitespace, 0);
    EXPECT_FALSE(TarnelData().ScriptModified());
}

TEST_F(ScriptTabTest, EscapeInTheTextIsTheCloseButton) {
    open();
    const QSignalSpy wanted(tab.get(), &ScriptTab::CloseWanted);
    type("a");
    QTest::keyClick(editor(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_EQ(wanted.size(), 1);
}

TEST_F(ScriptTabTest, ADamagedScriptIsShownAndNotStepped) {
    const Language japanese("ja_JP.UTF-8");
    folder.Write("module/Scripts/s.scr", "zoom e\r\n-layer m \x85\r\n");
    open();
    const QSignalSpy wanted(tab.get(), &ScriptTab::CloseWanted);
    tab->LoadScript(folder.Path("module/Scripts/s.scr"));
    EXPECT_EQ(editor()->Text(), QByteArray("zoom e\r-layer m \x85\r"));
    answer({QMessageBox::Ok}, [&] { click("stepThru"); });
    EXPECT_NE(asked.back().find("No line is sent. In the script: line 2"), std::string::npos) << asked.back();
    EXPECT_EQ(wanted.size(), 0);
    EXPECT_FALSE(TarnelData().DebugRequested);
}

TEST_F(ScriptTabTest, ANarrowPageKeepsItsButtonsApart) {
    open();
    for (const int width : {1200, 780, 600, 1200}) {
        tab->resize(width, 400);
        QCoreApplication::processEvents();
        QRect last;
        for (const char* name : {"newScript", "load", "save", "saveAs", "stepThru", "capture"}) {
            const QRect place = button(name)->geometry();
            EXPECT_GT(place.left(), last.right()) << name << " at " << width;
            EXPECT_LT(place.right(), scripts()->x()) << name << " at " << width;
            last = place;
        }
    }
}

}  // namespace
