#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/// account.json: how the session reaches the recording service, which may renew the tokens in it. Any thread.
namespace murmeli::accountFile {

struct Session {
    QString accessToken;
    QString refreshToken;
    QString email;

    /// Whether there is an access token, and no token would break out of its place in a request's head.
    [[nodiscard]] bool isUsable() const;
    bool operator==(const Session&) const = default;
};

/// Who keeps the tokens: after a sign-in the session's are new; else those in the file may be newer.
enum class Tokens { FromSession, FromFile };

/// What the lookup of the Telegram chat brought.
struct Chat {
    bool known = false; ///< false: no usable answer, so the last known chat stays
    QString id;         ///< empty: there is none
    bool operator==(const Chat&) const = default;
};

/// The file's object; nothing when it is missing, too large, damaged or no object.
std::optional<QJsonObject> read(const QString& path);

/// The session that the file holds; nothing without a usable one.
std::optional<Session> session(const std::optional<QJsonObject>& file);

/// Whether `token` names a person, and another one than `accountId`.
bool isOthers(const QString& token, const std::optional<QString>& accountId);

/// From the backend's list of links: the first one's chat. Anything but a list of objects is not known.
Chat chatIn(const QByteArray& answer);

/// The whole new content. \param file what stands there now.
QJsonObject content(const std::optional<QJsonObject>& file, const Session& session, const QString& accountId,
                    const Chat& chat, Tokens tokens);

/// Reads the file, and writes content() over it, readable by its owner alone from the first byte on; begins
/// anew when somebody else has written meanwhile, and leaves a file that says it all already. Waits for the
/// disk. \return false when it could not be written.
bool update(const QString& path, const Session& session, const QString& accountId, const Chat& chat,
            Tokens tokens);

} // namespace murmeli::accountFile
