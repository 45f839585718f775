// SPDX-License-Identifier: GPL-3.0-or-later
// The HTML view off screen: loading, links, form controls, selection, and what broken pages do to it.
#include "html/FormValue.h"
#include "html/HTMLayout.h"
#include "html/HtmlResources.h"
#include "html/HtmlSelector.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>

namespace {

class HTMLayoutTest : public ::testing::Test {
  protected:
    void SetUp() override {
        view.resize(640, 480);
        view.show();
        QCoreApplication::processEvents();
        QObject::connect(&view, &CHTMLayout::OnLinkClick, &view,
                         [this](const QString& href, int*) { clicked << href; });
    }
    QPoint middle(const QString& selector) {
        const QRect box = FindFirst(view.GetRoot(), selector).Box();
        EXPECT_FALSE(box.isEmpty()) << selector.toStdString();
        return box.center() - QPoint(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value());
    }
    void click(const QString& selector) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, middle(selector));
    }
    bool checked(const QString& name) {
        FormValues values;
        GetFormValues(view.GetRoot(), values);
        return values[name].IsTrue();
    }

    CHTMLayout view;
    QStringList clicked;
};

TEST_F(HTMLayoutTest, LinksAreToldAndNothingIsOpened) {
    view.LoadHtml(
        QStringLiteral("<html><body><p>go <a id=one href='logfile:A:b.dwg' title='View log'>there</a>"
                       " <a id=two href='help'><b>inner</b></a></p></body></html>"));
    click(QStringLiteral("#one"));
    click(QStringLiteral("#two b"));
    EXPECT_EQ(clicked, (QStringList{QStringLiteral("logfile:A:b.dwg"), QStringLiteral("help")}));

    clicked.clear();
    const auto connection = QObject::connect(&view, &CHTMLayout::OnHyperlink, &view,
                                             [](HyperlinkEvent&, int& handled) { handled = 1; });
    click(QStringLiteral("#one"));
    EXPECT_TRUE(clicked.isEmpty()) << "a link that was handled went on";
    QObject::disconnect(connection);

    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Tab);
    QTest::keyClick(&view, Qt::Key_Tab);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(clicked, QStringList{QStringLiteral("help")}) << "links can be reached by keyboard";
}

TEST_F(HTMLayoutTest, ScreenReadersGetTheTextAndTheLinks) {
    QAccessible::setActive(true);
    view.LoadHtml(
        QStringLiteral("<html><body><p>see <a href=one title=First>this <b>one</b></a></p>"
                       "<p><a href=two>two</a></p><input type=checkbox name=c></body></html>"));
    QAccessibleInterface* page = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(page, nullptr);
    ASSERT_NE(page->textInterface(), nullptr);
    EXPECT_EQ(page->textInterface()->text(0, page->textInterface()->characterCount()),
              QStringLiteral("see this one\ntwo"));
    const auto links = [page] {
        std::vector<QAccessibleInterface*> all;
        for (int i = 0; i < page->childCount(); ++i) {
            if (page->child(i)->role() == QAccessible::Link) {
                all.push_back(page->child(i));
            }
        }
        return all;
    };
    ASSERT_EQ(links().size(), 2U);
    QAccessibleInterface* first = links()[0];
    EXPECT_EQ(first->text(QAccessible::Name), QStringLiteral("this one"));
    EXPECT_EQ(first->text(QAccessible::Description), QStringLiteral("First"));
    EXPECT_EQ(page->indexOfChild(first), page->childCount() - 2);
    EXPECT_TRUE(view.geometry().contains(first->rect()));
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(page->focusChild(), first);
    links()[1]->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicked, QStringList{QStringLiteral("two")});
    view.LoadHtml(QStringLiteral("<p><a href=three>three</a></p>"));
    ASSERT_EQ(links().size(), 1U);
    EXPECT_EQ(links()[0]->text(QAccessible::Name), QStringLiteral("three"));
    QAccessible::setActive(false);
}

