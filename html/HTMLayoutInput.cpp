// SPDX-License-Identifier: GPL-3.0-or-later
// Mouse, keyboard, links and the selection of the HTML view.
#include "html/HTMLayout.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QUrl>

QPoint CHTMLayout::toPage(const QPoint& point) const {
    return point + QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

HtmlElement CHTMLayout::elementAt(const QPoint& viewportPoint) const {
    if (!document) {
        return {};
    }
    const QPoint page = toPage(viewportPoint);
    const litehtml::element::ptr found =
        document->root()->get_element_by_point(page.x(), page.y(), viewportPoint.x(), viewportPoint.y());
    return found ? HtmlElement(const_cast<CHTMLayout*>(this), found) : HtmlElement();
}

HtmlElement CHTMLayout::withAttribute(HtmlElement element, const QString& name) const {
    while (!element.IsNull() && element.Attribute(name).isEmpty()) {
        element = element.Parent();
    }
    return element;
}

void CHTMLayout::redraw(const litehtml::position::vector& boxes) {
    for (const litehtml::position& box : boxes) {
        viewport()->update(
            toRect(box).translated(-horizontalScrollBar()->value(), -verticalScrollBar()->value()));
    }
}

void CHTMLayout::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !document) {
        return;
    }
    const QPoint at = event->position().toPoint();
    const QPoint page = toPage(at);
    litehtml::position::vector boxes;
    document->on_lbutton_down(page.x(), page.y(), at.x(), at.y(), boxes);
    redraw(boxes);
    pressed = elementAt(at);
    for (HtmlElement element = pressed; !element.IsNull(); element = element.Parent()) {
        if (HtmlBehavior* behavior = behaviorOf(element)) {
            behavior->OnMouseDown(element, page);
            pressed = element;
            return;
        }
    }
    selecting = true;
    anchor = caret = textPosition(page);
    viewport()->update();
}

void CHTMLayout::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::BackButton) {
        Q_EMIT OnXButton1();
        return;
    }
    if (event->button() == Qt::ForwardButton) {
        Q_EMIT OnXButton2();
        return;
    }
    if (event->button() != Qt::LeftButton || !document) {
        return;
    }
    const QPoint at = event->position().toPoint();
    const QPoint page = toPage(at);
    selecting = false;
    selectionScroll.stop();
    if (HtmlBehavior* behavior = behaviorOf(pressed)) {
        HtmlElement element = pressed;
        pressed = HtmlElement();
        behavior->OnMouseUp(element, page);
        return;
    }
    pressed = HtmlElement();
    // A drag over a link selects its text and does not follow it.
    if (anchor != caret) {
        return;
    }
    // Following a link may replace this very page: the engine must not stand in it then.
    const litehtml::document::ptr keep = document;
    litehtml::position::vector boxes;
    keep->on_lbutton_up(page.x(), page.y(), at.x(), at.y(), boxes);
    if (keep == document) {
        redraw(boxes);
    }
}

void CHTMLayout::mouseMoveEvent(QMouseEvent* event) {
    if (!document) {
        return;
    }
    const QPoint at = event->position().toPoint();
    const QPoint page = toPage(at);
    if (selecting && (event->buttons() & Qt::LeftButton) != 0) {
        caret = textPosition(page);
        const bool outside = at.y() < 0 || at.y() > viewport()->height();
        if (outside && !selectionScroll.isActive()) {
            selectionScroll.start(40, this);
        } else if (!outside) {
            selectionScroll.stop();
        }
        viewport()->update();
        return;
    }
    litehtml::position::vector boxes;
    document->on_mouse_over(page.x(), page.y(), at.x(), at.y(), boxes);
    redraw(boxes);
}

// A selection that is drawn beyond the edge scrolls on while the mouse rests there.
void CHTMLayout::timerEvent(QTimerEvent* event) {
    if (event->timerId() != selectionScroll.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    const QPoint at = viewport()->mapFromGlobal(QCursor::pos());
    verticalScrollBar()->triggerAction(at.y() < 0 ? QAbstractSlider::SliderSingleStepSub
                                                  : QAbstractSlider::SliderSingleStepAdd);
    caret = textPosition(toPage(at));
    viewport()->update();
}

// A double click selects a word.
void CHTMLayout::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !document) {
        return;
    }
    const auto [at, character] = textPosition(toPage(event->position().toPoint()));
    if (at < 0) {
        return;
    }
    const QString& text = textRuns()[static_cast<std::size_t>(at)].Text;
    const auto inWord = [&text](int i) { return !text[i].isSpace(); };
    int begin = std::min(character, static_cast<int>(text.size()) - 1);
    int end = begin;
    while (begin > 0 && inWord(begin) && inWord(begin - 1)) {
        --begin;
    }
    while (end < text.size() && inWord(end)) {
        ++end;
    }
    anchor = {at, begin};
    caret = {at, end};
    viewport()->update();
}

