// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one control through which the module shows HTML: pages from text, resources and files, links and mouse
// buttons as typed signals, form controls as real widgets over the page. A link does nothing unless a slot
// acts on it; a slot asks for the system's browser by setting an integer. Loading replaces the page as a
// whole.
#include "html/HtmlBehavior.h"
#include "html/HtmlPainter.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <unordered_map>

/// A link that was used. Action 3 is a click.
struct HyperlinkEvent {
    int Action = 3;
    QString Href;
    QString Target;
    HtmlElement Element;
};

/// A page asks for a style sheet or picture. A slot that has the bytes puts them in Data.
struct LoadDataRequest {
    QString Uri;
    QByteArray Data;
};

/// An element of the page names a behaviour. A slot that has one of its own puts it in Behavior.
struct AttachBehaviorRequest {
    QString Name;
    HtmlElement Element;
    HtmlBehavior* Behavior = nullptr;
};

class CHTMLayout : public QAbstractScrollArea, private HtmlPainter {
    Q_OBJECT
  public:
    explicit CHTMLayout(QWidget* parent = nullptr);
    ~CHTMLayout() override;

    bool LoadHtml(const QString& text);
    /// The same for text in the narrow encoding of the system.
    bool LoadHtml(const QByteArray& narrow);
    /// A page of the module by name. False, with the page left as it was, when there is none.
    bool LoadHtmlResource(const QString& name);
    /// A page from a file. False, with the page left as it was, when it cannot be read.
    bool LoadFile(const QString& path);
    HtmlElement GetRoot();

    QString SelectedText() const;
    QSize sizeHint() const override;

    /// All text of the page, a line a line.
    QString PageText();
    /// Counts the pages shown, so that what was taken from one is known to be old.
    int PageNumber() const { return pageNumber; }
    /// The links of the page in order.
    std::vector<HtmlElement> Links();
    HtmlElement FocusedLink() const { return focusedLink; }
    void FocusLink(const HtmlElement& link);
    /// What a click on the link does.
    void FollowLink(const HtmlElement& link);
    /// A box in page coordinates as it stands on the screen.
    QRect OnScreen(const QRect& box) const;

    /// Box of an element in page coordinates.
    static QRect ElementBox(const litehtml::element::ptr& element);
    /// Replaces what stands inside an element, and lays the page out again.
    void ReplaceChildren(const litehtml::element::ptr& element, const QString& html);

  public Q_SLOTS:
    void Copy();
    void SelectAll();

  Q_SIGNALS:
    void OnLinkClick(const QString& href, int* openExternally);
    void OnHyperlink(HyperlinkEvent& event, int& handled);
    /// A push button of the page was used.
    void OnCommandClick(const HtmlElement& button);
    /// The widget of a form control was made, or is about to go.
    void OnCreateControl(const HtmlElement& element, QWidget* widget);
    void OnDestroyControl(const HtmlElement& element, QWidget* widget);
    void OnLoadData(LoadDataRequest& request);
    void OnAttachBehavior(AttachBehaviorRequest& request);
    void OnXButton1();
    void OnXButton2();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

  private:
    // What the page engine asks of its container beyond painting.
    void set_caption(const char*) override {}
    void set_base_url(const char*) override {}
    void link(const std::shared_ptr<litehtml::document>&, const litehtml::element::ptr&) override {}
    void on_anchor_click(const char* url, const litehtml::element::ptr& element) override;
    void set_cursor(const char* cursor) override;
    void import_css(std::string& text, const std::string& url, std::string& baseUrl) override;
    void get_client_rect(litehtml::position& client) const override;
    litehtml::element::ptr create_element(const char* tag, const litehtml::string_map& attributes,
                                          const std::shared_ptr<litehtml::document>& document) override;

    QByteArray loadData(const QString& uri);
    void load();
    void layOut();
    void placeControls();
    /// Lists the controls and behaviours of the page anew, and tells of controls that have gone.
    void gatherControls();
    void collectControls(const litehtml::element::ptr& element);
    HtmlBehavior* behaviorOf(const HtmlElement& element) const;
    void paintSelection(QPainter& painter, const QRect& area);
    void useLink(const QString& href, const HtmlElement& element);
    void redraw(const litehtml::position::vector& boxes);
    QPoint toPage(const QPoint& point) const;
    HtmlElement elementAt(const QPoint& viewportPoint) const;
    HtmlElement withAttribute(HtmlElement element, const QString& name) const;
    QString textBetween(std::pair<int, int> from, std::pair<int, int> to) const;
    /// Position in the text of the page nearest to a point of it.
    std::pair<int, int> textPosition(const QPoint& pagePoint);
    const std::vector<HtmlTextRun>& textRuns();

    litehtml::context context;
    litehtml::document::ptr document;
    QString source;
    std::vector<litehtml::element::ptr> controls;
    std::unordered_map<litehtml::element*, HtmlBehavior*> behaviors;
    std::vector<HtmlTextRun> runs;
    bool runsKnown = false;
    int pageNumber = 0;
    bool selecting = false;
    std::pair<int, int> anchor = {-1, 0};
    std::pair<int, int> caret = {-1, 0};
    QBasicTimer selectionScroll;
    bool reachedByKey = false;
    HtmlElement pressed;
    HtmlElement focusedLink;
};
