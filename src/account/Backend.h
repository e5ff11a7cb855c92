#pragma once

#include "base/Http.h"

#include <QJsonObject>
#include <QString>

namespace murmeli {

/// How every call to the hosted backend looks: the anonymous key, the user's token, a minute for an answer.
struct Backend {
    QString base; ///< its address, without a slash at the end
    QByteArray anonymousKey;

    /// \param path with its query, beginning "/rest/v1/".
    [[nodiscard]] HttpRequest request(const QByteArray& method, const QString& path,
                                      const QString& token) const;
    /// The same with a JSON body.
    [[nodiscard]] HttpRequest request(const QByteArray& method, const QString& path, const QString& token,
                                      const QJsonObject& body) const;
};

} // namespace murmeli
