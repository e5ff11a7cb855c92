#include "app/Program.h"

#include "app/TrayFace.h"
#include "platform/StatusItem.h"
#include "registeredTests.h"
#include "support/TestProgram.h"
#include "support/Token.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

/// An icon that nobody sees.
class HiddenItem final : public StatusItem {
public:
    Look look;
    QString name;
    MenuTexts menu;
    int looks = 0;
    bool tray = true;

    void setLook(const Look& now) override
    {
        look = now;
        ++looks;
    }
    void setName(const QString& now) override { name = now; }
    void setMenu(const MenuTexts& texts) override { menu = texts; }
    void show() override {}
    [[nodiscard]] QRect geometry() const override { return {}; }
    [[nodiscard]] bool hasTray() const override { return tray; }
};

} // namespace

/// What is tied to what.
class ProgramTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<TestProgram>(); }
    void cleanup() { m.reset(); }

    void theIconAndItsMenuFollow()
    {
        HiddenItem item;
        TrayFace face{item, m->state, m->record, m->panel, m->language, m->look, m->scheduler};
        QSignalSpy decided{&face, &TrayFace::trayDecided};
        face.show();
        QVERIFY(item.look.isTemplate);
        QCOMPARE(item.name, u"Murmeli: Готов к записи"_s);
        QCOMPARE(item.menu.record, u"Начать запись"_s);
        QCOMPARE(
            (QStringList{item.menu.open, item.menu.window, item.menu.settings, item.menu.quit}),
            (QStringList{u"Открыть панель"_s, u"Открыть окно"_s, u"Настройки"_s, u"Выйти из Murmeli"_s}));
        QCOMPARE(item.look.installedName, u"murmeli-idle-symbolic"_s);

        m->record.toggle();
        QCOMPARE(item.menu.state, u"Запускаем запись…"_s);
        m->serviceSays("recording");
        QVERIFY(!item.look.isTemplate);
        QCOMPARE(item.menu.state, u"Идёт запись"_s);
        QCOMPARE(item.menu.record, u"Остановить запись"_s);
        const QImage bright = item.look.icon.pixmap(22).toImage();
        m->scheduler.advance(699ms);
        QCOMPARE(item.look.icon.pixmap(22).toImage(), bright);
        m->scheduler.advance(1ms);
        QVERIFY(item.look.icon.pixmap(22).toImage() != bright);
        m->scheduler.advance(700ms);
        QCOMPARE(item.look.icon.pixmap(22).toImage(), bright);

        m->prefs.set(u"locale"_s, u"en"_s);
        m->scheduler.advance(1500ms);
        QCOMPARE(item.menu.quit, u"Quit Murmeli"_s);
        m->serviceSays("processing");
        QCOMPARE(item.look.installedName, u"murmeli-processing-symbolic"_s);
        const int looks = item.looks;
        m->scheduler.advance(10s);
        QCOMPARE(item.looks, looks); // at rest nothing blinks
        m->look.setDark(false);
        QVERIFY(item.looks > looks);
        QCOMPARE(decided, QList<QVariantList>{{true}});
    }

    void aDesktopWithoutATrayIsTold()
    {
        HiddenItem item;
        TrayFace face{item, m->state, m->record, m->panel, m->language, m->look, m->scheduler};
        QSignalSpy decided{&face, &TrayFace::trayDecided};
        item.tray = false;
        face.show();
        m->scheduler.advance(1999ms);
        QVERIFY(decided.isEmpty());
        m->scheduler.advance(1ms);
        QCOMPARE(decided, QList<QVariantList>{{false}});
    }

    void whatTheServiceDoesIsSeen()
    {
        QSignalSpy panel{&m->program, &Program::panelWanted};
        QSignalSpy toast{&m->program, &Program::toastWanted};
        m->write(m->paths.authFlagFile, "");
        m->scheduler.advance(1500ms);
        QCOMPARE(panel.size(), 1);
        QVERIFY(toast.isEmpty());
        m->serviceSays("recording");
        QCOMPARE(toast.size(), 1);
        QCOMPARE(panel.size(), 1);
    }

    void panelAndSettingsAgree()
    {
        m->settings.set(u"protocol_format"_s, u"short"_s);
        QCOMPARE(m->panel.format(), u"short"_s);
        QSignalSpy shown{&m->settings, &SettingsModel::changed};
        m->panel.setAutoRecord(false);
        QVERIFY(!shown.isEmpty());
        QVERIFY(!m->settings.stateOf(u"auto_record"_s).value.toBool());
    }

    void aSignInIsGreeted()
    {
        QSignalSpy panel{&m->program, &Program::panelWanted};
        QSignalSpy seen{&m->program, &Program::somethingWanted};
        m->program.told(u"murmeli://auth#access_token=a"_s); // that nobody has begun
        m->program.told(u"https://example.org/"_s);
        QVERIFY(panel.isEmpty() && seen.isEmpty());
        m->account.login();
        m->program.told(u"murmeli://auth#access_token=a"_s);
        QCOMPARE(panel.size(), 1);
        QVERIFY(m->state.welcome());
        m->program.told(wish::beSeen);
        QCOMPARE(seen.size(), 1);
    }

    void aLaterStartMayRecordOrOpenTheWindow()
    {
        QSignalSpy window{&m->program, &Program::mainWindowWanted};
        m->program.told(wish::window);
        QCOMPARE(window.size(), 1);
        m->serviceSays("recording");
        m->program.told(wish::record); // it does: nothing is stopped
        QVERIFY(!QFile::exists(m->paths.commandFile));
        m->serviceSays("idle");
        m->program.told(wish::record);
        QVERIFY(command().contains("start"));
    }

    void quittingAsksWhileARecordingRuns()
    {
        QSignalSpy quit{&m->program, &Program::quitWanted};
        QSignalSpy asked{&m->program.quitQuestion, &QuitQuestion::asked};
        m->serviceSays("recording");
        emit m->panel.quitRequested();
        QCOMPARE(asked.size(), 1);
        QVERIFY(quit.isEmpty());
        QVERIFY(QDir{m->paths.root}.rename(m->paths.root, m->paths.root + u"-away"_s));
        m->program.quitQuestion.stopAndQuit(); // nobody can be told to stop
        QVERIFY(quit.isEmpty());
        QVERIFY(QDir{m->paths.root}.rename(m->paths.root + u"-away"_s, m->paths.root));
        m->scheduler.advance(12s);
        m->program.quitQuestion.stopAndQuit();
        QCOMPARE(quit.size(), 1);
        QVERIFY(command().contains("stop"));
    }

    void aChoiceThatIsNotStoredIsTold()
    {
        QSignalSpy toast{&m->program, &Program::toastWanted};
        QVERIFY(QDir{}.mkpath(m->paths.prefsFile)); // which cannot be written
        m->panel.setAutoRecord(false);
        QCOMPARE(toast.size(), 1);
        QVERIFY(m->panel.autoRecord());
        m->settings.set(u"protocol_format"_s, u"short"_s);
        QCOMPARE(toast.size(), 2);
        QCOMPARE(m->settings.stateOf(u"protocol_format"_s).value, u"full"_s);
    }

    void theSetupIsNotInterruptedByAnUpdate()
    {
        m->server.reply = [](QTcpSocket* socket, const Server::Request& request) {
            const bool installer = request.path == "/app/install.sh";
            socket->write(Server::answer(200, installer ? "sleep 60\n" : R"({"version":"99.0"})"));
        };
        m->program.start(true);
        m->scheduler.advance(0ms);
        QTRY_VERIFY(m->program.setup()->runner()->isRunning());
        m->scheduler.advance(30s);
        QTRY_VERIFY(m->updater.available());
        QVERIFY(!m->updater.busy());
    }

    void buttonsReachTheDesktop()
    {
        emit m->panel.meetingsRequested();
        QCOMPARE(m->desktop.folders, QStringList{m->paths.vaultDir});
        emit m->panel.botRequested();
        QCOMPARE(m->desktop.opened.last(), QUrl{u"http://127.0.0.1:1/bot"_s});
        QSignalSpy quit{&m->program, &Program::quitWanted};
        emit m->panel.quitRequested();
        QCOMPARE(quit.size(), 1);
    }

    void theSetupComesWhereTheEngineIsMissing()
    {
        m->server.reply = [](QTcpSocket* socket, const Server::Request& request) {
            socket->write(Server::answer(200, request.path == "/app/install.sh" ? "true\n" : "[]"));
        };
        m->signIn(token(R"({"sub":"anna"})"));
        QTRY_COMPARE(lookups(), 1);
        QSignalSpy wanted{&m->program, &Program::setupWanted};
        QSignalSpy ended{&m->program, &Program::setupEnded};
        m->program.start(false);
        m->scheduler.advance(0ms);
        QCOMPARE(wanted.size(), 1);
        QVERIFY(ended.wait());
        QTRY_COMPARE(lookups(), 2); // the account is handed over to what has just been installed

        QSignalSpy read{&m->state, &AppState::statusRead};
        QSignalSpy finished{&m->program, &Program::setupFinished};
        const auto checks = m->server.requestsTo("/app/version.json").size();
        m->program.setup()->finish();
        m->scheduler.advance(0ms);
        QCOMPARE(finished.size(), 1);
        QCOMPARE(read.size(), 1);
        QTRY_COMPARE(m->server.requestsTo("/app/version.json").size(), checks + 1);
        QVERIFY(!m->program.setup());
    }

    void whereTheEngineIsThereItChecksForUpdatesOnly()
    {
        m->write(m->paths.python, "");
        QDir{}.mkpath(m->paths.modelsMarker);
        m->program.start(false);
        m->scheduler.advance(30s);
        QVERIFY(!m->program.setup());
        QTRY_COMPARE(m->server.requestsTo("/app/version.json").size(), 1);
        m->scheduler.advance(1h);
        QTRY_COMPARE(m->server.requestsTo("/app/version.json").size(), 2);
        m->program.start(true);
        m->scheduler.advance(0ms);
        QVERIFY(m->program.setup());
        QVERIFY(m->program.setup()->runner()->isFinished()); // asked for, it has nothing to do
    }

private:
    [[nodiscard]] QByteArray command() const
    {
        return files::readWhole(m->paths.commandFile, 1000).value_or("");
    }
    [[nodiscard]] qsizetype lookups() const { return m->server.requestsTo("/rest/v1/telegram_links").size(); }

    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(ProgramTest)
#include "ProgramTest.moc"
