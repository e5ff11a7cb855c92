#pragma once

#include "base/Scheduler.h"

#include <QPointer>

#include <vector>

namespace murmeli {

/// A clock that stands still until it is told to move, for tests and for pictures of a fixed moment.
class ManualScheduler final : public Scheduler {
public:
    /// \param now seconds since 1970-01-01 UTC at which the clock starts.
    explicit ManualScheduler(double now = 1'731'690'000);

    [[nodiscard]] double now() const override;
    void after(Milliseconds delay, QObject* context, std::function<void()> action) override;
    void every(Milliseconds interval, QObject* context, std::function<void()> action) override;

    /// Moves the clock on, running in order what falls due on the way, also what is added meanwhile.
    void advance(Milliseconds time);

    /// The computer sleeps: the clock moves on, and nothing runs.
    void sleep(Milliseconds time) { m_start += double(time.count()) / 1000; }

    /// How many times something would run within the next `time`, were nothing added or removed.
    [[nodiscard]] int wakeUpsWithin(Milliseconds time) const;

private:
    struct Entry {
        Milliseconds due;
        Milliseconds interval; ///< 0 for a single run
        QPointer<QObject> context;
        std::function<void()> action;
    };

    double m_start;
    Milliseconds m_elapsed{0};
    std::vector<Entry> m_entries;
};

} // namespace murmeli
