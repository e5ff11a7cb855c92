#pragma once

#include "base/Lease.h"

#include <QObject>
#include <QQmlEngine>

#include <functional>
#include <memory>

namespace murmeli {

class Scheduler;

/// The engine of all views: made at the first look at one, and let go some minutes after the last window has
/// closed, since it is most of what a resting program would hold. Main thread only.
class ViewEngine final : public QObject {
    Q_OBJECT

public:
    /// \param dress installs on a new engine what all views need.
    ViewEngine(Scheduler& scheduler, std::function<void(QQmlEngine&)> dress);
    ~ViewEngine() override;
    Q_DISABLE_COPY_MOVE(ViewEngine)

    /// Made where it is not.
    [[nodiscard]] QQmlEngine& get();
    [[nodiscard]] bool isThere() const { return m_engine != nullptr; }

signals:
    void letGo(); ///< whoever keeps a hidden window or a component drops it now

private:
    void lookAround();

    Scheduler& m_scheduler;
    std::function<void(QQmlEngine&)> m_dress;
    std::unique_ptr<QQmlEngine> m_engine;
    Lease m_watching;
    int m_unseen = 0; ///< how many looks in a row have found no window
};

} // namespace murmeli
