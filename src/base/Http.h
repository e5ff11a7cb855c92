#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>

class QNetworkAccessManager;
class QObject;

namespace murmeli {

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
    enum class Failure { None, Transport, Timeout, TooLarge, Redirect };
    Failure failure = Failure::None;
    int status = 0;  ///< 0 when no answer came
    QByteArray body; ///< empty after a failure
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
    /// An HTTP error status is an answer like any other. No retry.
    virtual void send(const HttpRequest& request, QObject* context, Done done) = 0;
};

/// Over Qt's network stack. Main thread only; made cheaply, starts its machinery with the first request.
class NetworkHttp final : public Http {
public:
    NetworkHttp();
    ~NetworkHttp() override;
    Q_DISABLE_COPY_MOVE(NetworkHttp)

    void send(const HttpRequest& request, QObject* context, Done done) override;

private:
    std::unique_ptr<QNetworkAccessManager> m_manager;
};

} // namespace murmeli
