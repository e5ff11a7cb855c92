#include "PanelModel.h"

#include "base/Dates.h"
#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "service/AppInfo.h"
#include "service/Prefs.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto clockInterval = 1s;
constexpr double longestTime = 1e9; // seconds; a start before that is a damaged figure, shown as the longest

} // namespace

PanelModel::PanelModel(const AppState& state, const RecordControl& record, Prefs& prefs,
                       const Language& language, Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_state(state),
      m_record(record),
      m_prefs(prefs),
      m_language(language),
      m_scheduler(scheduler)
{
    readPreferences();
    connect(&state, &AppState::changed, this, [this] {
        runClock();
        emit changed();
        emit timeChanged();
    });
    connect(&state, &AppState::statusRead, this, &PanelModel::readPreferences);
    connect(&record, &RecordControl::pendingChanged, this, &PanelModel::changed);
    connect(&language, &Language::changed, this, &PanelModel::timeChanged);
}

PanelModel::Face PanelModel::face() const
{
    if (m_state.isRecording()) return Face::Recording;
    return m_state.isProcessing() ? Face::Processing : Face::Idle;
}

Message PanelModel::title() const
{
    switch (face()) {
    case Face::Recording:
        return Message::of("panel.title.recording");
    case Face::Processing:
        return Message::of("panel.title.processing");
    case Face::Idle:
        break;
    }
    return Message::of("panel.title.idle");
}

PanelModel::Line PanelModel::lineKind() const
{
    if (m_record.waiting()) return Line::Waiting;
    if (m_record.refused()) return Line::Refused;
    if (m_hoverOrb) return Line::Invitation;
    return m_state.isRecording() && m_state.since() > 0 ? Line::RunningTime : Line::Subtitle;
}

Message PanelModel::line() const
{
    switch (lineKind()) {
    case Line::Waiting:
        return Message::of(m_record.pending() == RecordControl::Pending::Starting ? "panel.pending.starting"
                                                                                  : "panel.pending.stopping");
    case Line::Refused:
        return Message::of("record.refused");
    case Line::Invitation:
        return Message::of(m_state.isRecording() ? "panel.hover.stop" : "panel.hover.record");
    case Line::RunningTime:
        return Message::of("panel.timer.label");
    case Line::Subtitle:
        break;
    }
    if (!m_state.detail().isEmpty()) return Message::ofWords(m_state.detail());
    switch (face()) {
    case Face::Recording:
        return Message::of("panel.subtitle.recording");
    case Face::Processing:
        return Message::of("panel.subtitle.processing");
    case Face::Idle:
        break;
    }
    return Message::of("panel.subtitle.idle");
}

void PanelModel::setUsualMinutes(std::optional<qint64> minutes)
{
    if (std::exchange(m_usualMinutes, minutes) != minutes) emit changed();
}

Message PanelModel::usualLine() const
{
    const bool wanted = face() == Face::Processing && lineKind() == Line::Subtitle && m_usualMinutes;
    return wanted ? Message::of("pulse.usual", QString::number(*m_usualMinutes)) : Message{};
}

Message PanelModel::jobsLine() const
{
    if (!m_state.isRecording() || m_state.jobs() < 1) return {};
    if (m_state.jobs() == 1) return Message::of("panel.jobs.one");
    return Message::of("panel.jobs.many", QString::number(m_state.jobs()));
}

Message PanelModel::orbName() const
{
    return Message::of(m_state.isRecording() ? "panel.orb.name.stop" : "panel.orb.name.record");
}

Message PanelModel::orbHelp() const
{
    return Message::of(m_state.isRecording() ? "panel.orb.help.stop" : "panel.orb.help.record");
}

// The state speaks Russian by default; an English interface shows the same words in English.
Message PanelModel::authTitle() const
{
    return m_state.authTitle() == AppState::defaultAuthTitle ? Message::of("panel.auth.title")
                                                             : Message::ofWords(m_state.authTitle());
}

Message PanelModel::authBody() const
{
    return m_state.authBody() == AppState::defaultAuthBody ? Message::of("panel.auth.body")
                                                           : Message::ofWords(m_state.authBody());
}

Message PanelModel::quitHelp() const
{
#ifdef Q_OS_MACOS
    return Message::of("panel.quit.help");
#else
    return Message::of("panel.quit.help.linux");
#endif
}

QString PanelModel::version() { return AppInfo::version; }

qint64 PanelModel::elapsedSeconds() const
{
    return qint64(std::clamp(m_scheduler.now() - m_state.since(), 0.0, longestTime));
}

QString PanelModel::time() const
{
    const qint64 seconds = elapsedSeconds();
    return u"%1:%2"_s.arg(seconds / 60, 2, 10, QChar{u'0'}).arg(seconds % 60, 2, 10, QChar{u'0'});
}

QString PanelModel::spokenTime() const
{
    if (!m_state.isRecording()) return {}; // nobody reads it, and saying numbers takes megabytes
    return m_language.t(u"panel.timer.spoken"_s,
                        dates::spokenDuration(elapsedSeconds(), m_language.current()));
}

void PanelModel::setFormat(const QString& format)
{
    if (!m_prefs.set(pref::protocolFormat, format)) emit notStored();
    readPreferences();
}

void PanelModel::setAutoRecord(bool on)
{
    if (!m_prefs.set(pref::autoRecord, on)) emit notStored();
    readPreferences();
}

void PanelModel::readPreferences()
{
    const QString format = m_prefs.get(pref::protocolFormat);
    const bool autoRecord = m_prefs.get(pref::autoRecord);
    if (format == m_format && autoRecord == m_autoRecord) return;
    m_format = format;
    m_autoRecord = autoRecord;
    emit preferencesChanged();
}

void PanelModel::setHoverOrb(bool over)
{
    if (std::exchange(m_hoverOrb, over) != over) emit changed();
}

void PanelModel::watch()
{
    ++m_watchers;
    readPreferences();
    runClock();
    emit timeChanged();
}

void PanelModel::unwatch()
{
    --m_watchers;
    runClock();
}

void PanelModel::runClock()
{
    const bool needed = m_watchers > 0 && m_state.isRecording() && m_state.since() > 0;
    if (needed == bool(m_clock)) return;
    if (!needed) {
        m_clock.end();
        return;
    }
    m_scheduler.every(clockInterval, m_clock.renew(), [this] { emit timeChanged(); });
}

} // namespace murmeli
