#pragma once

#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>

namespace murmeli {

/// A loopback web server that misbehaves on request and remembers what it was told.
class Server : public QTcpServer {
public:
    struct Request {
        QByteArray method;
        QByteArray path; ///< with the query
        QByteArray head; ///< the whole of it, as it came
        QByteArray body;

        /// Of the header `name`, which is given with its usual capitals; empty when there is none.
        [[nodiscard]] QByteArray header(const QByteArray& name) const
        {
            for (const QByteArray& line : head.split('\n')) {
                if (line.startsWith(name + ": ")) return line.mid(name.size() + 2).trimmed();
            }
            return {};
        }
    };

    Server()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { take(socket); });
        });
    }
    ~Server() override
    {
        for (QTcpSocket* socket : findChildren<QTcpSocket*>())
            socket->disconnect(this); // what it still reads has nobody to go to
    }
    Q_DISABLE_COPY_MOVE(Server)

    [[nodiscard]] QString origin() const { return u"http://127.0.0.1:%1"_qs.arg(serverPort()); }
    [[nodiscard]] QUrl url(const QString& path = u"/"_qs) const { return QUrl{origin() + path}; }

    /// An answer as it goes over the wire.
    static QByteArray answer(int status, const QByteArray& body, const QByteArray& headers = {})
    {
        return "HTTP/1.1 " + QByteArray::number(status) +
               " X\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body;
    }

    [[nodiscard]] QList<Request> requestsTo(const QByteArray& path) const
    {
        QList<Request> found;
        for (const Request& request : requests) {
            if (request.path.startsWith(path)) found.append(request);
        }
        return found;
    }

    /// Sends `wire` to everybody from now on.
    void says(const QByteArray& wire)
    {
        reply = [wire](QTcpSocket* socket, const Request&) { socket->write(wire); };
    }
    /// Leaves requests to `path` to whoever writes into what is held, and all others without an answer.
    void holds(const QByteArray& path)
    {
        reply = [this, path](QTcpSocket* socket, const Request& request) {
            if (request.path.startsWith(path)) held.append(socket);
        };
    }

    QList<Request> requests;
    QList<QTcpSocket*> held;
    std::function<void(QTcpSocket*, const Request&)> reply = [](QTcpSocket*, const Request&) {};

private:
    void take(QTcpSocket* socket)
    {
        QByteArray& buffer = m_buffers[socket];
        buffer += socket->readAll();
        const qsizetype headEnd = buffer.indexOf("\r\n\r\n");
        if (headEnd < 0) return;
        Request request;
        request.head = buffer.left(headEnd + 2);
        const qsizetype bodySize = request.header("Content-Length").toLongLong();
        if (buffer.size() < headEnd + 4 + bodySize) return;
        request.body = buffer.mid(headEnd + 4, bodySize);
        const QList<QByteArray> first = request.head.split(' ');
        request.method = first.value(0);
        request.path = first.value(1);
        buffer.clear();
        requests.append(request);
        reply(socket, request);
    }

    QHash<QTcpSocket*, QByteArray> m_buffers;
};

} // namespace murmeli
