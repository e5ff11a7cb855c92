#include "SignInAddress.h"

#include <QStringDecoder>

#include <cctype>

using namespace Qt::StringLiterals;

namespace murmeli::signIn {

namespace {

/// `text` with its percent escapes decoded, or as it stands when one of them is none.
QString unescaped(const QString& text)
{
    const QByteArray raw = text.toUtf8();
    QByteArray decoded;
    decoded.reserve(raw.size());
    for (qsizetype at = 0; at < raw.size(); ++at) {
        if (raw[at] != '%') {
            decoded += raw[at];
            continue;
        }
        const QByteArray digits = raw.mid(at + 1, 2);
        if (digits.size() < 2 || !std::isxdigit(uchar(digits[0])) || !std::isxdigit(uchar(digits[1])))
            return text;
        decoded += QByteArray::fromHex(digits);
        at += 2;
    }
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    QString result = decoder(decoded);
    return decoder.hasError() ? text : result;
}

} // namespace

const QString scheme = u"murmeli"_s;

std::optional<QHash<QString, QString>> values(const QString& address)
{
    if (!address.startsWith(scheme + u':', Qt::CaseInsensitive)) return std::nullopt;
    const qsizetype mark = address.indexOf(u'#');
    QHash<QString, QString> values;
    if (mark < 0) return values;
    for (const QString& piece : address.mid(mark + 1).split(u'&', Qt::SkipEmptyParts)) {
        const qsizetype equals = piece.indexOf(u'=');
        if (equals <= 0 || equals + 1 == piece.size()) continue;
        values.insert(piece.left(equals), unescaped(piece.mid(equals + 1)));
    }
    return values;
}

} // namespace murmeli::signIn