void CHTMLayout::contextMenuEvent(QContextMenuEvent* event) {
    if (!document) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* copy = menu->addAction(tr("&Copy"), QKeySequence::Copy, this, &CHTMLayout::Copy);
    copy->setEnabled(!SelectedText().isEmpty());
    menu->addAction(tr("Select &All"), QKeySequence::SelectAll, this, &CHTMLayout::SelectAll);
    menu->popup(event->globalPos());
}

void CHTMLayout::focusInEvent(QFocusEvent* event) {
    const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
                       event->reason() == Qt::ShortcutFocusReason;
    if (byKey) {
        const std::vector<HtmlElement> links = Links();
        FocusLink(links.empty() || event->reason() == Qt::ShortcutFocusReason ? HtmlElement()
                  : event->reason() == Qt::TabFocusReason                     ? links.front()
                                                                              : links.back());
    }
    // A form that is no stop of its own hands the focus to its first field.
    if (byKey && focusPolicy() == Qt::ClickFocus && !controls.empty()) {
        if (QWidget* first = dynamic_cast<HtmlControl&>(*controls.front()).ExistingWidget()) {
            first->setFocus(event->reason());
            return;
        }
    }
    reachedByKey = byKey;
    viewport()->update();
    QAbstractScrollArea::focusInEvent(event);
}

void CHTMLayout::focusOutEvent(QFocusEvent* event) {
    viewport()->update();
    QAbstractScrollArea::focusOutEvent(event);
}

