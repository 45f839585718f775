// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HTMLayout.h"

#include "html/HtmlAccessible.h"
#include "html/HtmlResources.h"

#include <QFile>
#include <QPainter>
#include <QPaintEvent>
#include <QPushButton>
#include <QScrollBar>

namespace {

// Defaults of the elements that the module's pages use.
constexpr const char* MasterStyle = R"css(
html { display: block; height: 100%; width: 100%; position: relative; }
head, style, script, title, meta, link, base { display: none; }
body { display: block; margin: 8px; color: windowtext; }
div, htmlarea, p, h1, h2, h3, h4, ul, ol, form, center, hr, pre, blockquote, dl { display: block; }
p { margin: 1em 0; }
h1 { font-size: 2em; font-weight: bold; margin: .67em 0; }
h2 { font-size: 1.5em; font-weight: bold; margin: .75em 0; }
h3 { font-size: 1.17em; font-weight: bold; margin: .83em 0; }
h4 { font-weight: bold; margin: 1.12em 0; }
b, strong { font-weight: bold; }
i, em { font-style: italic; }
u { text-decoration: underline; }
small { font-size: .83em; }
big { font-size: 1.17em; }
center { text-align: center; }
a { color: linktext; text-decoration: underline; cursor: pointer; }
ul, ol { margin: 1em 0; padding-left: 40px; }
ul { list-style-type: disc; }
ol { list-style-type: decimal; }
li { display: list-item; }
hr { margin: .5em 0; border-top: 1px solid graytext; height: 0; }
pre { font-family: monospace; white-space: pre; margin: 1em 0; }
tt, code { font-family: monospace; }
table { display: table; border-collapse: separate; border-spacing: 2px; }
tr { display: table-row; }
td, th { display: table-cell; padding: 1px; vertical-align: inherit; }
th { font-weight: bold; text-align: center; }
br, img, input, button { display: inline-block; }
)css";

/// Line ends inside <pre> become marks, see PreLineEnd.
QString markPreLineEnds(const QString& html) {
    QString marked;
    marked.reserve(html.size());
    qsizetype at = 0;
    while (true) {
        const qsizetype begin = html.indexOf(QLatin1String("<pre"), at, Qt::CaseInsensitive);
        if (begin < 0) {
            break;
        }
        qsizetype end = html.indexOf(QLatin1String("</pre"), begin, Qt::CaseInsensitive);
        if (end < 0) {
            end = html.size();
        }
        qsizetype text = html.indexOf(u'>', begin);
        text = text < 0 || text > end ? end : text + 1;
        marked += QStringView(html).mid(at, text - at);
        QString inside = html.mid(text, end - text);
        inside.remove(u'\r');
        if (inside.startsWith(u'\n')) {
            inside.remove(0, 1);
        }
        inside.replace(u'\n', QChar(PreLineEnd));
        marked += inside;
        at = end;
    }
    marked += QStringView(html).mid(at);
    return marked;
}

}  // namespace

CHTMLayout::CHTMLayout(QWidget* parent) : QAbstractScrollArea(parent), HtmlPainter(this) {
    context.load_master_stylesheet(MasterStyle);
    InstallHtmlAccessible();
    ImageData = [this](const QString& uri) { return loadData(uri); };
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setAutoFillBackground(true);
    verticalScrollBar()->setSingleStep(fontMetrics().height());
}

CHTMLayout::~CHTMLayout() {
    behaviors.clear();
    controls.clear();
    document.reset();
}

bool CHTMLayout::LoadHtml(const QString& text) {
    source = text;
    load();
    return true;
}

bool CHTMLayout::LoadHtml(const QByteArray& narrow) {
    return LoadHtml(QString::fromLocal8Bit(narrow));
}

bool CHTMLayout::LoadHtmlResource(const QString& name) {
    const QByteArray page = FindHtmlResource(name, HtmlResourceKind::Page);
    return !page.isEmpty() && LoadHtml(QString::fromUtf8(page));
}

bool CHTMLayout::LoadFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    return LoadHtml(QString::fromUtf8(file.readAll()));
}

std::vector<HtmlElement> CHTMLayout::Links() {
    return Select(GetRoot(), QStringLiteral("a[href]"));
}

