#include "ToastCenter.h"

#include "base/Scheduler.h"
#include "platform/WindowSystem.h"
#include "ui/ViewEngine.h"

#include <QQmlComponent>
#include <QQuickWindow>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto shownFor = 4500ms;
constexpr std::chrono::milliseconds shownForPress = 20s;
constexpr auto glance = 500ms; // how often it is looked whether the pointer is on a card

} // namespace

ToastCenter::ToastCenter(ViewEngine& views, Scheduler& scheduler, Available available, QObject* parent)
    : QObject(parent), m_views(views), m_scheduler(scheduler), m_available(std::move(available))
{
    connect(&views, &ViewEngine::letGo, this, [this] { m_component.reset(); });
}

ToastCenter::~ToastCenter()
{
    // Taken out first: a window that goes says that it is hidden, and would be looked for.
    for (const Card& card : std::exchange(m_cards, {}))
        delete card.window;
}

void ToastCenter::show(const ToastText& toast)
{
    if (!windowSystem::placesWindows()) {
        windowSystem::notify(toast.title, toast.message);
        return;
    }
    const QRect available = m_available(toast);
    if (available.isEmpty()) return;
    if (!m_component) {
        m_component =
            std::make_unique<QQmlComponent>(&m_views.get(), QUrl{u"qrc:/qt/qml/Murmeli/Notices/Toast.qml"_s},
                                            QQmlComponent::PreferSynchronous);
    }
    double above = 0;
    for (const Card& card : m_cards)
        above += card.window->property("extent").toDouble();
    auto* window = qobject_cast<QQuickWindow*>(
        m_component->createWithInitialProperties({{u"available"_s, available},
                                                  {u"above"_s, above},
                                                  {u"cardTitle"_s, toast.title},
                                                  {u"message"_s, toast.message},
                                                  {u"tone"_s, toast.tone},
                                                  {u"symbol"_s, toast.symbol},
                                                  {u"actions"_s, QVariant::fromValue(toast.actions)}}));
    if (!window) return;
    m_cards.push_back({window, toast.pressed});
    windowSystem::floatEverywhere(window);
    window->setProperty("shown", true);

    connect(window, SIGNAL(acted(int)), this, SLOT(press(int)));
    connect(window, &QWindow::visibleChanged, this, [this, window](bool visible) {
        if (!visible) remove(window);
    });
    letGoLater(toast, window);
}

void ToastCenter::letGoLater(const ToastText& toast, QQuickWindow* window)
{
    if (toast.actions.isEmpty()) {
        m_scheduler.after(shownFor, window, [window] { window->setProperty("shown", false); });
        return;
    }
    m_scheduler.every(glance, window, [window, left = shownForPress]() mutable {
        if (!window->property("held").toBool()) left -= glance;
        if (left <= 0s) window->setProperty("shown", false);
    });
}

void ToastCenter::press(int action)
{
    const auto card = std::ranges::find(m_cards, sender(), &Card::window);
    if (card == m_cards.end()) return;
    card->window->setProperty("shown", false);
    if (const auto pressed = std::exchange(card->pressed, {})) pressed(action);
}

void ToastCenter::remove(const QQuickWindow* window)
{
    std::erase_if(m_cards, [window](const Card& card) {
        if (card.window == window) card.window->deleteLater();
        return card.window == window;
    });
}

} // namespace murmeli
