#include "ProtocolFinder.h"

#include "base/Files.h"
#include "base/Text.h"

#include <QFile>
#include <QFileInfo>

namespace murmeli {

std::optional<QString> ProtocolFinder::find(const Meeting& meeting)
{
    if (meeting.protocolPath && QFileInfo::exists(*meeting.protocolPath)) return meeting.protocolPath;
    return byTitle(meeting.title);
}

std::optional<QString> ProtocolFinder::byTitle(const QString& title)
{
    const QString wanted = text::trimmed(title).toLower();
    if (wanted.isEmpty()) return std::nullopt;
    const QMutexLocker lock{&m_mutex};
    if (!m_names) {
        const auto listed = files::namesIn(QFile::encodeName(m_folder));
        if (!listed) return std::nullopt;
        m_names.emplace();
        for (const QByteArray& name : *listed)
            m_names->append(QFile::decodeName(name));
    }
    for (const QString& name : *m_names) {
        if (name.toLower().contains(wanted)) return m_folder + u'/' + name;
    }
    return std::nullopt;
}

} // namespace murmeli
