#include "LongRecording.h"

#include "base/Scheduler.h"
#include "service/AppState.h"
#include "service/OwnSettings.h"
#include "service/Prefs.h"

#include <algorithm>
#include <utility>

namespace murmeli {

namespace {

constexpr double threshold = 90 * 60; // seconds
constexpr double again = 45 * 60;
constexpr double longest = 1e9; // seconds; a start before that is a damaged figure

} // namespace

LongRecording::LongRecording(const AppState& state, const Prefs& prefs, const OwnSettings& settings,
                             const Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_state(state), m_prefs(prefs), m_settings(settings), m_scheduler(scheduler)
{
    connect(&state, &AppState::statusRead, this, &LongRecording::look);
    connect(&settings, &OwnSettings::changed, this, &LongRecording::look);
}

void LongRecording::look()
{
    const double since = m_state.isRecording() ? m_state.since() : 0;
    const bool other = std::exchange(m_since, since) != since;
    if (other) m_next = since + threshold;
    const bool wanted = m_since > 0 && m_settings.get(ownSetting::remindLong);
    const double now = m_scheduler.now();
    const bool due = wanted && now >= m_next;
    if (due) m_next = now + again;
    const bool asking = wanted && (due || (m_asking && !other));
    const bool longer = asking && std::exchange(m_told, seconds()) != seconds();
    if (std::exchange(m_asking, asking) != asking || longer) emit changed();
    if (due) emit asked();
}

qint64 LongRecording::seconds() const
{
    const auto seconds = qint64(std::clamp(m_scheduler.now() - m_state.since(), 0.0, longest));
    return seconds - seconds % 60;
}

std::optional<qint64> LongRecording::secondsLeft() const
{
    const double end = m_state.since() + m_prefs.get(pref::maxRecordHours) * 3600.0;
    const double left = end - m_scheduler.now();
    if (left < 60) return std::nullopt;
    return qint64(left);
}

void LongRecording::goOn()
{
    m_next = m_scheduler.now() + again;
    m_asking = false;
    emit changed();
}

} // namespace murmeli
