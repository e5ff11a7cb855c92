#include "Shot.h"
#include "support/TestProgram.h"
#include "windows/AppWindow.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

const Installation diskImage{.bundlePath = u"/Volumes/Murmeli/Murmeli.app"_s, .fromDiskImage = true};
const Installation package{.bundlePath = u"/usr/bin/murmeli"_s, .packageManaged = true};
const Installation own{.bundlePath = u"/opt/murmeli/bin/murmeli"_s};

const QByteArray russianRelease =
    R"({"version":"0.9.0","released":"28 ноября 2026","notes":"Разбор встречи показывает покрытие повестки и числа, которые прозвучали.\nЗамечание к протоколу правит нужный пункт сразу, без повторной расшифровки.\nСловарь помощника принимает правила: как слышится и как пишется.\nЗапись больше не прерывается, когда компьютер меняет аудиоустройство.\nИсправлено: после сна таймер записи показывал неверное время."})";
const QByteArray englishRelease =
    R"({"version":"0.9.0","released":"28 November 2026","notes":"The analysis of a meeting shows how much of the agenda was covered, and the numbers that were named.\nA remark on a protocol corrects the right item at once, without transcribing again.\nThe assistant’s glossary takes rules: how a word is heard, and how it is written.\nA recording no longer breaks off when the computer changes its audio device.\nFixed: after sleep the recording’s timer showed the wrong time."})";

/// A recorder that gives `answer`, after `wait` has gone when that is not empty.
void installRecorder(const TestProgram& m, const QByteArray& answer, const QByteArray& wait = {})
{
    m.write(m.paths.recorderScript,
            (wait.isEmpty() ? QByteArray{} : "case $1 in --request*) sleep " + wait + ";; esac\n") +
                "echo '" + answer + "'\n");
    QDir{}.mkpath(QFileInfo{m.paths.python}.path());
    QFile::link(u"/bin/bash"_s, m.paths.python);
}

AppWindow::View view(const QString& url, const QVariantMap& properties, const QSize& size)
{
    return {.url = url, .properties = properties, .titleKey = u"setup.title"_s, .size = size};
}

} // namespace

bool shootUpdates(const Frame& frame, const QString& only)
{
    using Phase = Updater::Phase;
    struct Shot {
        QString name;
        Installation installation = own;
        QList<QByteArray> answers; ///< of the checks, one after the other; empty: none comes
        Phase phase;
    };
    const QByteArray& release = frame.language == "ru"_L1 ? russianRelease : englishRelease;
    const QList<Shot> shots = {
        {.name = u"checking"_s, .answers = {""}, .phase = Phase::Checking},
        {.name = u"available"_s, .answers = {release}, .phase = Phase::Available},
        {.name = u"installing"_s, .answers = {release}, .phase = Phase::Installing},
        {.name = u"uptodate"_s, .answers = {R"({"version":"0.8.0"})"}, .phase = Phase::UpToDate},
        {.name = u"failed"_s, .answers = {release, "<html>"}, .phase = Phase::Failed},
        {.name = u"dmg"_s, .installation = diskImage, .answers = {release}, .phase = Phase::Available},
        {.name = u"package"_s, .installation = package, .answers = {release}, .phase = Phase::Available},
    };
    bool good = true;
    for (const Shot& shot : shots) {
        if (!(u"update-"_s + shot.name).contains(only)) continue;
        TestProgram m{shot.installation};
        m.write(m.paths.stateFile, R"({"status":"recording"})"); // nothing is installed by itself
        m.scheduler.advance(1500ms);
        dress(m, frame);
        QQmlEngine engine;
        m.install(engine);
        for (const QByteArray& answer : shot.answers) {
            if (!answer.isEmpty()) m.publish(answer);
            m.updater.check();
            m.scheduler.advance(0ms);
            if (!answer.isEmpty()) await([&] { return m.updater.phase() != Phase::Checking; });
        }
        if (shot.phase == Phase::Installing) m.updater.runUpdate();
        if (m.updater.phase() != shot.phase) return false;
        AppWindow window{engine, m.language,
                         view(u"qrc:/qt/qml/Murmeli/Update/UpdateView.qml"_s,
                              {{u"updater"_s, QVariant::fromValue(&m.updater)}}, {520, 560})};
        window.present();
        settle(500);
        good = save(window, frame, u"update-"_s + shot.name) && good;
    }
    return good;
}

