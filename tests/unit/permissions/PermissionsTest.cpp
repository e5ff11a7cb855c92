#include "base/Processes.h"
#include "permissions/PermissionsModel.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "support/RecordingDesktop.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using Kind = PermissionsModel::Kind;
using State = PermissionsModel::State;

class PermissionsTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void answers_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<State>("microphone");
        QTest::addColumn<State>("screen");
        const auto row = [](const char* name, const char* answer, State microphone, State screen) {
            QTest::newRow(name) << QByteArray{answer} << microphone << screen;
        };
        row("all", R"({"microphone":"authorized","screen":true})", State::Granted, State::Granted);
        row("restricted", R"({"microphone":"restricted","screen":false})", State::Denied, State::NotAsked);
        row("denied", R"({"microphone":"denied"})", State::Denied, State::NotAsked);
        row("not asked", R"({"microphone":"notDetermined","screen":1})", State::NotAsked, State::NotAsked);
        row("odd values", R"({"microphone":true,"screen":"true"})", State::Unknown, State::NotAsked);
        row("a word of its own", R"({"microphone":"maybe","screen":null})", State::Unknown, State::NotAsked);
        row("a trace", "Traceback (most recent call last):\n", State::Unknown, State::Unknown);
        row("a list", "[]", State::Unknown, State::Unknown);
        row("no UTF-8", "{\"microphone\":\"authorized\xff\",\"screen\":true}", State::Unknown,
            State::Unknown);
        row("nothing", "", State::Unknown, State::Unknown);
    }
    void answers()
    {
        QFETCH(QByteArray, answer);
        m->installRecorder(answer);
        PermissionsModel model{m->paths, m->processes, m->desktop, m->background};
        QSignalSpy changed{&model, &PermissionsModel::changed};
        QVERIFY(changed.wait());
        QTEST(model.microphone(), "microphone");
        QTEST(model.screen(), "screen");
        QCOMPARE(model.allGranted(), answer.contains("authorized\",\"screen\":true"));
        QCOMPARE(m->calls(), "--status\n"_ba);
    }

    void withoutARecorderNothingIsKnown_data()
    {
        QTest::addColumn<bool>("python");
        QTest::newRow("no interpreter") << false;
        QTest::newRow("no script") << true;
    }
    void withoutARecorderNothingIsKnown()
    {
        QFETCH(bool, python);
        m->installRecorder("{}");
        QFile::remove(python ? m->paths.recorderScript : m->paths.python);
        PermissionsModel model{m->paths, m->processes, m->desktop, m->background};
        QSignalSpy changed{&model, &PermissionsModel::changed};
        QVERIFY(changed.wait());
        QCOMPARE(model.microphone(), State::Unknown);
        QCOMPARE(model.missingTitleKeys(), (QStringList{u"perm.microphone.title"_s, u"perm.screen.title"_s}));
    }

    void aDeniedMicrophoneLeadsToTheSettings()
    {
        m->installRecorder(R"({"microphone":"denied","screen":true})");
        const auto model = m->make();
        model->request(Kind::Microphone);
        QCOMPARE(m->desktop.pages, QList{Desktop::SettingsPage::Microphone});
        QVERIFY(!model->askingMicrophone());
        QCOMPARE(m->calls(), "--status\n"_ba);
    }

    void aGrantIsTaken()
    {
        m->installRecorder(R"({"microphone":"notDetermined","screen":false})");
        const auto model = m->make();
        m->installRecorder(R"({"microphone":"authorized","screen":false})");
        model->request(Kind::Microphone);
        QVERIFY(model->askingMicrophone());
        QVERIFY(!model->askingScreen());
        QTRY_VERIFY(!model->askingMicrophone());
        QCOMPARE(model->microphone(), State::Granted);
        QCOMPARE(model->missingTitleKeys(), QStringList{u"perm.screen.title"_s});
        QVERIFY(m->desktop.pages.isEmpty());
        QCOMPARE(m->calls(), "--status\n--request-mic\n"_ba);
    }

    void aScreenThatStaysClosedLooksStale()
    {
        m->installRecorder(R"({"microphone":"authorized","screen":false})");
        const auto model = m->make();
        m->desktop.hasPages = false;
        model->request(Kind::Screen);
        QTRY_VERIFY(model->screenLooksStale());
        QVERIFY(model->settingsMissing());
        QCOMPARE(model->screen(), State::NotAsked);
    }

    void aRecordingIsLeftAlone()
    {
        m->installRecorder(R"({"microphone":"notDetermined","screen":false})");
        m->serviceSays(R"({"status":"recording"})");
        PermissionsModel model{m->paths, m->processes, m->desktop, m->background};
        model.refresh();
        model.request(Kind::Microphone);
        model.request(Kind::Screen);
        QVERIFY(!model.askingMicrophone() && !model.askingScreen());
        m->serviceSays(R"({"status":["recording"]})"); // what does not say so is no recording
        model.refresh();
        QTRY_COMPARE(m->calls(), "--status\n"_ba);
        QVERIFY(m->desktop.pages.isEmpty());
    }

    void aQuestionOutlivesItsPane()
    {
        m->installRecorder("{}");
        auto model = m->make();
        const QByteArray gate = QFile::encodeName(m->home.filePath(u"gate"_s));
        QVERIFY(mkfifo(gate.constData(), 0600) == 0);
        QFile script{m->paths.recorderScript}; // waits as the system's question does
        QVERIFY(script.open(QIODevice::WriteOnly));
        const QByteArray calls = QFile::encodeName(m->home.filePath(u"calls"_s));
        script.write("echo asked > '" + calls + "'; read -r < '" + gate + "'; echo answered >> '" + calls +
                     "'\n");
        script.close();
        model->request(Kind::Microphone);
        QTRY_COMPARE(m->calls(), "asked\n"_ba);
        model.reset();
        int key = -1; // without waiting for a reader that may have gone
        QTRY_VERIFY((key = ::open(gate.constData(), O_WRONLY | O_NONBLOCK)) >= 0);
        QCOMPARE(::write(key, "yes\n", 4), 4);
        ::close(key);
        QTRY_COMPARE(m->calls(), "asked\nanswered\n"_ba);
        QVERIFY(m->desktop.pages.isEmpty());
    }

    void returningToTheProgramAsksAgain()
    {
        m->installRecorder(R"({"microphone":"denied","screen":false})");
        const auto model = m->make();
        m->installRecorder(R"({"microphone":"authorized","screen":true})");
        emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QTRY_VERIFY(model->allGranted());
        m->installRecorder(R"({"microphone":"denied","screen":false})");
        emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QTRY_VERIFY(!model->allGranted());
        QCOMPARE(m->calls(), "--status\n--status\n--status\n"_ba); // leaving it asks nothing
    }

