#include "QuoteCheck.h"

#include "language/PersonNames.h"
#include "localisation/DrawnDifference.h"
#include "localisation/Language.h"

#include <algorithm>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr double alike = 0.40;            // of the words may differ
constexpr qsizetype fewWords = 3;         // of fewer, likeness says nothing
constexpr qint64 before = 30;             // seconds in which the words of a stamp may stand
constexpr qint64 after = 60;              //
constexpr qsizetype mostWords = 100'000;  // of more, only those about the stamps are compared
constexpr qsizetype longestContext = 300; // characters of a line that are shown beside the words

/// A transcript made ready to look for quotations in it.
class Comparison {
public:
    /// \param quotes whether there are quotations to look for; else it only knows the lines' times.
    Comparison(const Transcript& transcript, bool quotes) : m_lines(transcript.lines())
    {
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
        const auto [from, to] = neighbourhood(claim.at);
        const auto there = m_sequence.nearest(claim.quote, m_keys, from, to);
        if (there.distance == 0) return found(QuoteFinding::Exact, there, claim);
        if (count < fewWords) return {};
        if (there.distance <= alike) return found(QuoteFinding::Similar, there, claim);
        if (m_sequence.size() > mostWords) return {};
        const auto anywhere = m_sequence.nearest(claim.quote, m_keys, 0, m_sequence.size());
        if (anywhere.distance <= alike) return found(QuoteFinding::Elsewhere, anywhere, claim);
        return {.kind = QuoteFinding::None, .stamp = {}, .said = {}, .speaker = {}, .pieces = {}};
    }

private:
    /// The words about a stamp, those included that were begun before and may have gone on; all without one.
    [[nodiscard]] std::pair<qsizetype, qsizetype> neighbourhood(const QString& stamp) const
    {
        const auto moment = Transcript::seconds(stamp);
        if (!moment) return {0, m_sequence.size()};
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
        if (!claim.who.isEmpty() && !line.speaker.isEmpty() &&
            !personNames::mayBeSame(claim.who, line.speaker, m_keys))
            finding.speaker = line.speaker;
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
    findings.noTranscript = comparison.isEmpty();
    if (findings.noTranscript) return findings;
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
