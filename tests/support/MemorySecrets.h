#pragma once

#include "platform/SecretStore.h"

#include <QHash>
#include <QMetaObject>
#include <QObject>

namespace murmeli {

/// A secret store that keeps its secrets here, and answers from the event loop as the desktop's does.
class MemorySecrets : public SecretStore {
public:
    QHash<QString, QString> values;
    int asked = 0;
    bool answers = true; ///< else it says nothing, as one that waits for its owner

    void save(const QString& key, const QString& value) override { values[key] = value; }
    void load(const QString& key, QObject* context, Loaded loaded) override
    {
        ++asked;
        if (!answers) return;
        const auto value = values.contains(key) ? std::optional{values[key]} : std::nullopt;
        QMetaObject::invokeMethod(
            context, [value, loaded = std::move(loaded)] { loaded(value); }, Qt::QueuedConnection);
    }
    void remove(const QString& key) override { values.remove(key); }
};

} // namespace murmeli
