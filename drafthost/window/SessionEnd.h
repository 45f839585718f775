// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The end of a host with windows that comes from outside: a signal, a logout, a module that asks the
// application to quit. Nothing is asked any more. What a dialog shows is taken over as if it had been closed,
// what runs sees a cancel, and every event loop is left, so that a dialog that would come up on the way does
// not.
#include <functional>
#include <QObject>

namespace drafthost {

class Host;

class SessionEnd : public QObject {
    Q_OBJECT
  public:
    /// Listens for the application's own quit. The function is called when the end begins.
    SessionEnd(Host& host, std::function<void()> onBegin);
    void end();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    Host& host_;
    std::function<void()> onBegin_;
};

}  // namespace drafthost
