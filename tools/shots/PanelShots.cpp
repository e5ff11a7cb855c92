#include "Shot.h"
#include "panel/KeyPanel.h"
#include "support/TestProgram.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

struct PanelShot {
    QString name;
    QByteArray state;
    QByteArray prefs = "{}";
    QByteArray flag = {}; ///< null: no flag
    bool signedIn = false;
    bool signingIn = false;
    bool refused = false;
    bool hover = false;
    bool pressOrb = false;
    bool greet = false;
    bool update = false;
    bool installing = false;
    bool focus = false;
    QStringList marks = {};       ///< the last one is being written
    bool ready = false;           ///< a summary has come
    bool silent = false;          ///< the service has stopped writing
    bool unanswered = false;      ///< it did not do what it was asked for
    qint64 free = 84'000'000'000; ///< bytes on the disk
    bool engine = true;           ///< is installed
    QByteArray permissions = {};  ///< what the recorder says of them
};

QList<PanelShot> panelShots()
{
    const QByteArray idle = R"({"status":"idle","telegram_connected":true})";
    const QByteArray recording =
        R"({"status":"recording","telegram_connected":true,"since":1731688529,"jobs":3})";
    const QByteArray processing = R"({"status":"processing","telegram_connected":true})";
    return {
        {.name = u"idle"_s, .state = idle, .signedIn = true},
        {.name = u"idle-hover"_s,
         .state = idle,
         .prefs = R"({"protocol_format":"short"})",
         .signedIn = true,
         .hover = true},
        {.name = u"idle-focus"_s, .state = idle, .signedIn = true, .focus = true},
        {.name = u"starting"_s,
         .state = idle,
         .prefs = R"({"auto_record":false})",
         .signedIn = true,
         .pressOrb = true},
        {.name = u"recording"_s, .state = recording, .signedIn = true},
        {.name = u"recording-hover"_s,
         .state = R"({"status":"recording","telegram_connected":true,"since":1731688529,"jobs":1})",
         .signedIn = true,
         .hover = true},
        {.name = u"recording-since-unknown"_s, .state = R"({"status":"recording"})"},
        {.name = u"stopping"_s,
         .state = R"({"status":"recording","telegram_connected":true,"since":1731688529})",
         .signedIn = true,
         .pressOrb = true},
        {.name = u"processing"_s, .state = processing, .signedIn = true},
        {.name = u"detail"_s,
         .state =
             R"({"status":"processing","detail":"Разбираю запись: осталось две минуты, пока можно начать следующую встречу"})"},
        {.name = u"sign-in-wanted"_s, .state = R"({"status":"idle"})", .flag = "{}"},
        {.name = u"own-flag-text"_s,
         .state = R"({"status":"idle"})",
         .flag = R"({"title":"Протокол ждёт","body":"Войди, и он придёт."})"},
        {.name = u"welcome"_s, .state = idle, .signedIn = true, .greet = true},
        {.name = u"update"_s, .state = idle, .signedIn = true, .update = true},
        {.name = u"update-installing"_s,
         .state = R"({"status":"idle"})",
         .signedIn = true,
         .update = true,
         .installing = true},
        {.name = u"all-banners"_s, .state = idle, .flag = "{}", .greet = true, .update = true},
        {.name = u"signing-in"_s, .state = R"({"status":"idle"})", .signingIn = true},
        {.name = u"signing-in-refused"_s,
         .state = R"({"status":"idle"})",
         .signingIn = true,
         .refused = true},
        {.name = u"signed-out"_s, .state = R"({"status":"idle"})"},
        {.name = u"marks"_s,
         .state = R"({"status":"recording","telegram_connected":true,"since":1731689420})",
         .signedIn = true,
         .marks = {u"спросить про стенд"_s, u"важно, проверить"_s}},
        {.name = u"pulse-silent"_s, .state = idle, .signedIn = true, .silent = true},
        {.name = u"pulse-not-installed"_s,
         .state = idle,
         .signedIn = true,
         .unanswered = true,
         .engine = false},
        {.name = u"pulse-denied"_s,
         .state = idle,
         .signedIn = true,
         .unanswered = true,
         .permissions = R"({"microphone":"denied","screen":true})"},
        {.name = u"pulse-disk"_s, .state = idle, .signedIn = true, .unanswered = true, .free = 320'000'000},
        {.name = u"pulse-not-started"_s, .state = idle, .signedIn = true, .silent = true, .unanswered = true},
        {.name = u"pulse-busy"_s, .state = processing, .signedIn = true, .unanswered = true},
        {.name = u"pulse-not-stopped"_s, .state = recording, .signedIn = true, .unanswered = true},
        {.name = u"pulse-forgotten"_s,
         .state = R"({"status":"recording","telegram_connected":true,"since":1731684180})",
         .signedIn = true},
        {.name = u"pulse-ready"_s, .state = idle, .signedIn = true, .ready = true},
        {.name = u"pulse-disk-recording"_s, .state = recording, .signedIn = true, .free = 320'000'000},
    };
}

