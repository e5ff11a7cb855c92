#include "Program.h"

#include "base/Background.h"
#include "base/Files.h"
#include "base/Scheduler.h"
#include "platform/Desktop.h"

#include <QFileInfo>
#include <QThreadPool>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

Program::Program(const Paths& where, const Outside& outside, const Installation& installation,
                 const AppInfo::Addresses& addresses, QObject* parent)
    : QObject(parent),
      paths(where),
      prefs(paths.prefsFile, outside.desktop.stateFolder() + u"/prefs.json"_s),
      own(paths),
      locks(paths, own),
      receipts(paths, outside.scheduler),
      http(outside.http, receipts, [this](const QString& stem) { return locks.isLocked(stem); }),
      language(prefs, [desktop = &outside.desktop] { return desktop->preferredLanguages(); }),
      state(paths, outside.scheduler),
      record(paths, state, outside.scheduler),
      panel(state, record, prefs, language, outside.scheduler),
      account({.accountSite = addresses.accountSite, .accountFile = paths.accountFile},
              {.base = addresses.backend, .anonymousKey = addresses.backendKey}, http, outside.desktop,
              outside.secrets, outside.scheduler),
      updater({.versionUrl = addresses.versionUrl(),
               .script = paths.updateScript,
               .current = AppInfo::version,
               .installation = installation},
              http, outside.processes, outside.desktop, outside.scheduler,
              [this] { return !state.isRecording() && !(m_setup && m_setup->runner()->isRunning()); }),
      index(paths, state, outside.scheduler, outside.freeBytes),
      settings({.paths = paths,
                .prefs = prefs,
                .own = own,
                .state = state,
                .account = account,
                .updater = updater,
                .index = index,
                .receipts = receipts,
                .scheduler = outside.scheduler,
                .language = language,
                .processes = outside.processes,
                .desktop = outside.desktop}),
      glossary(account, http, prefs, outside.scheduler),
      notifier(paths, prefs, language, outside.desktop, outside.scheduler,
               [this](const ToastText& toast) { emit toastWanted(toast); }),
      pulse({.paths = paths,
             .state = state,
             .record = record,
             .processes = outside.processes,
             .desktop = outside.desktop,
             .scheduler = outside.scheduler,
             .settingUp = [this] { return m_setup != nullptr; },
             .freeBytes = outside.freeBytes}),
      longRecording(state, prefs, own, outside.scheduler),
      summaries(paths, state, outside.scheduler),
      writeUp(paths, summaries, outside.scheduler),
      board({.paths = paths,
             .pulse = pulse,
             .longRecording = longRecording,
             .writeUp = writeUp,
             .record = record,
             .language = language,
             .desktop = outside.desktop}),
      marks(paths, state, outside.scheduler),
      quitQuestion(state, record),
      m_outside(outside),
      m_addresses(addresses)
{
    connectState();
    connectPanel();
    connectNotices();
    // Of writes that a kill has ended.
    startOn(*QThreadPool::globalInstance(),
            [command = paths.commandFile, spare = outside.desktop.stateFolder() + u"/prefs.json"_s] {
                files::removeUnfinished(command);
                files::removeUnfinished(spare);
            });
}

Program::~Program() = default;

void Program::connectState()
{
    connect(&state, &AppState::authRequired, this, &Program::panelWanted);
    connect(&state, &AppState::statusRead, this, [this](const QString& from, const QString& to) {
        language.refresh(); // whoever changed the preference, it shows within one reading of the state
        notifier.recordingChanged(from, to);
    });
    connect(&account, &AuthManager::didLogin, this, [this] {
        emit panelWanted();
        state.greet();
    });
    // The panel and the settings show some of the same preferences.
    connect(&settings, &SettingsModel::stored, &panel, &PanelModel::readPreferences);
    connect(&panel, &PanelModel::preferencesChanged, &settings, &SettingsModel::refresh);
    const auto saysWhy = [this](const char* title) {
        return [this, title] {
            emit toastWanted({.title = language.t(QString::fromLatin1(title)),
                              .message = language.t(u"prefs.unsaved.why"_s),
                              .symbol = u"exclamationmark.triangle"_s});
        };
    };
    connect(&settings, &SettingsModel::notStored, this, saysWhy("prefs.unsaved"));
    connect(&own, &OwnSettings::notStored, this,
            [this](OwnWritten why) { sayNotWritten(why, paths.ownConfig + u"/settings.json"_s); });
    connect(&locks, &MeetingLocks::notWritten, this,
            [this](OwnWritten why) { sayNotWritten(why, u"margin"_s); });
    connect(&receipts, &Receipts::notWritten, this,
            [this](OwnWritten why) { sayNotWritten(why, u"sent"_s); });
    connect(&panel, &PanelModel::notStored, this, saysWhy("prefs.unsaved"));
    connect(&glossary, &GlossaryStore::notStored, this, saysWhy("assistant.error.save"));
}

void Program::connectPanel()
{
    connect(&panel, &PanelModel::meetingsRequested, this,
            [this] { m_outside.desktop.openFolder(paths.vaultDir); });
    connect(&panel, &PanelModel::botRequested, this,
            [this] { m_outside.desktop.openUrl(QUrl{m_addresses.bot}); });
    connect(&panel, &PanelModel::quitRequested, &quitQuestion, &QuitQuestion::ask);
    connect(&panel, &PanelModel::mainWindowRequested, this, &Program::mainWindowWanted);
    connect(&quitQuestion, &QuitQuestion::agreed, this, &Program::quitWanted);
}

