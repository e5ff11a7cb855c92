#include "Http.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace murmeli {

namespace {

/// One running request. Belongs to its context and ends with it.
class Exchange final : public QObject {
public:
    Exchange(QNetworkAccessManager* manager, QNetworkReply* reply, const HttpRequest& request,
             QObject* context, Http::Done done)
        : QObject(context),
          m_manager(manager),
          m_reply(reply),
          m_limit(request.answerLimit),
          m_done(std::move(done))
    {
        connect(m_reply, &QNetworkReply::readyRead, this, &Exchange::take);
        connect(m_reply, &QNetworkReply::uploadProgress, this,
                [this](qint64 sent) { m_answer.sent = m_answer.sent || sent > 0; });
        connect(m_reply, &QNetworkReply::finished, this, &Exchange::finish);
        QTimer::singleShot(request.timeout, this, [this] { giveUp(HttpAnswer::Failure::Timeout); });
    }
    ~Exchange() override
    {
        m_reply->disconnect(this);
        m_brokenOff = m_brokenOff || m_reply->isRunning();
        if (m_reply->isRunning()) m_reply->abort();
        if (m_brokenOff) endElsewhere();
        m_manager->deleteLater(); // and the reply with it
    }
    Q_DISABLE_COPY_MOVE(Exchange)

private:
    /// The end of a manager waits until its connection's thread has read what has come, which for a head of
    /// megabytes takes seconds.
    void endElsewhere() const
    {
        auto* thread = new QThread;
        connect(m_manager, &QObject::destroyed, thread, &QThread::quit);
        connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        m_manager->moveToThread(thread);
        thread->start(QThread::IdlePriority);
    }

    /// Whether the connection broke off, also behind a status that is an error of its own.
    [[nodiscard]] bool broke(QNetworkReply::NetworkError error) const
    {
        if (error > QNetworkReply::NoError && error <= QNetworkReply::UnknownNetworkError) return true;
        const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
        return length.isValid() && !m_reply->hasRawHeader("Content-Encoding") &&
               m_answer.body.size() < length.toLongLong();
    }

    void take()
    {
        m_answer.body += m_reply->readAll();
        if (m_answer.body.size() > m_limit) giveUp(HttpAnswer::Failure::TooLarge);
    }

    void giveUp(HttpAnswer::Failure failure)
    {
        if (m_answer.failure != HttpAnswer::Failure::None) return;
        m_answer.failure = failure;
        m_brokenOff = true;
        if (failure == HttpAnswer::Failure::Timeout)
            m_answer.errorText = QCoreApplication::translate("QAbstractSocket", "Socket operation timed out");
        m_answer.body.clear();
        m_reply->abort(); // emits finished()
    }

    void finish()
    {
        const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        m_answer.status = status.toInt();
        if (m_answer.failure == HttpAnswer::Failure::None) {
            take();
            const auto error = m_reply->error();
            if (error == QNetworkReply::InsecureRedirectError ||
                error == QNetworkReply::TooManyRedirectsError ||
                (m_answer.status >= 300 && m_answer.status < 400)) {
                m_answer.failure = HttpAnswer::Failure::Redirect;
            } else if (m_answer.failure == HttpAnswer::Failure::None &&
                       (broke(error) || (m_answer.status < 400 && error != QNetworkReply::NoError))) {
                m_answer.failure = HttpAnswer::Failure::Transport;
            }
            if (m_answer.failure == HttpAnswer::Failure::Transport &&
                error == QNetworkReply::SslHandshakeFailedError)
                m_answer.failure = HttpAnswer::Failure::Tls;
            if (m_answer.failure == HttpAnswer::Failure::Transport ||
                m_answer.failure == HttpAnswer::Failure::Tls)
                m_answer.errorText = error == QNetworkReply::ContentReSendError || m_answer.status >= 400
                                         ? QCoreApplication::translate("QHttp", "Connection closed")
                                         : m_reply->errorString();
            // What came before the break may look like a whole answer.
            if (m_answer.failure != HttpAnswer::Failure::None) m_answer.body.clear();
        }
        deleteLater();
        // Moved out first: the callback may delete the context, and this exchange with it.
        const auto done = std::move(m_done);
        const auto answer = std::move(m_answer);
        done(answer);
    }

    QNetworkAccessManager* m_manager;
    QNetworkReply* m_reply;
    qint64 m_limit;
    Http::Done m_done;
    bool m_brokenOff = false; ///< before the server had said all
    HttpAnswer m_answer;
};

/// A body that is read once. Qt repeats a request whose server hangs up before it answers, unless it cannot
/// have the body again; so one without a body gets an empty one.
class OneTimeBody final : public QIODevice {
public:
    OneTimeBody(QByteArray bytes, QObject* parent) : QIODevice(parent), m_bytes(std::move(bytes))
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] bool atEnd() const override { return m_read == m_bytes.size(); }
    [[nodiscard]] qint64 bytesAvailable() const override { return m_bytes.size() - m_read; }
    bool reset() override { return false; }

protected:
    qint64 readData(char* data, qint64 room) override
    {
        const qint64 size = qMin(room, m_bytes.size() - m_read);
        if (size == 0 && room > 0) return -1;
        std::copy_n(m_bytes.constData() + m_read, size, data);
        m_read += size;
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_read = 0;
};

bool isHeaderText(const QByteArray& text)
{
    return std::ranges::none_of(text, [](char c) { return uchar(c) < 0x20 || c == 0x7f; });
}

} // namespace

void NetworkHttp::send(const Purpose&, const HttpRequest& request, QObject* context, Done done)
{
    const auto plain = [](const auto& header) {
        return isHeaderText(header.first) && isHeaderText(header.second);
    };
    if (!isHeaderText(request.bearer) || !std::ranges::all_of(request.headers, plain)) {
        QMetaObject::invokeMethod(
            context,
            [done = std::move(done)] { done({.failure = HttpAnswer::Failure::Transport, .errorText = {}}); },
            Qt::QueuedConnection);
        return;
    }
    QNetworkRequest wire{request.url};
    for (const auto& [name, value] : request.headers)
        wire.setRawHeader(name, value);
    if (!request.bearer.isEmpty()) wire.setRawHeader("Authorization", "Bearer " + request.bearer);
    wire.setRawHeader("Content-Length", QByteArray::number(request.body.size()));
    // Headers travel along with a redirect, so a request with a token may be sent on within its origin only.
    wire.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                      request.bearer.isEmpty() ? QNetworkRequest::NoLessSafeRedirectPolicy
                                               : QNetworkRequest::SameOriginRedirectPolicy);
    wire.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    wire.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    wire.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    wire.setAttribute(QNetworkRequest::Http2AllowedAttribute, false); // repeats requests by rules of its own
    // Cookies go with it, so that nothing of one service reaches another.
    auto* manager = new QNetworkAccessManager;
    QNetworkReply* reply =
        manager->sendCustomRequest(wire, request.method, new OneTimeBody{request.body, manager});
    reply->setReadBufferSize(256 * 1024); // so that an endless answer is not buffered faster than counted
    new Exchange{manager, reply, request, context, std::move(done)};
}

} // namespace murmeli
