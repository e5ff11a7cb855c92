#include "SingleInstance.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr auto socketName = "/murmeli.socket";
constexpr qsizetype longestAddress = 103; // bytes that every system takes for a socket
constexpr int handOverTime = 1000;        // milliseconds
constexpr qint64 longestLine = 64 * 1024; // bytes

} // namespace

QString SingleInstance::runtimeFolder()
{
    constexpr auto variable = "XDG_RUNTIME_DIR";
    const QString named = qEnvironmentVariable(variable);
    const auto fits = [](const QString& folder) {
        return QFile::encodeName(folder).size() + qsizetype(std::strlen(socketName)) <= longestAddress;
    };
    if (QFileInfo{named}.isDir() && fits(named)) return named;
#ifdef Q_OS_LINUX
    // Qt would take such a folder too, but say so on the terminal.
    const QString session = u"/run/user/%1"_s.arg(::getuid());
    const QString own = QDir::tempPath() + u"/runtime-"_s + QString::number(::getuid());
    for (const QString& folder : {session, own}) {
        struct stat info {};
        if (folder == own) ::mkdir(QFile::encodeName(own).constData(), 0700);
        const bool there =
            ::lstat(QFile::encodeName(folder).constData(), &info) == 0 && S_ISDIR(info.st_mode);
        if (!there || info.st_uid != ::getuid() || (info.st_mode & 077) != 0) continue;
        if (!QFileInfo{named}.isDir()) qputenv(variable, QFile::encodeName(folder));
        return folder;
    }
#endif
    const QString usual = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return fits(usual) ? usual : QDir::tempPath(); // the user's own, where this comes to pass
}

SingleInstance::SingleInstance(const QString& runtimeFolder, QObject* parent)
    : QObject(parent), m_socket(runtimeFolder + QLatin1StringView{socketName})
{
    const QByteArray lock = QFile::encodeName(runtimeFolder + u"/murmeli.lock"_s);
    m_lock = ::open(lock.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (m_lock >= 0 && ::flock(m_lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        m_first = false;
    }
}

SingleInstance::~SingleInstance()
{
    m_server.close();
    if (m_lock >= 0) ::close(m_lock);
}

void SingleInstance::listen()
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            const auto take = [this, socket] {
                if (socket->canReadLine()) {
                    emit told(QString::fromUtf8(socket->readLine(longestLine)).trimmed());
                    socket->disconnectFromServer();
                } else if (socket->bytesAvailable() > longestLine) {
                    socket->abort();
                }
            };
            connect(socket, &QLocalSocket::readyRead, this, take);
            take();
        }
    });
    QLocalServer::removeServer(m_socket); // left over by a crash: we hold the lock, so nobody listens there
    m_server.listen(m_socket);
}

bool SingleInstance::tell(const QString& runtimeFolder, const QString& line)
{
    QLocalSocket socket;
    socket.connectToServer(runtimeFolder + QLatin1StringView{socketName});
    if (!socket.waitForConnected(handOverTime)) return false;
    socket.write(line.toUtf8() + '\n');
    socket.waitForBytesWritten(handOverTime);
    socket.waitForDisconnected(handOverTime); // it closes once it has read the line
    return true;
}

} // namespace murmeli
