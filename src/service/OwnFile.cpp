#include "OwnFile.h"

#include "base/Files.h"
#include "base/Json.h"

#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto patience = 2s;
constexpr auto version = 1;

/// Empty when the place leaves its folder.
QString pathOf(const OwnPlace& place)
{
    const bool inside =
        !place.folder.isEmpty() && !place.name.isEmpty() && !place.name.split(u'/').contains(u".."_s);
    return inside ? place.folder + u'/' + place.name : QString{};
}

bool isNewer(const QJsonObject& object) { return json::number(object, "v"_L1).value_or(version) > version; }

std::optional<QJsonObject> lineOf(const QByteArray& line)
{
    const auto object = json::object(line);
    return object && !isNewer(*object) ? object : std::nullopt;
}

/// What stands at a path, as text; nothing when it cannot be read, though something stands there.
std::optional<QByteArray> bytesAt(const QString& path, qint64 limit)
{
    if (auto bytes = files::readWhole(path, limit)) return bytes;
    const QFileInfo there{path};
    if (there.exists() || there.isSymLink()) return std::nullopt;
    return QByteArray{};
}

/// Does the work while no other process of ours writes.
OwnWritten alone(const OwnPlace& place, const std::function<OwnWritten(const QString& path)>& work)
{
    const QString path = pathOf(place);
    if (path.isEmpty() || !files::makePrivateFolder(QFileInfo{path}.path())) return OwnWritten::Failed;
    const files::Lock lock{place.folder + u"/lock"_s, patience};
    return lock.held() ? work(path) : OwnWritten::Failed;
}

OwnWritten written(bool good) { return good ? OwnWritten::Yes : OwnWritten::Failed; }

OwnFile::Content contentOf(const std::optional<QByteArray>& bytes)
{
    if (!bytes) return {.unreadable = true};
    if (bytes->isEmpty()) return {};
    const auto object = json::object(*bytes);
    return {object.value_or(QJsonObject{}), !object || isNewer(*object)};
}

} // namespace

OwnFile::Content OwnFile::read() const
{
    const QString path = pathOf(m_place);
    return path.isEmpty() ? Content{} : contentOf(bytesAt(path, m_place.limit));
}

OwnWritten OwnFile::change(const std::function<QJsonObject(const QJsonObject&)>& change) const
{
    return alone(m_place, [&](const QString& path) {
        const auto before = bytesAt(path, m_place.limit);
        const auto [object, unreadable] = contentOf(before);
        if (unreadable) return OwnWritten::Unreadable;
        QJsonObject members = change(object);
        if (members.isEmpty()) return OwnWritten::Yes;
        members[u"v"_s] = version;
        QByteArray bytes = *before;
        for (auto member = members.begin(); member != members.end(); ++member)
            bytes = json::withMember(bytes, member.key(), *member);
        if (bytes.size() > m_place.limit) return OwnWritten::Failed; // it could not be read again
        return written(files::writePrivate(path, bytes) == files::Written::Yes);
    });
}

OwnLines::Content OwnLines::read() const
{
    const QString path = pathOf(m_place);
    const auto bytes = path.isEmpty() ? QByteArray{} : bytesAt(path, m_place.limit);
    if (!bytes) return {.unreadable = true};
    Content content;
    QList<QByteArray> lines = bytes->split('\n');
    lines.removeLast(); // nothing, or what was cut off
    for (const QByteArray& line : lines) {
        if (const auto object = lineOf(line)) content.lines.append(*object);
    }
    return content;
}

OwnWritten OwnLines::append(const QJsonObject& line) const
{
    QJsonObject numbered = line;
    numbered[u"v"_s] = version;
    const QByteArray bytes = QJsonDocument{numbered}.toJson(QJsonDocument::Compact);
    return alone(m_place, [&](const QString& path) {
        const auto size = files::identity(path).size;
        if (size < 0 && !bytesAt(path, 0)) return OwnWritten::Unreadable;
        if (size + bytes.size() + 2 > m_place.limit) return OwnWritten::Unreadable;
        return written(files::appendLine(path, bytes, files::Durable::Yes));
    });
}

OwnWritten OwnLines::remove(const std::function<bool(const QJsonObject&)>& unwanted) const
{
    return alone(m_place, [&](const QString& path) {
        const auto before = bytesAt(path, m_place.limit);
        if (!before) return OwnWritten::Unreadable;
        QList<QByteArray> lines = before->split('\n');
        const auto gone = std::remove_if(lines.begin(), lines.end(), [&](const QByteArray& line) {
            const auto object = lineOf(line);
            return object && unwanted(*object);
        });
        if (gone == lines.end()) return OwnWritten::Yes;
        lines.erase(gone, lines.end());
        return written(files::writePrivate(path, lines.join('\n')) == files::Written::Yes);
    });
}

} // namespace murmeli
