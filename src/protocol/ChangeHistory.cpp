#include "ChangeHistory.h"

#include "language/Difference.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <vector>

namespace murmeli {

namespace {

using Kind = ProtocolChange::Kind;
using State = ChangeHistory::State;

constexpr double another = 0.98; // what differs of an item of which nothing is the same: less than two halves
constexpr qsizetype mostForeign = 100;
constexpr qsizetype mostMatched = 10'000; // pairs of items

/// Texts, each in its section.
using Texts = QSet<std::pair<QString, QString>>;

Texts textsOf(const QList<ProtocolItem>& items)
{
    Texts texts;
    for (const ProtocolItem& item : items)
        texts.insert({item.section, item.text});
    return texts;
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

QList<ProtocolChange> ChangeHistory::carriedOut(const Ledger::Content& ledger,
                                                const QList<ProtocolItem>& items)
{
    const Texts standing = textsOf(items);
    Texts followed; // by a later change of the same item
    QList<ProtocolChange> result;
    for (auto change = ledger.changes.crbegin(); change != ledger.changes.crend(); ++change) {
        const auto reads = [&](const QString& text) {
            return std::ranges::any_of(items, [&](const ProtocolItem& item) {
                return item.section == change->section && item.index == change->index && item.text == text;
            });
        };
        const bool ended = ledger.ended.contains(change->id);
        const std::pair after{change->section, change->after};
        if (!ended && !followed.contains(after) && (reads(change->before) || !standing.contains(after)))
            continue;
        followed.insert({change->section, change->before});
        result.append(*change);
    }
    std::ranges::reverse(result);
    return result;
}

ChangeHistory ChangeHistory::of(const Ledger::Content& ledger, const QList<ProtocolItem>& items)
{
    const Texts standing = textsOf(items);
    ChangeHistory history;
    QHash<QString, qsizetype> places; // of the entries, by their ids
    for (const ProtocolChange& change : carriedOut(ledger, items)) {
        if (change.kind == Kind::Remark) {
            places.insert(change.id, history.entries.size());
            history.entries.append({.change = change});
            continue;
        }
        const qsizetype place = places.value(change.of, -1);
        if (place < 0) continue;
        history.entries[place].state = change.kind == Kind::Undo ? State::Undone : State::Holds;
        history.entries[place].undoneAt = change.time;
    }
    QSet<QString> written;
    for (const Entry& entry : std::as_const(history.entries)) {
        if (entry.state == State::Holds) written.insert(entry.change.after);
    }
    Texts replaced; // by a later change that holds
    for (auto entry = history.entries.rbegin(); entry != history.entries.rend(); ++entry) {
        const ProtocolChange& change = entry->change;
        const std::pair after{change.section, change.after};
        const std::pair before{change.section, change.before};
        if (entry->state != State::Holds) continue;
        const bool stands = replaced.contains(after) || standing.contains(after);
        replaced.insert(before);
        if (stands) continue;
        if (standing.contains(before)) {
            entry->state = ledger.kept.contains(change.id) ? State::Kept : State::Overwritten;
        } else if (history.foreign.size() < mostForeign) {
            history.foreign.prepend(
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
