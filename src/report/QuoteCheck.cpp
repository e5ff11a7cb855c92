#include "QuoteCheck.h"

#include "language/PersonNames.h"
#include "localisation/DrawnDifference.h"
#include "localisation/Language.h"

#include <QHash>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr double alike = 0.40;            // of the words may differ
constexpr qsizetype fewWords = 3;         // of fewer, likeness says nothing
constexpr qint64 before = 30;             // seconds in which the words of a stamp may stand
constexpr qint64 after = 60;              //
constexpr qint64 latest = 1'000'000'000;  // seconds; a later stamp is none of a meeting
constexpr int mostEqual = 8;              // places that are looked at for one whose speaker fits
constexpr qsizetype mostWords = 100'000;  // of more, only those about the stamps are compared
constexpr qsizetype longestContext = 300; // characters of a line that are shown beside the words

bool isWrittenAsAName(const QString& text)
{
    return std::ranges::all_of(words::split(text),
                               [&](const words::Span& word) { return !word.in(text).front().isLower(); });
}

/// A transcript made ready to look for quotations in it.
class Comparison {
public:
    /// \param quotes whether there are quotations to look for; else it only knows the lines' times.
    Comparison(const Transcript& transcript, bool quotes) : m_lines(transcript.lines())
    {
        // What stands before a colon once only may be speech as well: "Look: we ship on Friday".
        for (const TranscriptLine& line : m_lines)
            ++m_turns[line.speaker];
        for (TranscriptLine& line : m_lines) {
            if (m_turns.value(line.speaker) == 1 && !isWrittenAsAName(line.speaker))
                line.words = std::exchange(line.speaker, {}) + u": "_s + line.words;
        }
        qint64 last = std::numeric_limits<qint64>::min();
        for (const TranscriptLine& line : m_lines) {
            if (line.seconds) last = *line.seconds;
            m_times.append(last);
            if (line.seconds) {
                m_begin = std::min(m_begin.value_or(last), last);
                m_end = std::max(m_end.value_or(last), last);
            }
            if (!quotes) continue;
            m_firstWords.append(m_sequence.size());
            m_spans.append(words::split(line.words));
            m_sequence.append(line.words, m_spans.last(), m_keys);
        }
        m_firstWords.append(m_sequence.size());
    }

    [[nodiscard]] bool isOutside(const QString& stamp) const
    {
        const auto moment = Transcript::seconds(stamp);
        return moment && m_begin && (*moment < *m_begin || *moment > *m_end);
    }
    [[nodiscard]] bool isEmpty() const { return m_lines.isEmpty(); }

    QuoteFinding check(const Commitment& claim)
    {
        const qsizetype count = words::split(claim.quote).size();
        if (count == 0) return {};
        if (!Transcript::seconds(claim.at) && m_sequence.size() > mostWords) return {};
        const auto [from, to] = neighbourhood(claim.at);
        const auto there = nearest(claim, from, to);
        if (there.distance == 0) return found(QuoteFinding::Exact, there, claim);
        if (count < fewWords) return {};
        if (there.distance <= alike) return found(QuoteFinding::Similar, there, claim);
        if (m_sequence.size() > mostWords) return {};
        const auto anywhere = nearest(claim, 0, m_sequence.size());
        if (anywhere.distance <= alike) return found(QuoteFinding::Elsewhere, anywhere, claim);
        return {.kind = QuoteFinding::None, .stamp = {}, .said = {}, .speaker = {}, .pieces = {}};
    }

private:
    using Match = words::WordSequence::Match;

    /// The nearest place; of those that are equally near one whose speaker fits, if it is among the first.
    Match nearest(const Commitment& claim, qsizetype from, qsizetype to)
    {
        const Match first = m_sequence.nearest(claim.quote, m_keys, from, to);
        Match place = first;
        for (int i = 0; i < mostEqual && place.distance <= alike && !otherSpeaker(place, claim).isEmpty();
             ++i) {
            place = m_sequence.nearest(claim.quote, m_keys, place.first + 1, to);
            if (place.distance > first.distance) return first;
        }
        return place.distance <= alike && otherSpeaker(place, claim).isEmpty() ? place : first;
    }

    /// Who has said it all, when that cannot be who the claim names.
    QString otherSpeaker(const Match& match, const Commitment& claim)
    {
        if (claim.who.isEmpty()) return {};
        const qsizetype last = lineOf(std::max(match.first, match.end - 1));
        for (qsizetype line = lineOf(match.first); line <= last; ++line) {
            const QString& speaker = m_lines[line].speaker;
            if (speaker.isEmpty() || m_turns.value(speaker) == 1 ||
                personNames::mayBeSame(claim.who, speaker, m_keys))
                return {};
        }
        return m_lines[lineOf(match.first)].speaker;
    }

    /// The words about a stamp, those included that were begun before and may have gone on; all without one.
    [[nodiscard]] std::pair<qsizetype, qsizetype> neighbourhood(const QString& stamp) const
    {
        const auto moment = Transcript::seconds(stamp);
        if (!moment) return {0, m_sequence.size()};
        if (*moment > latest) return {0, 0};
        qsizetype first = -1;
        qsizetype end = 0;
        for (qsizetype line = 0; line < m_lines.size(); ++line) {
            if (m_times[line] > *moment + after) continue;
            if (m_times[line] >= *moment - before) {
                if (first < 0 || m_times[first] < *moment - before)
                    first = first >= 0 && m_times[line] > *moment ? first : line; // who speaks goes on
                end = line + 1;
            } else if (end == 0) {
                first = line;
            }
        }
        if (first < 0) return {0, 0};
        return {m_firstWords[first], m_firstWords[std::max(end, first + 1)]};
    }

