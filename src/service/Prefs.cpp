#include "Prefs.h"

#include "base/Json.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <tuple>
#include <utility>

namespace murmeli {

namespace {

// Bytes; a larger file is not written in one go, and whoever kills us then leaves a torn one.
constexpr qsizetype pageSize = 4096;

} // namespace

Prefs::Prefs(QString file, QString spare) : m_file(std::move(file)), m_spare(std::move(spare)) {}

Prefs::Content Prefs::read() const
{
    // Someone may be writing at this very moment; what does not parse gets a few more looks.
    constexpr int looks = 4;
    QByteArray bytes;
    for (int look = 0; look < looks; ++look) {
        bytes = files::readWhole(m_file, sizeLimit).value_or(QByteArray{});
        if (json::object(bytes)) return {bytes};
    }
    if (bytes.size() <= pageSize || m_spare.isEmpty()) return {bytes};
    const auto spare = files::readWhole(m_spare, sizeLimit);
    return spare ? Content{*spare, true} : Content{bytes};
}

const QJsonObject& Prefs::load() const
{
    const files::Identity now = files::identity(m_file);
    if (now != m_seen || !files::isSettled(now)) {
        m_object = json::object(read().bytes).value_or(QJsonObject{});
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

bool Prefs::set(const QJsonObject& members)
{
    if (files::identity(m_file).size > sizeLimit) return false; // what we cannot read is not ours to replace
    const auto [before, torn] = read();
    const QJsonObject known = json::object(before).value_or(QJsonObject{});
    QByteArray bytes = before;
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (!known.contains(member.key()) || known.value(member.key()) != *member)
            bytes = json::withMember(bytes, member.key(), *member);
    }
    if (bytes == before && !torn) return true;  // a torn file is made whole for the service too
    if (bytes.size() > sizeLimit) return false; // nor could it be read again
    if (std::max(before.size(), bytes.size()) > pageSize && !m_spare.isEmpty()) {
        QDir{}.mkpath(QFileInfo{m_spare}.path());
        std::ignore = files::writeAtomic(m_spare, bytes, files::Durable::No);
    }
    return files::writeInPlace(m_file, bytes);
}

int Prefs::get(const NumberPrefKey& key) const
{
    const auto stored = json::integer(load(), QLatin1StringView{key.name});
    return int(std::clamp<qint64>(stored.value_or(key.fallback), key.least, key.most));
}

} // namespace murmeli
