#include "ToastCenter.h"

#include "base/Scheduler.h"
#include "platform/WindowSystem.h"
#include "ui/ViewEngine.h"

#include <QQmlComponent>
#include <QQuickWindow>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto shownFor = 4500ms;

} // namespace

ToastCenter::ToastCenter(ViewEngine& views, Scheduler& scheduler, std::function<QRect()> available,
                         QObject* parent)
    : QObject(parent), m_views(views), m_scheduler(scheduler), m_available(std::move(available))
{
    connect(&views, &ViewEngine::letGo, this, [this] { m_component.reset(); });
}

ToastCenter::~ToastCenter()
{
    // Taken out first: a window that goes says that it is hidden, and would be looked for.
    for (QQuickWindow* window : std::exchange(m_windows, {}))
        delete window;
}

void ToastCenter::show(const ToastText& toast)
{
    if (!windowSystem::placesWindows()) {
        windowSystem::notify(toast.title, toast.message);
        return;
    }
    const QRect available = m_available();
    if (available.isEmpty()) return;
    if (!m_component) {
        m_component =
            std::make_unique<QQmlComponent>(&m_views.get(), QUrl{u"qrc:/qt/qml/Murmeli/Notices/Toast.qml"_s},
                                            QQmlComponent::PreferSynchronous);
    }
    auto* window =
        qobject_cast<QQuickWindow*>(m_component->createWithInitialProperties({{u"available"_s, available},
                                                                              {u"others"_s, count()},
                                                                              {u"cardTitle"_s, toast.title},
                                                                              {u"message"_s, toast.message},
                                                                              {u"starting"_s, toast.starting},
                                                                              {u"symbol"_s, toast.symbol}}));
    if (!window) return;
    m_windows.push_back(window);
    windowSystem::floatEverywhere(window);
    window->setProperty("shown", true);

    connect(window, &QWindow::visibleChanged, this, [this, window](bool visible) {
        if (!visible) remove(window);
    });
    m_scheduler.after(shownFor, window, [window] { window->setProperty("shown", false); });
}

void ToastCenter::remove(const QQuickWindow* window)
{
    std::erase_if(m_windows, [window](QQuickWindow* other) {
        if (other == window) other->deleteLater();
        return other == window;
    });
}

} // namespace murmeli
