#pragma once

#include "language/Terms.h"

#include <QByteArray>

#include <functional>

/// How the words that somebody looks for are asked of the index.
namespace murmeli::indexExpression {

enum class Column { Title, People, Protocol, Analysis, Said };

/// What stands for a beginning of which there are too many words; none: the beginning as it is.
using Beginnings = std::function<QList<QByteArray>(const QByteArray& beginning)>;

/// All terms, in any column or in some; empty when there is nothing to look for. Words in quotation marks are
/// asked for as a row of keys: whether they stand in these very forms is to be seen in the text.
QByteArray of(const words::Terms& terms, const QList<Column>& columns = {},
              const Beginnings& beginnings = {});

/// What must not be there; empty when nothing is excluded.
QByteArray unwanted(const words::Terms& terms);

/// Both, each of which may be empty.
QByteArray both(const QByteArray& left, const QByteArray& right);

/// The keys, one after the other, in any column.
QByteArray row(const QList<QByteArray>& keys);

/// Any of the keys, in one column.
QByteArray any(const QList<QByteArray>& keys, Column column);

} // namespace murmeli::indexExpression
