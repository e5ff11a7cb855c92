#pragma once

#include "app/Program.h"
#include "base/Files.h"
#include "base/Http.h"
#include "base/Processes.h"
#include "support/ManualScheduler.h"
#include "support/MemorySecrets.h"
#include "support/RecordingDesktop.h"
#include "support/Server.h"
#include "ui/Look.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <memory>
#include <optional>

namespace murmeli {

/// The program in a home of its own. The clock stands still until a test moves it; nothing here touches the
/// desktop, its secret store or the network beyond the loopback.
struct TestProgram {
    explicit TestProgram(
        const Installation& installation = {.bundlePath = QStringLiteral("/opt/murmeli/bin/murmeli")},
        const QString& homeName = QStringLiteral("murmeli"))
        : home(QDir::tempPath() + u'/' + homeName + QStringLiteral("-XXXXXX")),
          program(paths,
                  {scheduler, http, processes, desktop, secrets,
                   [free = freeBytes](const QString&) { return std::optional{free->load()}; }},
                  installation,
                  {.web = server.origin(),
                   .accountSite = QStringLiteral("http://127.0.0.1:1/account"),
                   .backend = server.origin(),
                   .backendKey = {},
                   .bot = QStringLiteral("http://127.0.0.1:1/bot")})
    {
        scheduler.advance(std::chrono::milliseconds{0});
    }

    void write(const QString& path, const QByteArray& content) const
    {
        QDir{}.mkpath(QFileInfo{path}.path());
        if (!files::writeAtomic(path, content)) qFatal("The temporary home cannot be written");
    }

    /// The service writes its state, which is then read.
    void serviceWrites(const QByteArray& state)
    {
        write(paths.stateFile, state);
        scheduler.advance(std::chrono::milliseconds{1500});
    }
    void serviceSays(const QByteArray& status) { serviceWrites("{\"status\":\"" + status + "\"}"); }

    /// The service writes the same again, so many times and so often, as its files then tell.
    void serviceBeats(int times, double seconds)
    {
        QFile file{paths.stateFile};
        for (int i = 0; i < times; ++i) {
            scheduler.advance(std::chrono::milliseconds{qint64(seconds * 1000)});
            if (!file.open(QIODevice::ReadWrite)) qFatal("There is no state to be written again");
            file.setFileTime(scheduler.moment(), QFileDevice::FileModificationTime);
            file.close();
            state.load();
            scheduler.advance(std::chrono::milliseconds{0});
        }
    }

    /// The engine's part, in a shell instead of its own language.
    void installScript(const QString& script, const QByteArray& text) const
    {
        write(script, text + '\n');
        QDir{}.mkpath(QFileInfo{paths.python}.path());
        QFile::link(QStringLiteral("/bin/bash"), paths.python);
    }

    /// What the update server says from now on; the next check reads it.
    void publish(const QByteArray& record) { server.says(Server::answer(200, record)); }
    /// Asks the update server and waits for what it says.
    void check()
    {
        updater.check();
        scheduler.advance(std::chrono::milliseconds{0});
        QEventLoop answered;
        QObject::connect(&updater, &Updater::changed, &answered, &QEventLoop::quit);
        QTimer::singleShot(5000, &answered, [] { qFatal("The update server does not answer"); });
        answered.exec();
    }

    void signIn(const QString& token = QStringLiteral("a"))
    {
        account.login();
        account.handle(QStringLiteral("murmeli://auth#email=anna%40example.org&access_token=") + token);
    }

    void install(QQmlEngine& engine)
    {
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        language.install(engine);
        look.install(engine);
    }

    /// For a main window of the test's own.
    MainModel::Ground mainGround()
    {
        return {paths,        state,         program.marks, account,
                program.http, program.locks, program.own,   program.receipts,
                processes,    desktop,       language,      scheduler,
                settings,     glossary,      program.index, server.origin()};
    }

    Server server;
    QTemporaryDir home{QDir::tempPath() + QStringLiteral("/a home-XXXXXX")};
    Paths paths = pathsIn(home.path());
    bool made = QDir{}.mkpath(paths.logs);
    ManualScheduler scheduler;
    Look look{nullptr};
    NetworkHttp http;
    SystemProcesses processes;
    RecordingDesktop desktop{home.filePath(QStringLiteral("state/murmeli"))};
    MemorySecrets secrets;
    std::shared_ptr<std::atomic<qint64>> freeBytes =
        std::make_shared<std::atomic<qint64>>(84'000'000'000); ///< on the disk
    Program program;
    Prefs& prefs = program.prefs;
    Language& language = program.language;
    AppState& state = program.state;
    RecordControl& record = program.record;
    PanelModel& panel = program.panel;
    AuthManager& account = program.account;
    Updater& updater = program.updater;
    SettingsModel& settings = program.settings;
    GlossaryStore& glossary = program.glossary;

private:
    static Paths pathsIn(const QString& home)
    {
        Paths paths{home,
                    {home + QStringLiteral("/own/data"), home + QStringLiteral("/own/cache"),
                     home + QStringLiteral("/own/config")}};
        paths.agentLoader = home + QStringLiteral("/launchctl");
        return paths;
    }
};

} // namespace murmeli
