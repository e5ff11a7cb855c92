#include "Backend.h"

#include <QJsonDocument>

using namespace std::chrono_literals;

namespace murmeli {

HttpRequest Backend::request(const QByteArray& method, const QString& path, const QString& token) const
{
    return {.method = method,
            .url = QUrl{base + path},
            .headers = {{"apikey", anonymousKey}},
            .bearer = token.toUtf8(),
            .timeout = 60s,
            .answerLimit = 1024 * 1024};
}

HttpRequest Backend::request(const QByteArray& method, const QString& path, const QString& token,
                             const QJsonObject& body) const
{
    HttpRequest result = request(method, path, token);
    result.headers.emplaceBack("Content-Type", "application/json");
    result.body = QJsonDocument{body}.toJson(QJsonDocument::Compact);
    return result;
}

} // namespace murmeli
