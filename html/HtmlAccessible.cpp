// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlAccessible.h"

#include "html/HTMLayout.h"

#include <QAccessibleWidget>

namespace {

/// A link of a page; lives as long as the page.
class LinkAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    LinkAccessible(CHTMLayout* owner, const HtmlElement& element) : view(owner), link(element) {}

    bool isValid() const override { return !view.isNull() && !link.IsNull(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return view.isNull() ? nullptr : view->window()->windowHandle(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(view); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Link; }
    QRect rect() const override { return isValid() ? view->OnScreen(link.Box()) : QRect(); }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override {
        switch (kind) {
            case QAccessible::Name:
                return link.Text().simplified();
            case QAccessible::Description:
                return link.Attribute(QStringLiteral("title"));
            case QAccessible::Value:
                return link.Attribute(QStringLiteral("href"));
            default:
                return {};
        }
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.linked = true;
        state.focusable = true;
        state.focused = isValid() && view->hasFocus() && view->FocusedLink() == link;
        state.invalid = !isValid();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override {
        if (!isValid()) {
            return;
        }
        if (action == pressAction()) {
            view->FollowLink(link);
        } else if (action == setFocusAction()) {
            view->setFocus();
            view->FocusLink(link);
        }
    }

  private:
    QPointer<CHTMLayout> view;
    HtmlElement link;
};

class ViewAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
  public:
    explicit ViewAccessible(CHTMLayout* owner)
        : QAccessibleWidget(owner, QAccessible::WebDocument), view(owner) {}
    ~ViewAccessible() override { forget(); }

    int childCount() const override {
        return QAccessibleWidget::childCount() + static_cast<int>(known().size());
    }
    QAccessibleInterface* child(int index) const override {
        const int own = QAccessibleWidget::childCount();
        if (index < own) {
            return QAccessibleWidget::child(index);
        }
        const std::vector<QAccessible::Id>& all = known();
        const auto at = static_cast<std::size_t>(index - own);
        return at < all.size() ? QAccessible::accessibleInterface(all[at]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override {
        for (int i = QAccessibleWidget::childCount(); i < childCount(); ++i) {
            if (child(i) == wanted) {
                return i;
            }
        }
        return QAccessibleWidget::indexOfChild(wanted);
    }
    QAccessibleInterface* focusChild() const override {
        for (int i = QAccessibleWidget::childCount(); i < childCount(); ++i) {
            if (child(i)->state().focused) {
                return child(i);
            }
        }
        return QAccessibleWidget::focusChild();
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }

    using QAccessibleWidget::text;
    QString text(int start, int end) const override { return view->PageText().mid(start, end - start); }
    int characterCount() const override { return static_cast<int>(view->PageText().size()); }
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    int selectionCount() const override { return 0; }
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    QRect characterRect(int) const override { return {}; }
    int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

  private:
    /// The links of the page that is shown now.
    const std::vector<QAccessible::Id>& known() const {
        if (page != view->PageNumber()) {
            forget();
            page = view->PageNumber();
            for (const HtmlElement& link : view->Links()) {
                links.push_back(QAccessible::registerAccessibleInterface(new LinkAccessible(view, link)));
            }
        }
        return links;
    }
    void forget() const {
        for (const QAccessible::Id id : links) {
            QAccessible::deleteAccessibleInterface(id);
        }
        links.clear();
    }

    CHTMLayout* view;
    mutable std::vector<QAccessible::Id> links;
    mutable int page = -1;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* view = qobject_cast<CHTMLayout*>(object);
    return view == nullptr ? nullptr : new ViewAccessible(view);
}

}  // namespace

void InstallHtmlAccessible() {
    QAccessible::installFactory(makeInterface);
}
