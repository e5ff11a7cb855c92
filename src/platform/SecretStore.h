#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace murmeli {

/// The user's secret store. Nothing waits for it: a store that is locked asks its owner in its own time, and
/// one that is missing or fails counts as empty. Operations are carried out in the order of the calls. Main
/// thread only.
class SecretStore {
public:
    using Loaded = std::function<void(const std::optional<QString>& value)>;

    virtual ~SecretStore() = default;

    /// Stores `value`, in place of an earlier one. Failures are silent.
    virtual void save(const QString& key, const QString& value) = 0;

    /// `loaded` gets the value, or nothing when there is none or the store failed; on the main thread, and
    /// never if `context` has gone by then.
    virtual void load(const QString& key, QObject* context, Loaded loaded) = 0;

    virtual void remove(const QString& key) = 0;
};

/// The desktop's own, asked on a thread that is started with the first call. To be made once in a process.
std::unique_ptr<SecretStore> makeSecretStore();

} // namespace murmeli
