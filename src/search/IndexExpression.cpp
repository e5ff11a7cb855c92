#include "IndexExpression.h"

#include <array>

namespace murmeli::indexExpression {

namespace {

constexpr std::array names{"title", "people", "protocol", "analysis", "said"};

// Keys hold letters, digits, dots and commas; a quotation mark would have to be doubled.
QByteArray quoted(const QByteArray& key) { return '"' + QByteArray{key}.replace('"', "\"\"") + '"'; }

QByteArray ofTerm(const words::Terms::Term& term)
{
    QByteArrayList keys;
    for (const QByteArray& key : term.keys)
        keys.append(key);
    const QByteArray row = quoted(keys.join(' '));
    if (!term.prefix || term.folded.size() != 1) return row;
    return '(' + row + " OR " + quoted(term.folded.first().toUtf8()) + " *)";
}

} // namespace

QByteArray of(const words::Terms& terms, const QList<Column>& columns)
{
    QByteArrayList wanted, unwanted;
    for (const words::Terms::Term& term : terms.list())
        (term.excluded ? unwanted : wanted).append(ofTerm(term));
    if (wanted.isEmpty()) return {};
    QByteArray expression = wanted.join(" AND ");
    if (!columns.isEmpty()) {
        QByteArrayList some;
        for (const Column column : columns)
            some.append(names.at(size_t(column)));
        expression = '{' + some.join(' ') + "} : (" + expression + ')';
    }
    for (const QByteArray& term : std::as_const(unwanted))
        expression = '(' + expression + ") NOT " + term;
    return expression;
}

} // namespace murmeli::indexExpression
