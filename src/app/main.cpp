#include "app/AppDelegate.h"
#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "platform/Appearance.h"
#include "platform/SingleInstance.h"
#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "platform/Workspace.h"
#include "service/AppInfo.h"
#include "service/Prefs.h"
#include "ui/Look.h"

#include <QApplication>
#include <QFileInfo>
#include <QStandardPaths>

#include <cstdio>

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

} // namespace

int main(int argc, char* argv[])
{
    const QString home = qEnvironmentVariable("HOME");
    if (home.isEmpty() || !QFileInfo{home}.isDir()) {
        std::fputs("murmeli: there is no home folder; HOME must name one\n", stderr);
        return 1;
    }

    SingleInstance instance{runtimeFolder()};
    if (!instance.isFirst()) {
        const QCoreApplication app{argc, argv};
        instance.tellFirst(u"activate"_s);
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

    const Paths paths{home};
    Prefs prefs{paths.prefsFile};
    SystemScheduler scheduler;
    Language language{prefs, workspace::preferredLanguages};
    Look look{nullptr};
    const auto statusItem = makeStatusItem();
    AppDelegate delegate{paths, prefs, language, look, scheduler, *statusItem};
    delegate.start();

    // The icon stands; what follows may ask the desktop.
    const auto appearance = makeAppearance();
    look.follow(*appearance);
    QObject::connect(&instance, &SingleInstance::told, &delegate, &AppDelegate::told);
    instance.listen();
    return QApplication::exec();
}
