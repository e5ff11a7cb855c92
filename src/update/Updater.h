#pragma once

#include "base/Lease.h"
#include "localisation/Message.h"
#include "platform/Installation.h"
#include "ui/Accent.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace murmeli {

class Desktop;
class Http;
class Processes;
class Scheduler;

/// Finds out whether a newer release is published, and has it installed by the shared script, which outlives
/// the program. Main thread only.
class Updater final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to each view")
    Q_PROPERTY(Phase phase READ phase NOTIFY changed FINAL)
    Q_PROPERTY(bool available READ available NOTIFY changed FINAL)
    Q_PROPERTY(QString latest READ latest NOTIFY changed FINAL)
    Q_PROPERTY(bool busy READ busy NOTIFY changed FINAL)
    Q_PROPERTY(QStringList paragraphs READ paragraphs NOTIFY changed FINAL) ///< of the release notes
    Q_PROPERTY(QString released READ released NOTIFY changed FINAL)
    Q_PROPERTY(
        QDateTime lastChecked READ lastChecked NOTIFY changed FINAL)   ///< invalid until a check succeeds
    Q_PROPERTY(murmeli::Message title READ title NOTIFY changed FINAL) ///< of the phase; so are the next two
    Q_PROPERTY(murmeli::Message subtitle READ subtitle NOTIFY changed FINAL)
    Q_PROPERTY(int accent READ accent NOTIFY changed FINAL) ///< an Accent
    Q_PROPERTY(bool canInstall READ canInstall NOTIFY changed FINAL)
    Q_PROPERTY(QString current READ current CONSTANT FINAL)
    Q_PROPERTY(QString bundlePath READ bundlePath CONSTANT FINAL)
    Q_PROPERTY(bool runningFromDiskImage READ runningFromDiskImage CONSTANT FINAL)
    Q_PROPERTY(bool packageManaged READ packageManaged CONSTANT FINAL)

public:
    enum class Phase { Idle, Checking, UpToDate, Available, Installing, Failed };
    Q_ENUM(Phase)

    struct Place {
        QString versionUrl; ///< address of the release record
        QString script;     ///< path of the installer
        QString current;    ///< the running version
        Installation installation;
        QString log = QStringLiteral("/tmp/murmeli-update.log"); ///< of the installer, unless it is another's
    };
    /// Whether this is a moment to replace the program unasked.
    using MayInterrupt = std::function<bool()>;

    Updater(Place place, Http& http, Processes& processes, Desktop& desktop, Scheduler& scheduler,
            MayInterrupt mayInterrupt, QObject* parent = nullptr);

    /// Whether `a` is a higher version than `b`: decimal components joined by dots, missing ones count as 0
    /// and so do pieces that are no number.
    static bool isNewer(const QString& a, const QString& b);

    [[nodiscard]] Phase phase() const { return m_phase; }
    [[nodiscard]] bool available() const { return m_available; }
    [[nodiscard]] QString latest() const { return m_latest; }
    [[nodiscard]] bool busy() const { return m_busy; }
    [[nodiscard]] QStringList paragraphs() const;
    [[nodiscard]] QString released() const { return m_released; }
    [[nodiscard]] QDateTime lastChecked() const { return m_lastChecked; }
    [[nodiscard]] QString current() const { return m_place.current; }
    [[nodiscard]] QString bundlePath() const { return m_place.installation.bundlePath; }
    [[nodiscard]] bool runningFromDiskImage() const { return m_place.installation.fromDiskImage; }
    [[nodiscard]] bool packageManaged() const { return m_place.installation.packageManaged; }
    [[nodiscard]] Message title() const;
    [[nodiscard]] Message subtitle() const;
    [[nodiscard]] accent::Accent accent() const;
    /// Whether there is something to install and it is ours to replace.
    [[nodiscard]] bool canInstall() const { return m_available && replaceable(); }

    /// "14:05", as `language` writes it.
    Q_INVOKABLE static QString timeText(const QDateTime& moment, const QString& language);

    /// Asks for the release record. A newer version is installed at once, unless a recording runs or the
    /// program's files are not ours to replace.
    Q_INVOKABLE void check();

    /// Starts the installer once; after 90 s it is no longer waited for.
    Q_INVOKABLE void runUpdate();

    /// Selects the program in the file browser.
    Q_INVOKABLE void reveal();

    /// Checks half a minute from now and then every hour. To be called once.
    void startAutoCheck();

signals:
    void changed();

private:
    [[nodiscard]] bool replaceable() const { return !runningFromDiskImage() && !packageManaged(); }
    void take(const QByteArray& record);
    void setPhase(Phase phase);

    Place m_place;
    Http& m_http;
    Processes& m_processes;
    Desktop& m_desktop;
    Scheduler& m_scheduler;
    MayInterrupt m_mayInterrupt;
    Phase m_phase = Phase::Idle;
    bool m_available = false;
    QString m_latest;
    bool m_busy = false;
    QString m_notes;
    QString m_released;
    QDateTime m_lastChecked;
    Lease m_checking; ///< by itself
};

} // namespace murmeli
