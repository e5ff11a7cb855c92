#include "LoginItem.h"

#include "base/Files.h"

#include <QCoreApplication>
#include <QDir>

#include <tuple>

using namespace Qt::StringLiterals;

namespace murmeli::loginItem {

void set(bool on, const QString& home)
{
    const QString named = qEnvironmentVariable("XDG_CONFIG_HOME");
    const QString folder = (named.startsWith(u'/') ? named : home + u"/.config"_s) + u"/autostart"_s;
    QDir{}.mkpath(folder);
    // A package may have an entry for everybody; the user's own of the same name counts instead.
    QString program = QCoreApplication::applicationFilePath();
    program.replace(u'\\', u"\\\\\\\\"_s)
        .replace(u'"', u"\\\\\""_s)
        .replace(u'`', u"\\\\`"_s)
        .replace(u'$', u"\\\\$"_s);
    program.replace(u'%', u"%%"_s);
    const QString entry =
        u"[Desktop Entry]\nType=Application\nName=Murmeli\nIcon=murmeli\nExec=\"%1\"\nHidden=%2\n"_s.arg(
            program, on ? u"false"_s : u"true"_s);
    std::ignore = files::writeAtomic(folder + u"/murmeli.desktop"_s, entry.toUtf8(), files::Durable::No);
}

} // namespace murmeli::loginItem