TEST_F(HTMLayoutTest, ASlotMayReplaceThePageWhileItsLinkIsFollowed) {
    QObject::connect(&view, &CHTMLayout::OnLinkClick, &view, [this](const QString&, int*) {
        view.LoadHtml(QStringLiteral("<html><body><p id=second>second</p></body></html>"));
    });
    view.LoadHtml(QStringLiteral("<html><body><a id=one href=x>first</a></body></html>"));
    click(QStringLiteral("#one"));
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("#second")).Text(), QStringLiteral("second"));
}

TEST_F(HTMLayoutTest, LinesEndAtBreaks) {
    view.LoadHtml(
        QStringLiteral("<html><body><span id=one>1</span><br />\n<span id=two>2</span><br />\n"
                       "</body></html>"));
    const QRect one = FindFirst(view.GetRoot(), QStringLiteral("#one")).Box();
    const QRect two = FindFirst(view.GetRoot(), QStringLiteral("#two")).Box();
    EXPECT_GE(two.top(), one.bottom());
    EXPECT_EQ(two.left(), one.left());
}

TEST_F(HTMLayoutTest, MouseBackAndForward) {
    int back = 0;
    int forward = 0;
    QObject::connect(&view, &CHTMLayout::OnXButton1, &view, [&] { ++back; });
    QObject::connect(&view, &CHTMLayout::OnXButton2, &view, [&] { ++forward; });
    view.LoadHtml(QStringLiteral("<p>x</p>"));
    QTest::mouseClick(view.viewport(), Qt::BackButton);
    QTest::mouseClick(view.viewport(), Qt::ForwardButton);
    QTest::mouseClick(view.viewport(), Qt::MiddleButton);
    EXPECT_EQ(back, 1);
    EXPECT_EQ(forward, 1);
}

TEST_F(HTMLayoutTest, SettingsPageRoundTripsThroughItsControls) {
    ASSERT_TRUE(view.LoadHtmlResource(QStringLiteral("SETTINGS")));
    FormValues set;
    set.emplace(QStringLiteral("readonly"), FormValue(true));
    set.emplace(QStringLiteral("warnnosave"), FormValue(QStringLiteral("text")));
    EXPECT_TRUE(SetFormValues(view.GetRoot(), set));
    EXPECT_TRUE(checked(QStringLiteral("readonly")));
    EXPECT_FALSE(checked(QStringLiteral("warnnosave"))) << "a value of another kind unchecks";

    auto* box = view.findChild<QAbstractButton*>(QStringLiteral("recover"));
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->accessibleName().startsWith(QStringLiteral("Perform a NEW instead")));
    QTest::mouseClick(box, Qt::LeftButton);
    EXPECT_TRUE(checked(QStringLiteral("recover")));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_FALSE(checked(QStringLiteral("recover")));

    FindFirst(view.GetRoot(), QStringLiteral("[id=maxtime]")).SetText(QStringLiteral("120"));
    auto* spin = view.findChild<QSpinBox*>(QStringLiteral("maxtime"));
    ASSERT_NE(spin, nullptr);
    EXPECT_EQ(spin->value(), 120);
    EXPECT_EQ(spin->maximum(), 300);
    spin->setValue(7);
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("[id=maxtime]")).Text(), QStringLiteral("7"));

    click(QStringLiteral("[ref=alarmtime]"));
    EXPECT_TRUE(view.findChild<QSpinBox*>(QStringLiteral("alarmtime"))->hasFocus());
}

TEST_F(HTMLayoutTest, ControlsFollowTheirBoxesThroughScrollAndResize) {
    view.LoadHtmlResource(QStringLiteral("settings"));
    view.resize(420, 160);
    QCoreApplication::processEvents();
    auto* spin = view.findChild<QSpinBox*>(QStringLiteral("maxtime"));
    const HtmlElement field = FindFirst(view.GetRoot(), QStringLiteral("#maxtime"));
    ASSERT_GT(view.verticalScrollBar()->maximum(), 40);
    view.verticalScrollBar()->setValue(40);
    EXPECT_EQ(spin->geometry(), field.Box().translated(0, -40));
    spin->setValue(33);
    view.resize(600, 150);
    QCoreApplication::processEvents();
    EXPECT_EQ(spin->geometry(), field.Box().translated(0, -view.verticalScrollBar()->value()));

    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, Qt::black);
    view.setPalette(dark);
    QCoreApplication::processEvents();
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("#maxtime")).Text(), QStringLiteral("33"))
        << "a change of colours must not lose what was entered";
}

