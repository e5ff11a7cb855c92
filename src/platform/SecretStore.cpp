#include "SecretStore.h"

#include "base/Background.h"

#include <QCoreApplication>
#include <QPromise>
#include <QThread>
#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QString service = u"Murmeli"_s;      // under which a store shows its owner what belongs to whom
constexpr unsigned long closingTime = 500; // milliseconds that writing gets when the program ends

/// The library keeps one queue of jobs for the process, bound to the thread that used it first.
class KeychainStore final : public SecretStore {
public:
    ~KeychainStore() override
    {
        if (!m_worker) return;
        QMetaObject::invokeMethod(
            m_worker, [thread = m_thread] { thread->quit(); }, Qt::QueuedConnection);
        // A store that holds its caller must not hold the program's end: its thread is left to the system.
        if (m_thread->wait(closingTime)) {
            delete m_worker;
            delete m_thread;
        }
    }

    void save(const QString& key, const QString& value) override
    {
        post([key, value] {
            auto* job = new QKeychain::WritePasswordJob{service};
            job->setKey(key);
            job->setTextData(value);
            job->start();
        });
    }

    void load(const QString& key, QObject* context, Loaded loaded) override
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

    void remove(const QString& key) override
    {
        post([key] {
            auto* job = new QKeychain::DeletePasswordJob{service};
            job->setKey(key);
            job->start();
        });
    }

private:
    void post(std::function<void()> work)
    {
        if (!m_worker) {
            m_thread = new QThread;
            m_thread->setObjectName(u"keychain"_s);
            m_worker = new QObject;
            m_worker->moveToThread(m_thread);
            m_thread->start();
        }
        QMetaObject::invokeMethod(m_worker, std::move(work), Qt::QueuedConnection);
    }

    QThread* m_thread = nullptr;
    QObject* m_worker = nullptr; ///< stands for the thread
};

} // namespace

std::unique_ptr<SecretStore> makeSecretStore() { return std::make_unique<KeychainStore>(); }

} // namespace murmeli