private:
    struct Fixture {
        /// A recorder that writes down how it was called and gives one answer.
        void installRecorder(const QByteArray& answer) const
        {
            for (const QString& path : {paths.python, paths.recorderScript})
                QDir{}.mkpath(QFileInfo{path}.path());
            QFile::remove(paths.python);
            QVERIFY(QFile::link(u"/bin/bash"_s, paths.python));
            QFile script{paths.recorderScript};
            QVERIFY(script.open(QIODevice::WriteOnly));
            script.write("echo \"$@\" >> '" + QFile::encodeName(home.filePath(u"calls"_s)) +
                         "'\necho careful >&2\ncat <<'ANSWER'\n" + answer + "\nANSWER\n");
        }
        [[nodiscard]] QByteArray calls() const
        {
            QFile file{home.filePath(u"calls"_s)};
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
        }
        [[nodiscard]] std::unique_ptr<PermissionsModel> make()
        {
            auto model = std::make_unique<PermissionsModel>(paths, processes, desktop, background);
            QSignalSpy changed{model.get(), &PermissionsModel::changed};
            changed.wait();
            return model;
        }
        void serviceSays(const QByteArray& state) const
        {
            QFile file{paths.stateFile};
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(state);
        }

        QTemporaryDir home;
        Paths paths{home.path()};
        SystemProcesses processes;
        QObject background;
        RecordingDesktop desktop;
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(PermissionsTest)
#include "PermissionsTest.moc"