    [[nodiscard]] qsizetype lineOf(qsizetype word) const
    {
        const auto next = std::ranges::upper_bound(m_firstWords, word);
        return std::min(std::distance(m_firstWords.begin(), next) - 1, m_lines.size() - 1);
    }

    QuoteFinding found(QuoteFinding::Kind kind, const words::WordSequence::Match& match,
                       const Commitment& claim)
    {
        const qsizetype first = lineOf(match.first);
        const TranscriptLine& line = m_lines[first];
        QuoteFinding finding{.kind = kind, .stamp = {}, .said = line.speaker, .speaker = {}, .pieces = {}};
        if (words::split(claim.quote).size() >= fewWords) finding.speaker = otherSpeaker(match, claim);
        if (kind == QuoteFinding::Elsewhere) finding.stamp = u'[' + line.stamp + u']';
        if (kind == QuoteFinding::Similar) finding.pieces = pieces(match, claim.quote);
        return finding;
    }

    /// From the quotation to what was said, with what else stands in the lines.
    [[nodiscard]] QList<words::Piece> pieces(const words::WordSequence::Match& match,
                                             const QString& quote) const
    {
        const qsizetype first = lineOf(match.first);
        const qsizetype last = lineOf(std::max(match.first, match.end - 1));
        const QList<words::Span>& firstSpans = m_spans[first];
        const QList<words::Span>& lastSpans = m_spans[last];
        const qsizetype begin = firstSpans[match.first - m_firstWords[first]].begin;
        const words::Span& lastWord = lastSpans[match.end - 1 - m_firstWords[last]];
        const qsizetype end = lastWord.begin + lastWord.size;
        QString said;
        for (qsizetype line = first; line <= last; ++line) {
            const QString& text = m_lines[line].words;
            const qsizetype from = line == first ? begin : 0;
            const qsizetype to = line == last ? end : text.size();
            said += (said.isEmpty() ? QString{} : u" "_s) + text.sliced(from, to - from);
        }
        QList<words::Piece> result;
        const QString lead = m_lines[first].words.left(begin);
        if (!lead.trimmed().isEmpty() && lead.size() <= longestContext)
            result.append({words::Piece::Kind::Same, lead});
        const QList<words::Span> quoted = words::split(quote); // the marks around it are no difference
        const qsizetype quoteEnd = quoted.last().begin + quoted.last().size;
        result +=
            words::difference(quote.sliced(quoted.first().begin, quoteEnd - quoted.first().begin), said);
        const QString rest = m_lines[last].words.sliced(end);
        if (!rest.trimmed().isEmpty() && rest.size() <= longestContext)
            result.append({words::Piece::Kind::Same, rest});
        return result;
    }

    QList<TranscriptLine> m_lines;
    QHash<QString, int> m_turns;   ///< of each speaker
    std::optional<qint64> m_begin; ///< of the lines' times
    std::optional<qint64> m_end;
    QList<qint64> m_times; ///< of the lines; those without one have that before
    QList<qsizetype> m_firstWords;
    QList<QList<words::Span>> m_spans;
    words::Keys m_keys;
    words::WordSequence m_sequence;
};

} // namespace

QVariantList QuoteFinding::piecesForViews() const { return drawnDifference::pieces(pieces); }

QuoteFindings QuoteFindings::of(const Transcript& transcript, const QList<ReportRow>& rows)
{
    QuoteFindings findings;
    const bool quotes = std::ranges::any_of(rows, [](const ReportRow& row) {
        const auto* const claim = std::get_if<Commitment>(&row.value);
        return claim && !claim->quote.isEmpty();
    });
    Comparison comparison{transcript, quotes};
    findings.noTranscript = quotes && comparison.isEmpty();
    if (comparison.isEmpty()) return findings;
    for (int row = 0; row < rows.size(); ++row) {
        for (const QString& stamp : rows[row].stamps()) {
            if (comparison.isOutside(stamp)) findings.outside.insert(stamp);
        }
        const auto* const claim = std::get_if<Commitment>(&rows[row].value);
        if (!claim) continue;
        if (const QuoteFinding finding = comparison.check(*claim); finding.kind != QuoteFinding::Nothing)
            findings.byRow.insert(row, finding);
    }
    return findings;
}

QString QuoteFindings::sum(const QString& language) const
{
    if (noTranscript) return Language::text(language, u"quote.no_transcript"_s);
    if (byRow.isEmpty()) return {};
    QStringList parts{Language::text(language, u"quote.sum"_s, Language::number(language, byRow.size()))};
    for (const auto& [kind, key] : {std::pair{QuoteFinding::Exact, "quote.sum.exact"},
                                    {QuoteFinding::Similar, "quote.sum.similar"},
                                    {QuoteFinding::Elsewhere, "quote.sum.elsewhere"},
                                    {QuoteFinding::None, "quote.sum.none"}}) {
        const auto count = std::ranges::count(byRow, kind, &QuoteFinding::kind);
        if (count > 0)
            parts.append(
                Language::text(language, QString::fromLatin1(key), Language::number(language, count)));
    }
    return parts.join(Language::text(language, u"common.dot"_s));
}

} // namespace murmeli
