#pragma once

#include "OwnFile.h"
#include "PrefKeys.h"

#include <QObject>
#include <QThreadPool>

namespace murmeli {

struct Paths;

namespace ownSetting {
inline constexpr PrefKey<bool> remindLong{"remind_long", true}; ///< of a recording that may be forgotten
inline constexpr PrefKey<bool> lockAll{"lock_all", false};      ///< nothing of any meeting is sent
} // namespace ownSetting

/// Preferences that the service need not know, in a file of our own, which is read and written beside the
/// main thread. Main thread only.
class OwnSettings final : public QObject {
    Q_OBJECT

public:
    explicit OwnSettings(const Paths& paths, QObject* parent = nullptr);
    ~OwnSettings() override;
    Q_DISABLE_COPY_MOVE(OwnSettings)

    /// What holds for this run; the default until the file has been read.
    [[nodiscard]] bool get(const PrefKey<bool>& key) const;

    /// Whether it was tried to read the file, and whether what it forbids is known.
    [[nodiscard]] bool wasRead() const { return m_read; }
    [[nodiscard]] bool isKnown() const { return m_known; }

    /// Counts at once, and is written then.
    void set(const QString& key, bool value);

    /// Reads the file again.
    void load();

signals:
    void changed();
    void notStored(murmeli::OwnWritten why);

private:
    OwnFile m_file;
    QJsonObject m_values;
    bool m_read = false;
    bool m_known = false;
    QThreadPool m_disk; ///< one thread, so that the latest value is the last one
};

} // namespace murmeli
