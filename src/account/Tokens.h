#pragma once

#include <QString>

#include <optional>

/// What can be told of an access or refresh token. Pure functions, any thread.
namespace murmeli::tokens {

/// Whether `token` may travel in a header: not empty, and without a control character.
bool isSendable(const QString& token);

/// The account identifier in an access token, the claim "sub", read without verifying; nothing when the token
/// has none.
std::optional<QString> subject(const QString& token);

} // namespace murmeli::tokens
