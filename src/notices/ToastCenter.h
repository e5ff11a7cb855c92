#pragma once

#include <QObject>
#include <QRect>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QQmlComponent;
class QQuickWindow;

namespace murmeli {

class Scheduler;
class ViewEngine;

struct ToastText {
    QString title;
    QString message;
    bool starting = false; ///< a recording starts: the card takes its colours
    QString symbol = QStringLiteral("waveform");
};

/// Shows small cards in the top right corner of the screen for 4.5 s, one below the other. Main thread only.
class ToastCenter final : public QObject {
    Q_OBJECT

public:
    /// \param available the main screen without its bars; empty when there is no screen.
    ToastCenter(ViewEngine& views, Scheduler& scheduler, std::function<QRect()> available,
                QObject* parent = nullptr);
    ~ToastCenter() override;
    Q_DISABLE_COPY_MOVE(ToastCenter)

    void show(const ToastText& toast);

    [[nodiscard]] int count() const { return int(m_windows.size()); }

private:
    void remove(const QQuickWindow* window);

    ViewEngine& m_views;
    Scheduler& m_scheduler;
    std::function<QRect()> m_available;
    std::unique_ptr<QQmlComponent> m_component;
    std::vector<QQuickWindow*> m_windows; ///< in the order in which they were shown; children of this
};

} // namespace murmeli
