#include "RecordControl.h"

#include "CommandFile.h"
#include "base/Scheduler.h"

#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto answerTime = 12s;

} // namespace

RecordControl::RecordControl(const Paths& paths, const AppState& state, Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_commandFile(paths.commandFile), m_state(state), m_scheduler(scheduler)
{
    connect(&state, &AppState::changed, this, [this] {
        const bool answered = m_pending == Pending::Starting ? m_state.isRecording() : !m_state.isRecording();
        if (waiting() && answered) set(Pending::None);
    });
}

void RecordControl::toggle()
{
    if (waiting()) return;
    const bool stop = m_state.isRecording();
    const bool written = commandFile::write(
        m_commandFile, stop ? commandFile::Action::Stop : commandFile::Action::Start, m_scheduler.now());
    set(!written ? Pending::None : stop ? Pending::Stopping : Pending::Starting, !written);
    m_request = written ? files::identity(m_commandFile) : files::Identity{};
    m_scheduler.after(answerTime, m_patience.renew(), [this] {
        const Pending request = m_pending;
        set(Pending::None);
        if (request != Pending::None) emit unanswered(request);
    });
}

bool RecordControl::requestLies() const
{
    return m_request.size >= 0 && files::identity(m_commandFile) == m_request;
}

void RecordControl::set(Pending pending, bool refused)
{
    const bool same = m_pending == pending && m_refused == refused;
    m_pending = pending;
    m_refused = refused;
    if (!same) emit pendingChanged();
}

} // namespace murmeli
