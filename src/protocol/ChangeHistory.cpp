#include "ChangeHistory.h"

#include "language/Difference.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace murmeli {

namespace {

using Kind = ProtocolChange::Kind;
using State = ChangeHistory::State;

constexpr double another = 0.98; // what differs of an item of which nothing is the same: less than two halves
constexpr qsizetype mostMatched = 10'000; // pairs of items

bool reads(const QList<ProtocolItem>& items, const QString& section, const QString& text)
{
    return std::ranges::any_of(
        items, [&](const ProtocolItem& item) { return item.section == section && item.text == text; });
}

/// Without those of which only the beginning was noted and that left no trace.
QList<ProtocolChange> carriedOut(const Ledger::Content& ledger, const QList<ProtocolItem>& items)
{
    QList<ProtocolChange> result;
    for (qsizetype i = ledger.changes.size() - 1; i >= 0; --i) {
        const ProtocolChange& change = ledger.changes[i];
        const auto follows = [&](const ProtocolChange& later) {
            return later.section == change.section && later.before == change.after;
        };
        if (ledger.ended.contains(change.id) || reads(items, change.section, change.after) ||
            std::ranges::any_of(result, follows))
            result.prepend(change);
    }
    return result;
}

/// The item that is most like a text, among those that no other change has written.
QString nearest(const QList<ProtocolItem>& items, const ProtocolChange& change, const QSet<QString>& written)
{
    QString best;
    double least = 1;
    for (const ProtocolItem& item : items) {
        if (item.section != change.section || written.contains(item.text)) continue;
        const double far = words::dissimilarity(change.after, item.text);
        if (far >= least) continue;
        least = far;
        best = item.text;
    }
    return best;
}

} // namespace

ChangeHistory ChangeHistory::of(const Ledger::Content& ledger, const QList<ProtocolItem>& items)
{
    ChangeHistory history;
    for (const ProtocolChange& change : carriedOut(ledger, items)) {
        if (change.kind == Kind::Remark) {
            history.entries.append({.change = change});
            continue;
        }
        const auto entry =
            std::ranges::find(history.entries, change.of, [](const Entry& one) { return one.change.id; });
        if (entry == history.entries.end()) continue;
        entry->state = change.kind == Kind::Undo ? State::Undone : State::Holds;
        entry->undoneAt = change.time;
    }
    QSet<QString> written;
    for (const Entry& entry : std::as_const(history.entries)) {
        if (entry.state == State::Holds) written.insert(entry.change.after);
    }
    for (qsizetype i = 0; i < history.entries.size(); ++i) {
        Entry& entry = history.entries[i];
        const ProtocolChange& change = entry.change;
        const bool replaced =
            std::any_of(history.entries.cbegin() + i + 1, history.entries.cend(), [&](const Entry& later) {
                return later.state == State::Holds && later.change.section == change.section &&
                       later.change.before == change.after;
            });
        if (entry.state != State::Holds || replaced || reads(items, change.section, change.after)) continue;
        if (reads(items, change.section, change.before)) {
            entry.state = ledger.kept.contains(change.id) ? State::Kept : State::Overwritten;
        } else {
            history.foreign.append(
                {change.id, change.section, change.after, nearest(items, change, written)});
        }
    }
    return history;
}

QList<ComparedItem> compared(const QList<ProtocolItem>& before, const QList<ProtocolItem>& after)
{
    QList<ComparedItem> result;
    QStringList sections;
    for (const auto* items : {&before, &after}) {
        for (const ProtocolItem& item : *items) {
            if (!sections.contains(item.section)) sections.append(item.section);
        }
    }
    const auto textsOf = [](const QList<ProtocolItem>& items, const QString& section) {
        QStringList texts;
        for (const ProtocolItem& item : items) {
            if (item.section == section) texts.append(item.text);
        }
        return texts;
    };
    for (const QString& section : std::as_const(sections)) {
        const QStringList old = textsOf(before, section);
        const QStringList now = textsOf(after, section);
        const auto width = size_t(now.size() + 1);
        const bool few = now.isEmpty() || old.size() <= mostMatched / now.size();
        // What it costs to make the rest of one list of the rest of the other: an item that went or came
        // costs half, one that changed as much as differs in it.
        std::vector<double> costs(few ? size_t(old.size() + 1) * width : 0);
        std::vector<double> differences(few ? size_t(old.size()) * size_t(now.size()) : 0);
        const auto cost = [&](qsizetype i, qsizetype j) -> double& {
            return costs[size_t(i) * width + size_t(j)];
        };
        const auto differs = [&](qsizetype i, qsizetype j) -> double& {
            return differences[size_t(i) * size_t(now.size()) + size_t(j)];
        };
        for (qsizetype i = few ? old.size() : -1; i >= 0; --i) {
            for (qsizetype j = now.size(); j >= 0; --j) {
                if (i == old.size() || j == now.size()) {
                    cost(i, j) = 0.5 * double(old.size() - i + now.size() - j);
                    continue;
                }
                const double far = old[i] == now[j] ? 0 : words::dissimilarity(old[i], now[j]);
                differs(i, j) = far * another;
                cost(i, j) = std::min(
                    {cost(i + 1, j + 1) + differs(i, j), cost(i + 1, j) + 0.5, cost(i, j + 1) + 0.5});
            }
        }
        qsizetype i = 0;
        qsizetype j = 0;
        while (i < old.size() || j < now.size()) {
            const bool both = i < old.size() && j < now.size();
            if (both && (!few || cost(i, j) == cost(i + 1, j + 1) + differs(i, j))) {
                result.append({section, old[i++], now[j++]});
            } else if (j == now.size() || (i < old.size() && few && cost(i, j) == cost(i + 1, j) + 0.5)) {
                result.append({section, old[i++], {}});
            } else {
                result.append({section, {}, now[j++]});
            }
        }
    }
    return result;
}

} // namespace murmeli
