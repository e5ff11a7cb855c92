#pragma once

#include "HandOver.h"

#include <QFutureWatcher>
#include <QPromise>
#include <QRunnable>
#include <QThreadPool>

#include <memory>
#include <type_traits>
#include <utility>

/// Work beside the main thread, and its result back on it. Main thread only.
namespace murmeli {

/// A piece of work for a pool, which deletes it.
template <typename Work>
class Task final : public QRunnable {
public:
    using Result = std::invoke_result_t<Work&>;

    explicit Task(Work work) : m_work(std::move(work)) { m_promise.start(); }

    static QFuture<Result> start(QThreadPool& pool, Work work)
    {
        auto* task = new Task{std::move(work)};
        const QFuture<Result> future = task->m_promise.future();
        task->m_begun.give();
        pool.start(task);
        return future;
    }

    void run() override
    {
        m_begun.take();
        if constexpr (std::is_void_v<Result>) {
            m_work();
        } else {
            m_promise.addResult(m_work());
        }
        m_promise.finish();
    }

private:
    HandOver m_begun;
    Work m_work;
    QPromise<Result> m_promise;
};

/// Runs `work` on a thread of `pool`: after what is before it when the pool has but one.
template <typename Work>
QFuture<typename Task<Work>::Result> startOn(QThreadPool& pool, Work work)
{
    return Task<Work>::start(pool, std::move(work));
}

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

/// Runs `work` on a thread of the process's pool and then `done` with its result.
template <typename Work, typename Done>
void inBackground(QObject* context, Work work, Done done)
{
    const auto ended = std::make_shared<HandOver>();
    auto handing = [work = std::move(work), ended]() mutable {
        auto result = work();
        ended->give();
        return result;
    };
    whenFinished(startOn(*QThreadPool::globalInstance(), std::move(handing)), context,
                 [done = std::move(done), ended](const auto& result) {
                     ended->take();
                     done(result);
                 });
}

} // namespace murmeli
