#pragma once

#include <QByteArray>
#include <QString>

namespace murmeli {

/// An access token that makes these claims, which nobody has signed.
inline QString token(const QByteArray& claims)
{
    return QString::fromLatin1(
        "eyJhbGciOiJIUzI1NiJ9." +
        claims.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals) + ".signature");
}

} // namespace murmeli
