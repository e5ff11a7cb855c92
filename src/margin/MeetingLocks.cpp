#include "MeetingLocks.h"

#include "base/Background.h"
#include "base/Json.h"
#include "service/OwnSettings.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr int idleThread = 1000; // milliseconds for which the thread waits for more

} // namespace

MeetingLocks::MeetingLocks(const Paths& paths, const OwnSettings& settings, QObject* parent)
    : QObject(parent), m_files(paths), m_settings(settings)
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(idleThread);
    connect(&settings, &OwnSettings::changed, this, [this] {
        for (const QString& meeting : m_locks.keys())
            emit changed(meeting);
    });
}

MeetingLocks::~MeetingLocks() = default;

bool MeetingLocks::wasRead(const QString& meeting) const
{
    return m_settings.wasRead() && m_locks.contains(meeting);
}

bool MeetingLocks::isReadable(const QString& meeting) const
{
    const auto lock = m_locks.constFind(meeting);
    return lock != m_locks.cend() && lock->readable;
}

bool MeetingLocks::isLocked(const QString& meeting) const
{
    if (!isReadable(meeting)) return true;
    const bool forbidden = !m_settings.isKnown() || m_settings.get(ownSetting::lockAll);
    return m_locks[meeting].closed.value_or(forbidden);
}

void MeetingLocks::look(const QString& meeting)
{
    const auto read = [margin = m_files.margin(meeting)] {
        const OwnFile::Content content = margin.read();
        return Lock{json::boolean(content.object, "lock"_L1), !content.unreadable};
    };
    whenFinished(startOn(m_disk, read), this, [this, meeting](const Lock& lock) {
        if (m_writing.value(meeting) > 0) return;
        const bool isNew = !m_locks.contains(meeting);
        if (std::exchange(m_locks[meeting], lock) != lock || isNew) emit changed(meeting);
    });
}

void MeetingLocks::set(const QString& meeting, bool locked)
{
    ++m_writing[meeting];
    m_locks[meeting] = {locked, true};
    emit changed(meeting);
    const auto write = [margin = m_files.margin(meeting), locked] {
        return margin.change([&](const QJsonObject&) { return QJsonObject{{u"lock"_s, locked}}; });
    };
    whenFinished(startOn(m_disk, write), this, [this, meeting](OwnWritten written) {
        if (--m_writing[meeting] == 0) m_writing.remove(meeting);
        if (written == OwnWritten::Yes) return;
        emit notWritten(written);
        look(meeting); // what counts is what stands there
    });
}

} // namespace murmeli