TEST_F(HTMLayoutTest, GroupsOfControls) {
    view.LoadHtml(QStringLiteral(
        "<html><body><div><input type=checkbox name=m><input type=checkbox name=m checked>"
        "<input type=checkbox name=m checked></div><div><input type=radio name=r><input type=radio name=r>"
        "</div><input type=hidden name=h value='keep'><input type=strange name=s></body></html>"));
    FormValues values;
    ASSERT_TRUE(GetFormValues(view.GetRoot(), values));
    EXPECT_EQ(values[QStringLiteral("m")].ToInteger(), 6);
    EXPECT_EQ(values[QStringLiteral("r")].GetKind(), FormValue::Undefined);
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("h")].Value), QStringLiteral("keep"));
    EXPECT_EQ(values[QStringLiteral("s")].GetKind(), FormValue::Undefined);
    SetFormValues(view.GetRoot(),
                  {{QStringLiteral("m"), FormValue(1.9)}, {QStringLiteral("r"), FormValue(1)}});
    values.clear();
    GetFormValues(view.GetRoot(), values);
    EXPECT_EQ(values[QStringLiteral("m")].ToInteger(), 1);
    EXPECT_EQ(values[QStringLiteral("r")].ToInteger(), 1);
}

TEST_F(HTMLayoutTest, TextFieldsButtonsAndAreas) {
    QStringList commands, made, gone;
    QObject::connect(&view, &CHTMLayout::OnCommandClick, &view, [&](const HtmlElement& button) {
        commands << button.Attribute(QStringLiteral("name"));
        view.LoadHtml(QStringLiteral("<p>after</p>"));
    });
    QObject::connect(&view, &CHTMLayout::OnCreateControl, &view,
                     [&](const HtmlElement& element, QWidget*) { made << element.Tag(); });
    QObject::connect(&view, &CHTMLayout::OnDestroyControl, &view,
                     [&](const HtmlElement& element, QWidget* widget) {
                         gone << element.Tag();
                         EXPECT_NE(widget, nullptr);
                     });
    view.LoadHtml(
        QStringLiteral("<html><body><p>Name <input name=who value=Ann maxlength=5 title=Name></p>"
                       "<button name=go value=7>Go <b>on</b></button>"
                       "<htmlarea name=area><i>old</i></htmlarea></body></html>"));
    EXPECT_EQ(made, (QStringList{QStringLiteral("input"), QStringLiteral("button")}));
    FormValues values;
    ASSERT_TRUE(GetFormValues(view.GetRoot(), values));
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("who")].Value), QStringLiteral("Ann"));
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("go")].Value), QStringLiteral("7"));
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("area")].Value), QStringLiteral("<i>old</i>"));
    auto* line = view.findChild<QLineEdit*>(QStringLiteral("who"));
    auto* button = view.findChild<QPushButton*>(QStringLiteral("go"));
    ASSERT_TRUE(line != nullptr && button != nullptr);
    EXPECT_EQ(button->text(), QStringLiteral("Go on"));
    EXPECT_EQ(line->geometry(), FindFirst(view.GetRoot(), QStringLiteral("[name=who]")).Box());
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Barbara"));
    SetFormValues(view.GetRoot(), {{QStringLiteral("area"), FormValue(QStringLiteral("<b>new</b>"))},
                                   {QStringLiteral("go"), FormValue(QStringLiteral("9"))}});
    values.clear();
    GetFormValues(view.GetRoot(), values);
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("who")].Value), QStringLiteral("Barba"));
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("go")].Value), QStringLiteral("7"));
    EXPECT_EQ(std::get<QString>(values[QStringLiteral("area")].Value), QStringLiteral("<b>new</b>"));
    SetFormValues(view.GetRoot(), {{QStringLiteral("area"), FormValue(3)}});
    values.clear();
    GetFormValues(view.GetRoot(), values);
    EXPECT_EQ(values[QStringLiteral("area")].GetKind(), FormValue::Undefined);
    EXPECT_TRUE(gone.isEmpty());
    QTest::mouseClick(button, Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_EQ(commands, QStringList{QStringLiteral("go")});
    EXPECT_EQ(gone, (QStringList{QStringLiteral("input"), QStringLiteral("button")}));
    EXPECT_EQ(view.findChild<QLineEdit*>(), nullptr);
}

