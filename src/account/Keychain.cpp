#include "Keychain.h"

#include "base/Background.h"

#include <QCoreApplication>
#include <QPromise>
#include <QThread>
#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;

namespace murmeli::keychain {

namespace {

const QString service = u"Murmeli"_s;      // under which a store shows its owner what belongs to whom
constexpr unsigned long closingTime = 500; // milliseconds that writing gets when the program ends

/// The library keeps one queue of jobs for the process, bound to the thread that used it first.
class Worker final : public QObject {
public:
    static Worker& instance()
    {
        static auto* const worker = new Worker; // goes with the application, not with the process
        return *worker;
    }

private:
    Worker()
    {
        m_thread.setObjectName(u"keychain"_s);
        moveToThread(&m_thread);
        m_thread.start();
        qAddPostRoutine([] { instance().stop(); });
    }

    void stop()
    {
        QMetaObject::invokeMethod(
            this, [this] { m_thread.quit(); }, Qt::QueuedConnection);
        // A store that holds its caller must not hold the program's end: its thread is left to the system.
        m_thread.wait(closingTime);
    }

    QThread m_thread;
};

void post(std::function<void()> work)
{
    QMetaObject::invokeMethod(&Worker::instance(), std::move(work), Qt::QueuedConnection);
}

} // namespace

void save(const QString& key, const QString& value)
{
    post([key, value] {
        auto* job = new QKeychain::WritePasswordJob{service};
        job->setKey(key);
        job->setTextData(value);
        job->start();
    });
}

void load(const QString& key, QObject* context, Loaded loaded)
{
    const auto answer = std::make_shared<QPromise<std::optional<QString>>>();
    whenFinished(answer->future(), context, std::move(loaded));
    post([key, answer] {
        auto* job = new QKeychain::ReadPasswordJob{service};
        job->setKey(key);
        answer->start();
        QObject::connect(job, &QKeychain::Job::finished, job, [job, answer] {
            answer->addResult(job->error() == QKeychain::NoError ? std::optional{job->textData()}
                                                                 : std::nullopt);
            answer->finish();
        });
        job->start();
    });
}

void remove(const QString& key)
{
    post([key] {
        auto* job = new QKeychain::DeletePasswordJob{service};
        job->setKey(key);
        job->start();
    });
}

} // namespace murmeli::keychain
