#include "Workspace.h"

#include "base/Files.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace murmeli::workspace {

namespace {

const QString fileManager = u"org.freedesktop.FileManager1"_s;
constexpr qint64 sizeLimit = 64 * 1024;

} // namespace

void reveal(const QString& path, const QString&)
{
    QDBusMessage call = QDBusMessage::createMethodCall(fileManager, u"/org/freedesktop/FileManager1"_s,
                                                       fileManager, u"ShowItems"_s);
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString{};
    auto* watcher = new QDBusPendingCallWatcher{QDBusConnection::sessionBus().asyncCall(call), qApp};
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [path, watcher] {
        watcher->deleteLater();
        if (watcher->isError()) openFolder(QFileInfo{path}.absolutePath());
    });
}

QString computerName()
{
    // The owner's own words for it stand where hostnamed keeps them.
    const QByteArray info = files::readWhole(u"/etc/machine-info"_s, sizeLimit).value_or(QByteArray{});
    for (const QByteArray& line : info.split('\n')) {
        constexpr auto key = "PRETTY_HOSTNAME=";
        if (!line.startsWith(key)) continue;
        QByteArray name = line.mid(qsizetype(qstrlen(key))).trimmed();
        if (name.size() > 1 && name.startsWith('"') && name.endsWith('"'))
            name = name.sliced(1, name.size() - 2);
        if (!name.isEmpty()) return QString::fromUtf8(name);
    }
    return QSysInfo::machineHostName();
}

QString stateFolder(const QString& home)
{
    const QString named = qEnvironmentVariable("XDG_STATE_HOME");
    return (named.startsWith(u'/') ? named : home + u"/.local/state"_s) + u"/murmeli"_s;
}

} // namespace murmeli::workspace
