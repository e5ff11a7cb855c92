#include "Prefs.h"

#include "base/Json.h"

#include <tuple>
#include <utility>

namespace murmeli {

Prefs::Prefs(QString file) : m_file(std::move(file)) {}

QByteArray Prefs::readBytes() const
{
    // Someone may be writing at this very moment; what does not parse gets a few more looks.
    constexpr int looks = 4;
    QByteArray bytes;
    for (int look = 0; look < looks; ++look) {
        bytes = files::readWhole(m_file, sizeLimit).value_or(QByteArray{});
        if (json::object(bytes)) break;
    }
    return bytes;
}

const QJsonObject& Prefs::load() const
{
    const files::Identity now = files::identity(m_file);
    if (now != m_seen || !files::isSettled(now)) {
        m_object = json::object(readBytes()).value_or(QJsonObject{});
        m_seen = now;
    }
    return m_object;
}

QString Prefs::string(const QString& key, const QString& fallback) const
{
    const QJsonValue value = load().value(key);
    return value.isString() ? value.toString() : fallback;
}

bool Prefs::boolean(const QString& key, bool fallback) const
{
    const QJsonValue value = load().value(key);
    return value.isBool() ? value.toBool() : fallback;
}

void Prefs::set(const QJsonObject& members)
{
    if (files::identity(m_file).size > sizeLimit) return; // what we cannot read is not ours to replace
    const QByteArray before = readBytes();
    const QJsonObject known = json::object(before).value_or(QJsonObject{});
    QByteArray bytes = before;
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (!known.contains(member.key()) || known.value(member.key()) != *member)
            bytes = json::withMember(bytes, member.key(), *member);
    }
    if (bytes == before) return;
    if (bytes.size() > sizeLimit) return; // nor could it be read again
    // A failure is silent by design.
    std::ignore = files::writeInPlace(m_file, bytes);
}

} // namespace murmeli
