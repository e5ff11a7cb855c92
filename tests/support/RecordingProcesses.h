#pragma once

#include "base/Processes.h"

#include <QList>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <utility>

namespace murmeli {

/// Starts nothing: remembers what was asked for, and ends it when a test says so.
class RecordingProcesses : public Processes {
public:
    QList<QStringList> runs; ///< each with its program first

    void run(const ProcessRequest& request, QObject* context, Done done) override
    {
        runs.append(QStringList{request.program} + request.arguments);
        m_context = context;
        m_done = std::move(done);
    }
    bool startDetached(const QString& program, const QStringList& arguments) override
    {
        runs.append(QStringList{program} + arguments);
        return true;
    }

    /// Whether the last run goes on: it would be killed if whom its end is for had gone.
    [[nodiscard]] bool isWaitedFor() const { return m_done && m_context; }
    /// Ends the last run, if anybody is still there for its end.
    void end(const QByteArray& output) { takeEnd()(output); }
    /// The same for later, when others have been started.
    [[nodiscard]] std::function<void(const QByteArray& output)> takeEnd()
    {
        return [done = std::exchange(m_done, {}), context = m_context](const QByteArray& output) {
            if (done && context)
                done({.outcome = ProcessResult::Outcome::Exited, .exitCode = 0, .output = output});
        };
    }

private:
    QPointer<QObject> m_context;
    Done m_done;
};

} // namespace murmeli
