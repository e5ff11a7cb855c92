#include "Json.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

namespace murmeli::json {

namespace {

/// A JSON value as it stands between members, with the white space outside of strings taken out.
struct Member {
    QByteArray key; ///< with its quotation marks, as written
    QByteArray value;
};

/// One JSON value as compact text, made by the serialiser of arrays (a bare value has none of its own).
QByteArray compact(const QJsonValue& value)
{
    const QByteArray array = QJsonDocument{QJsonArray{value}}.toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Splits an object that a parser has accepted already, so every bracket and quotation mark has its partner.
QList<Member> membersOf(const QByteArray& bytes)
{
    QList<Member> members;
    Member current;
    bool inString = false;
    bool inValue = false;
    int depth = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (!inString) {
            if (isSpace(c)) continue;
            if ((c == '}' || c == ']') && --depth == 0) break;
            if (c == '{' || c == '[') {
                if (depth++ == 0) continue;
            } else if (depth == 1 && c == ':') {
                inValue = true;
                continue;
            } else if (depth == 1 && c == ',') {
                members.append(std::exchange(current, {}));
                inValue = false;
                continue;
            }
        }
        QByteArray& target = inValue ? current.value : current.key;
        target += c;
        if (inString && c == '\\') {
            target += bytes[++i];
        } else if (c == '"') {
            inString = !inString;
        }
    }
    if (!current.key.isEmpty()) members.append(current);
    return members;
}

QString decodedKey(const Member& member)
{
    return QJsonDocument::fromJson('[' + member.key + ']').array().first().toString();
}

} // namespace

std::optional<QJsonObject> object(const QByteArray& bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject()) return std::nullopt;
    return document.object();
}

std::optional<bool> boolean(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    return value.isBool() ? std::optional{value.toBool()} : std::nullopt;
}

std::optional<bool> flag(const QJsonObject& object, QLatin1StringView key)
{
    if (const auto exact = boolean(object, key)) return exact;
    const auto figure = number(object, key);
    if (figure == 0.0) return false;
    if (figure == 1.0) return true;
    return std::nullopt;
}

std::optional<qint64> integer(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble()) return std::nullopt;
    // toInteger() keeps all 64 bits of an integer, and gives its default for what is none.
    const qint64 low = value.toInteger(0);
    return low == value.toInteger(1) ? std::optional{low} : std::nullopt;
}

std::optional<double> number(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    return value.isDouble() ? std::optional{value.toDouble()} : std::nullopt;
}

std::optional<QString> optionalText(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    return value.isString() ? std::optional{value.toString()} : std::nullopt;
}

QString text(const QJsonObject& object, QLatin1StringView key, const QString& fallback)
{
    return optionalText(object, key).value_or(fallback);
}

QList<QJsonObject> objects(const QJsonObject& object, QLatin1StringView key)
{
    QList<QJsonObject> result;
    const QJsonArray array = object.value(key).toArray();
    for (const auto& value : array) {
        if (value.isObject()) result.append(value.toObject());
    }
    return result;
}

QByteArray withMember(const QByteArray& bytes, const QString& key, const QJsonValue& value)
{
    QList<Member> members;
    if (object(bytes)) {
        for (Member& member : membersOf(bytes)) {
            if (decodedKey(member) != key) members.append(std::move(member));
        }
    }
    members.append({compact(key), compact(value)});

    QByteArray result{"{"};
    for (const Member& member : members) {
        if (result.size() > 1) result += ',';
        result += member.key + ':' + member.value;
    }
    return result + '}';
}

} // namespace murmeli::json
