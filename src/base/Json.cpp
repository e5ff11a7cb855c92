#include "Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>

#include <utility>

using namespace Qt::StringLiterals;

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

QByteArray bare(const QByteArray& bytes) { return bytes.mid(markLength(bytes)).trimmed(); }

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Splits an object or an array that a parser has accepted already, so every bracket and quotation mark has
/// its partner. The elements of an array are values without a key.
QList<Member> membersOf(const QByteArray& bytes)
{
    QList<Member> members;
    Member current;
    bool inString = false;
    bool isObject = false;
    bool inValue = false;
    int depth = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (!inString) {
            if (isSpace(c)) continue;
            if ((c == '}' || c == ']') && --depth == 0) break;
            if (c == '{' || c == '[') {
                if (depth++ == 0) {
                    isObject = c == '{';
                    inValue = !isObject;
                    continue;
                }
            } else if (depth == 1 && c == ':') {
                inValue = true;
                continue;
            } else if (depth == 1 && c == ',') {
                members.append(std::exchange(current, {}));
                inValue = !isObject;
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
    if (!current.key.isEmpty() || !current.value.isEmpty()) members.append(current);
    return members;
}

QByteArray joined(const QList<Member>& members, bool isObject)
{
    QByteArray result{isObject ? "{" : "["};
    for (const Member& member : members) {
        if (result.size() > 1) result += ',';
        if (isObject) result += member.key + ':';
        result += member.value;
    }
    return result + (isObject ? '}' : ']');
}

QString decodedKey(const Member& member)
{
    return QJsonDocument::fromJson('[' + member.key + ']').array().first().toString();
}

constexpr qsizetype deepestIndent = 32; // columns; what lies deeper would be mostly white space

void writePretty(QByteArray& out, const QByteArray& value, qsizetype indent)
{
    if (indent > deepestIndent) {
        out += value;
        return;
    }
    const bool isObject = value.startsWith('{');
    const QList<Member> members = isObject || value.startsWith('[') ? membersOf(value) : QList<Member>{};
    if (members.isEmpty()) {
        out += value;
        return;
    }
    QMap<QString, Member> byName;
    if (isObject) {
        for (const Member& member : members)
            byName.insert(decodedKey(member), member);
    }
    const QByteArray line = '\n' + QByteArray(indent + 2, ' ');
    const char* separator = "";
    out += isObject ? '{' : '[';
    for (const Member& member : isObject ? byName.values() : members) {
        out += separator + line;
        if (isObject) out += member.key + ": ";
        writePretty(out, member.value, indent + 2);
        separator = ",";
    }
    out += '\n' + QByteArray(indent, ' ') + (isObject ? '}' : ']');
}

} // namespace

qsizetype markLength(const QByteArray& bytes)
{
    constexpr QByteArrayView mark{"\xef\xbb\xbf"};
    return bytes.startsWith(mark) ? mark.size() : 0;
}

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
    return withValueAt(object(bytes) ? bytes : "{}"_ba, {key}, value).value_or(bytes);
}

QByteArray pretty(const QByteArray& bytes)
{
    QByteArray result;
    writePretty(result, bare(bytes), 0);
    return result;
}

std::optional<QByteArray> withValueAt(const QByteArray& bytes, const QList<Step>& path,
                                      const QJsonValue& value)
{
    if (path.isEmpty()) return compact(value);
    const QByteArray text = bare(bytes);
    const bool isObject = text.startsWith('{');
    const auto* const key = std::get_if<QString>(&path.constFirst());
    if (isObject != (key != nullptr) || (!isObject && !text.startsWith('['))) return std::nullopt;

    QList<Member> members = membersOf(text);
    qsizetype at = -1;
    if (key) { // of equal keys the last one counts for readers, so that one stays
        for (qsizetype i = members.size() - 1; i >= 0; --i) {
            if (decodedKey(members[i]) != *key) continue;
            if (at >= 0) {
                members.removeAt(i);
                --at;
            } else {
                at = i;
            }
        }
        if (at < 0 && path.size() > 1) return std::nullopt;
        if (at < 0) members.append({compact(*key), {}});
    } else {
        at = std::get<qsizetype>(path.constFirst());
        if (at < 0 || at >= members.size()) return std::nullopt;
    }
    Member& member = at < 0 ? members.last() : members[at];
    auto inner = withValueAt(member.value, path.mid(1), value);
    if (!inner) return std::nullopt;
    member.value = *std::move(inner);
    return joined(members, isObject);
}

} // namespace murmeli::json
