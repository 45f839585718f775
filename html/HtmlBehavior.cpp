// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlBehavior.h"

#include "html/HTMLayout.h"

namespace {

/// Makes a text the label of a field: a click moves the focus to the field named by its attribute "ref".
class SetFocusBehavior : public HtmlBehavior {
  public:
    void OnMouseUp(HtmlElement& element, const QPoint& point) override {
        if (!element.Box().contains(point)) {
            return;
        }
        const QString ref = element.Attribute(QStringLiteral("ref"));
        if (ref.isEmpty() || element.View() == nullptr) {
            return;
        }
        const HtmlElement root = element.View()->GetRoot();
        HtmlElement target = FindFirst(root, QStringLiteral("[name='%1']").arg(ref));
        if (target.IsNull()) {
            target = FindFirst(root, QStringLiteral("[id='%1']").arg(ref));
        }
        target.SetFocus();
    }
};

}  // namespace

HtmlBehavior* FindHtmlBehavior(const QString& name) {
    static SetFocusBehavior setFocus;
    return name == u"setfocus" ? &setFocus : nullptr;
}
