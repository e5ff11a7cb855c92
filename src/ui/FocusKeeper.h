#pragma once

#include <QObject>
#include <QPointer>

class QQuickItem;
class QQuickWindow;

namespace murmeli {

/// Keeps the keyboard somewhere in a window: when the control that has it vanishes, the next one gets it.
/// Belongs to its window. Main thread only.
class FocusKeeper final : public QObject {
    Q_OBJECT

public:
    explicit FocusKeeper(QQuickWindow* window);

private:
    void follow();
    [[nodiscard]] bool hasKeyboard() const;
    void moveOnSoon();
    void moveOn();

    QQuickWindow* m_window;
    QPointer<QQuickItem> m_item;   ///< had the keyboard last
    QPointer<QQuickItem> m_before; ///< stood before it, for when it is gone for good
    bool m_ring = false;           ///< whether it showed that it had the keyboard
    bool m_moving = false;
};

} // namespace murmeli
