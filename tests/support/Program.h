#pragma once

#include "account/AuthManager.h"
#include "base/Files.h"
#include "base/Http.h"
#include "base/Processes.h"
#include "localisation/Language.h"
#include "panel/KeyPanel.h"
#include "panel/PanelModel.h"
#include "permissions/PermissionsModel.h"
#include "platform/SignInSession.h"
#include "service/Prefs.h"
#include "settings/SettingsModel.h"
#include "setup/SetupRunner.h"
#include "support/Desktop.h"
#include "support/ManualScheduler.h"
#include "support/Server.h"
#include "ui/Look.h"
#include "update/Updater.h"
#include "windows/MainModel.h"

#include <QDir>
#include <QQmlEngine>
#include <QTemporaryDir>

namespace murmeli {

/// The state objects of the whole program in a home of their own. The clock stands still until a test moves
/// it; nothing here touches the desktop, its secret store or the network beyond the loopback.
struct Program {
    explicit Program(
        const Installation& installation = {.bundlePath = QStringLiteral("/opt/murmeli/bin/murmeli")})
        : updater({.versionUrl = server.origin() + QStringLiteral("/app/version.json"),
                   .script = paths.updateScript,
                   .current = QStringLiteral("0.8.0"),
                   .installation = installation},
                  http, processes, scheduler, [this] { return state.status(); }),
          settings({.paths = paths,
                    .prefs = prefs,
                    .state = state,
                    .account = account,
                    .updater = updater,
                    .language = language,
                    .processes = processes,
                    .loader = home.filePath(QStringLiteral("launchctl"))})
    {
        scheduler.advance(std::chrono::milliseconds{0});
    }

    void write(const QString& path, const QByteArray& content) const
    {
        QDir{}.mkpath(QFileInfo{path}.path());
        if (!files::writeAtomic(path, content)) qFatal("The temporary home cannot be written");
    }

    /// What the update server says from now on; the next check reads it.
    void publish(const QByteArray& record)
    {
        server.reply = [record](QTcpSocket* socket, const Server::Request&) {
            socket->write(Server::answer(200, record));
        };
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

    MainModel::Ground mainGround()
    {
        return {.paths = paths,
                .prefs = prefs,
                .account = account,
                .http = http,
                .processes = processes,
                .language = language,
                .scheduler = scheduler,
                .settings = settings,
                .glossary = glossary(),
                .webOrigin = server.origin()};
    }

    GlossaryStore& glossary()
    {
        if (!m_glossary)
            m_glossary = std::make_unique<GlossaryStore>(account, http, prefs, language, scheduler);
        return *m_glossary;
    }

    KeyPanel::Parts panelParts() { return {state, record, panel, account, updater}; }

    bool noBus = qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    Desktop desktop;
    Server server;
    QTemporaryDir home;
    Paths paths{home.path()};
    bool made = QDir{}.mkpath(paths.logs);
    ManualScheduler scheduler;
    Prefs prefs{paths.prefsFile};
    Language language{prefs, [] { return QStringList{}; }};
    Look look{nullptr};
    NetworkHttp http;
    SystemProcesses processes;
    std::unique_ptr<SignInSession> signInSession = makeSignInSession();
    AppState state{paths, scheduler};
    RecordControl record{paths, state, scheduler};
    PanelModel panel{state, record, prefs, language, scheduler};
    AuthManager account{
        {.accountSite = QStringLiteral("http://127.0.0.1:1/account"), .accountFile = paths.accountFile},
        {.base = server.origin()},
        http,
        *signInSession,
        scheduler};
    Updater updater;
    SettingsModel settings;

private:
    std::unique_ptr<GlossaryStore> m_glossary;
};

} // namespace murmeli
