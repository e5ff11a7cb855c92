#pragma once

#include "MarkFiles.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>

#include <optional>

namespace murmeli {

class OwnSettings;

/// Of which meetings nothing may be sent: those whose margin says so; where it says nothing, the settings
/// decide. What is not known, or cannot be read, is locked. Main thread only.
class MeetingLocks final : public QObject {
    Q_OBJECT

public:
    MeetingLocks(const Paths& paths, const OwnSettings& settings, QObject* parent = nullptr);
    ~MeetingLocks() override;
    Q_DISABLE_COPY_MOVE(MeetingLocks)

    /// From memory.
    [[nodiscard]] bool isLocked(const QString& meeting) const;
    /// Whether margin and settings were looked at, so that it can be told.
    [[nodiscard]] bool wasRead(const QString& meeting) const;
    /// Whether the margin can be changed.
    [[nodiscard]] bool isReadable(const QString& meeting) const;

    /// Reads the margin of a meeting, again if need be.
    void look(const QString& meeting);

    /// Counts at once, and is written then.
    void set(const QString& meeting, bool locked);

signals:
    void changed(const QString& meeting);
    void notWritten(murmeli::OwnWritten why);

private:
    struct Lock {
        std::optional<bool> closed; ///< nothing: the settings decide
        bool readable = true;
        bool operator==(const Lock&) const = default;
    };
    MarkFiles m_files;
    const OwnSettings& m_settings;
    QHash<QString, Lock> m_locks;
    QHash<QString, int> m_writing; ///< what is being written counts more than what was read before
    QThreadPool m_disk;            ///< one thread, so that everything is written in its order
};

} // namespace murmeli
