#include "FoundPlace.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using words::Span;

qsizetype ending(const Span& span) { return span.begin + span.size; }

bool endsSentence(const QString& text, qsizetype at)
{
    return u".!?…"_s.contains(text[at]) && (at + 1 == text.size() || text[at + 1].isSpace());
}

/// The sentence around a hit.
Span sentence(const QString& text, const Span& hit)
{
    qsizetype begin = hit.begin, end = ending(hit);
    while (begin > 0 && !(text[begin - 1].isSpace() && begin > 1 && endsSentence(text, begin - 2)))
        --begin;
    while (end < text.size() && !endsSentence(text, end))
        ++end;
    return {begin, std::min(end + 1, text.size()) - begin};
}

/// As much of a long sentence as is shown, whole words.
Span part(const Span& whole, const QList<Span>& split, const Span& first)
{
    constexpr qsizetype lead = 40;
    Span shown{std::max(whole.begin, first.begin - lead), 0};
    const qsizetype most = std::min(ending(whole), shown.begin + FoundPlace::longest);
    // Cut between words, but never in the middle of the hit that it is for.
    for (const Span& word : split) {
        if (word.begin < shown.begin && ending(word) > shown.begin) shown.begin = ending(word);
        if (word.begin >= shown.begin && ending(word) <= most) shown.size = ending(word) - shown.begin;
    }
    if (most == ending(whole)) shown.size = most - shown.begin;
    shown.size = std::max(shown.size, std::min(ending(first) - shown.begin, FoundPlace::longest));
    return shown;
}

/// The hit with most others close behind it.
Span richest(const QList<Span>& hits)
{
    Span best = hits.first();
    qsizetype most = 0;
    for (qsizetype i = 0; i < hits.size(); ++i) {
        qsizetype beside = 0;
        while (i + beside < hits.size() && ending(hits[i + beside]) - hits[i].begin <= 100)
            ++beside;
        if (beside <= most) continue;
        most = beside;
        best = hits[i];
    }
    return best;
}

FoundPlace placeIn(const Passage& passage, const QList<Span>& split, const QList<Span>& hits)
{
    FoundPlace place;
    place.passage = passage;
    place.passage.text.clear(); // may be long, and only the sentence shows
    const QString& text = passage.text;
    Span shown{0, text.size()};
    if (shown.size > FoundPlace::longest) {
        const Span best = richest(hits);
        shown = sentence(text, best);
        if (shown.size > FoundPlace::longest) shown = part(shown, split, best);
    }
    QString excerpt = text.sliced(shown.begin, shown.size);
    qsizetype before = 0;
    while (before < excerpt.size() && excerpt[before].isSpace())
        ++before;
    excerpt = excerpt.sliced(before).trimmed();
    shown.begin += before;
    const bool cutBefore = shown.begin > 0 && !endsSentence(text, std::max<qsizetype>(0, shown.begin - 2));
    const bool cutAfter =
        shown.begin + excerpt.size() < text.trimmed().size() && !endsSentence(excerpt, excerpt.size() - 1);
    for (const Span& hit : hits) {
        if (hit.begin >= shown.begin && ending(hit) <= shown.begin + excerpt.size())
            place.hits.append({hit.begin - shown.begin + (cutBefore ? 1 : 0), hit.size});
    }
    place.text = (cutBefore ? u"…"_s : QString{}) + excerpt + (cutAfter ? u"…"_s : QString{});
    return place;
}

/// Title, protocol, analysis, mark, transcript.
int rank(Passage::Kind kind)
{
    switch (kind) {
    case Passage::Kind::Title:
        return 0;
    case Passage::Kind::Promise:
    case Passage::Kind::Analysis:
        return 2;
    case Passage::Kind::Mark:
        return 3;
    case Passage::Kind::Said:
        return 4;
    default:
        return 1;
    }
}

} // namespace

QString FoundPlace::kindKey() const
{
    switch (passage.kind) {
    case Passage::Kind::Title:
        return u"search.kind.title"_s;
    case Passage::Kind::Summary:
        return u"search.kind.summary"_s;
    case Passage::Kind::Decision:
        return u"search.kind.decision"_s;
    case Passage::Kind::Task:
        return u"search.kind.task"_s;
    case Passage::Kind::Step:
        return u"search.kind.step"_s;
    case Passage::Kind::Question:
        return u"search.kind.question"_s;
    case Passage::Kind::Risk:
        return u"search.kind.risk"_s;
    case Passage::Kind::Promise:
        return u"search.kind.promise"_s;
    case Passage::Kind::Analysis:
        return u"search.kind.analysis"_s;
    case Passage::Kind::Mark:
        return u"search.kind.mark"_s;
    case Passage::Kind::Said:
        return {};
    }
    Q_UNREACHABLE();
}

QList<FoundPlace> FoundPlace::in(const MeetingText& text, const SearchQuery& query, words::Keys& keys)
{
    struct Ranked {
        FoundPlace place;
        qsizetype different;
    };
    std::vector<Ranked> found;
    for (const Passage& passage : text.passages) {
        const QList<Span> split = words::split(passage.text);
        const QList<Span> hits = query.terms().hits(passage.text, split, keys);
        if (hits.isEmpty() || !query.looksAt(passage, keys)) continue;
        const QList<bool> met = query.terms().met(passage.text, split, keys);
        found.push_back({placeIn(passage, split, hits), met.count(true)});
    }
    std::ranges::stable_sort(found, [](const Ranked& left, const Ranked& right) {
        if (left.different != right.different) return left.different > right.different;
        return rank(left.place.passage.kind) < rank(right.place.passage.kind);
    });
    QList<FoundPlace> places;
    for (Ranked& one : found)
        places.append(std::move(one.place));
    return places;
}

} // namespace murmeli
