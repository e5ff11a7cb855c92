#pragma once

#include "Paths.h"
#include "base/Files.h"
#include "base/Lease.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace murmeli {

class Scheduler;

/// Mirrors the service's state file and its authorisation flag for the whole interface. Reads them every
/// 1.5 s and never writes the state. Main thread only.
class AppState final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to each view")
    Q_PROPERTY(QString status READ status NOTIFY changed FINAL)
    Q_PROPERTY(bool recording READ isRecording NOTIFY changed FINAL)
    Q_PROPERTY(bool processing READ isProcessing NOTIFY changed FINAL)
    Q_PROPERTY(QString detail READ detail NOTIFY changed FINAL)
    Q_PROPERTY(bool telegramConnected READ telegramConnected NOTIFY changed FINAL)
    Q_PROPERTY(double since READ since NOTIFY changed FINAL) ///< seconds since 1970 UTC, 0 when unknown
    Q_PROPERTY(qint64 jobs READ jobs NOTIFY changed FINAL)
    Q_PROPERTY(bool authFlag READ authFlag NOTIFY changed FINAL)
    Q_PROPERTY(QString authTitle READ authTitle NOTIFY changed FINAL)
    Q_PROPERTY(QString authBody READ authBody NOTIFY changed FINAL)
    Q_PROPERTY(bool welcome READ welcome NOTIFY welcomeChanged FINAL)
    Q_PROPERTY(double arrowX READ arrowX NOTIFY arrowXChanged FINAL) ///< in the panel, from its left edge

public:
    /// Reads once now and then every 1.5 s; what was read is published from the event loop.
    AppState(Paths paths, Scheduler& scheduler, QObject* parent = nullptr);

    [[nodiscard]] QString status() const { return m_shown.status; }
    [[nodiscard]] bool isRecording() const;
    [[nodiscard]] bool isProcessing() const;
    [[nodiscard]] QString detail() const { return m_shown.detail; }
    [[nodiscard]] bool telegramConnected() const { return m_shown.telegramConnected; }
    [[nodiscard]] double since() const { return m_shown.since; }
    [[nodiscard]] qint64 jobs() const { return m_shown.jobs; }
    [[nodiscard]] bool authFlag() const { return m_shown.authFlag; }
    [[nodiscard]] QString authTitle() const { return m_shown.authTitle; }
    [[nodiscard]] QString authBody() const { return m_shown.authBody; }
    [[nodiscard]] bool welcome() const { return m_welcome; }

    /// What stood in the state file at the last reading.
    struct Reading {
        files::Identity file;
        size_t content = 0; ///< equal for equal bytes
    };
    [[nodiscard]] const Reading& reading() const { return m_reading; }
    [[nodiscard]] double arrowX() const { return m_arrowX; }

    /// Reads the files now; what they hold is published from the event loop.
    Q_INVOKABLE void load();

    /// Removes the flag and lowers the banner, also when the flag could not be removed.
    Q_INVOKABLE void dismissAuthBanner();

    /// Shows the greeting for 2.6 s.
    void greet();

    void setArrowX(double x);

    static const QString defaultAuthTitle;
    static const QString defaultAuthBody;

signals:
    void changed();
    void welcomeChanged();
    void arrowXChanged();
    void authRequired(); ///< the flag rose
    /// After every reading, also of equal states.
    void statusRead(const QString& oldStatus, const QString& newStatus);

private:
    struct Snapshot {
        QString status = QStringLiteral("idle");
        QString detail;
        bool telegramConnected = false;
        double since = 0;
        qint64 jobs = 0;
        bool authFlag = false;
        QString authTitle = defaultAuthTitle;
        QString authBody = defaultAuthBody;
        bool operator==(const Snapshot&) const = default;
    };

    void read(int rereads);
    void readFlag(Snapshot& snapshot) const;
    void publish(const Snapshot& snapshot);

    Paths m_paths;
    Scheduler& m_scheduler;
    Snapshot m_shown;
    Reading m_reading;
    bool m_welcome = false;
    double m_arrowX = 170;
    Lease m_rereading;
    Lease m_greeting;
};

} // namespace murmeli
