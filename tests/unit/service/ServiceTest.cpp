#include "base/Files.h"
#include "registeredTests.h"
#include "service/AppState.h"
#include "service/CommandFile.h"
#include "service/Prefs.h"
#include "support/Cases.h"
#include "support/Disk.h"
#include "support/ManualScheduler.h"

#include <QDeadlineTimer>
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

    // Agreed with the service, which is a program of its own.
    void everythingIsWhereTheServiceLooksForIt()
    {
        const Paths p{u"/h"_s};
        QCOMPARE((QStringList{p.recordings, p.logs, p.inbox, p.userInstructions, p.vaultDir, p.modelsMarker}),
                 (QStringList{u"/h/MeetingNotes/done"_s, u"/h/MeetingNotes/logs"_s,
                              u"/h/MeetingNotes/inbox"_s, u"/h/MeetingNotes/my_instructions.md"_s,
                              u"/h/Documents/Vexlor/Vexlor/Meetings"_s, u"/h/.cache/huggingface/hub"_s}));
        QCOMPARE((QStringList{p.stateFile, p.commandFile, p.authFlagFile, p.prefsFile, p.accountFile}),
                 (QStringList{u"/h/MeetingNotes/state.json"_s, u"/h/MeetingNotes/command.json"_s,
                              u"/h/MeetingNotes/auth_required.flag"_s, u"/h/MeetingNotes/prefs.json"_s,
                              u"/h/MeetingNotes/account.json"_s}));
        QCOMPARE((QStringList{p.updateScript, p.python, p.pdfScript, p.rebuildScript, p.recorderScript}),
                 (QStringList{u"/h/MeetingNotes/update.sh"_s, u"/h/MeetingNotes/.venv/bin/python"_s,
                              u"/h/MeetingNotes/pipeline/protocol_pdf.py"_s,
                              u"/h/MeetingNotes/pipeline/reprotocol.py"_s,
                              u"/h/MeetingNotes/pipeline/native_rec.py"_s}));
        QCOMPARE(
            (QStringList{p.notificationsLog, p.appAgentFile, p.agentLoader}),
            (QStringList{u"/h/MeetingNotes/logs/notifications.log"_s,
                         u"/h/Library/LaunchAgents/com.valdor.quillet.app.plist"_s, u"/bin/launchctl"_s}));
    }

    void decodesTheStateFile()
    {
        const Cases<QByteArray, QString> cases{
            // status|detail|telegram|since|jobs
            {"recording", R"({"status":"recording","since":1731690000})", u"recording||0|1731690000|0"_s},
            {"fractions of a second", R"({"status":"recording","since":1731690000.5})",
             u"recording||0|1731690000.5|0"_s},
            {"jobs with a fraction", R"({"jobs":2.5})", u"idle||0|0|0"_s},
            {"huge jobs", R"({"jobs":1e300,"since":1e300})", u"idle||0|1e+300|0"_s},
            {"connected as a number", R"({"telegram_connected":1,"detail":"d"})", u"idle|d|1|0|0"_s},
            {"in other letters", R"({"status":"Recording"})", u"Recording||0|0|0"_s},
            {"another word that begins alike", R"({"status":"recordings"})", u"recordings||0|0|0"_s},
            {"wrong types", R"({"status":1,"detail":[],"since":true,"jobs":"2","telegram_connected":"true"})",
             u"idle||0|0|0"_s},
            {"array", "[]", u"idle||0|0|0"_s},
        };
        for (const auto& [name, bytes, shown] : cases) {
            CASE(name);
            init();
            writeState(bytes);
            const AppState state{*m_paths, *m_scheduler};
            QCOMPARE(state.status(), u"idle"_s); // published from the event loop
            m_scheduler->advance(1000ms);
            QCOMPARE(u"%1|%2|%3|%4|%5"_s.arg(state.status(), state.detail())
                         .arg(int(state.telegramConnected()))
                         .arg(state.since(), 0, 'g', 12)
                         .arg(state.jobs()),
                     shown);
            QCOMPARE(state.isRecording(), state.status() == u"recording"_s);
        }
    }

    // A flag that is there raises the banner whatever it holds; what is no file is no flag.
    void oddFilesGiveTheDefaultsAtOnce()
    {
        for (const bool large : {false, true}) {
            CASE(large ? "2 GB of zeros" : "pipe");
            init();
            for (const QString& path : {m_paths->stateFile, m_paths->prefsFile, m_paths->authFlagFile}) {
                if (large) QVERIFY(files::writeInPlace(path, "") && QFile::resize(path, 2'000'000'000));
                if (!large) QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
            }
            QElapsedTimer time;
            time.start();
            const AppState state{*m_paths, *m_scheduler};
            Prefs prefs{m_paths->prefsFile};
            m_scheduler->advance(100ms);
            QCOMPARE(state.status(), u"idle"_s);
            QCOMPARE(state.authFlag(), large);
            QCOMPARE(state.authTitle(), AppState::defaultAuthTitle);
            QCOMPARE(prefs.string(u"protocol_format"_s, u"full"_s), u"full"_s);
            prefs.set(u"auto_record"_s, false);
            QVERIFY2(time.elapsed() < 2000, "it waited for something");
        }
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

    void aTornReadAnnouncesNothing()
    {
        const Cases<QByteArray> cases{
            {"empty", ""}, {"half", "{\"status\":\"rec"}, {"old tail", "{\"status\":\"recording\"}\"x\"}"}};
        for (const auto& [name, torn] : cases) {
            CASE(name);
            init();
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

            writeState(torn); // whenever one looks, the service is at it
            m_scheduler->advance(4500ms);
            QVERIFY(state.isRecording());
            QFile file{m_paths->stateFile}; // stays so: damaged after all
            QVERIFY(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime::currentDateTime().addSecs(-3), QFile::FileModificationTime));
            m_scheduler->advance(2000ms);
            QCOMPARE(state.status(), u"idle"_s);
        }
    }

    void theFlagRaisesTheBannerOncePerRise()
    {
        AppState state{*m_paths, *m_scheduler};
        QSignalSpy required{&state, &AppState::authRequired};
        qsizetype requiredBefore = 0; // the status is told of: a panel that opens is not covered by a toast
        connect(&state, &AppState::statusRead, this, [&] { requiredBefore = required.size(); });
        m_scheduler->advance(0ms);
        QVERIFY(!state.authFlag());

        QVERIFY(files::writeAtomic(m_paths->authFlagFile, ""));
        m_scheduler->advance(4500ms);
        QVERIFY(state.authFlag());
        QCOMPARE(required.size(), 1);
        QCOMPARE(requiredBefore, 1);
        QCOMPARE(state.authTitle(), u"Не найден пользователь — авторизуйтесь"_s);
        QCOMPARE(state.authBody(), u"Хотел доставить протокол встречи, но не смог найти твой аккаунт. "
                                   u"Войди в Murmeli — и всё автоматически доставится."_s);

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

    void commandText()
    {
        const Cases<double, QByteArray> cases{
            {"half a second", 1731690000.5, "1731690000.5"},
            {"microseconds", 1731690000.123456, "1731690000.123456"},
            {"whole", 1731690000.0, "1731690000"},
            {"never an exponent", 1e22, "10000000000000000000000"},
            {"small", 1e-7, "0.0000001"},
        };
        for (const auto& [name, seconds, ts] : cases) {
            CASE(name);
            QCOMPARE(commandFile::text(commandFile::Action::Stop, seconds),
                     "{\"action\":\"stop\",\"ts\":" + ts + "}");
        }
        QVERIFY(commandFile::write(m_paths->commandFile, commandFile::Action::Start, 1));
        QFile open{m_paths->commandFile};
        QVERIFY(open.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        QVERIFY(commandFile::write(m_paths->commandFile, commandFile::Action::Stop, 2));
        QVERIFY(open.readAll().contains("start")); // whoever reads one never gets half of another
    }

    void preferencesAreSeenAtOnceWhoeverWritesThem()
    {
        Prefs prefs{m_paths->prefsFile};
        Prefs other{m_paths->prefsFile};
        QVERIFY(prefs.boolean(u"auto_record"_s, true));
        other.set(u"x"_s, u"a"_s);
        QFile open{m_paths->prefsFile}; // as the service may hold it
        QVERIFY(open.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        other.set(u"x"_s, u"in place"_s);
        QVERIFY(open.readAll().contains("in place"));
        QCOMPARE(prefs.string(u"x"_s, {}), u"in place"_s);
        QVERIFY(files::writeAtomic(m_paths->prefsFile, R"({"x":"by rename"})"));
        QCOMPARE(prefs.string(u"x"_s, {}), u"by rename"_s);
        QVERIFY(QFile::remove(m_paths->prefsFile));
        QCOMPARE(prefs.string(u"x"_s, u"gone"_s), u"gone"_s);
    }

    // Where the disk tells time in ticks, a change within one leaves neither another time nor another size.
    void preferencesThatChangeWithoutATraceAreSeen()
    {
        const QString folder = m_paths->root + u"/disk"_s;
        const Disk disk{folder, "ramfs"};
        if (!disk.isThere()) QSKIP("takes root, to have a disk that tells time in ticks");
        const QString file = folder + u"/prefs.json"_s;
        const Prefs prefs{file};
        const QDeadlineTimer patience{20'000}; // a tick may be cut short by what others write
        for (int i = 0; !patience.hasExpired(); ++i) {
            const QString value = QString::number(100 + i % 900);
            const files::Identity before = files::identity(file);
            QVERIFY(files::writeInPlace(file, "{\"x\":\"" + value.toLatin1() + "\"}"));
            const bool traceless = files::identity(file) == before;
            QCOMPARE(prefs.string(u"x"_s, {}), value);
            if (traceless) return;
        }
        QSKIP("every change had a time of its own");
    }

    void preferencesOfTheWrongTypeReadAsTheDefault()
    {
        QVERIFY(files::writeAtomic(m_paths->prefsFile, R"({"auto_record":"true","b":1,"locale":false})"));
        Prefs prefs{m_paths->prefsFile};
        QVERIFY(prefs.boolean(u"auto_record"_s, true));
        QVERIFY(!prefs.boolean(u"auto_record"_s, false));
        QVERIFY(!prefs.boolean(u"b"_s, false));
        QCOMPARE(prefs.string(u"locale"_s, u"ru"_s), u"ru"_s);
        QVERIFY(files::writeAtomic(m_paths->prefsFile, R"(["locale"])")); // a damaged file is replaced
        prefs.set(u"auto_record"_s, false);
        QCOMPARE(files::readWhole(m_paths->prefsFile, 100), R"({"auto_record":false})"_ba);
    }

    // As a kill in the middle of a write leaves it, which beyond one page is not one step.
    void aTornPreferencesFileIsFoundAside()
    {
        const QString spare = m_paths->root + u"/state/murmeli/prefs.json"_s;
        const QString words = QString(10'000, u'x');
        Prefs{m_paths->prefsFile, spare}.set(u"glossary"_s, words);
        QVERIFY(QFile::resize(m_paths->prefsFile, 8192));
        Prefs prefs{m_paths->prefsFile, spare};
        QCOMPARE(prefs.string(u"glossary"_s, {}), words);
        prefs.set(u"auto_record"_s, false);
        QCOMPARE(Prefs{m_paths->prefsFile}.string(u"glossary"_s, {}), words);
        QVERIFY(QFile::remove(m_paths->prefsFile)); // by somebody who wants it gone
        QCOMPARE(prefs.string(u"glossary"_s, {}), QString{});
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
