#include "ViewEngine.h"

#include "base/Scheduler.h"
#include "platform/Memory.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto lookInterval = 1min;
constexpr int looksInVain = 3; ///< whoever comes back sooner finds all as it was, and at once

} // namespace

ViewEngine::ViewEngine(Scheduler& scheduler, std::function<void(QQmlEngine&)> dress)
    : m_scheduler(scheduler), m_dress(std::move(dress))
{
}

ViewEngine::~ViewEngine() = default;

QQmlEngine& ViewEngine::get()
{
    m_unseen = 0;
    if (!m_engine) {
        m_engine = std::make_unique<QQmlEngine>();
        m_dress(*m_engine);
        m_scheduler.every(lookInterval, m_watching.renew(), [this] { lookAround(); });
    }
    return *m_engine;
}

void ViewEngine::lookAround()
{
    const bool seen = std::ranges::any_of(QGuiApplication::topLevelWindows(), [](const QWindow* window) {
        return window->isVisible() && qobject_cast<const QQuickWindow*>(window); // the icon has one too
    });
    m_unseen = seen ? 0 : m_unseen + 1;
    if (m_unseen < looksInVain) return;
    m_watching.end();
    emit letGo();
    m_engine.reset();
    memory::rest();
}

} // namespace murmeli