TEST_F(HTMLayoutTest, ABehaviourOfASlotComesBeforeTheOwnOnes) {
    struct Counter : HtmlBehavior {
        void OnMouseDown(HtmlElement&, const QPoint&) override { ++down; }
        void OnMouseUp(HtmlElement& element, const QPoint& point) override {
            inside += element.Box().contains(point) ? 1 : 0;
        }
        int down = 0;
        int inside = 0;
    } counter;
    QStringList asked;
    QObject::connect(&view, &CHTMLayout::OnAttachBehavior, &view, [&](AttachBehaviorRequest& request) {
        asked << request.Name;
        if (request.Element.Attribute(QStringLiteral("id")) == u"mine") {
            request.Behavior = &counter;
        }
    });
    view.LoadHtml(QStringLiteral(
        "<html><style>.b{behavior:setfocus}#x{behavior:unknown}</style><body>"
        "<p><span id=mine class=b ref=field>mine</span> <span id=own class=b ref=field>own</span>"
        " <span id=x>x</span></p><input id=field type=number maxvalue=9></body></html>"));
    EXPECT_EQ(asked, (QStringList{QStringLiteral("setfocus"), QStringLiteral("setfocus"),
                                  QStringLiteral("unknown")}));
    auto* field = view.findChild<QSpinBox*>(QStringLiteral("field"));
    click(QStringLiteral("#mine"));
    click(QStringLiteral("#x"));
    EXPECT_EQ(counter.down, 1);
    EXPECT_EQ(counter.inside, 1);
    EXPECT_FALSE(field->hasFocus());
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, middle(QStringLiteral("#own")));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, middle(QStringLiteral("#x")));
    EXPECT_FALSE(field->hasFocus()) << "released elsewhere";
    click(QStringLiteral("#own"));
    EXPECT_TRUE(field->hasFocus());
}

TEST_F(HTMLayoutTest, ColoursOfLightPagesAreReadableOnADarkDesktop) {
    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, Qt::white);
    view.setPalette(dark);
    view.LoadHtml(
        QStringLiteral("<html><style>html{background-color:threedface}</style><body><font color=blue size=+4>"
                       "\u2588\u2588</font></body></html>"));
    const QImage picture = view.viewport()->grab().toImage();
    const QColor ground = picture.pixelColor(600, 400);
    EXPECT_EQ(ground, QColor(40, 40, 40));
    int lightest = 0;
    for (int x = 0; x < 100; ++x) {
        lightest = std::max(lightest, picture.pixelColor(x, 25).lightness());
    }
    EXPECT_GT(lightest, 170);
}