bool shoot(const PanelShot& shot, const Frame& frame)
{
    TestProgram m;
    m.write(m.paths.prefsFile, shot.prefs);
    m.write(m.paths.stateFile, R"({"status":"recording"})"); // keeps what is offered from being installed
    if (!shot.flag.isNull()) m.write(m.paths.authFlagFile, shot.flag);
    dress(m, frame);
    QQmlEngine engine;
    m.install(engine);
    QObject::disconnect(&m.account, &AuthManager::didLogin, nullptr,
                        nullptr); // the greeting has its own picture
    if (shot.signedIn) m.signIn();
    if (shot.signingIn) m.account.login();
    if (shot.refused) m.account.paste(u"https://example.org"_s);
    if (shot.update) {
        m.scheduler.advance(1500ms);
        m.publish(R"({"version":"0.9.0"})");
        m.updater.check();
        await([&] { return m.updater.available(); });
    }
    if (shot.installing) m.updater.runUpdate();
    m.write(m.paths.stateFile, shot.state);
    m.scheduler.advance(1500ms);
    if (shot.greet) m.state.greet();
    for (const QString& mark : shot.marks) {
        m.program.marks.setDraft(mark);
        if (mark != shot.marks.last()) m.program.marks.add();
        m.scheduler.advance(264s);
    }
    *m.freeBytes = shot.free;
    if (shot.ready) {
        Meeting meeting;
        meeting.tldr = u"…"_s;
        emit m.program.summaries.appeared(meeting, {});
    }
    if (shot.engine) m.installScript(m.paths.recorderScript, "echo '" + shot.permissions + "'");
    if (shot.silent) {
        m.serviceBeats(10, 2);
        m.scheduler.advance(48s);
    }
    if (shot.unanswered) {
        m.record.toggle();
        m.scheduler.advance(12s);
        settle(200);
    }
    if (shot.state.contains("recording")) {
        m.scheduler.advance(30s);
        settle(100);
    }

    KeyPanel window{engine,
                    KeyPanel::Kind::Floating,
                    {m.state, m.record, m.panel, m.account, m.updater, m.program.board, m.program.marks}};
    window.setColor(frame.dark ? QColor{0x23, 0x24, 0x2c} : QColor{0xd9, 0xda, 0xe1}); // the desk
    window.openAt({QPoint{100, 100}, window.contentSize()});
    settle(100);
    window.openAt({QPoint{100, 100}, window.contentSize()});
    m.panel.setHoverOrb(shot.hover);
    if (shot.pressOrb) m.record.toggle();
    if (shot.focus) {
        window.requestActivate();
        if (auto* orb = window.activeFocusItem()) orb->forceActiveFocus(Qt::TabFocusReason);
    }
    settle(700);
    window.openAt({QPoint{100, 100}, window.contentSize()});
    settle(150);
    return save(window, frame, u"panel-"_s + shot.name);
}

} // namespace

bool shootPanels(const Frame& frame, const QString& only)
{
    bool good = true;
    for (const PanelShot& shot : panelShots()) {
        if ((u"panel-"_s + shot.name).contains(only)) good = shoot(shot, frame) && good;
    }
    return good;
}

bool shootToasts(const Frame& frame, const QString& only)
{
    bool good = true;
    for (const bool starting : {true, false}) {
        const QString name = starting ? u"toast-started"_s : u"toast-finished"_s;
        if (!name.contains(only)) continue;
        TestProgram m;
        dress(m, frame);
        QQmlEngine engine;
        m.install(engine);
        const QString key = starting ? u"notify.started"_s : u"notify.finished"_s;
        QQmlComponent component{&engine, QUrl{u"qrc:/qt/qml/Murmeli/Notices/Toast.qml"_s}};
        const std::unique_ptr<QObject> toast{component.createWithInitialProperties(
            {{u"available"_s, QRectF{0, 0, 500, 300}},
             {u"above"_s, 0},
             {u"cardTitle"_s, m.language.t(key + u".title"_s)},
             {u"message"_s, m.language.t(key + u".body"_s)},
             {u"tone"_s, starting ? noticeTone::Starting : noticeTone::Passing},
             {u"symbol"_s, u"waveform"_s},
             {u"actions"_s, QVariant::fromValue(QList<NoticeAction>{})},
             {u"shown"_s, true}})};
        auto* window = qobject_cast<QQuickWindow*>(toast.get());
        if (!window) return false;
        window->setColor(frame.dark ? QColor{0x23, 0x24, 0x2c} : QColor{0xd9, 0xda, 0xe1});
        settle(400);
        good = save(*window, frame, name) && good;
    }
    return good;
}

} // namespace murmeli
