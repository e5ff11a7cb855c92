#include "SystemSettings.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace murmeli::systemSettings {

namespace {

struct Command {
    QString program;
    QStringList arguments;
};

/// The microphone's privacy or sound; GNOME keeps what a program may see under its name.
QList<Command> commands(Page page)
{
    if (page == Page::Microphone) {
        return {{u"gnome-control-center"_s, {u"microphone"_s}},
                {u"systemsettings"_s, {u"kcm_pulseaudio"_s}},
                {u"systemsettings5"_s, {u"kcm_pulseaudio"_s}}};
    }
    return {{u"gnome-control-center"_s, {u"applications"_s}}};
}

} // namespace

bool open(Page page)
{
    for (const Command& command : commands(page)) {
        const QString program = QStandardPaths::findExecutable(command.program);
        if (!program.isEmpty()) return QProcess::startDetached(program, command.arguments);
    }
    return false;
}

} // namespace murmeli::systemSettings
