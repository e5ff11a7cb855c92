#include "base/Files.h"
#include "localisation/Language.h"
#include "notices/Notifier.h"
#include "panel/PanelModel.h"
#include "registeredTests.h"
#include "service/Prefs.h"
#include "service/RecordControl.h"
#include "support/ManualScheduler.h"

#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class PanelTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m = std::make_unique<Fixture>();
        m->scheduler.advance(0ms);
    }
    void cleanup() { m.reset(); }

    void twoPressesWriteOneCommand()
    {
        m->record.toggle();
        QCOMPARE(m->command(), R"({"action":"start","ts":1731690000})"_ba);
        m->scheduler.advance(500ms);
        m->record.toggle();
        QCOMPARE(m->command(), R"({"action":"start","ts":1731690000})"_ba);
    }

    void theAnswerEndsTheWait_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<bool>("answered");
        QTest::newRow("started") << u"idle"_s << u"recording"_s << true;
        QTest::newRow("asked while processing") << u"processing"_s << u"recording"_s << true;
        QTest::newRow("processing is no start") << u"idle"_s << u"processing"_s << false;
        QTest::newRow("idle is no start") << u"processing"_s << u"idle"_s << false;
        QTest::newRow("stopped") << u"recording"_s << u"processing"_s << true;
        QTest::newRow("stopped to idle") << u"recording"_s << u"idle"_s << true;
    }
    void theAnswerEndsTheWait()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        QFETCH(bool, answered);
        m->serviceSays(before);
        m->record.toggle();
        QCOMPARE(m->record.pending(), before == u"recording"_s ? RecordControl::Pending::Stopping
                                                               : RecordControl::Pending::Starting);
        m->serviceSays(before); // no news is no answer
        QVERIFY(m->record.waiting());
        m->serviceSays(after);
        QCOMPARE(m->record.waiting(), !answered);
    }

    void withoutAnAnswerTheWaitEndsAfter12Seconds()
    {
        m->record.toggle();
        QCOMPARE(m->panel.line(), u"Запускаем запись…"_s);
        m->panel.setHoverOrb(true);
        m->scheduler.advance(11'999ms);
        QCOMPARE(m->panel.line(), u"Запускаем запись…"_s);
        m->scheduler.advance(1ms);
        QCOMPARE(m->panel.line(), u"Нажать, чтобы записать"_s);
    }

    void aRequestThatCannotBeWrittenIsToldAtOnce()
    {
        QDir{m->paths.root}.removeRecursively();
        m->panel.setHoverOrb(true); // as it is when the orb has been pressed
        m->record.toggle();
        QVERIFY(!m->record.waiting());
        QCOMPARE(m->panel.line(), u"Не удалось передать запрос службе"_s);
        QDir{}.mkpath(m->paths.root);
        m->serviceWrites(R"({"status":"idle","telegram_connected":true})"); // no news of the recording
        m->scheduler.advance(1500ms);
        QCOMPARE(m->panel.line(), u"Не удалось передать запрос службе"_s);
        QDir{m->paths.root}.removeRecursively();
        m->scheduler.advance(12s);
        QCOMPARE(m->panel.line(), u"Нажать, чтобы записать"_s);
        m->record.toggle();
        QDir{}.mkpath(m->paths.root);
        m->record.toggle(); // a refusal keeps nobody from trying again
        QCOMPARE(m->panel.line(), u"Запускаем запись…"_s);
    }

    void anOldTimeOutDoesNotEndANewWait()
    {
        m->record.toggle();
        m->serviceSays(u"recording"_s);
        m->scheduler.advance(9000ms);
        m->record.toggle();
        m->scheduler.advance(5000ms);
        QCOMPARE(m->record.pending(), RecordControl::Pending::Stopping);
    }

    void lineUnderTheTitle_data()
    {
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<bool>("hover");
        QTest::addColumn<QString>("shown");
        QTest::newRow("idle") << "{}"_ba << false
                              << u"Готов к записи | Начни звонок — запишу автоматически | "_s;
        QTest::newRow("detail") << R"({"status":"processing","detail":"Пишу выводы"})"_ba << false
                                << u"Готовлю протокол | Пишу выводы | "_s;
        QTest::newRow("processing") << R"({"status":"processing","jobs":3})"_ba << false
                                    << u"Готовлю протокол | Расшифровка и разбор… | "_s;
        QTest::newRow("start unknown")
            << R"({"status":"recording","since":0})"_ba << false << u"Идёт запись | Слушаю встречу… | "_s;
        QTest::newRow("running") << R"({"status":"recording","since":1731689910,"jobs":1})"_ba << false
                                 << u"Идёт запись | 01:30 идёт запись | Разбирается прошлая встреча…"_s;
        QTest::newRow("in the future") << R"({"status":"recording","since":1731690060,"jobs":2})"_ba << false
                                       << u"Идёт запись | 00:00 идёт запись | Разбирается встреч: 2"_s;
        QTest::newRow("over an hour") << R"({"status":"recording","since":1731685500,"jobs":0})"_ba << false
                                      << u"Идёт запись | 75:00 идёт запись | "_s;
        QTest::newRow("a damaged start") << R"({"status":"recording","since":1e-300})"_ba << false
                                         << u"Идёт запись | 16666666:40 идёт запись | "_s;
        QTest::newRow("pointer over it") << R"({"status":"recording","since":1731689910})"_ba << true
                                         << u"Идёт запись | Нажать, чтобы остановить | "_s;
        QTest::newRow("negative jobs") << R"({"status":"recording","since":-5,"jobs":-1})"_ba << false
                                       << u"Идёт запись | Слушаю встречу… | "_s;
    }
    void lineUnderTheTitle()
    {
        QFETCH(QByteArray, state);
        QFETCH(bool, hover);
        m->panel.setHoverOrb(hover);
        m->serviceWrites(state);
        m->state.load();
        m->scheduler.advance(0ms);
        const QString time =
            m->panel.lineKind() == PanelModel::Line::RunningTime ? m->panel.time() + u' ' : QString{};
        QTEST(m->panel.title() + u" | "_s + time + m->panel.line() + u" | "_s + m->panel.jobsLine(), "shown");
    }

    void theClockRunsOnlyWhileSomeoneLooks()
    {
        m->serviceWrites(R"({"status":"recording","since":1731690000})");
        m->state.load();
        m->scheduler.advance(0ms);
        const int hidden = m->scheduler.wakeUpsWithin(10s);
        m->panel.watch();
        QCOMPARE(m->scheduler.wakeUpsWithin(10s), hidden + 10);
        QSignalSpy ticks{&m->panel, &PanelModel::timeChanged};
        m->scheduler.advance(3s);
        QVERIFY(ticks.size() >= 3);
        QCOMPARE(m->panel.time(), u"00:03"_s);
        m->panel.watch(); // a second one
        m->panel.unwatch();
        QCOMPARE(m->scheduler.wakeUpsWithin(10s), hidden + 10);
        m->panel.unwatch();
        QCOMPARE(m->scheduler.wakeUpsWithin(10s), hidden);
    }

    void preferencesGoToTheFileAndComeFromIt()
    {
        QCOMPARE(m->panel.format(), u"full"_s);
        QVERIFY(m->panel.autoRecord());
        m->panel.setFormat(u"short"_s);
        m->panel.setAutoRecord(false);
        QCOMPARE(files::readWhole(m->paths.prefsFile, 1000),
                 R"({"protocol_format":"short","auto_record":false})"_ba);

        QSignalSpy changed{&m->panel, &PanelModel::preferencesChanged};
        QVERIFY(files::writeAtomic(m->paths.prefsFile, R"({"auto_record":true})")); // the settings, or anyone
        m->scheduler.advance(1500ms);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(m->panel.format(), u"full"_s);
        QVERIFY(m->panel.autoRecord());
    }

    void anEnglishInterfaceIsEnglishThroughout()
    {
        QVERIFY(files::writeAtomic(m->paths.authFlagFile, "{}"));
        m->serviceSays(u"recording"_s);
        m->prefs.set(u"locale"_s, u"en"_s);
        m->language.refresh();
        QCOMPARE(m->panel.title(), u"Recording"_s);
        const QString all = m->panel.title() + m->panel.line() + m->panel.orbName() + m->panel.orbHelp() +
                            m->panel.authTitle() + m->panel.authBody() + m->panel.quitHelp() +
                            m->panel.spokenTime();
        static const QRegularExpression cyrillic{u"[а-яё]"_s, QRegularExpression::CaseInsensitiveOption};
        QVERIFY2(!all.contains(cyrillic), qPrintable(all));
        QVERIFY(files::writeAtomic(m->paths.authFlagFile, R"({"title":"Войди"})"));
        m->scheduler.advance(1500ms);
        QCOMPARE(m->panel.authTitle(), u"Войди"_s); // the service's own words stand
    }

    void announcements_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QByteArray>("prefs");
        QTest::addColumn<QString>("toast");
        QTest::addColumn<QString>("log");
        const QByteArray off = R"({"notifications":false})";
        QTest::newRow("start") << u"idle"_s << u"recording"_s << "{}"_ba << u"Murmeli записывает встречу"_s
                               << u"показано: Murmeli записывает встречу"_s;
        QTest::newRow("end") << u"recording"_s << u"processing"_s << "{}"_ba << u"Запись завершена"_s
                             << u"показано: Запись завершена"_s;
        QTest::newRow("vanished") << u"recording"_s << u"idle"_s << "{}"_ba << u"Запись завершена"_s
                                  << u"показано: Запись завершена"_s;
        QTest::newRow("written up") << u"processing"_s << u"idle"_s << "{}"_ba << QString{} << QString{};
        QTest::newRow("no change") << u"recording"_s << u"recording"_s << "{}"_ba << QString{} << QString{};
        QTest::newRow("off, start") << u"idle"_s << u"recording"_s << off << QString{}
                                    << u"пропущено: уведомления выключены"_s;
        QTest::newRow("off, end") << u"recording"_s << u"idle"_s << off << QString{}
                                  << u"пропущено: уведомления выключены"_s;
        QTest::newRow("off, no matter") << u"processing"_s << u"idle"_s << off << QString{} << QString{};
        QTest::newRow("wrong type is on")
            << u"idle"_s << u"recording"_s << R"({"notifications":0})"_ba << u"Murmeli записывает встречу"_s
            << u"показано: Murmeli записывает встречу"_s;
    }
    void announcements()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QByteArray, prefs);
        QFETCH(QString, log);
        QVERIFY(files::writeAtomic(m->paths.prefsFile, prefs));
        QString toast;
        Notifier notifier{m->paths, m->prefs, m->language, m->scheduler,
                          [&](const ToastText& shown) { toast = shown.title; }};
        notifier.recordingChanged(from, to);
        QTEST(toast, "toast");
        const QByteArray expected =
            log.isEmpty() ? QByteArray{} : "2024-11-15T17:00:00Z " + log.toUtf8() + '\n';
        QCOMPARE(files::readWhole(m->paths.notificationsLog, 1000).value_or(QByteArray{}), expected);
    }

private:
    struct Fixture {
        QTemporaryDir home;
        Paths paths{home.path()};
        ManualScheduler scheduler{1'731'690'000};
        Prefs prefs{paths.prefsFile};
        Language language{prefs, [] { return QStringList{}; }};
        bool made = QDir{}.mkpath(paths.logs);
        AppState state{paths, scheduler};
        RecordControl record{paths, state, scheduler};
        PanelModel panel{state, record, prefs, language, scheduler};

        [[nodiscard]] QByteArray command() const
        {
            return files::readWhole(paths.commandFile, 1000).value_or(QByteArray{});
        }
        void serviceWrites(const QByteArray& bytes) const
        {
            QVERIFY(files::writeAtomic(paths.stateFile, bytes));
        }
        void serviceSays(const QString& status)
        {
            serviceWrites("{\"status\":\"" + status.toUtf8() + "\"}");
            scheduler.advance(1500ms);
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(PanelTest)
#include "PanelTest.moc"
