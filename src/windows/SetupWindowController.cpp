#include "SetupWindowController.h"

#include "AppWindow.h"
#include "update/Updater.h"

#include <QQuickItem>

using namespace Qt::StringLiterals;

namespace murmeli {

SetupWindowController::SetupWindowController(const Paths& paths, SetupRunner::Place place,
                                             Processes& processes, Scheduler& scheduler, QQmlEngine& engine,
                                             Language& language, Updater& updater, QObject& background)
    : m_runner(std::move(place), processes, scheduler),
      m_permissions(paths, processes, background),
      m_updater(updater),
      m_needed(SetupRunner::needed(paths)),
      m_window(std::make_unique<AppWindow>(
          engine, language,
          AppWindow::View{.url = u"qrc:/qt/qml/Murmeli/Setup/SetupView.qml"_s,
                          .properties = {{u"runner"_s, QVariant::fromValue(&m_runner)},
                                         {u"perms"_s, QVariant::fromValue(&m_permissions)},
                                         {u"updater"_s, QVariant::fromValue(&updater)}},
                          .titleKey = u"setup.title"_s,
                          .size = {560, 720},
                          .least = {560, 440}}))
{
    if (QQuickItem* view = m_window->rootObject()) connect(view, SIGNAL(done()), this, SIGNAL(done()));
    connect(&m_runner, &SetupRunner::changed, this, [this, wasRunning = false]() mutable {
        const bool ended = std::exchange(wasRunning, m_runner.isRunning()) && !m_runner.isRunning();
        if (!ended) return;
        if (m_runner.isFinished()) emit installed();
        m_permissions.refresh(); // only now is there anyone to ask
        if (m_window->isVisible()) {
            m_window->alert(0); // and the keyboard stays where it is
        } else {
            m_window->present();
        }
    });
}

SetupWindowController::~SetupWindowController() = default;

void SetupWindowController::show()
{
    if (!m_updater.runningFromDiskImage()) {
        if (m_needed) {
            m_runner.start();
        } else {
            m_runner.markReady();
        }
    }
    m_window->present();
}

void SetupWindowController::present() { m_window->present(); }

void SetupWindowController::close() { m_window->close(); }

} // namespace murmeli