TEST_F(HTMLayoutTest, TextCanBeSelectedAndCopied) {
    view.LoadHtml(
        QStringLiteral("<html><body><pre>first line\r\nsecond &lt;line&gt;\r\n\r\nlast</pre></body></html>"));
    view.SelectAll();
    EXPECT_EQ(view.SelectedText(), QStringLiteral("first line\nsecond <line>\nlast"));
    const QRect box = FindFirst(view.GetRoot(), QStringLiteral("pre")).Box();
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, box.topLeft() + QPoint(0, 4));
    QTest::mouseMove(view.viewport(), box.topLeft() + QPoint(400, 4));
    EXPECT_EQ(view.SelectedText(), QStringLiteral("first line"));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, box.topLeft() + QPoint(400, 4));
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, box.topLeft() + QPoint(3, 4));
    EXPECT_EQ(view.SelectedText(), QStringLiteral("first"));
    QContextMenuEvent event(QContextMenuEvent::Mouse, box.topLeft(), view.mapToGlobal(box.topLeft()));
    QApplication::sendEvent(view.viewport(), &event);
    auto* menu = view.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    menu->actions().at(0)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("first"));
    menu->close();
}

TEST_F(HTMLayoutTest, ChildrenAreReplaced) {
    view.LoadHtml(QStringLiteral("<html><body><div id=d><b>old</b></div><p id=p>after</p></body></html>"));
    HtmlElement area = FindFirst(view.GetRoot(), QStringLiteral("#d"));
    area.SetInnerHtml(QStringLiteral("<i title=\"x\">new</i> &amp; more"));
    EXPECT_EQ(area.Text(), QStringLiteral("new & more"));
    EXPECT_EQ(area.InnerHtml(), QStringLiteral("<i title=\"x\">new</i> &amp; more"));
    EXPECT_GT(FindFirst(view.GetRoot(), QStringLiteral("#p")).Box().top(), area.Box().top());
    area.SetText(QStringLiteral("<a>"));
    EXPECT_EQ(area.Text(), QStringLiteral("<a>"));
    view.grab();
}

TEST_F(HTMLayoutTest, MissingThingsChangeNothing) {
    view.LoadHtml(QStringLiteral("<p id=keep>kept</p>"));
    EXPECT_FALSE(view.LoadHtmlResource(QStringLiteral("nowhere")));
    EXPECT_FALSE(view.LoadFile(QStringLiteral("/nowhere/page.html")));
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("#keep")).Text(), QStringLiteral("kept"));
    for (const char* broken : {"", "<", "<html><body><table><td>x<p></table></b>", "<a href=", "&#xFFFFFF;",
                               "<img src='http://nowhere/x.png'><img src=res:globe>"}) {
        view.LoadHtml(QString::fromLatin1(broken));
        view.grab();
    }
    HtmlElement gone;
    {
        CHTMLayout other;
        other.LoadHtml(QStringLiteral("<p id=x>t</p>"));
        gone = FindFirst(other.GetRoot(), QStringLiteral("#x"));
    }
    EXPECT_TRUE(gone.IsNull());
    EXPECT_EQ(gone.Text(), QString());
}

TEST_F(HTMLayoutTest, AddressesOfData) {
    QStringList asked;
    QObject::connect(&view, &CHTMLayout::OnLoadData, &view,
                     [&](LoadDataRequest& request) { asked << request.Uri; });
    view.LoadHtml(
        QStringLiteral("<html><body><img id=a src='RES:Globe'><img id=b src='time'>"
                       "<img id=c src='/etc/passwd'></body></html>"));
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("#a")).Box().width(), 14);
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("#b")).Box().width(), 24);
    EXPECT_EQ(FindFirst(view.GetRoot(), QStringLiteral("#c")).Box().width(), 0);
    EXPECT_TRUE(asked.contains(QStringLiteral("RES:Globe")));
}

TEST(HtmlSelectorTest, Forms) {
    for (const char* bad : {"", ",", "[", "[=x]", "[a='x]", "a,", ".", "#"}) {
        EXPECT_TRUE(ParseHtmlSelector(QString::fromLatin1(bad)).empty()) << bad;
    }
    const HtmlSelector selector = ParseHtmlSelector(QStringLiteral("div .x[a = \"1,2\"] p, #id"));
    ASSERT_EQ(selector.size(), 2U);
    ASSERT_EQ(selector[0].size(), 3U);
    EXPECT_EQ(selector[0][1].Tests[0].Value, QStringLiteral("1,2"));
}

}  // namespace
