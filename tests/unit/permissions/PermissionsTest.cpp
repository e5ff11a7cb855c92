#include "base/Files.h"
#include "permissions/PermissionsModel.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "support/Cases.h"
#include "support/RecordingDesktop.h"
#include "support/RecordingProcesses.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using Kind = PermissionsModel::Kind;
using State = PermissionsModel::State;

class PermissionsTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void answers()
    {
        const Cases<QByteArray, State, State> cases{
            {"all", R"({"microphone":"authorized","screen":true})", State::Granted, State::Granted},
            {"restricted", R"({"microphone":"restricted","screen":false})", State::Denied, State::NotAsked},
            {"denied", R"({"microphone":"denied"})", State::Denied, State::NotAsked},
            {"not asked", R"({"microphone":"notDetermined","screen":1})", State::NotAsked, State::NotAsked},
            {"odd values", R"({"microphone":true,"screen":"true"})", State::Unknown, State::NotAsked},
            {"a word of its own", R"({"microphone":"maybe","screen":null})", State::Unknown, State::NotAsked},
            {"a trace", "Traceback (most recent call last):\n", State::Unknown, State::Unknown},
            {"nothing", "", State::Unknown, State::Unknown},
        };
        for (const auto& [name, answer, microphone, screen] : cases) {
            CASE(name);
            const auto model = m->make(answer);
            QCOMPARE(model->microphone(), microphone);
            QCOMPARE(model->screen(), screen);
            QCOMPARE(model->allGranted(), microphone == State::Granted);
        }
        QCOMPARE(m->processes.runs.last(), m->recorder(u"--status"_s));
    }

    void withoutARecorderNothingIsKnown()
    {
        for (QString Paths::*missing : {&Paths::python, &Paths::recorderScript}) {
            init();
            QFile::remove(m->paths.*missing);
            const auto model = m->make({});
            QSignalSpy changed{model.get(), &PermissionsModel::changed};
            QVERIFY(changed.wait());
            QVERIFY(m->processes.runs.isEmpty());
            QCOMPARE(model->microphone(), State::Unknown);
            QCOMPARE(model->missingTitleKeys(),
                     (QStringList{u"perm.microphone.title"_s, u"perm.screen.title"_s}));
        }
    }

    void aDeniedMicrophoneLeadsToTheSettings()
    {
        const auto model = m->make(R"({"microphone":"denied","screen":true})");
        model->request(Kind::Microphone);
        QCOMPARE(m->desktop.pages, QList{Desktop::SettingsPage::Microphone});
        QVERIFY(!model->askingMicrophone());
        QCOMPARE(m->processes.runs.size(), 1);
    }

    void aGrantIsTaken()
    {
        const QByteArray before = R"({"microphone":"notDetermined","screen":false})";
        const auto model = m->make(before);
        model->refresh();
        const auto endLook = m->processes.takeEnd();
        model->refresh(); // whoever comes back to the window once more
        QCOMPARE(m->processes.runs.size(), 2);
        model->request(Kind::Microphone);
        QVERIFY(model->askingMicrophone());
        QVERIFY(!model->askingScreen());
        QCOMPARE(m->processes.runs.last(), m->recorder(u"--request-mic"_s));
        m->processes.end(R"({"microphone":"authorized","screen":false})");
        endLook(before);
        QVERIFY(!model->askingMicrophone());
        QCOMPARE(model->microphone(), State::Granted);
        QCOMPARE(model->missingTitleKeys(), QStringList{u"perm.screen.title"_s});
        QVERIFY(m->desktop.pages.isEmpty());
    }

    void aScreenThatStaysClosedLooksStale()
    {
        const QByteArray closed = R"({"microphone":"authorized","screen":false})";
        const auto model = m->make(closed);
        m->desktop.hasPages = false;
        model->request(Kind::Screen);
        QCOMPARE(m->processes.runs.last(), m->recorder(u"--request-screen"_s));
        m->processes.end(closed);
        QVERIFY(model->screenLooksStale());
        QVERIFY(model->settingsMissing());
        QCOMPARE(model->screen(), State::NotAsked);
    }

    void aRecordingIsLeftAlone()
    {
        QVERIFY(files::writeAtomic(m->paths.stateFile, R"({"status":"recording"})"));
        const auto model = m->make({});
        model->refresh();
        model->request(Kind::Microphone);
        model->request(Kind::Screen);
        QVERIFY(!model->askingMicrophone() && !model->askingScreen());
        QVERIFY(m->processes.runs.isEmpty());
        QVERIFY(m->desktop.pages.isEmpty());
        QVERIFY(files::writeAtomic(m->paths.stateFile, R"({"status":["recording"]})"));
        model->refresh(); // what does not say so is no recording
        QCOMPARE(m->processes.runs.size(), 1);
    }

    void aQuestionOutlivesItsPane()
    {
        auto model = m->make("{}");
        model->request(Kind::Microphone);
        model.reset();
        QVERIFY(m->processes.isWaitedFor()); // else the system's question would be closed
        m->processes.end(R"({"microphone":"denied"})");
        QVERIFY(m->desktop.pages.isEmpty());
    }

    void returningToTheProgramAsksAgain()
    {
        const auto model = m->make(R"({"microphone":"denied","screen":false})");
        emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        QCOMPARE(m->processes.runs.size(), 1); // leaving it asks nothing
        emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        m->processes.end(R"({"microphone":"authorized","screen":true})");
        QVERIFY(model->allGranted());
    }

private:
    struct Fixture {
        Fixture()
        {
            for (const QString& path : {paths.python, paths.recorderScript}) {
                QDir{}.mkpath(QFileInfo{path}.path());
                QFile::link(u"/bin/sh"_s, path); // there, and a program
            }
        }
        /// \param status what the recorder answers at first.
        [[nodiscard]] std::unique_ptr<PermissionsModel> make(const QByteArray& status)
        {
            auto model = std::make_unique<PermissionsModel>(paths, processes, desktop, background);
            processes.end(status);
            return model;
        }
        [[nodiscard]] QStringList recorder(const QString& flag) const
        {
            return {paths.python, paths.recorderScript, flag};
        }

        QTemporaryDir home;
        Paths paths{home.path()};
        RecordingProcesses processes;
        QObject background;
        RecordingDesktop desktop;
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(PermissionsTest)
#include "PermissionsTest.moc"
