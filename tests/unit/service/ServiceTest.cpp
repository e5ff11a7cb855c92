#include "base/Files.h"
#include "registeredTests.h"
#include "service/AppState.h"
#include "service/CommandFile.h"
#include "service/Prefs.h"
#include "support/ManualScheduler.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class ServiceTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_paths = std::make_unique<Paths>(m_home->path());
        QDir{}.mkpath(m_paths->logs);
        m_scheduler = std::make_unique<ManualScheduler>();
    }

    void decodesTheStateFile_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("shown"); // status|detail|telegram|since|jobs
        QTest::newRow("recording") << R"({"status":"recording","since":1731690000})"_ba
                                   << u"recording||0|1731690000|0"_s;
        QTest::newRow("fractions of a second")
            << R"({"status":"recording","since":1731690000.5})"_ba << u"recording||0|1731690000.5|0"_s;
        QTest::newRow("jobs as text") << R"({"status":"processing","jobs":"2"})"_ba << u"processing||0|0|0"_s;
        QTest::newRow("jobs with a fraction") << R"({"jobs":2.5})"_ba << u"idle||0|0|0"_s;
        QTest::newRow("jobs written 2.0") << R"({"jobs":2.0})"_ba << u"idle||0|0|2"_s;
        QTest::newRow("huge jobs") << R"({"jobs":1e300,"since":1e300})"_ba << u"idle||0|1e+300|0"_s;
        QTest::newRow("connected as a number")
            << R"({"telegram_connected":1,"detail":"d"})"_ba << u"idle|d|1|0|0"_s;
        QTest::newRow("connected as another number") << R"({"telegram_connected":2})"_ba << u"idle||0|0|0"_s;
        QTest::newRow("connected as text") << R"({"telegram_connected":"true"})"_ba << u"idle||0|0|0"_s;
        QTest::newRow("unknown status") << R"({"status":"Recording"})"_ba << u"Recording||0|0|0"_s;
        QTest::newRow("wrong types") << R"({"status":1,"detail":[],"since":true,"jobs":null})"_ba
                                     << u"idle||0|0|0"_s;
        QTest::newRow("array") << "[]"_ba << u"idle||0|0|0"_s;
        QTest::newRow("deep") << QByteArray(100'000, '[') << u"idle||0|0|0"_s;
        QTest::newRow("not UTF-8") << "{\"status\":\"\xff\"}"_ba << u"idle||0|0|0"_s;
    }
    void decodesTheStateFile()
    {
        QFETCH(QByteArray, bytes);
        writeState(bytes);
        const AppState state{*m_paths, *m_scheduler};
        QCOMPARE(state.status(), u"idle"_s); // published from the event loop
        m_scheduler->advance(1000ms);
        const QString shown = u"%1|%2|%3|%4|%5"_s.arg(state.status(), state.detail())
                                  .arg(int(state.telegramConnected()))
                                  .arg(state.since(), 0, 'g', 12)
                                  .arg(state.jobs());
        QTEST(shown, "shown");
        QCOMPARE(state.isRecording(), state.status() == u"recording"_s);
    }

    void oddFilesGiveTheDefaultsAtOnce_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"missing", "folder", "fifo", "link to itself", "2 GB of zeros"}) {
            QTest::newRow(kind) << QString::fromLatin1(kind);
        }
    }
    void oddFilesGiveTheDefaultsAtOnce()
    {
        QFETCH(QString, kind);
        for (const QString& path : {m_paths->stateFile, m_paths->prefsFile, m_paths->authFlagFile}) {
            if (kind == u"folder"_s) QDir{}.mkpath(path);
            if (kind == u"fifo"_s) QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
            if (kind == u"link to itself"_s) QFile::link(path, path);
            if (kind != u"2 GB of zeros"_s) continue;
            QFile file{path};
            QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(2'000'000'000));
        }
        QElapsedTimer time;
        time.start();
        const AppState state{*m_paths, *m_scheduler};
        Prefs prefs{m_paths->prefsFile};
        m_scheduler->advance(100ms);
        QCOMPARE(state.status(), u"idle"_s);
        // A flag that is there raises the banner whatever it holds; what is no file is no flag.
        QCOMPARE(state.authFlag(), kind == u"2 GB of zeros"_s);
        QCOMPARE(state.authTitle(), AppState::defaultAuthTitle);
        QCOMPARE(prefs.string(u"protocol_format"_s, u"full"_s), u"full"_s);
        prefs.set(u"auto_record"_s, false);
        QVERIFY2(time.elapsed() < 2000, "it waited for something");
    }

    void readsAgainEvery1500MillisecondsAndTellsOfChanges()
    {
        writeState(R"({"status":"recording"})");
        AppState state{*m_paths, *m_scheduler};
        QSignalSpy changed{&state, &AppState::changed};
        QSignalSpy read{&state, &AppState::statusRead};
        m_scheduler->advance(0ms);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(read.takeFirst(), (QVariantList{u"idle"_s, u"recording"_s}));
        m_scheduler->advance(1500ms);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(read.takeFirst(), (QVariantList{u"recording"_s, u"recording"_s}));

        QVERIFY(QFile::remove(m_paths->stateFile));
        m_scheduler->advance(1500ms);
        QCOMPARE(changed.size(), 2);
        QCOMPARE(read.takeFirst(), (QVariantList{u"recording"_s, u"idle"_s}));
        QVERIFY(m_scheduler->wakeUpsWithin(10s) <= 7);
    }

    void aTornReadAnnouncesNothing_data()
    {
        QTest::addColumn<QByteArray>("torn");
        QTest::newRow("empty") << ""_ba;
        QTest::newRow("half") << "{\"status\":\"rec"_ba;
        QTest::newRow("old tail") << "{\"status\":\"recording\"}\"x\"}"_ba;
    }
    void aTornReadAnnouncesNothing()
    {
        QFETCH(QByteArray, torn);
        writeState(R"({"status":"recording"})");
        AppState state{*m_paths, *m_scheduler};
        m_scheduler->advance(0ms);
        QSignalSpy changed{&state, &AppState::changed};

        writeState(torn);
        m_scheduler->advance(1510ms);
        QVERIFY(state.isRecording());
        writeState(R"({"status":"recording","jobs":1})");
        m_scheduler->advance(300ms);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(state.jobs(), 1);

        writeState(torn); // stays so: damaged after all
        m_scheduler->advance(2000ms);
        QCOMPARE(state.status(), u"idle"_s);
    }

    void theFlagRaisesTheBannerOncePerRise()
    {
        AppState state{*m_paths, *m_scheduler};
        QSignalSpy required{&state, &AppState::authRequired};
        m_scheduler->advance(0ms);
        QVERIFY(!state.authFlag());

        QVERIFY(files::writeAtomic(m_paths->authFlagFile, ""));
        m_scheduler->advance(4500ms);
        QVERIFY(state.authFlag());
        QCOMPARE(required.size(), 1);
        QCOMPARE(state.authBody(), AppState::defaultAuthBody);

        QVERIFY(files::writeAtomic(m_paths->authFlagFile, R"({"title":"","body":"Текст"})"));
        m_scheduler->advance(1500ms);
        QCOMPARE(state.authTitle(), AppState::defaultAuthTitle);
        QCOMPARE(state.authBody(), u"Текст"_s);
        QCOMPARE(required.size(), 1);

        const QByteArray endless = "{\"title\":\"" + QByteArray(60'000, 'w') + "\"}";
        QVERIFY(files::writeAtomic(m_paths->authFlagFile, endless));
        writeState("{\"detail\":\"" + QByteArray(450'000, 'w') + "\"}");
        m_scheduler->advance(1500ms);
        QCOMPARE(state.authTitle().size(), 301);
        QCOMPARE(state.detail().size(), 301);

        state.dismissAuthBanner();
        m_scheduler->advance(0ms);
        QVERIFY(!state.authFlag());
        QVERIFY(!QFile::exists(m_paths->authFlagFile));
        m_scheduler->advance(1500ms);
        QCOMPARE(state.authBody(), AppState::defaultAuthBody);

        QVERIFY(files::writeAtomic(m_paths->authFlagFile, "{"));
        m_scheduler->advance(1500ms);
        QCOMPARE(required.size(), 2);
    }

    void theGreetingLasts2600MillisecondsFromTheLastSignIn()
    {
        AppState state{*m_paths, *m_scheduler};
        state.greet();
        m_scheduler->advance(2000ms);
        state.greet();
        m_scheduler->advance(2599ms);
        QVERIFY(state.welcome());
        m_scheduler->advance(1ms);
        QVERIFY(!state.welcome());
    }

    void commandText_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QByteArray>("ts");
        QTest::newRow("half a second") << 1731690000.5 << "1731690000.5"_ba;
        QTest::newRow("microseconds") << 1731690000.123456 << "1731690000.123456"_ba;
        QTest::newRow("whole") << 1731690000.0 << "1731690000"_ba;
        QTest::newRow("never an exponent") << 1e22 << "10000000000000000000000"_ba;
        QTest::newRow("small") << 1e-7 << "0.0000001"_ba;
    }
    void commandText()
    {
        QFETCH(double, seconds);
        QFETCH(QByteArray, ts);
        QCOMPARE(commandFile::text(commandFile::Action::Stop, seconds),
                 "{\"action\":\"stop\",\"ts\":" + ts + "}");
        QCOMPARE(ts.toDouble(), seconds);
    }

    void preferencesAreSeenAtOnceWhoeverWritesThem()
    {
        Prefs prefs{m_paths->prefsFile};
        Prefs other{m_paths->prefsFile};
        QCOMPARE(prefs.string(u"protocol_format"_s, u"full"_s), u"full"_s);
        QVERIFY(prefs.boolean(u"auto_record"_s, true));
        // The same size every time, so that time and identity have to tell.
        for (int i = 0; i < 200; ++i) {
            const QString value = QString::number(100 + i);
            other.set(u"x"_s, value);
            QCOMPARE(prefs.string(u"x"_s, {}), value);
        }
        QVERIFY(files::writeAtomic(m_paths->prefsFile, R"({"x":"by rename"})"));
        QCOMPARE(prefs.string(u"x"_s, {}), u"by rename"_s);
        QVERIFY(QFile::remove(m_paths->prefsFile));
        QCOMPARE(prefs.string(u"x"_s, u"gone"_s), u"gone"_s);
    }

    void preferencesOfTheWrongTypeReadAsTheDefault()
    {
        QVERIFY(files::writeAtomic(m_paths->prefsFile, R"({"auto_record":"true","b":1,"locale":false})"));
        const Prefs prefs{m_paths->prefsFile};
        QVERIFY(prefs.boolean(u"auto_record"_s, true));
        QVERIFY(!prefs.boolean(u"auto_record"_s, false));
        QVERIFY(!prefs.boolean(u"b"_s, false));
        QCOMPARE(prefs.string(u"locale"_s, u"ru"_s), u"ru"_s);
    }

    void aDamagedPreferencesFileIsReplaced()
    {
        QVERIFY(files::writeAtomic(m_paths->prefsFile, R"(["locale"])"));
        Prefs prefs{m_paths->prefsFile};
        prefs.set(u"auto_record"_s, false);
        QCOMPARE(files::readWhole(m_paths->prefsFile, 100), R"({"auto_record":false})"_ba);
    }

    void aPreferencesFileBeyondReadingIsLeftAlone()
    {
        QFile file{m_paths->prefsFile};
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(Prefs::sizeLimit + 1));
        Prefs prefs{m_paths->prefsFile};
        prefs.set(u"auto_record"_s, false);
        QCOMPARE(file.size(), Prefs::sizeLimit + 1);
        QVERIFY(prefs.boolean(u"auto_record"_s, true));

        QVERIFY(file.resize(0));
        prefs.set(u"auto_record"_s, false);
        prefs.set(u"glossary"_s, QString(Prefs::sizeLimit, u'x')); // it would be beyond reading then
        QVERIFY(!prefs.boolean(u"auto_record"_s, true));
    }

    void withoutTheSharedFolderWritesFailSilently()
    {
        QVERIFY(QDir{m_paths->root}.removeRecursively());
        Prefs prefs{m_paths->prefsFile};
        prefs.set(u"auto_record"_s, false);
        QVERIFY(!commandFile::write(m_paths->commandFile, commandFile::Action::Start, 1));
        QVERIFY(!QDir{m_paths->root}.exists());
        QVERIFY(prefs.boolean(u"auto_record"_s, true));
    }

private:
    void writeState(const QByteArray& bytes) { QVERIFY(files::writeAtomic(m_paths->stateFile, bytes)); }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<Paths> m_paths;
    std::unique_ptr<ManualScheduler> m_scheduler;
};

MURMELI_TEST(ServiceTest)
#include "ServiceTest.moc"
