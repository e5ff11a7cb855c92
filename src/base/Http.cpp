#include "Http.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QTimer>

#include <utility>

namespace murmeli {

namespace {

/// One running request. Belongs to its context and ends with it.
class Exchange final : public QObject {
public:
    Exchange(QNetworkReply* reply, const HttpRequest& request, QObject* context, Http::Done done)
        : QObject(context), m_reply(reply), m_limit(request.answerLimit), m_done(std::move(done))
    {
        connect(m_reply, &QNetworkReply::readyRead, this, &Exchange::take);
        connect(m_reply, &QNetworkReply::finished, this, &Exchange::finish);
        QTimer::singleShot(request.timeout, this, [this] { giveUp(HttpAnswer::Failure::Timeout); });
    }
    ~Exchange() override
    {
        m_reply->disconnect(this);
        if (m_reply->isRunning()) m_reply->abort();
        m_reply->deleteLater();
    }
    Q_DISABLE_COPY_MOVE(Exchange)

private:
    void take()
    {
        m_answer.body += m_reply->readAll();
        if (m_answer.body.size() > m_limit) giveUp(HttpAnswer::Failure::TooLarge);
    }

    void giveUp(HttpAnswer::Failure failure)
    {
        if (m_answer.failure != HttpAnswer::Failure::None) return;
        m_answer.failure = failure;
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
            } else if (m_answer.failure == HttpAnswer::Failure::None && error != QNetworkReply::NoError &&
                       m_answer.status < 400) {
                m_answer.failure = HttpAnswer::Failure::Transport;
            }
            if (m_answer.failure == HttpAnswer::Failure::Transport)
                m_answer.errorText = m_reply->errorString();
            // What came before the break may look like a whole answer.
            if (m_answer.failure != HttpAnswer::Failure::None) m_answer.body.clear();
        }
        deleteLater();
        // Moved out first: the callback may delete the context, and this exchange with it.
        const auto done = std::move(m_done);
        const auto answer = std::move(m_answer);
        done(answer);
    }

    QNetworkReply* m_reply;
    qint64 m_limit;
    Http::Done m_done;
    HttpAnswer m_answer;
};

/// Accepts no cookie, so that nothing of one service reaches another.
class NoCookies final : public QNetworkCookieJar {
public:
    using QNetworkCookieJar::QNetworkCookieJar;
    bool setCookiesFromUrl(const QList<QNetworkCookie>&, const QUrl&) override { return false; }
};

} // namespace

NetworkHttp::NetworkHttp() = default;
NetworkHttp::~NetworkHttp() = default;

void NetworkHttp::send(const HttpRequest& request, QObject* context, Done done)
{
    if (!m_manager) {
        m_manager = std::make_unique<QNetworkAccessManager>();
        m_manager->setCookieJar(new NoCookies{m_manager.get()});
        m_manager->setAutoDeleteReplies(false);
    }
    QNetworkRequest wire{request.url};
    for (const auto& [name, value] : request.headers)
        wire.setRawHeader(name, value);
    if (!request.bearer.isEmpty()) wire.setRawHeader("Authorization", "Bearer " + request.bearer);
    // Headers travel along with a redirect, so a request with a token may be sent on within its origin only.
    wire.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                      request.bearer.isEmpty() ? QNetworkRequest::NoLessSafeRedirectPolicy
                                               : QNetworkRequest::SameOriginRedirectPolicy);
    wire.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    wire.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    QNetworkReply* reply = m_manager->sendCustomRequest(wire, request.method, request.body);
    reply->setReadBufferSize(256 * 1024); // so that an endless answer is not buffered faster than counted
    new Exchange{reply, request, context, std::move(done)};
}

} // namespace murmeli