QRect CHTMLayout::OnScreen(const QRect& box) const {
    const QRect shown = box.translated(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
    return {viewport()->mapToGlobal(shown.topLeft()), shown.size()};
}

HtmlElement CHTMLayout::GetRoot() {
    return document ? HtmlElement(this, document->root()) : HtmlElement();
}

QSize CHTMLayout::sizeHint() const {
    return document ? QSize(document->width(), document->height()) : QAbstractScrollArea::sizeHint();
}

void CHTMLayout::load() {
    ++pageNumber;
    runs.clear();
    runsKnown = false;
    anchor = caret = {-1, 0};
    pressed = focusedLink = HtmlElement();
    selecting = false;
    selectionScroll.stop();
    forgetImages();
    // The page before lives until its controls have been told of.
    const litehtml::document::ptr before = document;
    document =
        litehtml::document::createFromUTF8(markPreLineEnds(source).toUtf8().constData(), this, &context);
    horizontalScrollBar()->setValue(0);
    verticalScrollBar()->setValue(0);
    gatherControls();
    layOut();
}

void CHTMLayout::gatherControls() {
    const std::vector<litehtml::element::ptr> before = std::exchange(controls, {});
    behaviors.clear();
    if (document) {
        collectControls(document->root());
    }
    for (const litehtml::element::ptr& element : before) {
        QWidget* field = dynamic_cast<HtmlControl&>(*element).ExistingWidget();
        if (field != nullptr && std::find(controls.begin(), controls.end(), element) == controls.end()) {
            Q_EMIT OnDestroyControl(HtmlElement(this, element), field);
        }
    }
}

void CHTMLayout::collectControls(const litehtml::element::ptr& element) {
    if (dynamic_cast<HtmlControl*>(element.get()) != nullptr) {
        controls.push_back(element);
    }
    const HtmlElement handle(this, element);
    if (const QString name = handle.Style(QStringLiteral("behavior")); !name.isEmpty()) {
        AttachBehaviorRequest request{name, handle};
        Q_EMIT OnAttachBehavior(request);
        HtmlBehavior* behavior = request.Behavior != nullptr ? request.Behavior : FindHtmlBehavior(name);
        if (behavior != nullptr) {
            behaviors.emplace(element.get(), behavior);
        }
    }
    const auto count = static_cast<int>(element->get_children_count());
    for (int i = 0; i < count; ++i) {
        collectControls(element->get_child(i));
    }
}

void CHTMLayout::layOut() {
    if (!document) {
        return;
    }
    runsKnown = false;
    document->render(viewport()->width());
    const QSize page(document->width(), document->height());
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, page.height() - viewport()->height()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setRange(0, std::max(0, page.width() - viewport()->width()));
    placeControls();
    // A page without anything to follow or to scroll is no stop of the keyboard.
    const bool stop = verticalScrollBar()->maximum() > 0 || horizontalScrollBar()->maximum() > 0 ||
                      !FindFirst(GetRoot(), QStringLiteral("a[href]")).IsNull();
    setFocusPolicy(stop ? Qt::StrongFocus : Qt::ClickFocus);
    viewport()->update();
}

void CHTMLayout::placeControls() {
    QWidget* before = this;
    for (const litehtml::element::ptr& element : controls) {
        auto& control = dynamic_cast<HtmlControl&>(*element);
        const bool made = control.ExistingWidget() == nullptr;
        QWidget* field = control.ControlWidget(viewport());
        if (made) {
            const HtmlElement handle(this, element);
            field->installEventFilter(this);
            // Queued, since what follows from a button may replace the page that it stands on.
            if (auto* button = qobject_cast<QPushButton*>(field)) {
                connect(
                    button, &QPushButton::clicked, this, [this, handle] { Q_EMIT OnCommandClick(handle); },
                    Qt::QueuedConnection);
            }
            Q_EMIT OnCreateControl(handle, field);
        }
        field->setGeometry(
            ElementBox(element).translated(-horizontalScrollBar()->value(), -verticalScrollBar()->value()));
        field->show();
        if (made || before != this) {
            QWidget::setTabOrder(before, field);
        }
        before = field;
    }
}

HtmlBehavior* CHTMLayout::behaviorOf(const HtmlElement& element) const {
    const auto found = behaviors.find(element.Native().get());
    return found == behaviors.end() ? nullptr : found->second;
}

QRect CHTMLayout::ElementBox(const litehtml::element::ptr& element) {
    const litehtml::position place = element->get_placement();
    const litehtml::margins padding = element->get_paddings();
    const litehtml::margins border = element->get_borders();
    if (place.width > 0 || place.height > 0) {
        return {place.x - padding.left - border.left, place.y - padding.top - border.top,
                place.width + padding.width() + border.width(),
                place.height + padding.height() + border.height()};
    }
    // An inline element has no box of its own: its boxes stand in the nearest element that is not inline.
    litehtml::position::vector boxes;
    element->get_inline_boxes(boxes);
    litehtml::element::ptr outer = element->parent();
    while (outer && outer->get_display() == litehtml::display_inline) {
        outer = outer->parent();
    }
    const litehtml::position origin = outer ? outer->get_placement() : litehtml::position();
    QRect all;
    for (const litehtml::position& box : boxes) {
        all |= toRect(box).translated(origin.x, origin.y);
    }
    return all;
}

void CHTMLayout::ReplaceChildren(const litehtml::element::ptr& element, const QString& html) {
    element->clearRecursive();
    document->append_children_from_utf8(*element, markPreLineEnds(html).toUtf8().constData());
    // The engine parses a whole page and hangs its html element in; only what stands in the body is wanted.
    litehtml::element::ptr body;
    const litehtml::element::ptr wrapper =
        element->get_children_count() > 0 ? element->get_child(0) : litehtml::element::ptr();
    if (wrapper) {
        const auto count = static_cast<int>(wrapper->get_children_count());
        for (int i = 0; i < count; ++i) {
            if (wrapper->get_child(i)->is_body()) {
                body = wrapper->get_child(i);
            }
        }
    }
    if (body) {
        std::vector<litehtml::element::ptr> moved;
        const auto count = static_cast<int>(body->get_children_count());
        moved.reserve(body->get_children_count());
        for (int i = 0; i < count; ++i) {
            moved.push_back(body->get_child(i));
        }
        for (const auto& child : moved) {
            body->removeChild(child);
            element->appendChild(child);
        }
        element->removeChild(wrapper);
    }
    element->parse_styles(true);
    ++pageNumber;
    gatherControls();
    layOut();
}

litehtml::element::ptr CHTMLayout::create_element(const char* tag, const litehtml::string_map& attributes,
                                                  const std::shared_ptr<litehtml::document>& owner) {
    return MakeHtmlElement(QString::fromUtf8(tag), attributes, owner, this);
}

QByteArray CHTMLayout::loadData(const QString& uri) {
    LoadDataRequest request{uri, {}};
    Q_EMIT OnLoadData(request);
    if (!request.Data.isEmpty()) {
        return request.Data;
    }
    QString name = uri.toLower();
    // A style sheet is looked up by its whole address, "res:" included.
    if (name.contains(QLatin1String(".css"))) {
        return FindHtmlResource(name, HtmlResourceKind::Page);
    }
    if (name.startsWith(QLatin1String("res:"))) {
        name.remove(0, 4);
    }
    return FindHtmlResource(name, HtmlResourceKind::Data);
}

void CHTMLayout::import_css(std::string& text, const std::string& url, std::string& /*baseUrl*/) {
    text = loadData(QString::fromStdString(url)).toStdString();
}

void CHTMLayout::get_client_rect(litehtml::position& client) const {
    client = litehtml::position(0, 0, viewport()->width(), viewport()->height());
}

void CHTMLayout::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), palette().color(QPalette::Base));
    if (!document) {
        return;
    }
    const int x = -horizontalScrollBar()->value();
    const int y = -verticalScrollBar()->value();
    litehtml::position clip(event->rect().x(), event->rect().y(), event->rect().width(),
                            event->rect().height());
    document->draw(reinterpret_cast<litehtml::uint_ptr>(&painter), x, y, &clip);
    if (anchor.first >= 0 && anchor != caret) {
        paintSelection(painter, event->rect().translated(-x, -y));
    }
    if (!focusedLink.IsNull() && hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
        painter.drawRect(focusedLink.Box().translated(x, y).adjusted(-2, -1, 1, 1));
    } else if (reachedByKey && hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
        painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
    }
}

