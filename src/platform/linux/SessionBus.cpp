#include "SessionBus.h"

#include <QByteArray>
#include <QList>
#include <QScopeGuard>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace murmeli::sessionBus {

namespace {

constexpr int patience = 1000; // milliseconds
constexpr auto addressVariable = "DBUS_SESSION_BUS_ADDRESS";

/// The socket of the first address; a name that begins with a zero is abstract. Empty when it is no socket.
QByteArray socketName()
{
    if (!qEnvironmentVariableIsSet(addressVariable)) return qgetenv("XDG_RUNTIME_DIR") + "/bus";
    const QByteArray first = qgetenv(addressVariable).split(';').first();
    if (!first.startsWith("unix:")) return {};
    for (const QByteArray& part : first.mid(5).split(',')) {
        if (part.startsWith("path=")) return QByteArray::fromPercentEncoding(part.mid(5));
        if (part.startsWith("abstract=")) return '\0' + QByteArray::fromPercentEncoding(part.mid(9));
    }
    return {};
}

bool wait(int socket, short event)
{
    pollfd descriptor{socket, event, 0};
    return ::poll(&descriptor, 1, patience) == 1;
}

} // namespace

bool answers()
{
    const QByteArray name = socketName();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || size_t(name.size()) >= sizeof address.sun_path) return true;
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));

    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket < 0) return true;
    const auto close = qScopeGuard([socket] { ::close(socket); });
    const auto length = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()));
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        return errno != EAGAIN; // its queue is full, so nobody takes calls; any other failure is one at once
    }
    // Asking for a mechanism without naming one is answered by every bus, and begins no session.
    constexpr char greeting[] = "\0AUTH\r\n";
    if (::send(socket, greeting, sizeof greeting - 1, MSG_NOSIGNAL) < 0) return true;
    return wait(socket, POLLIN);
}

void giveUp() { qputenv(addressVariable, "unix:path=/nonexistent"); }

} // namespace murmeli::sessionBus
