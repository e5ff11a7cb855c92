#include "OwnSettings.h"

#include "Paths.h"
#include "base/Background.h"
#include "base/Json.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qint64 sizeLimit = 1024 * 1024; // bytes

} // namespace

OwnSettings::OwnSettings(const Paths& paths, QObject* parent)
    : QObject(parent), m_file({paths.ownConfig, u"settings.json"_s, sizeLimit})
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(1000);
    load();
}

OwnSettings::~OwnSettings() = default;

void OwnSettings::load()
{
    whenFinished(startOn(m_disk, [file = m_file] { return file.read(); }), this,
                 [this](const OwnFile::Content& content) {
                     const bool news = std::exchange(m_values, content.object) != content.object;
                     const bool known = std::exchange(m_known, !content.unreadable) != !content.unreadable;
                     const bool first = !std::exchange(m_read, true);
                     if (first || news || known) emit changed();
                 });
}

bool OwnSettings::get(const PrefKey<bool>& key) const
{
    return json::boolean(m_values, QLatin1StringView{key.name}).value_or(key.fallback);
}

void OwnSettings::set(const QString& key, bool value)
{
    m_values[key] = value;
    emit changed();
    const auto write = [file = m_file, key, value] {
        return file.change([&](const QJsonObject&) { return QJsonObject{{key, value}}; });
    };
    whenFinished(startOn(m_disk, write), this, [this](OwnWritten written) {
        if (written == OwnWritten::Yes) return;
        emit notStored(written);
        load();
    });
}

} // namespace murmeli
