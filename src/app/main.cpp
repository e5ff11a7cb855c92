#include "AppDelegate.h"
#include "account/SignInAddress.h"
#include "base/Http.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "commands/Commands.h"
#include "platform/Activation.h"
#include "platform/Appearance.h"
#include "platform/Desktop.h"
#include "platform/EndSignals.h"
#include "platform/Installation.h"
#include "platform/SecretStore.h"
#include "platform/SingleInstance.h"
#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "service/AppInfo.h"
#include "ui/Look.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QQuickWindow>
#include <QSessionManager>

#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

constexpr auto usage = R"(Usage: murmeli [OPTION | ADDRESS]
       murmeli COMMAND …
Records meetings and keeps their protocols; an icon in the tray is the way to all of it.

  --window   open the main window
  --record   start a recording
  --setup    open the setup
  --version  print the version
  --help     print this text

murmeli help lists the commands, which answer in the shell.
)";

struct Start {
    bool forceSetup = false;
    QString wish; ///< of whoever runs already; an address of ours may hold tokens
    const char* printed = nullptr;
};

/// Reads the arguments and wipes an address of ours from where the system shows them to others.
Start startOf(int argc, char** argv)
{
    static const QByteArray version = "Murmeli " + AppInfo::version.toUtf8() + '\n';
    Start start;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == "--setup"_L1) start.forceSetup = true;
        if (argument == "--window"_L1) start.wish = wish::window;
        if (argument == "--record"_L1) start.wish = wish::record;
        if (argument.startsWith("--wish="_L1)) start.wish = argument.section(u'=', 1);
        if (argument == "--help"_L1) start.printed = usage;
        if (argument == "--version"_L1) start.printed = version.constData();
        if (!argument.startsWith(signIn::scheme + u':', Qt::CaseInsensitive)) continue;
        start.wish = argument;
        std::memset(argv[i], 'x', std::strlen(argv[i]));
    }
    return start;
}

} // namespace

int main(int argc, char* argv[])
{
    if (const auto exit = commands::run(argc, argv)) return *exit;
    const Start start = startOf(argc, argv);
    if (start.printed) {
        std::fputs(start.printed, stdout);
        return 0;
    }
    const QString home = qEnvironmentVariable("HOME");
    if (home.isEmpty() || !QFileInfo{home}.isDir()) {
        std::fputs("murmeli: there is no home folder; HOME must name one\n", stderr);
        return 1;
    }

    const QString runtimeFolder = SingleInstance::runtimeFolder();
    SingleInstance instance{runtimeFolder};
    if (!instance.isFirst()) {
        const QCoreApplication app{argc, argv};
        SingleInstance::tell(runtimeFolder, start.wish.isEmpty() ? QString{wish::beSeen} : start.wish);
        return 0;
    }

    windowSystem::prepare();
    QApplication app{argc, argv};
    QApplication::setApplicationName(u"murmeli"_s);
    QApplication::setApplicationDisplayName(u"Murmeli"_s);
    QApplication::setApplicationVersion(AppInfo::version);
    QApplication::setDesktopFileName(QLatin1StringView{Paths::appAgentLabel});
    QApplication::setQuitOnLastWindowClosed(false);
    windowSystem::settle();
    if (windowSystem::drawsInSoftware(QDir::rootPath())) QQuickWindow::setSceneGraphBackend(u"software"_s);
    endSignals::quitOn(&app);
    // Whether it starts with the session is a preference of its own.
    QObject::connect(&app, &QGuiApplication::saveStateRequest,
                     [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });

    SystemScheduler scheduler;
    NetworkHttp http;
    SystemProcesses processes;
    const auto desktop = makeDesktop(home);
    const auto secrets = makeSecretStore();
    const auto own = desktop->ownFolders();
    Program program{Paths{home, {.data = own.data, .cache = own.cache, .config = own.config}},
                    {.scheduler = scheduler,
                     .http = http,
                     .processes = processes,
                     .desktop = *desktop,
                     .secrets = *secrets},
                    installationOf(QCoreApplication::applicationFilePath()),
                    AppInfo::addresses()};
    Look look{nullptr};
    const auto statusItem = makeStatusItem();
    AppDelegate delegate{program, *desktop, scheduler, look, *statusItem};
    delegate.start(start.forceSetup);
    if (!start.wish.isEmpty()) scheduler.after({}, &program, [&] { program.told(start.wish); });

    // The icon stands; what follows may ask the desktop.
    const auto appearance = makeAppearance();
    look.follow(*appearance);
    QObject::connect(&instance, &SingleInstance::told, &program, &Program::told);
    instance.listen();
    listenToDesktop(QGuiApplication::desktopFileName(), &program,
                    [&program](const QString& wish) { program.told(wish); });
    return QApplication::exec();
}
