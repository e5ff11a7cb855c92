#include "notices/Notifier.h"
#include "panel/PanelModel.h"
#include "registeredTests.h"
#include "support/Cases.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class PanelTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<TestProgram>(); }
    void cleanup() { m.reset(); }

    void twoPressesWriteOneCommand()
    {
        m->record.toggle();
        QCOMPARE(command(), R"({"action":"start","ts":1731690000})"_ba);
        m->scheduler.advance(500ms);
        m->record.toggle();
        QCOMPARE(command(), R"({"action":"start","ts":1731690000})"_ba);
    }

    void theAnswerEndsTheWait()
    {
        const Cases<QByteArray, QByteArray, bool> cases{
            {"started", "idle", "recording", true},
            {"asked while processing", "processing", "recording", true},
            {"processing is no start", "idle", "processing", false},
            {"idle is no start", "processing", "idle", false},
            {"stopped", "recording", "processing", true},
            {"stopped to idle", "recording", "idle", true},
        };
        for (const auto& [name, before, after, answered] : cases) {
            CASE(name);
            init();
            m->serviceSays(before);
            m->record.toggle();
            QCOMPARE(m->record.pending() == RecordControl::Pending::Stopping, before == "recording");
            m->serviceSays(before); // no news is no answer
            QVERIFY(m->record.waiting());
            m->serviceSays(after);
            QCOMPARE(m->record.waiting(), !answered);
        }
    }

    void withoutAnAnswerTheWaitEndsAfter12Seconds()
    {
        m->record.toggle();
        QCOMPARE(said(m->panel.line()), u"Запускаем запись…"_s);
        m->panel.setHoverOrb(true);
        m->scheduler.advance(11'999ms);
        QCOMPARE(said(m->panel.line()), u"Запускаем запись…"_s);
        m->scheduler.advance(1ms);
        QCOMPARE(said(m->panel.line()), u"Нажать, чтобы записать"_s);
    }

    void aRequestThatCannotBeWrittenIsToldAtOnce()
    {
        QDir{m->paths.root}.removeRecursively();
        m->panel.setHoverOrb(true); // as it is when the orb has been pressed
        m->record.toggle();
        QVERIFY(!m->record.waiting());
        QCOMPARE(said(m->panel.line()), u"Не удалось передать запрос службе"_s);
        QDir{}.mkpath(m->paths.root);
        m->serviceWrites(R"({"status":"idle","telegram_connected":true})"); // no news of the recording
        QCOMPARE(said(m->panel.line()), u"Не удалось передать запрос службе"_s);
        QDir{m->paths.root}.removeRecursively();
        m->scheduler.advance(12s);
        QCOMPARE(said(m->panel.line()), u"Нажать, чтобы записать"_s);
        m->record.toggle();
        QDir{}.mkpath(m->paths.root);
        m->record.toggle(); // a refusal keeps nobody from trying again
        QCOMPARE(said(m->panel.line()), u"Запускаем запись…"_s);
    }

    void anOldTimeOutDoesNotEndANewWait()
    {
        m->record.toggle();
        m->serviceSays("recording");
        m->scheduler.advance(9000ms);
        m->record.toggle();
        m->scheduler.advance(5000ms);
        QCOMPARE(m->record.pending(), RecordControl::Pending::Stopping);
    }

    void lineUnderTheTitle()
    {
        const Cases<QByteArray, QString> cases{
            {"idle", "{}", u"Готов к записи | Начни звонок — запишу автоматически | "_s},
            {"detail", R"({"status":"processing","detail":"Пишу выводы"})",
             u"Готовлю протокол | Пишу выводы | "_s},
            {"processing", R"({"status":"processing","jobs":3})",
             u"Готовлю протокол | Расшифровка и разбор… | "_s},
            {"start unknown", R"({"status":"recording","since":0})", u"Идёт запись | Слушаю встречу… | "_s},
            {"running", R"({"status":"recording","since":1731689910,"jobs":1})",
             u"Идёт запись | 01:30 идёт запись | Разбирается прошлая встреча…"_s},
            {"in the future", R"({"status":"recording","since":1731690060,"jobs":2})",
             u"Идёт запись | 00:00 идёт запись | Разбирается встреч: 2"_s},
            {"over an hour", R"({"status":"recording","since":1731685500,"jobs":0})",
             u"Идёт запись | 75:00 идёт запись | "_s},
            {"a damaged start", R"({"status":"recording","since":1e-300})",
             u"Идёт запись | 16666666:40 идёт запись | "_s},
            {"negative jobs", R"({"status":"recording","since":-5,"jobs":-1})",
             u"Идёт запись | Слушаю встречу… | "_s},
        };
        const auto shown = [this] {
            const bool running = m->panel.lineKind() == PanelModel::Line::RunningTime;
            return said(m->panel.title()) + u" | "_s + (running ? m->panel.time() + u' ' : QString{}) +
                   said(m->panel.line()) + u" | "_s + said(m->panel.jobsLine());
        };
        for (const auto& [name, state, expected] : cases) {
            CASE(name);
            m->write(m->paths.stateFile, state);
            m->state.load();
            m->scheduler.advance(0ms);
            QCOMPARE(shown(), expected);
        }
        m->panel.setHoverOrb(true);
        QCOMPARE(shown(), u"Идёт запись | Нажать, чтобы остановить | "_s);
    }

    void theClockRunsOnlyWhileSomeoneLooks()
    {
        m->write(m->paths.stateFile, R"({"status":"recording","since":1731690000})");
        m->state.load();
        m->scheduler.advance(0ms);
        const auto wakeUps = [this] { return m->scheduler.wakeUpsWithin(10s); };
        const int hidden = wakeUps();
        m->panel.watch();
        QCOMPARE(wakeUps(), hidden + 10);
        QSignalSpy ticks{&m->panel, &PanelModel::timeChanged};
        m->scheduler.advance(3s);
        QVERIFY(ticks.size() >= 3);
        QCOMPARE(m->panel.time(), u"00:03"_s);
        m->panel.watch(); // a second one
        m->panel.unwatch();
        const int seen = wakeUps();
        m->panel.unwatch();
        QCOMPARE(wakeUps(), seen - 10);
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
        m->serviceSays("recording");
        m->prefs.set(u"locale"_s, u"en"_s);
        m->language.refresh();
        QCOMPARE(said(m->panel.title()), u"Recording"_s);
        QCOMPARE(said(m->panel.orbHelp()), Language::text(u"en"_s, u"panel.orb.help.stop"_s));
        const QString all = said(m->panel.title()) + said(m->panel.line()) + said(m->panel.orbName()) +
                            said(m->panel.orbHelp()) + said(m->panel.authTitle()) +
                            said(m->panel.authBody()) + said(m->panel.quitHelp()) + m->panel.spokenTime();
        static const QRegularExpression cyrillic{u"[а-яё]"_s, QRegularExpression::CaseInsensitiveOption};
        QVERIFY2(!all.contains(cyrillic), qPrintable(all));
        QVERIFY(files::writeAtomic(m->paths.authFlagFile, R"({"title":"Войди"})"));
        m->scheduler.advance(1500ms);
        QCOMPARE(said(m->panel.authTitle()), u"Войди"_s); // the service's own words stand
    }

    void announcements()
    {
        const QByteArray off = R"({"notifications":false})";
        const QString started = u"Murmeli записывает встречу"_s;
        const QString ended = u"Запись завершена"_s;
        const QString skipped = u"пропущено: уведомления выключены"_s;
        const Cases<QString, QString, QByteArray, QString, QString> cases{
            // from one status to another, with these preferences: the toast, and what is logged instead
            {"start", u"idle"_s, u"recording"_s, "{}", started, {}},
            {"end", u"recording"_s, u"processing"_s, "{}", ended, {}},
            {"vanished", u"recording"_s, u"idle"_s, "{}", ended, {}},
            {"written up", u"processing"_s, u"idle"_s, "{}", {}, {}},
            {"no change", u"recording"_s, u"recording"_s, "{}", {}, {}},
            {"off, start", u"idle"_s, u"recording"_s, off, {}, skipped},
            {"off, end", u"recording"_s, u"idle"_s, off, {}, skipped},
            {"off, no matter", u"processing"_s, u"idle"_s, off, {}, {}},
            {"wrong type is on", u"idle"_s, u"recording"_s, R"({"notifications":0})", started, {}},
        };
        for (const auto& [name, from, to, prefs, toast, reason] : cases) {
            CASE(name);
            init();
            QVERIFY(files::writeAtomic(m->paths.prefsFile, prefs));
            QString shown;
            Notifier notifier{m->paths,   m->prefs,     m->language,
                              m->desktop, m->scheduler, [&](const ToastText& text) { shown = text.title; }};
            notifier.recordingChanged(from, to);
            QCOMPARE(shown, toast);
            const QString log = toast.isEmpty() ? reason : u"показано: "_s + toast;
            QCOMPARE(files::readWhole(m->paths.notificationsLog, 1000).value_or(""),
                     log.isEmpty() ? QByteArray{} : "2024-11-15T17:00:00Z " + log.toUtf8() + '\n');
            QVERIFY(QDir{m->paths.logs}.removeRecursively());
            notifier.recordingChanged(from, to);
            QVERIFY(!QFile::exists(m->paths.logs)); // that folder is the service's to make
            shown.clear();
            m->desktop.peace = true; // a screen is being shared
            notifier.recordingChanged(from, to);
            QCOMPARE(shown, QString{});
        }
    }

private:
    [[nodiscard]] QString said(const Message& message) const { return m->language.say(message); }
    [[nodiscard]] QByteArray command() const
    {
        return files::readWhole(m->paths.commandFile, 1000).value_or("");
    }

    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(PanelTest)
#include "PanelTest.moc"
