// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Work that may take long or never come back, such as reading a folder on a mount that is dead. It runs on a
// thread of its own that nobody waits for; its results are functions that run on the owner's thread, in small
// portions, as long as the job has not been broken off. So nobody else needs a lock.
#include <functional>
#include <memory>
#include <QObject>

class SlowJob : public QObject {
    Q_OBJECT
  public:
    class Channel;
    using Delivery = std::function<void()>;
    using Work = std::function<void(Channel&)>;

    explicit SlowJob(QObject* parent = nullptr) : QObject(parent) {}
    ~SlowJob() override { BreakOff(); }

    /// Starts the work; what ran before is broken off. Then is called once, behind all deliveries.
    void Start(Work work, Delivery then);
    /// From now on nothing of the job is delivered. Its thread ends when it looks, or never.
    void BreakOff();
    bool IsRunning() const { return channel != nullptr; }
    /// Takes deliveries for a moment, so that what answers at once is there at once.
    void WaitFor(int milliseconds);

    bool event(QEvent* event) override;

  private:
    /// Runs what has been delivered, for at most a few milliseconds.
    void deliver();

    std::shared_ptr<Channel> channel;
    Delivery atEnd;
};

/// The way from the thread to the owner.
class SlowJob::Channel {
  public:
    explicit Channel(QObject* owner);
    ~Channel();
    /// The work looks at this often.
    bool Stopped() const;
    /// Runs the function on the owner's thread.
    void Deliver(Delivery delivery);

  private:
    friend class SlowJob;
    struct State;
    std::unique_ptr<State> state;
};
