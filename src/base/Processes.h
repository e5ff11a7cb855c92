#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>

class QObject;

namespace murmeli {

struct ProcessRequest {
    QString program;
    QStringList arguments;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QString workingFolder;
    std::chrono::milliseconds timeout{0};  ///< 0: as long as it takes; else the child is killed then
    qint64 outputLimit = 16 * 1024 * 1024; ///< bytes kept of standard output; the rest is dropped
    std::function<void(const QByteArray&)>
        onOutput; ///< each piece as it arrives, errors merged in; may be empty
};

struct ProcessResult {
    enum class Outcome { Exited, Crashed, TimedOut, NotStarted };
    Outcome outcome = Outcome::NotStarted;
    int exitCode = -1;
    QByteArray output; ///< standard output; empty when the pieces went to onOutput

    [[nodiscard]] bool ok() const { return outcome == Outcome::Exited && exitCode == 0; }
};

/// Child processes. Main thread only; nothing waits.
class Processes {
public:
    using Done = std::function<void(const ProcessResult&)>;

    virtual ~Processes() = default;

    /// `done` runs once, on the main thread. When `context` goes first, `done` is dropped and the child is
    /// ended with all that it started: asked first, then killed.
    virtual void run(const ProcessRequest& request, QObject* context, Done done) = 0;

    /// Starts a program that outlives us. \return false when it could not be started.
    virtual bool startDetached(const QString& program, const QStringList& arguments) = 0;
};

class SystemProcesses final : public Processes {
public:
    void run(const ProcessRequest& request, QObject* context, Done done) override;
    bool startDetached(const QString& program, const QStringList& arguments) override;
};

} // namespace murmeli
