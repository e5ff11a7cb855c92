#pragma once

#include "SetupStep.h"
#include "base/Lease.h"

#include <QAbstractListModel>
#include <QThreadPool>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class Desktop;
class Processes;
class Scheduler;
struct Paths;

/// Installs the local engine: runs the service's installer in a shell and follows its marker lines. As a list
/// it holds the steps and how each goes. Main thread only; views are told of changes some 60 times a second
/// at most, however fast the installer talks.
class SetupRunner final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the setup window")
    Q_PROPERTY(bool running READ isRunning NOTIFY changed FINAL)
    Q_PROPERTY(bool finished READ isFinished NOTIFY changed FINAL)
    Q_PROPERTY(bool failed READ hasFailed NOTIFY changed FINAL)
    Q_PROPERTY(QString tail READ tail NOTIFY changed FINAL) ///< the last plain line of output
    Q_PROPERTY(double overallPercent READ overallPercent NOTIFY changed FINAL) ///< 0 … 1

public:
    enum Role { LabelKeyRole = Qt::UserRole, SymbolRole, KindRole, PercentRole };
    /// As StepState::Kind, for views.
    enum class Kind { Waiting = StepState::Waiting, Running, Done, Failed };
    Q_ENUM(Kind)

    struct Place {
        QString webOrigin; ///< where the installer is fetched from
        QString logFile;   ///< holds the output of the latest run, up to some megabytes; its folder is made
    };

    SetupRunner(Place place, Processes& processes, Desktop& desktop, Scheduler& scheduler,
                QObject* parent = nullptr);
    ~SetupRunner() override;
    Q_DISABLE_COPY_MOVE(SetupRunner)

    /// Whether the engine or its models are missing.
    static bool needed(const Paths& paths);

    /// What the shell runs. When fetching the installer fails, so does the whole.
    /// Fetches the script at the address in $0 and runs it.
    static QString installCommand();

    /// Without terminal codes, carriage returns and white space at both ends.
    static QString strip(const QString& line);

    [[nodiscard]] StepState state(SetupStep step) const { return m_states.at(size_t(step)); }
    [[nodiscard]] bool isRunning() const { return bool(m_task); }
    [[nodiscard]] bool isFinished() const { return m_finished; }
    [[nodiscard]] std::optional<SetupStep> failedStep() const { return m_failedStep; }
    /// A step has failed, or the run has ended without success and no step is to blame.
    [[nodiscard]] bool hasFailed() const { return m_failed || m_failedStep; }
    [[nodiscard]] QString tail() const { return m_tail; }
    [[nodiscard]] double overallPercent() const;
    [[nodiscard]] QString logFile() const { return m_place.logFile; }

    /// Runs the installer from its beginning; it skips by itself what is done. Nothing while it runs.
    Q_INVOKABLE void start();

    /// Ends the installer and all that it started; the step at work is then the failed one.
    void cancel();

    /// Everything counts as done, unless an installation runs or has succeeded.
    void markReady();

    Q_INVOKABLE void openLog();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();

private:
    void read(const QByteArray& chunk);
    void handle(const QString& line);
    void handleMarker(const QStringList& fields);
    void ended(bool success);
    /// After a failure nothing turns any more, and the step to blame is shown as such.
    [[nodiscard]] StepState::Kind shownKind(SetupStep step) const;
    void publish();
    void publishSoon();

    Place m_place;
    Processes& m_processes;
    Desktop& m_desktop;
    Scheduler& m_scheduler;
    std::array<StepState, allSetupSteps.size()> m_states;
    bool m_finished = false;
    bool m_failed = false; ///< the run has ended without success
    std::optional<SetupStep> m_failedStep;
    QString m_tail;
    Lease m_task; ///< the run under way; the installer ends with it
    bool m_publishing = false;
    qint64 m_logRoom = 0;    ///< bytes
    QThreadPool m_logWriter; ///< one thread, so that the log is written in order
};

} // namespace murmeli