void CHTMLayout::set_cursor(const char* cursor) {
    viewport()->setCursor(qstrcmp(cursor, "pointer") == 0 ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

bool CHTMLayout::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = dynamic_cast<QHelpEvent*>(event);
        const HtmlElement titled = withAttribute(elementAt(help->pos()), QStringLiteral("title"));
        if (titled.IsNull()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help->globalPos(), titled.Attribute(QStringLiteral("title")), viewport());
        }
        return true;
    }
    if (event->type() == QEvent::Leave && document) {
        litehtml::position::vector boxes;
        document->on_mouse_leave(boxes);
        redraw(boxes);
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void CHTMLayout::on_anchor_click(const char* url, const litehtml::element::ptr& element) {
    useLink(QString::fromUtf8(url), HtmlElement(this, element));
}

void CHTMLayout::useLink(const QString& href, const HtmlElement& element) {
    HyperlinkEvent event;
    event.Href = href.left(2047);
    event.Target = element.Attribute(QStringLiteral("target")).left(2047);
    event.Element = element;
    int handled = 0;
    Q_EMIT OnHyperlink(event, handled);
    if (handled != 0 || event.Action != 3) {
        return;
    }
    int openExternally = 0;
    Q_EMIT OnLinkClick(event.Href, &openExternally);
    if (openExternally == 1) {
        QDesktopServices::openUrl(QUrl(event.Href));
    }
}

// Wheel turns over a spin box scroll the page unless the box has the focus, and a control that gets the
// focus is scrolled into view.
bool CHTMLayout::eventFilter(QObject* watched, QEvent* event) {
    auto* field = qobject_cast<QWidget*>(watched);
    if (field != nullptr && event->type() == QEvent::Wheel && !field->hasFocus()) {
        QApplication::sendEvent(viewport(), event);
        return true;
    }
    if (field != nullptr && event->type() == QEvent::FocusIn) {
        focusedLink = HtmlElement();
        const QRect box = field->geometry();
        if (box.top() < 0) {
            verticalScrollBar()->setValue(verticalScrollBar()->value() + box.top() - 4);
        } else if (box.bottom() > viewport()->height()) {
            verticalScrollBar()->setValue(verticalScrollBar()->value() + box.bottom() - viewport()->height() +
                                          4);
        }
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

// Tab goes through the links of the page before it leaves the view.
bool CHTMLayout::focusNextPrevChild(bool next) {
    const std::vector<HtmlElement> links = Links();
    if (hasFocus() && !links.empty()) {
        auto at = static_cast<int>(std::find(links.begin(), links.end(), focusedLink) - links.begin());
        if (at == static_cast<int>(links.size())) {
            at = next ? -1 : static_cast<int>(links.size());
        }
        at += next ? 1 : -1;
        if (at >= 0 && at < static_cast<int>(links.size())) {
            FocusLink(links[static_cast<std::size_t>(at)]);
            return true;
        }
        FocusLink(HtmlElement());
    }
    return QAbstractScrollArea::focusNextPrevChild(next);
}

void CHTMLayout::FocusLink(const HtmlElement& link) {
    focusedLink = link;
    if (!link.IsNull()) {
        const QRect box = link.Box();
        const int top = verticalScrollBar()->value();
        if (box.top() < top) {
            verticalScrollBar()->setValue(box.top() - 4);
        } else if (box.bottom() > top + viewport()->height()) {
            verticalScrollBar()->setValue(box.bottom() - viewport()->height() + 4);
        }
        if (QAccessible::isActive()) {
            if (QAccessibleInterface* told = QAccessible::queryAccessibleInterface(this)->focusChild()) {
                QAccessibleEvent focus(told, QAccessible::Focus);
                QAccessible::updateAccessibility(&focus);
            }
        }
    }
    viewport()->update();
}

void CHTMLayout::FollowLink(const HtmlElement& link) {
    useLink(link.Attribute(QStringLiteral("href")), link);
}

void CHTMLayout::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        Copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        SelectAll();
    } else if (event->matches(QKeySequence::MoveToStartOfDocument) || event->key() == Qt::Key_Home) {
        verticalScrollBar()->setValue(0);
    } else if (event->matches(QKeySequence::MoveToEndOfDocument) || event->key() == Qt::Key_End) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    } else if (!focusedLink.IsNull() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                                         event->key() == Qt::Key_Space)) {
        FollowLink(focusedLink);
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

const std::vector<HtmlTextRun>& CHTMLayout::textRuns() {
    if (!runsKnown && document) {
        runs.clear();
        Recording = &runs;
        document->draw(0, 0, 0, nullptr);
        Recording = nullptr;
        std::erase_if(runs, [](const HtmlTextRun& run) { return run.Text.isEmpty(); });
        std::stable_sort(runs.begin(), runs.end(), [](const HtmlTextRun& a, const HtmlTextRun& b) {
            if (a.Box.bottom() <= b.Box.top() || b.Box.bottom() <= a.Box.top()) {
                return a.Box.top() < b.Box.top();
            }
            return a.Box.left() < b.Box.left();
        });
        runsKnown = true;
    }
    return runs;
}

std::pair<int, int> CHTMLayout::textPosition(const QPoint& pagePoint) {
    const std::vector<HtmlTextRun>& all = textRuns();
    int best = -1;
    for (int i = 0; i < static_cast<int>(all.size()); ++i) {
        const QRect& box = all[static_cast<std::size_t>(i)].Box;
        if (box.top() > pagePoint.y()) {
            break;
        }
        if (box.bottom() < pagePoint.y() || box.left() <= pagePoint.x()) {
            best = i;
        }
    }
    if (best < 0) {
        return all.empty() ? std::pair(-1, 0) : std::pair(0, 0);
    }
    const HtmlTextRun& run = all[static_cast<std::size_t>(best)];
    const QFontMetrics metrics(run.Font, this);
    const int offset = pagePoint.x() - run.Box.left();
    int character = 0;
    while (character < run.Text.size()) {
        const int left = metrics.horizontalAdvance(run.Text.left(character));
        const int right = metrics.horizontalAdvance(run.Text.left(character + 1));
        if (pagePoint.y() <= run.Box.bottom() && offset < (left + right) / 2) {
            break;
        }
        ++character;
    }
    return {best, character};
}

QString CHTMLayout::SelectedText() const {
    if (anchor.first < 0 || anchor == caret) {
        return {};
    }
    const auto [from, to] = std::minmax(anchor, caret);
    return textBetween(from, to);
}

QString CHTMLayout::PageText() {
    const std::vector<HtmlTextRun>& all = textRuns();
    if (all.empty()) {
        return {};
    }
    return textBetween({0, 0}, {static_cast<int>(all.size()) - 1, static_cast<int>(all.back().Text.size())});
}

QString CHTMLayout::textBetween(std::pair<int, int> from, std::pair<int, int> to) const {
    QString text;
    for (int i = from.first; i <= to.first && i < static_cast<int>(runs.size()); ++i) {
        const HtmlTextRun& run = runs[static_cast<std::size_t>(i)];
        if (i > from.first) {
            const QRect& before = runs[static_cast<std::size_t>(i) - 1].Box;
            if (run.Box.top() >= before.bottom()) {
                text += u'\n';
            } else if (run.Box.left() > before.right() + 1) {
                text += u' ';
            }
        }
        const int begin = i == from.first ? from.second : 0;
        const int end = i == to.first ? to.second : static_cast<int>(run.Text.size());
        text += run.Text.mid(begin, end - begin);
    }
    return text;
}

void CHTMLayout::Copy() {
    const QString text = SelectedText();
    if (!text.isEmpty()) {
        QApplication::clipboard()->setText(text);
    }
}

void CHTMLayout::SelectAll() {
    const std::vector<HtmlTextRun>& all = textRuns();
    if (all.empty()) {
        return;
    }
    anchor = {0, 0};
    caret = {static_cast<int>(all.size()) - 1, static_cast<int>(all.back().Text.size())};
    viewport()->update();
}
