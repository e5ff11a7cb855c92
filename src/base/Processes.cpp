#include "Processes.h"

#include <QProcess>
#include <QTimer>

#include <csignal>
#include <unistd.h>
#include <utility>

namespace murmeli {

namespace {

constexpr int politeness = 300;   // milliseconds that an unwanted child has to end by itself
constexpr int reapingTime = 1000; // milliseconds; a killed child ends at once

/// One running child. Belongs to its context and kills the child when that goes.
class Child final : public QObject {
public:
    Child(const ProcessRequest& request, QObject* context, Processes::Done done)
        : QObject(context), m_request(request), m_done(std::move(done))
    {
        m_process.setProgram(request.program);
        m_process.setArguments(request.arguments);
        m_process.setProcessEnvironment(request.environment);
        m_process.setWorkingDirectory(request.workingFolder);
        m_process.setStandardInputFile(QProcess::nullDevice());
        // A group of its own, so that a shell's children end with the shell.
        m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
        if (request.onOutput) {
            m_process.setProcessChannelMode(QProcess::MergedChannels);
        } else {
            m_process.setStandardErrorFile(QProcess::nullDevice());
        }
        connect(&m_process, &QProcess::started, this, [this] { m_group = pid_t(m_process.processId()); });
        connect(&m_process, &QProcess::readyReadStandardOutput, this, &Child::take);
        connect(&m_process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
            m_result.exitCode = code;
            if (m_result.outcome != ProcessResult::Outcome::TimedOut) {
                m_result.outcome = status == QProcess::NormalExit ? ProcessResult::Outcome::Exited
                                                                  : ProcessResult::Outcome::Crashed;
            }
            finish();
        });
        // Queued: start() may fail before run() has returned, and `done` must not run inside of it.
        connect(
            &m_process, &QProcess::errorOccurred, this,
            [this](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart) finish();
            },
            Qt::QueuedConnection);
        if (request.timeout.count() > 0) {
            QTimer::singleShot(request.timeout, this, [this] {
                m_result.outcome = ProcessResult::Outcome::TimedOut;
                signalGroup(SIGKILL);
            });
        }
        m_process.start();
    }
    ~Child() override
    {
        m_process.disconnect(this);
        if (m_process.state() == QProcess::NotRunning) return;
        if (m_group == 0) m_process.waitForStarted(reapingTime);
        m_group = pid_t(m_process.processId());
        signalGroup(SIGTERM);
        m_process.waitForFinished(politeness);
        signalGroup(SIGKILL);
        if (m_process.state() != QProcess::NotRunning) m_process.waitForFinished(reapingTime);
    }
    Q_DISABLE_COPY_MOVE(Child)

private:
    void signalGroup(int number) const
    {
        if (m_group > 0) ::kill(-m_group, number);
    }

    void take()
    {
        const QByteArray piece = m_process.readAllStandardOutput();
        if (piece.isEmpty()) return;
        if (m_request.onOutput) {
            m_request.onOutput(piece);
        } else {
            m_result.output +=
                piece.left(qsizetype(qMax<qint64>(0, m_request.outputLimit - m_result.output.size())));
        }
    }

    void finish()
    {
        if (!m_done) return;
        if (m_process.isOpen()) take();
        deleteLater();
        // Moved out first: the callback may delete the context, and this child with it.
        const auto done = std::exchange(m_done, {});
        const auto result = std::move(m_result);
        done(result);
    }

    ProcessRequest m_request;
    Processes::Done m_done;
    ProcessResult m_result;
    QProcess m_process;
    pid_t m_group = 0;
};

} // namespace

void SystemProcesses::run(const ProcessRequest& request, QObject* context, Done done)
{
    new Child{request, context, std::move(done)};
}

bool SystemProcesses::startDetached(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace murmeli
