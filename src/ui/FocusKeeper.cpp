#include "FocusKeeper.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>

#include <utility>

namespace murmeli {

FocusKeeper::FocusKeeper(QQuickWindow* window) : QObject(window), m_window(window)
{
    connect(window, &QQuickWindow::activeFocusItemChanged, this, &FocusKeeper::follow);
    connect(window, &QQuickWindow::activeChanged, this, [this] {
        if (m_item && hasKeyboard()) moveOnSoon();
    });
}

void FocusKeeper::follow()
{
    QQuickItem* item = m_window->activeFocusItem();
    if (!item || item == m_window->contentItem()) {
        if (hasKeyboard()) moveOnSoon();
        return;
    }
    if (m_item) m_item->disconnect(this);
    m_item = item;
    m_before = item->nextItemInFocusChain(false);
    m_ring = item->property("visualFocus").toBool();
    connect(item, &QQuickItem::visibleChanged, this, &FocusKeeper::moveOnSoon);
    connect(item, &QQuickItem::enabledChanged, this, &FocusKeeper::moveOnSoon);
    connect(item, &QObject::destroyed, this, &FocusKeeper::moveOnSoon);
}

// A window is active behind its own dialog too, where nobody in it has the keyboard until the dialog has
// gone.
bool FocusKeeper::hasKeyboard() const { return QGuiApplication::focusWindow() == m_window; }

void FocusKeeper::moveOnSoon()
{
    // Whatever makes the control vanish may show another one in its place first.
    if (std::exchange(m_moving, true)) return;
    QMetaObject::invokeMethod(this, &FocusKeeper::moveOn, Qt::QueuedConnection);
}

void FocusKeeper::moveOn()
{
    m_moving = false;
    // A scope that has the keyboard itself has found nobody in it to take it.
    const auto fit = [](const QQuickItem* item) {
        return item && item->isVisible() && item->isEnabled() &&
               (!item->isFocusScope() || item->activeFocusOnTab());
    };
    if (!m_window->isVisible() || fit(m_window->activeFocusItem())) return;
    if (!hasKeyboard()) return;
    QQuickItem* from = m_item ? m_item.data() : m_before.data();
    if (!from) from = m_window->contentItem();
    QQuickItem* next = from->nextItemInFocusChain(true);
    // Beside the stops of the Tab key the chain has containers that only pass the keyboard on.
    const auto stop = [&fit](const QQuickItem* item) { return fit(item) && item->activeFocusOnTab(); };
    for (int steps = 0; next && !stop(next) && steps < 100; ++steps)
        next = next->nextItemInFocusChain(true);
    if (stop(next)) next->forceActiveFocus(m_ring ? Qt::TabFocusReason : Qt::OtherFocusReason);
}

} // namespace murmeli
