#pragma once

#include <QString>

#include <functional>
#include <optional>

class QObject;

/// The user's secret store. Nothing waits for it: a store that is locked asks its owner in its own time, and
/// one that is missing or fails counts as empty. Operations are carried out in the order of the calls, on one
/// thread of their own. Main thread only.
namespace murmeli::keychain {

using Loaded = std::function<void(const std::optional<QString>& value)>;

/// Stores `value`, in place of an earlier one. Failures are silent.
void save(const QString& key, const QString& value);

/// `loaded` gets the value, or nothing when there is none or the store failed; on the main thread, and never
/// if `context` has gone by then.
void load(const QString& key, QObject* context, Loaded loaded);

void remove(const QString& key);

} // namespace murmeli::keychain