void Program::connectNotices()
{
    connect(&pulse, &Pulse::unanswered, this, [this] { announce(noticeKind::Trouble); });
    connect(&pulse, &Pulse::diskRanLow, this, [this] { announce(noticeKind::Disk); });
    connect(&writeUp, &WriteUp::becameReady, this, [this] { announce(noticeKind::Ready); });
    connect(&writeUp, &WriteUp::becameSlow, this, [this] { announce(noticeKind::Slow); });
    connect(&board, &NoticeBoard::summaryCopied, this,
            [this](const QString& id, qint64 bytes) { receipts.noteCopied(id, u"excerpt"_s, bytes); });
    connect(&board, &NoticeBoard::meetingRequested, this, [this](const QString& id) {
        emit mainWindowWanted();
        main().openOnceThere(id);
    });
    connect(&writeUp, &WriteUp::changed, &panel, [this] { panel.setUsualMinutes(writeUp.usualMinutes()); });
    connect(&longRecording, &LongRecording::asked, this, [this] { announce(noticeKind::Forgotten); });
    connect(&summaries, &SummaryWatch::appeared, &marks,
            [this](const Meeting& meeting) { marks.settle({meeting}); });
    connect(&marks, &RecordingMarks::notWritten, this,
            [this](OwnWritten why) { sayNotWritten(why, u"marks.jsonl"_s); });
    connect(&board, &NoticeBoard::permissionsRequested, this, [this] {
        emit panel.settingsRequested();
        emit settings.permissionsWanted();
    });
    connect(&board, &NoticeBoard::installRequested, this, [this] {
        if (!m_setup) beginSetup();
    });
}

void Program::sayNotWritten(OwnWritten why, const QString& file)
{
    const QString key = why == OwnWritten::Unreadable ? u"own.unreadable"_s : u"own.failed"_s;
    emit toastWanted({.title = u"Murmeli"_s,
                      .message = language.t(key, QFileInfo{file}.fileName()),
                      .symbol = u"exclamationmark.triangle"_s});
}

void Program::announce(noticeKind::NoticeKind kind)
{
    const Notice notice = board.notice(kind);
    notifier.announce({.title = notice.title,
                       .message = notice.brief.isEmpty() ? notice.body : notice.brief,
                       .tone = notice.tone,
                       .symbol = notice.symbol,
                       .actions = notice.actions,
                       .pressed = [this, kind](int action) { board.act(kind, action); }});
}

void Program::start(bool forceSetup)
{
    m_outside.scheduler.after(0ms, this, [this, forceSetup] {
        if (forceSetup || SetupRunner::needed(paths)) beginSetup();
        updater.startAutoCheck();
    });
}

void Program::told(const QString& line)
{
    if (account.handle(line)) return;
    if (line == wish::beSeen) emit somethingWanted();
    if (line == wish::window) emit mainWindowWanted();
    if (line == wish::open || line.startsWith(wish::open + u' '))
        return openAsTold(line.mid(wish::open.size() + 1).split(u' '));
    if (line == wish::record && !state.isRecording()) {
        record.toggle();
        if (record.refused()) emit panelWanted(); // to say so
    }
}

void Program::openAsTold(QStringList parts)
{
    for (QString& part : parts)
        part = QUrl::fromPercentEncoding(part.toLatin1());
    const QString meeting = parts.value(0);
    MainModel& model = main();
    model.setTab(MainModel::Tab::Meetings);
    const QString query = parts.value(2);
    if (!meeting.isEmpty()) {
        model.openOnceThere(meeting, parts.value(1), query);
    } else if (!query.isEmpty()) {
        model.search()->setQuery(query);
    }
    emit mainWindowWanted();
}

MainModel& Program::main()
{
    if (!m_main) {
        m_main = std::make_unique<MainModel>(MainModel::Ground{.paths = paths,
                                                               .state = state,
                                                               .marks = marks,
                                                               .account = account,
                                                               .http = http,
                                                               .locks = locks,
                                                               .own = own,
                                                               .receipts = receipts,
                                                               .processes = m_outside.processes,
                                                               .desktop = m_outside.desktop,
                                                               .language = language,
                                                               .scheduler = m_outside.scheduler,
                                                               .settings = settings,
                                                               .glossary = glossary,
                                                               .index = index,
                                                               .webOrigin = m_addresses.web});
        connect(m_main.get(), &MainModel::fileEnded, this,
                [this](const QString& meeting, bool saved, const Message& line) {
                    emit toastWanted({.title = meeting,
                                      .message = language.say(line),
                                      .symbol = saved ? u"checkmark"_s : u"exclamationmark.triangle"_s});
                });
    }
    return *m_main;
}

void Program::beginSetup()
{
    m_setup = std::make_unique<Setup>(
        paths,
        SetupRunner::Place{.webOrigin = m_addresses.web,
                           .logFile = m_outside.desktop.stateFolder() + u"/setup.log"_s},
        m_outside.processes, m_outside.desktop, m_outside.scheduler, *this);
    connect(m_setup.get(), &Setup::ended, this, [this](bool installed) {
        if (installed) account.handOver();
        emit setupEnded();
    });
    connect(m_setup.get(), &Setup::finished, this, &Program::finishSetup);
    emit setupWanted();
    if (!updater.runningFromDiskImage()) m_setup->start();
}

void Program::finishSetup()
{
    state.load();
    updater.check();
    emit setupFinished();
    if (m_setup) m_setup.release()->deleteLater(); // it is its very signal that ends it
}

} // namespace murmeli
