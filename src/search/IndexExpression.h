#pragma once

#include "language/Terms.h"

#include <QByteArray>

/// How the words that somebody looks for are asked of the index.
namespace murmeli::indexExpression {

enum class Column { Title, People, Protocol, Analysis, Said };

/// All terms, in any column or in some; empty when there is nothing to look for. Words in quotation marks are
/// asked for as a row of keys: whether they stand in these very forms is to be seen in the text.
QByteArray of(const words::Terms& terms, const QList<Column>& columns = {});

} // namespace murmeli::indexExpression
