#pragma once

#include "PrefKeys.h"
#include "base/Files.h"

#include <QJsonObject>
#include <QString>

namespace murmeli {

/// The preferences file, shared with the service. Every read asks the file system whether the file has
/// changed and reads it only then, so a change by anyone is seen at once. Main thread only.
class Prefs {
public:
    /// \param spare where the content of a large file is kept aside, in a folder that is made.
    explicit Prefs(QString file, QString spare = {});

    /// The whole object; empty when the file is missing, unreadable, too large, damaged or no object.
    [[nodiscard]] const QJsonObject& load() const;

    /// The value under `key` when it has the type asked for, else `fallback`.
    [[nodiscard]] QString string(const QString& key, const QString& fallback) const;
    [[nodiscard]] bool boolean(const QString& key, bool fallback) const;

    [[nodiscard]] bool get(const PrefKey<bool>& key) const
    {
        return boolean(QString::fromLatin1(key.name), key.fallback);
    }
    [[nodiscard]] int get(const NumberPrefKey& key) const;
    [[nodiscard]] QString get(const PrefKey<const char*>& key) const
    {
        return string(QString::fromLatin1(key.name), QString::fromLatin1(key.fallback));
    }

    bool set(const PrefKey<bool>& key, bool value) { return set(QString::fromLatin1(key.name), value); }
    bool set(const PrefKey<const char*>& key, const QString& value)
    {
        return set(QString::fromLatin1(key.name), value);
    }

    /// Stores one value in place; members we do not know keep their exact digits and letters. A damaged file
    /// is replaced. \return false when that failed.
    bool set(const QString& key, const QJsonValue& value) { return set({{key, value}}); }
    /// The same for several in one write, of which those are left out that stand there already.
    bool set(const QJsonObject& members);

    static constexpr qint64 sizeLimit = files::largestInPlace; ///< bytes; a larger file is left alone

private:
    struct Content {
        QByteArray bytes;
        bool torn = false; ///< the file is; these are the bytes kept aside
    };
    [[nodiscard]] Content read() const;

    QString m_file;
    QString m_spare;
    mutable files::Identity m_seen;
    mutable QJsonObject m_object;
};

} // namespace murmeli
