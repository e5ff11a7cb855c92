#include "AccountFile.h"

#include "base/Files.h"
#include "base/Json.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli::accountFile {

namespace {

constexpr qint64 sizeLimit = 1024 * 1024; // bytes; the file has a few thousand

QString chatText(const QJsonValue& value)
{
    if (!value.isDouble()) return value.toString();
    const double number = value.toDouble();
    return std::abs(number) < 9e18 ? QString::number(value.toInteger(qint64(number)))
                                   : QString::number(number, 'f', 0);
}

/// The last known chat. It goes with its account: another person's protocols must not reach it.
QString knownChat(const QJsonObject& file, const QString& accountId)
{
    const QString owner = json::text(file, "account_id"_L1);
    return owner.isEmpty() || owner == accountId ? json::text(file, "chat_id"_L1) : QString{};
}

} // namespace

std::optional<QJsonObject> read(const QString& path)
{
    const auto bytes = files::readWhole(path, sizeLimit);
    return bytes ? json::object(*bytes) : std::nullopt;
}

std::optional<Session> session(const std::optional<QJsonObject>& file)
{
    if (!file) return std::nullopt;
    Session session{json::text(*file, "access_token"_L1), json::text(*file, "refresh_token"_L1),
                    json::text(*file, "email"_L1)};
    return session.accessToken.isEmpty() ? std::nullopt : std::optional{session};
}

Chat chatIn(const QByteArray& answer)
{
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    if (!document.isArray()) return {};
    const QJsonArray links = document.array();
    if (!std::ranges::all_of(links, [](const QJsonValue& link) { return link.isObject(); })) return {};
    return {.known = true, .id = chatText(links.isEmpty() ? QJsonValue{} : links[0][u"chat_id"_s])};
}

QJsonObject content(const std::optional<QJsonObject>& file, const Session& session, const QString& accountId,
                    const Chat& chat, Tokens tokens)
{
    const QJsonObject old = file.value_or(QJsonObject{});
    const auto token = [&](const QString& key, const QString& ours) {
        return tokens == Tokens::FromFile && old.contains(key) ? old.value(key) : QJsonValue{ours};
    };
    return {{u"access_token"_s, token(u"access_token"_s, session.accessToken)},
            {u"refresh_token"_s, token(u"refresh_token"_s, session.refreshToken)},
            {u"email"_s, session.email},
            {u"account_id"_s, accountId},
            {u"chat_id"_s, chat.known ? chat.id : knownChat(old, accountId)}};
}

bool update(const QString& path, const Session& session, const QString& accountId, const Chat& chat,
            Tokens tokens)
{
    const QJsonObject object = content(read(path), session, accountId, chat, tokens);
    return files::writePrivate(path, QJsonDocument{object}.toJson(QJsonDocument::Compact));
}

} // namespace murmeli::accountFile
