#include "Tokens.h"

#include "base/Json.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli::tokens {

bool isSendable(const QString& token)
{
    return !token.isEmpty() && std::ranges::none_of(token, [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
               c == QChar::ParagraphSeparator;
    });
}

std::optional<QString> subject(const QString& token)
{
    const QStringList pieces = token.split(u'.', Qt::SkipEmptyParts);
    if (pieces.size() < 2) return std::nullopt;
    QByteArray claims = pieces[1].toUtf8();
    claims.replace('-', '+').replace('_', '/');
    while (claims.size() % 4 != 0)
        claims += '=';
    const auto decoded = QByteArray::fromBase64Encoding(claims, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return std::nullopt;
    const auto object = json::object(*decoded);
    return object ? json::optionalText(*object, "sub"_L1) : std::nullopt;
}

} // namespace murmeli::tokens
