#include "Commands.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "margin/MarkFiles.h"
#include "notices/NoticeBoard.h"
#include "notices/Pulse.h"
#include "platform/Desktop.h"
#include "service/AppState.h"
#include "service/RecordControl.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli::commands {

namespace {

constexpr auto reasonPatience = 1500ms; // for what the recorder says of its permissions

/// The service's state as it stands now.
void readOnce(AppState& state)
{
    QEventLoop read;
    QObject::connect(&state, &AppState::statusRead, &read, &QEventLoop::quit);
    read.exec();
}

/// What is said of the service, and from when on it counts as silent.
class StatusLine {
public:
    explicit StatusLine(const Context& context) : m_context(context)
    {
        m_rhythm.remember(Pulse::file(context.paths).read().object[u"rhythm"_s].toObject());
    }

    [[nodiscard]] QJsonObject object(const AppState& state) const
    {
        const double written = double(state.reading().file.modifiedNs) / 1e9;
        QJsonObject object{{u"v"_s, 1},
                           {u"status"_s, state.status()},
                           {u"detail"_s, state.detail()},
                           {u"jobs"_s, state.jobs()},
                           {u"pulse"_s, pulse(state)}};
        if (state.reading().file.size >= 0) object[u"written"_s] = isoTime(written);
        if (state.since() > 0) object[u"since"_s] = isoTime(state.since());
        return object;
    }

    /// The same with what bars show. It stays equal for as long as nothing changes.
    [[nodiscard]] QJsonObject watched(const AppState& state) const
    {
        QJsonObject object = this->object(state);
        object.remove(u"written"_s);
        object[u"text"_s] = title(state);
        object[u"tooltip"_s] = lines(state).join(u'\n');
        object[u"class"_s] = isSilent(state) ? u"silent"_s : state.status();
        return object;
    }

    [[nodiscard]] QStringList lines(const AppState& state) const
    {
        QStringList lines{title(state)};
        if (state.isRecording() && state.since() > 0) {
            const auto since = QDateTime::fromMSecsSinceEpoch(qint64(state.since() * 1000));
            lines.append(m_context.text("command.status.since", since.toString(u"HH:mm"_s)));
        }
        if (!state.detail().isEmpty()) lines.append(state.detail());
        if (state.jobs() == 1) lines.append(m_context.text("panel.jobs.one"));
        if (state.jobs() > 1) lines.append(m_context.text("panel.jobs.many", QString::number(state.jobs())));
        if (isSilent(state)) lines.append(m_context.text("pulse.silent"));
        return lines;
    }

private:
    [[nodiscard]] QString title(const AppState& state) const
    {
        if (state.isRecording()) return m_context.text("panel.title.recording");
        return m_context.text(state.isProcessing() ? "panel.title.processing" : "panel.title.idle");
    }
    [[nodiscard]] bool isSilent(const AppState& state) const
    {
        const double written = double(state.reading().file.modifiedNs) / 1e9;
        return m_rhythm.isSilence(state.status(), m_context.scheduler.now() - written);
    }
    [[nodiscard]] QString pulse(const AppState& state) const
    {
        if (!m_rhythm.of(state.status())) return u"unknown"_s;
        return isSilent(state) ? u"silent"_s : u"alive"_s;
    }

    const Context& m_context;
    Rhythm m_rhythm;
};

} // namespace

int status(const Context& context)
{
    AppState state{context.paths, context.scheduler};
    const StatusLine line{context};
    readOnce(state);
    const auto isThere = [&] { return state.reading().file.size >= 0; };
    const auto print = [&](const QJsonObject& object) {
        if (context.json()) {
            context.terminal.json(object, context.line.has("--watch"));
        } else if (context.line.has("--watch")) {
            context.terminal.line(object[u"tooltip"_s].toString().replace(u'\n', u" · "_s));
        } else {
            context.terminal.line(line.lines(state).join(u'\n'));
        }
    };
    if (!context.line.has("--watch")) {
        if (!isThere()) return context.fail(Unavailable, "command.no_state", context.paths.stateFile);
        print(line.object(state));
        return Done;
    }
    QJsonObject last;
    const auto look = [&] {
        if (!context.terminal.isRead()) QCoreApplication::quit();
        QJsonObject now = line.watched(state);
        if (!isThere()) {
            now[u"class"_s] = u"missing"_s;
            now[u"text"_s] = now[u"tooltip"_s] = context.text("command.no_service");
        }
        if (std::exchange(last, now) != now) print(now);
    };
    look();
    QObject::connect(&state, &AppState::statusRead, &state, look);
    return QCoreApplication::exec();
}

int record(const Context& context)
{
    AppState state{context.paths, context.scheduler};
    readOnce(state);
    const QLatin1StringView wish = context.line.spec().name;
    const bool start = wish == "start"_L1 || (wish == "toggle"_L1 && !state.isRecording());
    if (state.isRecording() == start) return Done;
    RecordControl control{context.paths, state, context.scheduler};
    Pulse pulse{{.paths = context.paths,
                 .state = state,
                 .record = control,
                 .processes = context.processes,
                 .desktop = context.desktop,
                 .scheduler = context.scheduler,
                 .settingUp = [] { return false; },
                 .freeBytes = files::freeBytes}};
    control.toggle();
    if (control.refused()) return context.fail(Unavailable, "command.not_written", context.paths.commandFile);
    if (context.line.has("--no-wait")) return Done;
    QEventLoop answered;
    int exit = Done;
    QObject::connect(&state, &AppState::changed, &answered, [&] {
        if (state.isRecording() == start) answered.quit();
    });
    QObject::connect(&pulse, &Pulse::unanswered, &answered, [&] {
        context.scheduler.after(reasonPatience, &answered, [&] {
            exit = Unanswered;
            answered.quit();
        });
    });
    answered.exec();
    if (exit == Unanswered) {
        const QString what = context.text(start ? "pulse.not_started" : "pulse.not_stopped");
        context.terminal.message(what + u": "_s + NoticeBoard::reasonOf(pulse, context.language));
    }
    return exit;
}

int mark(const Context& context)
{
    AppState state{context.paths, context.scheduler};
    readOnce(state);
    if (!state.isRecording()) return context.fail(Unavailable, "command.no_recording");
    Mark mark;
    mark.time = context.scheduler.now();
    mark.begin = state.since() > 0 ? state.since() : mark.time;
    mark.text = context.line.text().trimmed().left(Mark::longest);
    if (mark.text.isEmpty()) mark.text = context.text("mark.important");
    if (MarkFiles{context.paths}.add(mark) != OwnWritten::Yes)
        return context.fail(Unavailable, "own.failed", context.paths.ownData);
    context.terminal.line(mark.stamp() + u' ' + mark.text);
    return Done;
}

} // namespace murmeli::commands
