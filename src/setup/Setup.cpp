#include "Setup.h"

#include "service/Paths.h"

#include <utility>

namespace murmeli {

Setup::Setup(const Paths& paths, SetupRunner::Place place, Processes& processes, Desktop& desktop,
             Scheduler& scheduler, QObject& background)
    : m_runner(std::move(place), processes, desktop, scheduler),
      m_permissions(paths, processes, desktop, background),
      m_needed(SetupRunner::needed(paths))
{
    connect(&m_runner, &SetupRunner::changed, this, [this, wasRunning = false]() mutable {
        const bool over = std::exchange(wasRunning, m_runner.isRunning()) && !m_runner.isRunning();
        if (!over) return;
        m_permissions.refresh(); // only now is there anyone to ask
        emit ended(m_runner.isFinished());
    });
}

void Setup::start()
{
    if (m_needed) {
        m_runner.start();
    } else {
        m_runner.markReady();
    }
}

} // namespace murmeli
