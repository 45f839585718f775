// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/SlowJob.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <thread>

namespace {
const auto Arrived = static_cast<QEvent::Type>(QEvent::registerEventType());
constexpr int PortionMs = 8;
}  // namespace

struct SlowJob::Channel::State {
    std::atomic<bool> Stopped = false;
    std::mutex Guard;
    std::condition_variable Wake;
    std::deque<Delivery> Waiting;
    QObject* Owner = nullptr;
    bool Ended = false;
    bool Announced = false;

    /// Called with the guard held.
    void Announce() {
        if (Owner != nullptr && !std::exchange(Announced, true)) {
            QCoreApplication::postEvent(Owner, new QEvent(Arrived));
        }
        Wake.notify_all();
    }
};

SlowJob::Channel::Channel(QObject* owner) : state(std::make_unique<State>()) {
    state->Owner = owner;
}

SlowJob::Channel::~Channel() = default;

bool SlowJob::Channel::Stopped() const {
    return state->Stopped;
}

void SlowJob::Channel::Deliver(Delivery delivery) {
    const std::lock_guard lock(state->Guard);
    state->Waiting.push_back(std::move(delivery));
    state->Announce();
}

void SlowJob::Start(Work work, Delivery then) {
    BreakOff();
    channel = std::make_shared<Channel>(this);
    atEnd = std::move(then);
    std::thread([way = channel, work = std::move(work)] {
        work(*way);
        const std::lock_guard lock(way->state->Guard);
        way->state->Ended = true;
        way->state->Announce();
    }).detach();
}

void SlowJob::BreakOff() {
    if (!channel) {
        return;
    }
    channel->state->Stopped = true;
    {
        const std::lock_guard lock(channel->state->Guard);
        channel->state->Owner = nullptr;
    }
    channel.reset();
    atEnd = nullptr;
}

bool SlowJob::event(QEvent* event) {
    if (event->type() != Arrived) {
        return QObject::event(event);
    }
    deliver();
    return true;
}

void SlowJob::deliver() {
    QElapsedTimer clock;
    clock.start();
    // A delivery may break the job off, or start another.
    const std::shared_ptr<Channel> mine = channel;
    while (mine && mine == channel) {
        Delivery next;
        {
            Channel::State& state = *mine->state;
            const std::lock_guard lock(state.Guard);
            state.Announced = false;
            if (state.Waiting.empty()) {
                if (!state.Ended) {
                    return;
                }
            } else if (clock.elapsed() > PortionMs) {
                state.Announce();
                return;
            } else {
                next = std::move(state.Waiting.front());
                state.Waiting.pop_front();
            }
        }
        if (next) {
            next();
            continue;
        }
        channel.reset();
        if (const Delivery last = std::exchange(atEnd, nullptr)) {
            last();
        }
    }
}

void SlowJob::WaitFor(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (channel) {
        const std::shared_ptr<Channel> mine = channel;
        {
            std::unique_lock lock(mine->state->Guard);
            const auto left = std::chrono::milliseconds(std::max<qint64>(0, milliseconds - clock.elapsed()));
            if (!mine->state->Wake.wait_for(
                    lock, left, [&] { return !mine->state->Waiting.empty() || mine->state->Ended; })) {
                return;
            }
        }
        deliver();
        if (clock.elapsed() >= milliseconds) {
            return;
        }
    }
}
