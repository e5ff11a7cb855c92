#pragma once

#include <QFutureWatcher>
#include <QtConcurrentRun>

#include <utility>

/// Work beside the main thread, and its result back on it. Main thread only.
namespace murmeli {

/// Runs `done` with the result of `future` on the main thread, unless `context` has gone by then.
template <typename Result, typename Done>
void whenFinished(const QFuture<Result>& future, QObject* context, Done done)
{
    auto* watcher = new QFutureWatcher<Result>{context};
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, done = std::move(done)] {
        watcher->setParent(nullptr); // what is done may end the context
        watcher->deleteLater();
        if (!watcher->future().isCanceled()) done(watcher->result());
    });
    watcher->setFuture(future);
}

/// Runs `work` on a thread of the pool and then `done` with its result.
template <typename Work, typename Done>
void inBackground(QObject* context, Work work, Done done)
{
    whenFinished(QtConcurrent::run(std::move(work)), context, std::move(done));
}

} // namespace murmeli
