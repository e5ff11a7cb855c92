#include "ToastCenter.h"

#include "base/Scheduler.h"
#include "platform/WindowSystem.h"

#include <QQmlComponent>
#include <QQuickWindow>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr int width = 330;
constexpr int height = 74;
constexpr int rightMargin = 12;
constexpr int gap = 8;
constexpr auto shownFor = 4500ms;
constexpr auto fadeTime = 220ms;

} // namespace

ToastCenter::ToastCenter(QQmlEngine& engine, Scheduler& scheduler, std::function<QRect()> available,
                         QObject* parent)
    : QObject(parent), m_engine(engine), m_scheduler(scheduler), m_available(std::move(available))
{
}

ToastCenter::~ToastCenter()
{
    for (QQuickWindow* window : m_windows)
        delete window;
}

QRect ToastCenter::place(const QRect& available, int others)
{
    return {available.x() + available.width() - width - rightMargin,
            available.y() + gap + (height + gap) * others, width, height};
}

void ToastCenter::show(const ToastText& toast)
{
    const QRect available = m_available();
    if (available.isEmpty()) return;
    if (!m_component) {
        m_component = std::make_unique<QQmlComponent>(
            &m_engine, QUrl{u"qrc:/qt/qml/Murmeli/Notices/Toast.qml"_s}, QQmlComponent::PreferSynchronous);
    }
    auto* window = qobject_cast<QQuickWindow*>(
        m_component->createWithInitialProperties({{u"card"_s, place(available, count())},
                                                  {u"cardTitle"_s, toast.title},
                                                  {u"message"_s, toast.message},
                                                  {u"starting"_s, toast.starting},
                                                  {u"symbol"_s, toast.symbol}}));
    if (!window) return;
    m_windows.push_back(window);
    windowSystem::floatEverywhere(window);
    window->setProperty("shown", true);

    m_scheduler.after(shownFor, window, [this, window] {
        window->setProperty("shown", false);
        m_scheduler.after(fadeTime, window, [this, window] { remove(window); });
    });
}

void ToastCenter::remove(const QQuickWindow* window)
{
    std::erase_if(m_windows, [window](QQuickWindow* other) {
        if (other == window) other->deleteLater();
        return other == window;
    });
}

} // namespace murmeli
