#pragma once

#include "Notice.h"

#include <QObject>
#include <QRect>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class QQmlComponent;
class QQuickWindow;

namespace murmeli {

class Scheduler;
class ViewEngine;

/// What a card says. One with buttons takes clicks on them, never the focus.
struct ToastText {
    QString title;
    QString message;
    int tone = noticeTone::Passing; ///< a NoticeTone
    QString symbol = QStringLiteral("waveform");
    QList<NoticeAction> actions = {};
    std::function<void(int action)> pressed = {}; ///< of one of them; the card then goes
};

/// Shows small cards in the top right corner of the screen for 4.5 s, those with buttons for 20 s in which
/// the pointer is not on them, one below the other. Main thread only.
class ToastCenter final : public QObject {
    Q_OBJECT

public:
    using Available = std::function<QRect(const ToastText&)>;

    /// \param available what a card may stand on: the main screen without its bars; empty when there is no
    /// screen.
    ToastCenter(ViewEngine& views, Scheduler& scheduler, Available available, QObject* parent = nullptr);
    ~ToastCenter() override;
    Q_DISABLE_COPY_MOVE(ToastCenter)

    void show(const ToastText& toast);

    [[nodiscard]] int count() const { return int(m_cards.size()); }

private:
    struct Card {
        QQuickWindow* window; ///< a child of this
        std::function<void(int)> pressed;
    };
    void letGoLater(const ToastText& toast, QQuickWindow* window);
    void remove(const QQuickWindow* window);

private slots:
    void press(int action); ///< on the card that sends it

private:
    ViewEngine& m_views;
    Scheduler& m_scheduler;
    Available m_available;
    std::unique_ptr<QQmlComponent> m_component;
    std::vector<Card> m_cards; ///< in the order in which they were shown
};

} // namespace murmeli
