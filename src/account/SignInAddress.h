#pragma once

#include <QHash>
#include <QString>

#include <optional>

/// What the account site says. Pure functions, any thread.
namespace murmeli::signIn {

/// The scheme of the address with which the account site ends a sign-in.
extern const QString scheme;

/// The values in the fragment of a sign-in address, by key; nothing when the address is none of ours. A piece
/// that is not key=value is left out, the last of equal keys holds, and an escape that does not decode leaves
/// its value as it stands. A plus is a plus.
std::optional<QHash<QString, QString>> values(const QString& address);

} // namespace murmeli::signIn
