#include "Prefs.h"

#include "base/Json.h"

#include <utility>

namespace murmeli {

Prefs::Prefs(QString file) : m_file(std::move(file)) {}

const QJsonObject& Prefs::load() const
{
    const files::Identity now = files::identity(m_file);
    if (now != m_seen) {
        // A write between the look and the read changes the identity again, and is read the next time.
        const auto bytes = files::readWhole(m_file, sizeLimit);
        m_object = bytes ? json::object(*bytes).value_or(QJsonObject{}) : QJsonObject{};
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

void Prefs::set(const QString& key, const QJsonValue& value)
{
    const QByteArray old = files::readWhole(m_file, sizeLimit).value_or(QByteArray{});
    if (!files::writeInPlace(m_file, json::withMember(old, key, value))) return; // silent by design
    m_seen = {};
}

} // namespace murmeli
