#include "WatchedHttp.h"

#include "Receipts.h"

#include <QMetaObject>
#include <QObject>

#include <memory>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using Failure = HttpAnswer::Failure;

QString originOf(const QUrl& url)
{
    return url.scheme() + u"://"_s + url.authority(QUrl::FullyEncoded).section(u'@', -1);
}

/// What has become of a request, for its receipt.
Receipt ended(Receipt receipt, const HttpAnswer& answer)
{
    receipt.status = answer.status;
    receipt.result = u"failed"_s;
    switch (answer.failure) {
    case Failure::None:
    case Failure::TooLarge:
        if (answer.failure == Failure::TooLarge || answer.ok()) {
            receipt.result = u"answered"_s;
        } else {
            receipt.reason = u"status"_s;
        }
        break;
    case Failure::Transport:
        receipt.reason = answer.sent ? u"broken"_s : u"offline"_s;
        break;
    case Failure::Tls:
        receipt.reason = u"tls"_s;
        break;
    case Failure::Timeout:
        receipt.reason = u"timeout"_s;
        break;
    case Failure::Redirect:
        receipt.reason = u"status"_s;
        break;
    case Failure::Refused:
        receipt.result = u"refused"_s;
        receipt.bytes = 0; // not one has left
        break;
    }
    return receipt;
}

/// Ends the receipt of a request, also when whoever asked goes away before the answer.
class Watch final : public QObject {
public:
    Watch(Receipts& receipts, Receipt receipt, QObject* context)
        : QObject(context), m_receipts(receipts), m_receipt(std::move(receipt))
    {
    }
    ~Watch() override
    {
        if (m_ended) return;
        m_receipt.result = u"failed"_s;
        m_receipt.reason = u"cancelled"_s;
        m_receipts.note(m_receipt);
    }
    Q_DISABLE_COPY_MOVE(Watch)

    void end(const HttpAnswer& answer)
    {
        m_ended = true;
        m_receipts.note(ended(m_receipt, answer));
    }

private:
    Receipts& m_receipts;
    Receipt m_receipt;
    bool m_ended = false;
};

} // namespace

WatchedHttp::WatchedHttp(Http& network, Receipts& receipts, std::function<bool(const QString& stem)> isLocked)
    : m_network(network), m_receipts(receipts), m_isLocked(std::move(isLocked))
{
}

void WatchedHttp::send(const Purpose& purpose, const HttpRequest& request, QObject* context, Done done)
{
    Receipt receipt = m_receipts.begun();
    receipt.stem = purpose.stem;
    receipt.kind = purpose.kind;
    receipt.to = originOf(request.url);
    receipt.bytes = request.body.size();
    receipt.parts = purpose.parts;
    receipt.items = purpose.items;
    const HttpAnswer refused{.failure = Failure::Refused, .body = {}, .errorText = {}};
    if (!purpose.stem.isEmpty() && m_isLocked(purpose.stem)) {
        m_receipts.note(ended(receipt, refused));
        QMetaObject::invokeMethod(
            context, [done = std::move(done), refused] { done(refused); }, Qt::QueuedConnection);
        return;
    }
    if (purpose.parts.isEmpty()) { // about the account, the device or the version
        m_network.send(purpose, request, context,
                       [receipts = &m_receipts, receipt, done = std::move(done)](const HttpAnswer& answer) {
                           receipts->noteOnceADay(ended(receipt, answer));
                           done(answer);
                       });
        return;
    }
    auto* const watch = new Watch{m_receipts, receipt, context};
    m_receipts.note(receipt, watch, [this, purpose, request, watch, refused, done = std::move(done)] {
        const auto end = [watch, done](const HttpAnswer& answer) {
            watch->end(answer);
            const auto go = done; // the context may end with it, and the watch
            watch->deleteLater();
            go(answer);
        };
        if (!purpose.stem.isEmpty() && m_isLocked(purpose.stem)) return end(refused); // by now
        m_network.send(purpose, request, watch, end);
    });
}

} // namespace murmeli
