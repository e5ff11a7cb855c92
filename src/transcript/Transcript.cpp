#include "Transcript.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype longestName = 60; // characters before a colon; more is speech

} // namespace

std::optional<qint64> Transcript::seconds(QStringView stamp)
{
    std::array<qint64, 4> numbers{};
    size_t count = 0;
    for (const QStringView part : text::stripped(stamp, u"[] ").tokenize(u':', Qt::SkipEmptyParts)) {
        const auto number = text::wholeNumber(part);
        if (number && count < numbers.size()) numbers.at(count++) = *number;
    }
    if (count < 2) return std::nullopt;
    qint64 sum = 0;
    // Hours, minutes and seconds when there are three; else minutes and seconds, and whatever follows.
    for (size_t i = 0; i < (count == 3 ? 3U : 2U); ++i) {
        if (qMulOverflow(sum, qint64{60}, &sum) || qAddOverflow(sum, numbers.at(i), &sum))
            return std::nullopt;
    }
    return sum;
}

Transcript::Transcript(const QString& text) : m_text(text)
{
    const QList<QStringView> lines = QStringView{m_text}.split(u'\n', Qt::SkipEmptyParts);
    QList<QStringView> stamps;
    m_lines.reserve(lines.size());
    m_byStamp.reserve(lines.size());
    m_marks.reserve(lines.size());
    for (const QStringView line : lines) {
        const qsizetype end = line.indexOf(u']');
        if (end < 0) continue;
        const QStringView stamp = line.first(end + 1);
        const qsizetype known = m_byStamp.size();
        m_byStamp[stamp] = m_lines.size();
        if (m_byStamp.size() > known) stamps.append(stamp);
        m_lines.append(line.sliced(end + 1));
        m_stamps.append(stamp);
    }
    for (const QStringView stamp : std::as_const(stamps)) {
        if (const auto at = seconds(stamp)) m_marks.append({*at, m_byStamp.value(stamp)});
    }
    std::ranges::stable_sort(m_marks, {}, &Mark::seconds);
}

QList<TranscriptLine> Transcript::lines() const
{
    QList<TranscriptLine> lines;
    lines.reserve(m_lines.size());
    for (qsizetype at = 0; at < m_lines.size(); ++at) {
        const QStringView stamp = text::stripped(m_stamps[at], u"[] ");
        TranscriptLine line{.stamp = stamp.toString(), .seconds = seconds(stamp), .words = this->line(at)};
        const qsizetype colon = line.words.indexOf(u':');
        const QStringView name = QStringView{line.words}.left(std::max<qsizetype>(colon, 0));
        const bool isName = !name.isEmpty() && name.size() <= longestName &&
                            std::ranges::none_of(name, [](QChar c) { return u".!?…"_s.contains(c); });
        if (isName) {
            line.speaker = text::trimmed(name.toString());
            line.words = text::trimmed(line.words.sliced(colon + 1));
        }
        lines.append(line);
    }
    return lines;
}

QString Transcript::line(qsizetype index) const
{
    return index >= 0 && index < m_lines.size() ? text::trimmed(m_lines[index].toString()) : QString{};
}

std::optional<Transcript::Quote> Transcript::quote(const QString& stamp) const
{
    qsizetype at = m_byStamp.value(stamp, -1);
    if (at < 0) {
        const auto moment = seconds(stamp);
        if (!moment) return std::nullopt;
        const auto after = std::ranges::upper_bound(m_marks, *moment, {}, &Mark::seconds);
        if (after == m_marks.begin()) return std::nullopt;
        at = std::ranges::lower_bound(m_marks, std::prev(after)->seconds, {}, &Mark::seconds)->line;
    }
    return Quote{line(at), line(at - 1), line(at + 1)};
}

} // namespace murmeli
