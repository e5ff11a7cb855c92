#include "Difference.h"

#include "Words.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace murmeli::words {

namespace {

constexpr qsizetype mostCompared = 4'000'000; // pairs of words

/// A word or a sign, and the white space after it.
struct Token {
    QStringView text;
    QStringView space;
    bool isWord = false;
    bool operator==(const Token& other) const { return text == other.text; }
};

void appendSigns(QList<Token>& tokens, QStringView signs)
{
    qsizetype at = 0;
    const auto run = [&](bool space) {
        const qsizetype begin = at;
        while (at < signs.size() && signs[at].isSpace() == space)
            ++at;
        return signs.sliced(begin, at - begin);
    };
    if (const QStringView space = run(true); !tokens.isEmpty()) tokens.last().space = space;
    while (at < signs.size()) {
        const QStringView text = run(false);
        tokens.append({text, run(true)});
    }
}

QList<Token> tokensOf(QStringView text)
{
    QList<Token> tokens;
    qsizetype at = 0;
    for (const Span& word : split(text)) {
        appendSigns(tokens, text.sliced(at, word.begin - at));
        tokens.append({word.in(text), {}, true});
        at = word.begin + word.size;
    }
    appendSigns(tokens, text.sliced(at));
    return tokens;
}

using Steps = QList<std::pair<Piece::Kind, Token>>;

/// Of what differs between an equal beginning and an equal end: a longest common subsequence.
void appendMiddle(Steps& steps, const QList<Token>& before, const QList<Token>& after)
{
    const auto replaceAll = [&] {
        for (const Token& token : before)
            steps.append({Piece::Kind::Removed, token});
        for (const Token& token : after)
            steps.append({Piece::Kind::Added, token});
    };
    if (before.isEmpty() || after.isEmpty() || before.size() > mostCompared / after.size())
        return replaceAll();
    const auto width = size_t(after.size() + 1);
    std::vector<qint32> common(size_t(before.size() + 1) * width); // of what begins there
    const auto at = [&](qsizetype i, qsizetype j) -> qint32& {
        return common[size_t(i) * width + size_t(j)];
    };
    for (qsizetype i = before.size() - 1; i >= 0; --i) {
        for (qsizetype j = after.size() - 1; j >= 0; --j)
            at(i, j) = before[i] == after[j] ? at(i + 1, j + 1) + 1 : std::max(at(i + 1, j), at(i, j + 1));
    }
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            steps.append({Piece::Kind::Same, after[j++]});
            ++i;
        } else if (j == after.size() || (i < before.size() && at(i + 1, j) >= at(i, j + 1))) {
            steps.append({Piece::Kind::Removed, before[i++]});
        } else {
            steps.append({Piece::Kind::Added, after[j++]});
        }
    }
}

Steps stepsBetween(const QList<Token>& before, const QList<Token>& after)
{
    const qsizetype most = std::min(before.size(), after.size());
    qsizetype begin = 0;
    while (begin < most && before[begin] == after[begin])
        ++begin;
    qsizetype end = 0;
    while (end < most - begin && before[before.size() - 1 - end] == after[after.size() - 1 - end])
        ++end;
    Steps steps;
    for (qsizetype i = 0; i < begin; ++i)
        steps.append({Piece::Kind::Same, after[i]});
    appendMiddle(steps, before.sliced(begin, before.size() - begin - end),
                 after.sliced(begin, after.size() - begin - end));
    for (qsizetype i = after.size() - end; i < after.size(); ++i)
        steps.append({Piece::Kind::Same, after[i]});
    return steps;
}

} // namespace

QList<Piece> difference(const QString& before, const QString& after)
{
    QList<Piece> pieces;
    for (const auto& [kind, token] : stepsBetween(tokensOf(before), tokensOf(after))) {
        // What is removed stands before what comes in its place, however the two alternate.
        if (kind == Piece::Kind::Removed && pieces.size() > 1 && pieces.last().kind == Piece::Kind::Added &&
            pieces[pieces.size() - 2].kind == Piece::Kind::Removed) {
            pieces[pieces.size() - 2].text.append(token.text).append(token.space);
            continue;
        }
        if (pieces.isEmpty() || pieces.last().kind != kind) pieces.append({kind, {}});
        pieces.last().text.append(token.text).append(token.space);
    }
    return pieces;
}

QList<Piece> brief(const QList<Piece>& pieces, qsizetype longest)
{
    QList<Piece> result = pieces;
    for (qsizetype i = 0; i < result.size(); ++i) {
        QString& text = result[i].text;
        if (result[i].kind != Piece::Kind::Same) continue;
        const QList<Span> found = split(text);
        if (found.size() <= longest || result.size() == 1) continue;
        const qsizetype kept = longest / 2;
        const bool first = i == 0;
        const bool last = i == result.size() - 1;
        const qsizetype from = found[found.size() - kept].begin;
        const Span& until = found[kept - 1];
        const QString beginning = first ? QString{} : text.left(until.begin + until.size) + u' ';
        text = beginning + u'…' + (last ? QString{} : u' ' + text.sliced(from));
    }
    return result;
}

double dissimilarity(const QString& before, const QString& after)
{
    const QList<Token> left = tokensOf(before);
    const QList<Token> right = tokensOf(after);
    qsizetype same = 0;
    for (const auto& [kind, token] : stepsBetween(left, right))
        same += kind == Piece::Kind::Same ? 1 : 0;
    const qsizetype all = left.size() + right.size();
    return all == 0 ? 0 : 1 - 2 * double(same) / double(all);
}

} // namespace murmeli::words
