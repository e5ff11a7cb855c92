#include "PanelHost.h"

#include "base/Scheduler.h"
#include "platform/PanelPlacement.h"
#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "service/AppState.h"
#include "ui/Look.h"
#include "ui/ViewEngine.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto samePress = 400ms; ///< in which a press can both close the panel and reach the icon

} // namespace

PanelHost::PanelHost(ViewEngine& views, Look& look, Scheduler& scheduler, StatusItem& statusItem,
                     const KeyPanel::Parts& parts, QObject* parent)
    : QObject(parent),
      m_views(views),
      m_look(look),
      m_scheduler(scheduler),
      m_statusItem(statusItem),
      m_parts(parts)
{
    // Screens that change take the icon elsewhere, and the window system leaves the panel half outside of
    // them.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &PanelHost::close);
    connect(&views, &ViewEngine::letGo, this, &PanelHost::dropWindows);
}

PanelHost::~PanelHost() { dropWindows(); }

// A window that goes says that it is hidden, and what listens to that has to be there still.
void PanelHost::dropWindows()
{
    m_window.reset();
    m_floating.reset();
}

bool PanelHost::isOpen() const
{
    return (m_floating && m_floating->isOpen()) || (m_window && m_window->isOpen());
}

void PanelHost::prepare()
{
    if (windowSystem::placesWindows()) floating();
}

KeyPanel* PanelHost::floating()
{
    if (m_floating) return m_floating.get();
    m_look.setCompositing(windowSystem::compositing());
    m_floating = std::make_unique<KeyPanel>(m_views.get(), KeyPanel::Kind::Floating, m_parts);
    KeyPanel* panel = m_floating.get();
    connect(panel, &KeyPanel::contentSizeChanged, this, [this] {
        if (m_floating && m_floating->isOpen()) place();
    });
    connect(panel, &KeyPanel::pressedOutside, this, &PanelHost::pressedOutside);
    connect(panel, &QWindow::activeChanged, this, &PanelHost::activated);
    // It is made anew in a blink; a program that sits in the tray all day keeps no memory for it.
    connect(panel, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible && m_floating) m_floating.release()->deleteLater();
    });
    return panel;
}

void PanelHost::pressedOutside()
{
    if (!m_statusItem.geometry().contains(QCursor::pos())) {
        m_closedFromOutside = m_scheduler.now();
        close();
        return;
    }
    // The icon's own action will toggle. Unless the pointer merely lies there, and something else has taken
    // the activation.
    KeyPanel* panel = m_floating.get();
    m_scheduler.after(samePress, panel, [this, panel] {
        if (panel == m_floating.get() && !panel->isActive()) close();
    });
}

void PanelHost::toggle()
{
    if (windowSystem::knowsPointer()) m_pressedAt = QCursor::pos();
    // Where the icon's place is unknown, the press that closed the panel may have been on the icon itself.
    const bool justClosed =
        m_scheduler.now() - m_closedFromOutside < std::chrono::duration<double>(samePress).count();
    if (m_statusItem.geometry().isEmpty() && justClosed) return;
    const bool ordinary = m_window && m_window->isOpen();
    if (ordinary) m_window->closePanel();
    if (ordinary && !windowSystem::placesWindows()) return;
    if (m_floating && m_floating->isOpen()) {
        close();
    } else {
        open();
    }
}

QRect PanelHost::anchor() const
{
    const QRect icon = m_statusItem.geometry();
    if (!icon.isEmpty()) return icon;
    if (!m_pressedAt.isNull()) return {m_pressedAt, QSize{1, 1}};
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) return {};
    const QRect free = screen->availableGeometry();
    const bool barBelow =
        free.top() == screen->geometry().top() && free.bottom() < screen->geometry().bottom();
    return {barBelow ? free.bottomRight() : free.topRight(), QSize{1, 1}};
}

void PanelHost::open()
{
    if (!m_statusItem.hasTray() || !windowSystem::placesWindows()) {
        openOrdinary();
        return;
    }
    m_look.setCompositing(windowSystem::compositing());
    place();
}

void PanelHost::place()
{
    const QRect icon = anchor();
    const QScreen* screen = QGuiApplication::screenAt(icon.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    KeyPanel* panel = floating();
    const PanelPlacement place = placePanel(icon, screen->availableGeometry(), panel->contentSize());
    m_parts.state.setArrowX(place.arrowX);
    m_shape = place.panel;
    panel->openAt(place.panel, icon, place.above);
}

QRect PanelHost::shape() const { return m_floating && m_floating->isOpen() ? m_shape : QRect{}; }

void PanelHost::close()
{
    if (m_floating) m_floating->closePanel();
}

void PanelHost::openOrdinary()
{
    if (!m_window) {
        m_window = std::make_unique<KeyPanel>(m_views.get(), KeyPanel::Kind::Ordinary, m_parts);
        connect(&m_statusItem, &StatusItem::trayCame, m_window.get(), [this] {
            if (!m_window->isOpen() || !windowSystem::placesWindows()) return;
            m_window->closePanel();
            open(); // in its place
        });
    }
    m_window->openOrdinary(m_statusItem.hasTray());
}

void PanelHost::raise()
{
    if (m_floating && m_floating->isOpen()) windowSystem::bringForward(m_floating.get(), false);
}

} // namespace murmeli
