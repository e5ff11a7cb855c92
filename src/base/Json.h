#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>

#include <optional>
#include <variant>

/// Lenient reading: a member of the wrong type is an absent member. The typing table:
///   boolean  true, false                  string   a JSON string
///   integer  12 and 12.0, not 12.5        objects  an array; what is no object in it is left out
///   number   any JSON number              flag     a boolean, or the numbers 1 and 0
namespace murmeli::json {

/// How many bytes the byte order mark takes that some editors write first; JSON begins after it.
qsizetype markLength(const QByteArray& bytes);

/// The top-level object of `bytes`, or nothing when they are not JSON or not an object. Any thread.
std::optional<QJsonObject> object(const QByteArray& bytes);

std::optional<bool> boolean(const QJsonObject& object, QLatin1StringView key);
std::optional<bool> flag(const QJsonObject& object, QLatin1StringView key);
std::optional<qint64> integer(const QJsonObject& object, QLatin1StringView key);
std::optional<double> number(const QJsonObject& object, QLatin1StringView key);
std::optional<QString> optionalText(const QJsonObject& object, QLatin1StringView key);
QString text(const QJsonObject& object, QLatin1StringView key, const QString& fallback = {});
QList<QJsonObject> objects(const QJsonObject& object, QLatin1StringView key);

/// `bytes` (a JSON object; anything else counts as {}) as compact JSON with `value` under `key`. All other
/// members keep the very digits and letters they were written with, so large numbers survive.
QByteArray withMember(const QByteArray& bytes, const QString& key, const QJsonValue& value);

/// `bytes` (JSON) over lines, indented by two spaces, with the members of every object in the order of their
/// names; of equal names the last one stays. Numbers and texts keep their very digits and letters.
QByteArray pretty(const QByteArray& bytes);

/// One step into a document: the key of a member, or the position of an element.
using Step = std::variant<QString, qsizetype>;

/// `bytes` (JSON) with `value` at the end of `path`, and everything else as it was written. The last key may
/// be a new one. \return nothing when the path leads nowhere.
std::optional<QByteArray> withValueAt(const QByteArray& bytes, const QList<Step>& path,
                                      const QJsonValue& value);

} // namespace murmeli::json
