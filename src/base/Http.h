#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <utility>

class QObject;

namespace murmeli {

/// What a request is for, so that nothing leaves the computer unnamed. The rooms above agree on the words.
struct Purpose {
    explicit Purpose(QString kind, QString stem = {}, QStringList parts = {}, qsizetype items = 0)
        : kind{std::move(kind)}, stem{std::move(stem)}, parts{std::move(parts)}, items{items}
    {
    }

    QString kind;      ///< "analysis", "remark", "glossary", "device", "version" or "account"
    QString stem;      ///< of the meeting of which something is sent; empty for most
    QStringList parts; ///< what the body holds, by the names of its members
    qsizetype items;   ///< how many of them, where they are a list
};

struct HttpRequest {
    QByteArray method = "GET";
    QUrl url;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    QByteArray bearer;                         ///< a token; sent to the URL's own origin and nowhere else
    std::chrono::milliseconds timeout{30'000}; ///< for the whole exchange, however the bytes trickle
    qint64 answerLimit = 8 * 1024 * 1024;      ///< bytes of body beyond which the answer is an error
};

struct HttpAnswer {
    enum class Failure { None, Transport, Tls, Timeout, TooLarge, Redirect, Refused };
    Failure failure = Failure::None; ///< refused: nothing was sent
    int status = 0;                  ///< 0 when no answer came
    bool sent = false;               ///< of the request's body something has left
    QByteArray body;                 ///< empty after a failure
    QString
        errorText; ///< of a transport failure or time-out, in the platform's own words; no header or token

    [[nodiscard]] bool ok() const { return failure == Failure::None && status >= 200 && status < 300; }
};

/// The network, in one place: no cookies, no cache, no credentials across origins, TLS errors are errors.
class Http {
public:
    using Done = std::function<void(const HttpAnswer&)>;

    virtual ~Http() = default;

    /// `done` runs once, on the main thread, or never if `context` has gone (the exchange then ends too).
    /// An HTTP error status is an answer like any other. A request is sent at most once, whatever happens to
    /// its connection, and never with a header that a control character would break.
    virtual void send(const Purpose& purpose, const HttpRequest& request, QObject* context, Done done) = 0;
};

/// Over Qt's network stack, with a connection for each request: one that was kept could be gone when it is
/// needed. Main thread only; nothing is left of a request that has ended.
class NetworkHttp final : public Http {
public:
    void send(const Purpose& purpose, const HttpRequest& request, QObject* context, Done done) override;
};

} // namespace murmeli
