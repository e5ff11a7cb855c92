#include "AccountFile.h"

#include "Tokens.h"
#include "base/Files.h"
#include "base/Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace murmeli::accountFile {

namespace {

constexpr qint64 sizeLimit = 1024 * 1024; // bytes; the file has a few thousand
constexpr int patience = 20;              // a file that changes so often is nobody's to write
constexpr int looksAtTorn = 5;

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

bool isOthers(const QString& token, const std::optional<QString>& accountId)
{
    const auto person = tokens::subject(token);
    return person && accountId && person != accountId;
}

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
    return session.isUsable() ? std::optional{session} : std::nullopt;
}

bool Session::isUsable() const
{
    return tokens::isSendable(accessToken) && (refreshToken.isEmpty() || tokens::isSendable(refreshToken));
}

Chat chatIn(const QByteArray& answer)
{
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    if (!document.isArray()) return {};
    const QJsonArray links = document.array();
    if (!std::ranges::all_of(links, [](const QJsonValue& link) { return link.isObject(); })) return {};
    const QJsonValue id = links.isEmpty() ? QJsonValue{} : links[0][u"chat_id"_s];
    if (id.isDouble() && std::floor(id.toDouble()) != id.toDouble()) return {};
    return {.known = true, .id = chatText(id)};
}

QJsonObject content(const std::optional<QJsonObject>& file, const Session& session, const QString& accountId,
                    const Chat& chat, Tokens tokens)
{
    const QJsonObject old = file.value_or(QJsonObject{});
    const bool others = isOthers(json::text(old, "access_token"_L1), accountId);
    const auto token = [&](const QString& key, const QString& ours) {
        const QJsonValue theirs = old.value(key);
        const bool refused =
            theirs.isString() && !theirs.toString().isEmpty() && !tokens::isSendable(theirs.toString());
        return tokens == Tokens::FromFile && !others && old.contains(key) && !refused ? theirs
                                                                                      : QJsonValue{ours};
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
    // The service may renew the tokens at any moment: what it writes while we do must not be put back.
    for (int tries = 0; tries < patience; ++tries) {
        const auto before = files::readWhole(path, sizeLimit);
        const auto file = before ? json::object(*before) : std::nullopt;
        if (before && !file && tries < looksAtTorn) {
            QThread::msleep(40); // the service may be in the middle of its write
            continue;
        }
        const QJsonObject object = content(file, session, accountId, chat, tokens);
        if (file == object && files::isPrivate(path)) return true;
        const auto same = [&] { return files::readWhole(path, sizeLimit) == before; };
        const auto written =
            files::writePrivate(path, QJsonDocument{object}.toJson(QJsonDocument::Compact), same);
        if (written != files::Written::Overtaken) return written == files::Written::Yes;
    }
    return false;
}

} // namespace murmeli::accountFile
