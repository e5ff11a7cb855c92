#include "IndexExpression.h"

#include <array>

namespace murmeli::indexExpression {

namespace {

constexpr std::array names{"title", "people", "protocol", "analysis", "said"};

// Keys hold letters, digits, dots and commas; a quotation mark would have to be doubled.
QByteArray quoted(const QByteArray& key) { return '"' + QByteArray{key}.replace('"', "\"\"") + '"'; }

} // namespace

QByteArray row(const QList<QByteArray>& keys) { return quoted(QByteArrayList{keys}.join(' ')); }

namespace {

QByteArray ofTerm(const words::Terms::Term& term, const Beginnings& beginnings = {})
{
    const QByteArray whole = row(term.keys);
    if (!term.prefix || term.folded.size() != 1) return whole;
    const QByteArray beginning = term.folded.first().toUtf8();
    QByteArrayList instead{whole};
    for (const QByteArray& key : beginnings ? beginnings(beginning) : QList<QByteArray>{})
        instead.append(quoted(key));
    if (instead.size() == 1) instead.append(quoted(beginning) + " *");
    return '(' + instead.join(" OR ") + ')';
}

QByteArray within(const QByteArray& expression, const QList<Column>& columns)
{
    if (columns.isEmpty() || expression.isEmpty()) return expression;
    QByteArrayList some;
    for (const Column column : columns)
        some.append(names.at(size_t(column)));
    return '{' + some.join(' ') + "} : (" + expression + ')';
}

/// The terms from `first` on, `size` of them, and what may stand in their place.
QByteArray ofTerms(const words::Terms& terms, qsizetype first, qsizetype size, const Beginnings& beginnings)
{
    QByteArrayList wanted;
    for (qsizetype i = first; i < first + size; ++i) {
        if (!terms.list()[i].excluded) wanted.append(ofTerm(terms.list()[i], beginnings));
    }
    QByteArray expression = wanted.join(" AND ");
    for (const auto& other : terms.alternatives()) {
        if (other.first == first && other.size == size)
            expression = '(' + expression + ") OR " + row(other.keys);
    }
    return expression;
}

} // namespace

QByteArray of(const words::Terms& terms, const QList<Column>& columns, const Beginnings& beginnings)
{
    QByteArrayList groups;
    for (qsizetype at = 0; at < terms.list().size();) {
        qsizetype size = 1;
        for (const auto& other : terms.alternatives()) {
            if (other.first == at) size = other.size;
        }
        const QByteArray group = ofTerms(terms, at, size, beginnings);
        if (!group.isEmpty()) groups.append('(' + group + ')');
        at += size;
    }
    if (groups.isEmpty()) return {};
    QByteArray expression = within(groups.join(" AND "), columns);
    const QByteArray without = unwanted(terms);
    return without.isEmpty() ? expression : '(' + expression + ") NOT (" + without + ')';
}

QByteArray unwanted(const words::Terms& terms)
{
    QByteArrayList without;
    for (const words::Terms::Term& term : terms.list()) {
        // Words in these very forms are to be seen in the text.
        if (term.excluded && !term.exact) without.append(ofTerm(term));
    }
    return without.join(" OR ");
}

QByteArray both(const QByteArray& left, const QByteArray& right)
{
    if (left.isEmpty() || right.isEmpty()) return left + right;
    return '(' + left + ") AND (" + right + ')';
}

QByteArray any(const QList<QByteArray>& keys, Column column)
{
    QByteArrayList some;
    for (const QByteArray& key : keys)
        some.append(quoted(key));
    return within(some.join(" OR "), {column});
}

} // namespace murmeli::indexExpression
