#include "ReceiptWords.h"

#include "base/Text.h"
#include "localisation/Language.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace murmeli::receiptWords {

QString title(const Receipt& receipt, const QString& language)
{
    static const QStringList known{u"analysis"_s, u"glossary"_s, u"clipboard"_s, u"file"_s,
                                   u"mail"_s,     u"account"_s,  u"device"_s,    u"version"_s};
    if (receipt.kind == "glossary"_L1 && receipt.bytes == 0)
        return Language::text(language, u"sent.glossary_read"_s);
    if (receipt.kind == "remark"_L1) return Language::count(language, u"sent.remark"_s, receipt.items);
    const bool wholeProtocol = receipt.parts == QStringList{u"protocol"_s}; // as the engine makes it
    if (!wholeProtocol && !receipt.parts.isEmpty()) {
        if (receipt.parts == QStringList{u"excerpt"_s}) return Language::text(language, u"sent.excerpt"_s);
        if (receipt.parts == QStringList{u"transcript"_s})
            return Language::text(language, u"sent.transcript"_s);
        if (receipt.kind == "clipboard"_L1) return Language::text(language, u"sent.handed_clipboard"_s);
        if (receipt.kind == "file"_L1) return Language::text(language, u"sent.handed_file"_s);
        if (receipt.kind == "mail"_L1) return Language::text(language, u"sent.handed_mail"_s);
    }
    if (known.contains(receipt.kind)) return Language::text(language, u"sent."_s + receipt.kind);
    return text::shortened(text::oneLine(receipt.kind), longest);
}

QString place(const Receipt& receipt, const QString& language)
{
    if (receipt.to == "clipboard"_L1) return Language::text(language, u"sent.to_clipboard"_s);
    if (receipt.to == "mail"_L1) return Language::text(language, u"sent.to_mail"_s);
    if (receipt.to == "menu"_L1) return Language::text(language, u"sent.to_menu"_s);
    const QUrl url{receipt.to};
    const QString host = url.host().isEmpty() ? receipt.to : url.authority();
    return text::shortened(text::oneLine(host), longest);
}

QString result(const Receipt& receipt, const QString& language)
{
    const auto say = [&](const char* key) { return Language::text(language, QString::fromLatin1(key)); };
    if (receipt.result == "answered"_L1) return say("sent.answered");
    if (receipt.result == "refused"_L1) return say("sent.refused");
    if (receipt.result == "begun"_L1) return say("sent.begun");
    if (receipt.result != "failed"_L1) return {};
    if (receipt.reason == "offline"_L1) return say("sent.offline");
    if (receipt.reason == "broken"_L1) return say("sent.broken");
    if (receipt.reason == "timeout"_L1) return say("sent.timeout");
    if (receipt.reason == "tls"_L1) return say("sent.tls");
    if (receipt.reason == "cancelled"_L1) return say("sent.cancelled");
    return Language::text(language, u"sent.status"_s, QString::number(receipt.status));
}

} // namespace murmeli::receiptWords
