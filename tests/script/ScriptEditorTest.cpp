// SPDX-License-Identifier: GPL-3.0-or-later
// The editor by its keys: bytes that go in and come out, and the colours that it shows.
#include "script/ScriptEditor.h"

#include "script/ScriptLexer.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>
#include <random>
#include <vector>

namespace {

class ScriptEditorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        editor.SetUpStyles();
        editor.SetUpAsPage();
        editor.resize(600, 400);
        editor.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&editor));
        editor.setFocus();
    }
    void type(const char* text) { QTest::keyClicks(&editor, QString::fromUtf8(text)); }
    /// The style of each byte, after what a painting asks for.
    std::string styles() {
        editor.grab();
        std::string all;
        const long length = editor.SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
        for (long at = 0; at < length; ++at) {
            all += static_cast<char>('a' + editor.SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT,
                                                                static_cast<unsigned long>(at)));
        }
        return all;
    }
    long color(unsigned int message, int style) {
        return editor.SendScintilla(message, static_cast<unsigned long>(style));
    }

    ScriptEditor editor;
};

TEST_F(ScriptEditorTest, BytesThatAreNoTextStayAsTheyAre) {
    const QByteArray bytes("z\xE4\xFF\xC3\xA4\r\n\x80 e\0x\r\n", 14);
    editor.SetText(bytes);
    QByteArray inside = bytes;
    inside.replace("\r\n", "\r");
    EXPECT_EQ(editor.Text(), inside);
    editor.SendScintilla(QsciScintillaBase::SCI_GOTOPOS, 0UL);
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("ö"));
    QApplication::sendEvent(&editor, &composed);
    QTest::keyClick(&editor, Qt::Key_Return);
    EXPECT_EQ(editor.RecordText(1000), "\xC3\xB6\r\n" + bytes);
    EXPECT_EQ(editor.RecordText(3), QByteArray("\xC3\xB6\r"));
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor.Text(), inside) << "undo ends at the text that was put in";
}

TEST_F(ScriptEditorTest, EveryLineEndIsOne) {
    editor.SetText("a\rb\nc\r\nd\n\re\r\r\n");
    EXPECT_EQ(editor.Text(), QByteArray("a\rb\rc\rd\r\re\r\r"));
    EXPECT_EQ(editor.RecordText(100), QByteArray("a\r\nb\r\nc\r\nd\r\n\r\ne\r\n\r\n"));
    QApplication::clipboard()->setText(QStringLiteral("x\ny"));
    editor.SendScintilla(QsciScintillaBase::SCI_PASTE);
    EXPECT_TRUE(editor.Text().contains("x\ry")) << "also of what is pasted";
}

TEST_F(ScriptEditorTest, TypingColoursWhatIsSeen) {
    type("(setq a 1)");
    QTest::keyClick(&editor, Qt::Key_Return);
    type("zoom");
    EXPECT_EQ(editor.Text(), QByteArray("(setq a 1)\rzoom"));
    EXPECT_EQ(styles(),
              "ldddd"
              "akacl"
              "akkkk");
    // A string opened above changes what stands below it.
    editor.SetText("x\rzoom");
    EXPECT_EQ(styles(), "kakkkk");
    editor.SendScintilla(QsciScintillaBase::SCI_GOTOPOS, 0UL);
    type("\"\\");
    EXPECT_EQ(styles(), "iiiiiiii") << "a string goes on over a line end behind a backslash";
}

TEST_F(ScriptEditorTest, EditsAnywhereLeaveTheColoursOfTheWhole) {
    using S = QsciScintillaBase;
    std::mt19937 random(11);
    const std::string alphabet = "\"\"\"\\\\';( \r\r\rab1";
    for (int round = 0; round < 400; ++round) {
        editor.SetText({});
        for (int edit = 0; edit < 30; ++edit) {
            const auto length = static_cast<unsigned long>(editor.Text().size());
            const unsigned long at = random() % (length + 1);
            if (random() % 3 == 0 && at < length) {
                editor.SendScintilla(S::SCI_DELETERANGE, at, 1L);
            } else {
                const char text[] = {alphabet[random() % alphabet.size()], '\0'};
                editor.SendScintilla(S::SCI_INSERTTEXT, at, text);
            }
            // As a painting does: from where the colours are known, often only as far as a window shows.
            const long known = editor.SendScintilla(S::SCI_GETENDSTYLED);
            const auto shown = static_cast<long>(random() % (length + 2));
            if (shown > known) {
                editor.SendScintilla(S::SCI_COLOURISE, static_cast<unsigned long>(known), shown);
            }
        }
        editor.SendScintilla(S::SCI_COLOURISE,
                             static_cast<unsigned long>(editor.SendScintilla(S::SCI_GETENDSTYLED)), -1L);
        const QByteArray text = editor.Text();
        const auto size = static_cast<std::size_t>(text.size());
        std::vector<ScriptStyle> expected(size);
        LexScript({text.constData(), size}, 0, size, ScriptStyle::Default, expected);
        for (std::size_t at = 0; at < size; ++at) {
            ASSERT_EQ(editor.SendScintilla(S::SCI_GETSTYLEAT, static_cast<unsigned long>(at)),
                      static_cast<long>(expected[at]))
                << text.toPercentEncoding().toStdString() << " at " << at;
        }
    }
}

TEST_F(ScriptEditorTest, ShortcutsAreNoText) {
    editor.SetText("a");
    QTest::keyClick(&editor, 's', Qt::AltModifier);
    QTest::keyClick(&editor, 's', Qt::MetaModifier);
    QTest::keyClick(&editor, 'k', Qt::ControlModifier);
    EXPECT_EQ(editor.Text(), QByteArray("a"));
    // The third level of a keyboard comes with both.
    QTest::keyClick(&editor, '{', Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(editor.Text(), QByteArray("{a"));
}

TEST_F(ScriptEditorTest, TheColoursAreReadableOnEveryDesktop) {
    using S = QsciScintillaBase;
    const std::pair<int, long> table[] = {{0, 0},         {3, 0x800000},  {4, 0xFF00FF},  {2, 0x0000FF},
                                          {8, 0x0000FF},  {10, 0x008000}, {11, 0x800000}, {34, 0x008000},
                                          {35, 0x0000FF}, {1, 0},         {9, 0}};
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    QApplication::setPalette(dark);
    ScriptEditor other;
    other.SetUpStyles("Tahoma", 10);
    for (ScriptEditor* one : {&editor, &other}) {
        for (const auto& [style, foreground] : table) {
            const auto number = static_cast<unsigned long>(style);
            EXPECT_EQ(one->SendScintilla(S::SCI_STYLEGETFORE, number), foreground) << style;
            EXPECT_EQ(one->SendScintilla(S::SCI_STYLEGETBACK, number), 0xFFFFFF) << style;
        }
    }
    EXPECT_EQ(other.SendScintilla(S::SCI_STYLEGETSIZE, 3UL), 10);
    QApplication::setPalette({});
}

TEST_F(ScriptEditorTest, EscapeIsTold) {
    const QSignalSpy escaped(&editor, &ScriptEditor::Escaped);
    type("a");
    QTest::keyClick(&editor, Qt::Key_Left);
    EXPECT_EQ(escaped.size(), 0);
    QTest::keyClick(&editor, Qt::Key_Escape);
    EXPECT_EQ(escaped.size(), 1);
}

}  // namespace
