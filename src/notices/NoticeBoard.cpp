#include "NoticeBoard.h"

#include "LongRecording.h"
#include "Pulse.h"
#include "WriteUp.h"
#include "base/Dates.h"
#include "localisation/Language.h"
#include "platform/Desktop.h"
#include "service/Paths.h"
#include "service/RecordControl.h"

using namespace Qt::StringLiterals;

namespace murmeli {

NoticeBoard::NoticeBoard(const Ground& ground, QObject* parent) : QObject(parent), m_ground(ground)
{
    connect(&ground.pulse, &Pulse::changed, this, &NoticeBoard::changed);
    connect(&ground.longRecording, &LongRecording::changed, this, &NoticeBoard::changed);
    connect(&ground.writeUp, &WriteUp::changed, this, &NoticeBoard::changed);
    connect(&ground.language, &Language::changed, this, &NoticeBoard::changed);
}

QList<Notice> NoticeBoard::notices() const
{
    QList<Notice> notices;
    for (int kind = 0; kind < noticeKind::count; ++kind)
        notices.append(notice(kind));
    return notices;
}

Notice NoticeBoard::notice(int kind) const
{
    switch (kind) {
    case noticeKind::Trouble:
        return trouble();
    case noticeKind::Disk:
        return disk();
    case noticeKind::Forgotten:
        return forgotten();
    case noticeKind::Slow:
        return slow();
    case noticeKind::Ready:
        return ready();
    default:
        return {};
    }
}

NoticeAction NoticeBoard::action(NoticeAction::Action action, const char* key, bool first) const
{
    NoticeAction button;
    button.action = action;
    button.text = m_ground.language.t(QString::fromLatin1(key));
    button.first = first;
    return button;
}

Notice NoticeBoard::trouble() const
{
    const Pulse& pulse = m_ground.pulse;
    const Language& language = m_ground.language;
    Notice notice;
    const auto kind = pulse.trouble();
    if (kind == Pulse::Trouble::None) return notice;
    notice.shown = true;
    if (kind == Pulse::Trouble::Silent) {
        notice.symbol = u"pulse"_s;
        notice.title = language.t(u"pulse.silent"_s);
        notice.body = language.t(u"pulse.silent.body"_s,
                                 Language::shortDuration(language.current(), pulse.secondsQuiet()));
        notice.actions = {action(NoticeAction::ShowLog, "notice.log"),
                          action(NoticeAction::ShowPermissions, "notice.permissions")};
        return notice;
    }
    notice.tone = noticeTone::Failure;
    notice.symbol = u"exclamationmark.triangle"_s;
    notice.title =
        language.t(kind == Pulse::Trouble::NotStarted ? u"pulse.not_started"_s : u"pulse.not_stopped"_s);
    notice.closable = true;
    notice.actions = {action(NoticeAction::TryAgain, "notice.try_again", true)};
    notice.body = reasonOf(pulse, language.current());
    switch (pulse.reason()) {
    case Pulse::Reason::NotInstalled:
        notice.actions = {action(NoticeAction::Install, "notice.install", true),
                          action(NoticeAction::TryAgain, "notice.try_again")};
        break;
    case Pulse::Reason::Denied:
        notice.actions += action(NoticeAction::ShowPermissions, "notice.permissions");
        break;
    case Pulse::Reason::DiskFull:
        notice.actions += action(NoticeAction::ShowRecordings, "notice.recordings");
        break;
    case Pulse::Reason::Busy:
        break;
    case Pulse::Reason::Silent:
    case Pulse::Reason::NotTaken:
    case Pulse::Reason::NoAnswer:
        notice.actions += action(NoticeAction::ShowLog, "notice.log");
    }
    return notice;
}

QString NoticeBoard::reasonOf(const Pulse& pulse, const QString& language)
{
    const auto because = [&](const char* key, const QString& argument = {}) {
        return Language::text(language, QString::fromLatin1(key), argument);
    };
    switch (pulse.reason()) {
    case Pulse::Reason::NotInstalled:
        return because("pulse.reason.not_installed");
    case Pulse::Reason::Denied:
        return because("pulse.reason.denied", PermissionsModel::names(pulse.deniedKeys(), language));
    case Pulse::Reason::DiskFull:
        return because("pulse.reason.disk", Language::size(language, pulse.freeBytes().value_or(0)));
    case Pulse::Reason::Busy:
        return because("pulse.reason.busy");
    case Pulse::Reason::Silent: {
        const auto written = QDateTime::fromMSecsSinceEpoch(qint64(pulse.lastWritten() * 1000));
        return because("pulse.reason.silent", dates::bySkeleton(written, language, u"Hm"_s));
    }
    case Pulse::Reason::NotTaken:
        return because("pulse.reason.not_taken");
    case Pulse::Reason::NoAnswer:
        return because("pulse.reason.no_answer");
    }
    return {};
}

Notice NoticeBoard::disk() const
{
    Notice notice;
    notice.shown = m_ground.pulse.diskRunsOut();
    if (!notice.shown) return notice;
    const Language& language = m_ground.language;
    notice.symbol = u"exclamationmark.triangle"_s;
    notice.title = language.t(u"pulse.reason.disk"_s,
                              Language::size(language.current(), m_ground.pulse.freeBytes().value_or(0)));
    notice.body = language.t(u"pulse.disk.body"_s);
    notice.actions = {action(NoticeAction::ShowRecordings, "notice.recordings")};
    notice.closable = true;
    return notice;
}

Notice NoticeBoard::forgotten() const
{
    const LongRecording& recording = m_ground.longRecording;
    Notice notice;
    notice.shown = recording.isAsking();
    if (!notice.shown) return notice;
    const Language& language = m_ground.language;
    notice.symbol = u"timer"_s;
    notice.title =
        language.t(u"forgotten.title"_s, Language::shortDuration(language.current(), recording.seconds()));
    notice.brief = language.t(u"forgotten.body"_s);
    notice.body = notice.brief;
    if (const auto left = recording.secondsLeft())
        notice.body +=
            u' ' + language.t(u"forgotten.stops"_s, Language::shortDuration(language.current(), *left));
    notice.actions = {action(NoticeAction::Stop, "forgotten.stop", true),
                      action(NoticeAction::GoOn, "forgotten.go_on")};
    return notice;
}

Notice NoticeBoard::slow() const
{
    Notice notice;
    notice.shown = m_ground.writeUp.isSlow();
    if (!notice.shown) return notice;
    notice.symbol = u"hourglass"_s;
    notice.title = m_ground.language.t(u"pulse.slow"_s);
    notice.actions = {action(NoticeAction::ShowLog, "notice.log")};
    notice.closable = true;
    return notice;
}

Notice NoticeBoard::ready() const
{
    Notice notice;
    notice.shown = m_ground.writeUp.ready().has_value();
    if (!notice.shown) return notice;
    notice.tone = noticeTone::Good;
    notice.symbol = u"checkmark"_s;
    notice.title = m_ground.language.t(u"pulse.ready"_s); // without its name: others may see it
    notice.actions = {action(NoticeAction::Open, "notice.open", true)};
    if (!m_ground.writeUp.ready()->tldr.isEmpty())
        notice.actions += action(NoticeAction::CopySummary, "notice.copy_summary");
    notice.closable = true;
    return notice;
}

QString NoticeBoard::line() const
{
    const Notice now = trouble();
    if (!now.shown) return {};
    return lineFails() ? now.title + u". "_s + now.body : now.title;
}

bool NoticeBoard::lineFails() const
{
    const auto kind = m_ground.pulse.trouble();
    return kind == Pulse::Trouble::NotStarted || kind == Pulse::Trouble::NotStopped;
}

void NoticeBoard::act(int kind, int action)
{
    if (!notice(kind).shown) return; // a card may outlive what it says
    switch (action) {
    case NoticeAction::TryAgain:
        return m_ground.record.toggle();
    case NoticeAction::Stop:
        return m_ground.record.toggle();
    case NoticeAction::GoOn:
        return m_ground.longRecording.goOn();
    case NoticeAction::Open: {
        const QString id = m_ground.writeUp.ready()->id;
        m_ground.writeUp.dismissReady();
        emit meetingRequested(id);
        return;
    }
    case NoticeAction::CopySummary:
        m_ground.desktop.copyText(m_ground.writeUp.ready()->tldr);
        emit summaryCopied(m_ground.writeUp.ready()->id, m_ground.writeUp.ready()->tldr.toUtf8().size());
        return m_ground.writeUp.dismissReady();
    case NoticeAction::Install:
        emit installRequested();
        return;
    case NoticeAction::ShowPermissions:
        emit permissionsRequested();
        return;
    case NoticeAction::ShowRecordings:
        m_ground.desktop.openFolder(m_ground.paths.recordings);
        break;
    case NoticeAction::ShowLog:
        m_ground.desktop.openFolder(m_ground.paths.logs);
        break;
    default:
        return;
    }
    emit folderOpened();
}

void NoticeBoard::dismiss(int kind)
{
    if (kind == noticeKind::Trouble) m_ground.pulse.dismissTrouble();
    if (kind == noticeKind::Disk) m_ground.pulse.dismissDisk();
    if (kind == noticeKind::Slow) m_ground.writeUp.dismissSlow();
    if (kind == noticeKind::Ready) m_ground.writeUp.dismissReady();
}

} // namespace murmeli
