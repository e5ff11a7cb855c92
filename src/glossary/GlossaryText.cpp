#include "GlossaryText.h"

#include "base/Text.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr QChar arrow{u'→'};

bool equalIgnoringCase(const QString& a, const QString& b) { return a.toCaseFolded() == b.toCaseFolded(); }

} // namespace

bool GlossaryEntry::isRule() const { return !text::trimmed(heard).isEmpty(); }

QString GlossaryEntry::line() const
{
    const QString written = text::trimmed(correct);
    return isRule() ? text::trimmed(heard) + u' ' + arrow + u' ' + written : written;
}

std::size_t qHash(const GlossaryEntry& entry, std::size_t seed)
{
    return qHashMulti(seed, entry.heard, entry.correct);
}

namespace glossaryText {

std::optional<GlossaryEntry> parse(const QString& line)
{
    const QString whole = text::trimmed(line);
    if (whole.isEmpty()) return std::nullopt;
    if (const qsizetype at = whole.indexOf(arrow); at >= 0) {
        const QString heard = text::trimmed(whole.left(at));
        const QString correct = text::trimmed(whole.mid(at + 1));
        if (!heard.isEmpty() && !correct.isEmpty()) return GlossaryEntry{heard, correct};
    }
    return GlossaryEntry{{}, whole};
}

QList<GlossaryEntry> parseAll(const QString& text)
{
    QList<GlossaryEntry> entries;
    for (const QString& line : text.split(u'\n')) {
        if (const auto entry = parse(line)) entries.append(*entry);
    }
    return entries;
}

QString serialised(const QList<GlossaryEntry>& entries)
{
    QStringList lines;
    for (const GlossaryEntry& entry : entries) {
        if (const QString line = entry.line(); !line.isEmpty()) lines.append(line);
    }
    return lines.join(u'\n');
}

std::optional<QList<GlossaryEntry>> learned(QList<GlossaryEntry> entries, const QString& heard,
                                            const QString& correct)
{
    const GlossaryEntry rule{text::trimmed(heard), text::trimmed(correct)};
    if (rule.heard.isEmpty() || rule.correct.isEmpty() || equalIgnoringCase(rule.heard, rule.correct))
        return std::nullopt;
    const auto known = std::ranges::find_if(entries, [&](const GlossaryEntry& entry) {
        return entry.isRule() && equalIgnoringCase(text::trimmed(entry.heard), rule.heard);
    });
    if (known == entries.end()) {
        entries.append(rule);
    } else {
        known->correct = rule.correct;
    }
    return entries;
}

QList<GlossaryEntry> merged(const QList<GlossaryEntry>& base, const QList<GlossaryEntry>& mine,
                            const QList<GlossaryEntry>& theirs)
{
    const QSet<GlossaryEntry> inBase{base.begin(), base.end()};
    const QSet<GlossaryEntry> inMine{mine.begin(), mine.end()};
    const auto folded = [](const GlossaryEntry& rule) { return text::trimmed(rule.heard).toCaseFolded(); };
    QSet<QString> ruledAnew; // a rule that was changed on both sides is written as mine says
    for (const GlossaryEntry& entry : mine) {
        if (!inBase.contains(entry) && entry.isRule()) ruledAnew.insert(folded(entry));
    }
    QList<GlossaryEntry> kept;
    for (const GlossaryEntry& entry : theirs) {
        const bool mineToo = inMine.contains(entry);
        if (!mineToo && entry.isRule() && ruledAnew.contains(folded(entry))) continue;
        if (!inBase.contains(entry) || mineToo) kept.append(entry);
    }
    QSet<GlossaryEntry> known{kept.begin(), kept.end()};
    QList<GlossaryEntry> top;
    // New entries before those that were there stand at the top.
    bool atTop =
        std::ranges::any_of(mine, [&](const GlossaryEntry& entry) { return inBase.contains(entry); });
    for (const GlossaryEntry& entry : mine) {
        if (inBase.contains(entry)) {
            atTop = false;
        } else if (!known.contains(entry)) {
            known.insert(entry);
            (atTop ? top : kept).append(entry);
        }
    }
    return top + kept;
}

} // namespace glossaryText

} // namespace murmeli
