#include "AppDelegate.h"
#include "account/SignInAddress.h"
#include "base/Http.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
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
#include <QFileInfo>
#include <QQuickWindow>
#include <QStandardPaths>

#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

/// A private folder that goes with the log-in session; the system makes one where none is named.
QString runtimeFolder()
{
    const QString named = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return QFileInfo{named}.isDir() ? named
                                    : QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

struct Start {
    bool forceSetup = false;
    QString address; ///< of ours, with which a browser starts us; may hold tokens
};

/// Reads the arguments and wipes an address of ours from where the system shows them to others.
Start startOf(int argc, char** argv)
{
    Start start;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == "--setup"_L1) start.forceSetup = true;
        if (!argument.startsWith(signIn::scheme + u':', Qt::CaseInsensitive)) continue;
        start.address = argument;
        std::memset(argv[i], 'x', std::strlen(argv[i]));
    }
    return start;
}

} // namespace

int main(int argc, char* argv[])
{
    const QString home = qEnvironmentVariable("HOME");
    if (home.isEmpty() || !QFileInfo{home}.isDir()) {
        std::fputs("murmeli: there is no home folder; HOME must name one\n", stderr);
        return 1;
    }

    const Start start = startOf(argc, argv);
    SingleInstance instance{runtimeFolder()};
    if (!instance.isFirst()) {
        const QCoreApplication app{argc, argv};
        instance.tellFirst(start.address.isEmpty() ? u"activate"_s : start.address);
        return 0;
    }

    windowSystem::prepare();
    QApplication app{argc, argv};
    QApplication::setApplicationName(u"murmeli"_s);
    QApplication::setApplicationDisplayName(u"Murmeli"_s);
    QApplication::setApplicationVersion(AppInfo::version);
    QApplication::setDesktopFileName(u"murmeli"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    windowSystem::becomeAccessory();
    if (windowSystem::drawsInSoftware()) QQuickWindow::setSceneGraphBackend(u"software"_s);
    endSignals::quitOn(&app);

    SystemScheduler scheduler;
    NetworkHttp http;
    SystemProcesses processes;
    const auto desktop = makeDesktop(home);
    const auto secrets = makeSecretStore();
    Program program{Paths{home},
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

    // The icon stands; what follows may ask the desktop.
    const auto appearance = makeAppearance();
    look.follow(*appearance);
    QObject::connect(&instance, &SingleInstance::told, &program, &Program::told);
    instance.listen();
    return QApplication::exec();
}