bool shootSetups(const Frame& frame, const QString& only)
{
    struct Shot {
        QString name;
        Installation installation = own;
        QByteArray script; ///< the installer; empty: not run
        QByteArray permissions = R"({"microphone":"authorized","screen":false})";
        bool asking = false;
    };
    const QByteArray first = "for s in system app venv; do echo \"@@done|$s\"; done; ";
    const QList<Shot> shots = {
        {.name = u"running"_s,
         .script = first + "echo '@@done|engine'; echo '@@done|asr'; echo '@@progress|models|42'; sleep 60",
         .asking = true},
        {.name = u"failed"_s,
         .script = first + "echo 'error: no space left on the disk (4 GB needed)'; "
                           "echo '@@fail|engine'; exit 1",
         .permissions = R"({"microphone":"notDetermined","screen":false})"},
        {.name = u"done"_s, .script = "true"},
        {.name = u"complete"_s,
         .script = "true",
         .permissions = R"({"microphone":"authorized","screen":true})"},
        {.name = u"dmg"_s, .installation = diskImage, .permissions = "{}"},
    };
    bool good = true;
    for (const Shot& shot : shots) {
        if (!(u"setup-"_s + shot.name).contains(only)) continue;
        TestProgram m{shot.installation};
        dress(m, frame);
        QQmlEngine engine;
        m.install(engine);
        m.publish(shot.script);
        installRecorder(m, shot.permissions, "60");
        Setup setup{m.paths,     {.webOrigin = m.server.origin(), .logFile = m.home.filePath(u"setup.log"_s)},
                    m.processes, m.desktop,
                    m.scheduler, m.settings};
        SetupRunner& runner = *setup.runner();
        PermissionsModel& permissions = *setup.permissions();
        if (!shot.script.isEmpty()) {
            runner.start();
            await([&] {
                m.scheduler.advance(16ms);
                return runner.state(SetupStep::Models).kind != StepState::Waiting || !runner.isRunning();
            });
        }
        await([&] { return permissions.screen() != PermissionsModel::State::Unknown; });
        if (shot.asking) permissions.request(PermissionsModel::Kind::Screen);
        AppWindow window{
            engine, m.language,
            view(u"qrc:/qt/qml/Murmeli/Setup/SetupView.qml"_s,
                 {{u"setup"_s, QVariant::fromValue(&setup)}, {u"updater"_s, QVariant::fromValue(&m.updater)}},
                 {560, 720})};
        window.present();
        settle(900);
        good = save(window, frame, u"setup-"_s + shot.name) && good;
    }
    return good;
}

bool shootPermissions(const Frame& frame, const QString& only)
{
    using Kind = PermissionsModel::Kind;
    struct Shot {
        QString name;
        QByteArray answer;
        bool compact = false;
        std::optional<Kind> request = {};
        bool page = true; ///< whether the desktop has settings for it
        QByteArray wait = {};
    };
    const QList<Shot> shots = {
        {.name = u"not-asked"_s, .answer = R"({"microphone":"notDetermined","screen":false})"},
        {.name = u"denied-stale"_s,
         .answer = R"({"microphone":"denied","screen":false})",
         .request = Kind::Screen},
        {.name = u"asking"_s,
         .answer = R"({"microphone":"notDetermined","screen":true})",
         .compact = true,
         .request = Kind::Microphone,
         .wait = "60"},
        {.name = u"granted"_s, .answer = R"({"microphone":"authorized","screen":true})", .compact = true},
        {.name = u"no-settings"_s,
         .answer = R"({"microphone":"denied","screen":true})",
         .compact = true,
         .request = Kind::Microphone,
         .page = false},
    };
    bool good = true;
    for (const Shot& shot : shots) {
        if (!(u"permissions-"_s + shot.name).contains(only)) continue;
        TestProgram m;
        dress(m, frame);
        QQmlEngine engine;
        m.install(engine);
        installRecorder(m, shot.answer, shot.wait);
        m.desktop.hasPages = shot.page;
        PermissionsModel model{m.paths, m.processes, m.desktop, m.settings};
        await([&] { return model.screen() != PermissionsModel::State::Unknown; });
        if (shot.request) model.request(*shot.request);
        if (shot.request == Kind::Screen) await([&] { return model.screenLooksStale(); });
        AppWindow window{engine, m.language,
                         view(u"file:"_s + QStringLiteral(SHOTS_FOLDER) + u"/PermissionsSheet.qml"_s,
                              {{u"model"_s, QVariant::fromValue(&model)}, {u"compact"_s, shot.compact}},
                              {576, 420})};
        window.present();
        settle(400);
        good = save(window, frame, u"permissions-"_s + shot.name) && good;
    }
    return good;
}

} // namespace murmeli
