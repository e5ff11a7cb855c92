#pragma once

#include "support/Server.h"

#include <QList>

namespace murmeli {

/// One way in which a server, or what stands before it, lets us down. A Server takes it as its `reply`.
struct Fault {
    const char* name;
    QByteArray wire;      ///< what it sends, if anything
    bool hangsUp = false; ///< afterwards

    void operator()(QTcpSocket* socket, const Server::Request&) const
    {
        socket->write(wire);
        if (hangsUp) socket->disconnectFromHost();
    }
};

/// Those that every user of the network takes for what they are. (Whether an error status counts whose body
/// is as it should be, each decides for itself.) \param answer what would be taken were it not for the fault.
inline QList<Fault> faultsAround(const QByteArray& answer)
{
    const QByteArray endless = "HTTP/1.1 200 X\r\nContent-Length: 10000000000\r\n\r\n";
    return {
        {"an error status", Server::answer(500, R"({"message":"no"})")},
        {"a page", Server::answer(200, "<!doctype html>")},
        {"a list of something else", Server::answer(200, "[1]")},
        {"nothing", Server::answer(200, "")},
        {"no UTF-8", Server::answer(200, QByteArray{answer}.replace("\":", "\xff\":"))},
        {"elsewhere", Server::answer(302, answer, "Location: http://127.0.0.1:1/\r\n")},
        {"no end", endless + answer + QByteArray(9'000'000, ' ')},
        {"a break after all of it", endless + answer, true},
        {"a hang-up", {}, true},
    };
}

} // namespace murmeli