void CHTMLayout::paintSelection(QPainter& painter, const QRect& area) {
    const auto [from, to] = std::minmax(anchor, caret);
    const std::vector<HtmlTextRun>& all = textRuns();
    const QPalette::ColorGroup group = hasFocus() ? QPalette::Active : QPalette::Inactive;
    painter.translate(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
    for (int i = from.first; i <= to.first && i < static_cast<int>(all.size()); ++i) {
        const HtmlTextRun& run = all[static_cast<std::size_t>(i)];
        if (!run.Box.intersects(area)) {
            continue;
        }
        const QFontMetrics metrics(run.Font, this);
        const int left = i == from.first ? metrics.horizontalAdvance(run.Text.left(from.second)) : 0;
        int right = i == to.first ? metrics.horizontalAdvance(run.Text.left(to.second)) : run.Box.width();
        // The blank up to the next word of the line belongs to the selection too.
        if (i < to.first) {
            const QRect& next = all[static_cast<std::size_t>(i) + 1].Box;
            if (next.top() < run.Box.bottom() && next.left() > run.Box.right()) {
                right = next.left() - run.Box.left();
            }
        }
        const QRect part(run.Box.x() + left, run.Box.y(), right - left, run.Box.height());
        painter.save();
        painter.setClipRect(part);
        painter.fillRect(part, palette().color(group, QPalette::Highlight));
        painter.setFont(run.Font);
        painter.setPen(palette().color(group, QPalette::HighlightedText));
        painter.drawText(run.Box.left(), run.Box.bottom() + 1 - metrics.descent(), run.Text);
        painter.restore();
    }
    painter.resetTransform();
}

void CHTMLayout::resizeEvent(QResizeEvent*) {
    layOut();
}

void CHTMLayout::scrollContentsBy(int, int) {
    placeControls();
    viewport()->update();
}

void CHTMLayout::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    // Colours and fonts were taken while the page was parsed, so that it is read again; what the user has
    // entered in its fields goes over to the new page.
    if (event->type() == QEvent::FontChange) {
        takeDefaultFont();
    }
    const bool again = event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
                       event->type() == QEvent::StyleChange;
    if (!again || !document) {
        return;
    }
    std::vector<std::pair<bool, QString>> entered;
    for (const auto& element : controls) {
        const auto& field = dynamic_cast<const HtmlControl&>(*element);
        entered.emplace_back(field.IsChecked(), field.Value());
    }
    load();
    for (std::size_t i = 0; i < controls.size() && i < entered.size(); ++i) {
        auto& field = dynamic_cast<HtmlControl&>(*controls[i]);
        field.SetChecked(entered[i].first);
        field.SetValue(entered[i].second);
    }
}
