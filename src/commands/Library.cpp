#include "Library.h"

#include "base/Files.h"
#include "language/Words.h"
#include "meetings/MeetingScanner.h"
#include "meetings/SummaryFile.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

/// Whether a text has the form of "2026-11-21".
bool isDay(QStringView text)
{
    if (text.size() != 10) return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool dash = i == 4 || i == 7;
        if (dash ? text[i] != u'-' : text[i] < u'0' || text[i] > u'9') return false;
    }
    return true;
}

} // namespace

Library::Library(const Paths& paths)
    : m_folder(paths.logs),
      m_protocols(std::make_shared<ProtocolFinder>(paths.vaultDir)),
      m_files(paths, m_protocols)
{
}

const QStringList& Library::stems()
{
    if (m_stems) return *m_stems;
    m_stems.emplace();
    for (const QByteArray& name : files::namesIn(QFile::encodeName(m_folder)).value_or(QList<QByteArray>{})) {
        if (name.endsWith(summaryFile::suffix.data()) && !name.startsWith('.'))
            m_stems->append(QFile::decodeName(name.chopped(summaryFile::suffix.size())));
    }
    std::ranges::sort(*m_stems, std::greater{});
    return *m_stems;
}

std::optional<Meeting> Library::read(const QString& stem) const
{
    const QString path = m_folder + u'/' + stem + summaryFile::suffix;
    files::Identity identity;
    const auto bytes = files::readWhole(QFile::encodeName(path), summaryFile::sizeLimit, &identity);
    return bytes ? summaryFile::meeting(*bytes, path, stem, identity.modifiedNs / 1'000'000) : std::nullopt;
}

QList<Meeting> Library::newest(qsizetype most, const Span& span)
{
    QList<Meeting> meetings;
    const auto take = [&](const QString& stem) {
        const auto meeting = read(stem);
        const QDate day = meeting ? meeting->startedAt.date() : QDate{};
        const bool fits =
            meeting && (!span.since || day >= *span.since) && (!span.until || day <= *span.until);
        if (fits) meetings.append(*meeting);
        return fits;
    };
    // A day more, for starts that were written elsewhere on the globe.
    const QString first = span.since ? span.since->addDays(-1).toString(Qt::ISODate) : QString{};
    const QString last = span.until ? span.until->addDays(1).toString(Qt::ISODate) : u"~"_s;
    qsizetype taken = 0; // some more, since a start may differ from its file's name
    for (const QString& stem : stems()) {
        const QString day = stem.left(10);
        const bool dated = isDay(day);
        if (dated && (day < first || day > last || taken >= most + most / 2 + 2)) continue;
        if (take(stem) && dated) ++taken;
    }
    std::ranges::stable_sort(meetings, std::greater{}, &Meeting::startedAt);
    return meetings.first(std::min(most, meetings.size()));
}

QList<Meeting> Library::find(const QString& words)
{
    if (words == "last"_L1) return newest(1, {});
    if (!words.contains(u'/')) {
        if (const auto meeting = read(words)) return {*meeting};
    }
    QList<Meeting> found;
    for (const QString& stem : stems()) {
        if (!stem.startsWith(words)) continue;
        if (const auto meeting = read(stem)) found.append(*meeting);
    }
    if (!found.isEmpty()) return found;
    words::Keys keys;
    const auto keysOf = [&keys](const QString& text) {
        QList<QByteArray> list;
        for (const words::Span& word : words::split(text))
            list.append(keys.of(word.in(text)));
        return list;
    };
    const QList<QByteArray> wanted = keysOf(words);
    if (wanted.isEmpty()) return {};
    MeetingScanner scanner{m_folder};
    for (const ListedMeeting& listed : scanner.scan().meetings) {
        const QList<QByteArray> title = keysOf(listed.meeting.title);
        if (std::ranges::all_of(wanted, [&](const QByteArray& key) { return title.contains(key); }))
            found.append(listed.meeting);
    }
    return found;
}

} // namespace murmeli
