#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>

class QObject;

namespace murmeli {

/// Time for everything that waits or tells it. Main thread only; callbacks run on the main thread.
class Scheduler {
public:
    using Milliseconds = std::chrono::milliseconds;

    virtual ~Scheduler() = default;

    /// Seconds since 1970-01-01 UTC.
    [[nodiscard]] virtual double now() const = 0;

    /// The same as a local date and time.
    [[nodiscard]] QDateTime moment() const { return QDateTime::fromMSecsSinceEpoch(qint64(now() * 1000)); }

    /// Runs `action` once after `delay`, never if `context` has gone by then.
    virtual void after(Milliseconds delay, QObject* context, std::function<void()> action) = 0;

    /// Runs `action` at every end of `interval` for as long as `context` lives.
    virtual void every(Milliseconds interval, QObject* context, std::function<void()> action) = 0;
};

/// The system's clock and the event loop's timers.
class SystemScheduler final : public Scheduler {
public:
    [[nodiscard]] double now() const override;
    void after(Milliseconds delay, QObject* context, std::function<void()> action) override;
    void every(Milliseconds interval, QObject* context, std::function<void()> action) override;
};

} // namespace murmeli
