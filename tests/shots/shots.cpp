// Draws every screen in every state, in both languages and themes: murmeli_shots FOLDER

#include "app/KeyPanel.h"
#include "app/PanelModel.h"
#include "base/Files.h"
#include "base/ManualScheduler.h"
#include "localisation/Language.h"
#include "service/Prefs.h"
#include "ui/Look.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

struct PanelShot {
    QString name;
    QByteArray state;
    QByteArray prefs = "{}";
    QByteArray flag = {}; ///< null: no flag
    bool signedIn = false;
    bool hover = false;
    bool pressOrb = false;
    bool greet = false;
    QString update = {};
    bool installing = false;
    bool focus = false;
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
        {.name = u"update"_s, .state = idle, .signedIn = true, .update = u"0.9.0"_s},
        {.name = u"update-installing"_s,
         .state = R"({"status":"idle"})",
         .signedIn = true,
         .update = u"0.9.0"_s,
         .installing = true},
        {.name = u"all-banners"_s, .state = idle, .flag = "{}", .greet = true, .update = u"0.9.0"_s},
        {.name = u"signed-out"_s, .state = R"({"status":"idle"})"},
    };
}

/// Lets animations of the given time come to their end.
void settle(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < milliseconds)
        QGuiApplication::processEvents(QEventLoop::AllEvents, 10);
}

QColor desk(bool dark) { return dark ? QColor{0x23, 0x24, 0x2c} : QColor{0xd9, 0xda, 0xe1}; }

bool save(QQuickWindow& window, const QString& file)
{
    std::printf("%s\n", qPrintable(file));
    return window.grabWindow().save(file);
}

bool shootPanel(const PanelShot& shot, const QString& language, bool dark, const QString& file)
{
    const QTemporaryDir home;
    const Paths paths{home.path()};
    QDir{}.mkpath(paths.logs);
    Prefs prefs{paths.prefsFile};
    if (!files::writeAtomic(paths.prefsFile, shot.prefs) || !files::writeAtomic(paths.stateFile, shot.state))
        return false;
    if (!shot.flag.isNull() && !files::writeAtomic(paths.authFlagFile, shot.flag)) return false;
    prefs.set(u"locale"_s, language);

    ManualScheduler scheduler;
    Language texts{prefs, [] { return QStringList{}; }};
    Look look{nullptr};
    look.setDark(dark);
    AppState state{paths, scheduler};
    RecordControl record{paths, state, scheduler};
    PanelModel panel{state, record, prefs, texts, scheduler};
    QQmlEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    texts.install(engine);
    look.install(engine);
    scheduler.advance(0ms);
    panel.setSignedIn(shot.signedIn);
    panel.setUpdate(shot.update, shot.installing);
    if (shot.greet) state.greet();

    KeyPanel window{engine, KeyPanel::Kind::Floating, state, record, panel};
    window.setColor(desk(dark)); // pictures of windows on no desktop have no transparency
    window.openAt({QPoint{100, 100}, window.contentSize()});
    settle(100);
    window.openAt({QPoint{100, 100}, window.contentSize()});
    panel.setHoverOrb(shot.hover);
    if (shot.pressOrb) record.toggle();
    if (shot.focus) {
        window.requestActivate();
        if (auto* orb = window.activeFocusItem()) orb->forceActiveFocus(Qt::TabFocusReason);
    }
    settle(700);
    window.openAt({QPoint{100, 100}, window.contentSize()});
    settle(150);
    return save(window, file);
}

bool shootToast(bool starting, const QString& language, bool dark, const QString& file)
{
    const Prefs prefs{{}};
    Language texts{prefs, [language] { return QStringList{language}; }};
    Look look{nullptr};
    look.setDark(dark);
    QQmlEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    texts.install(engine);
    look.install(engine);
    const QString key = starting ? u"notify.started"_s : u"notify.finished"_s;
    QQmlComponent component{&engine, QUrl{u"qrc:/qt/qml/Murmeli/App/Toast.qml"_s}};
    const std::unique_ptr<QObject> toast{
        component.createWithInitialProperties({{u"card"_s, QRectF{100, 100, 330, 74}},
                                               {u"cardTitle"_s, texts.t(key + u".title"_s)},
                                               {u"message"_s, texts.t(key + u".body"_s)},
                                               {u"starting"_s, starting},
                                               {u"shown"_s, true}})};
    auto* window = qobject_cast<QQuickWindow*>(toast.get());
    if (!window) return false;
    window->setColor(desk(dark));
    settle(400);
    return save(*window, file);
}

} // namespace

int main(int argc, char* argv[])
{
    const QGuiApplication app{argc, argv};
    const QString only = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    bool good = argc > 1;
    for (const QString& language : Language::supported) {
        for (const bool dark : {true, false}) {
            const QString folder =
                QString::fromLocal8Bit(argv[1]) + u'/' + language + (dark ? u"-dark/"_s : u"-light/"_s);
            QDir{}.mkpath(folder);
            for (const PanelShot& shot : panelShots()) {
                if (!shot.name.contains(only)) continue;
                good = shootPanel(shot, language, dark, folder + u"panel-"_s + shot.name + u".png"_s) && good;
            }
            if (!u"toast"_s.contains(only)) continue;
            good = shootToast(true, language, dark, folder + u"toast-started.png"_s) && good;
            good = shootToast(false, language, dark, folder + u"toast-finished.png"_s) && good;
        }
    }
    return good ? 0 : 1;
}
