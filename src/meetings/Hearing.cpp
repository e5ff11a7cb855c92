#include "Hearing.h"

#include "ProtocolFile.h"
#include "base/Text.h"

namespace murmeli {

namespace {

constexpr double leastSpeech = 0.05;
constexpr double shortMeeting = 10; // minutes in which one person may well have talked alone
// Bytes beyond which a protocol is not read for this: 201 characters are some 400, and there is little to
// write about them.
constexpr qint64 smallProtocol = 8 * 1024;

bool isTooShort(const QString& protocol)
{
    const auto text = protocolFile::transcript(protocol, smallProtocol);
    return text && text::characterCount(*text) < Hearing::fewestCharacters;
}

} // namespace

Heard Hearing::of(std::optional<double> speechShare, std::optional<qsizetype> speakers,
                  std::optional<double> durationMin)
{
    if (speechShare && *speechShare < leastSpeech) return Heard::Little;
    return speakers == 1 && durationMin > shortMeeting ? Heard::OneVoice : Heard::Enough;
}

QSet<QString> Hearing::tooShort(const QList<Meeting>& meetings)
{
    QSet<QString> ids;
    QHash<QString, Known> known;
    for (const Meeting& meeting : meetings) {
        if (!meeting.protocolPath) continue;
        const files::Identity file = files::identity(*meeting.protocolPath);
        if (file.size < 0 || file.size > smallProtocol) continue;
        Known one = m_known.value(*meeting.protocolPath);
        if (one.file != file) one = {file, isTooShort(*meeting.protocolPath)};
        if (one.little) ids.insert(meeting.id);
        if (files::isSettled(file)) known.insert(*meeting.protocolPath, one);
    }
    m_known = known;
    return ids;
}

} // namespace murmeli
