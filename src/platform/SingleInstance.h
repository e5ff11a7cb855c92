#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace murmeli {

/// One running Murmeli per user and runtime folder. The first holds a lock that the system releases with the
/// process, however it ends; later ones hand over what they were started with. Main thread only.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    /// The folder that goes with the log-in session, whether the environment names it or not; from then on it
    /// does.
    static QString runtimeFolder();

    /// Takes the lock; needs no application object. \param runtimeFolder private to the user.
    explicit SingleInstance(const QString& runtimeFolder, QObject* parent = nullptr);
    ~SingleInstance() override;
    Q_DISABLE_COPY_MOVE(SingleInstance)

    /// Whether this process is the first. When the folder cannot be used every process counts as first, since
    /// a program that does not start at all is worse than a second icon.
    [[nodiscard]] bool isFirst() const { return m_first; }

    /// From now on told() reports what later processes hand over.
    void listen();

    /// Sends one line to the first process, waiting a few seconds at most. \return whether there is one that
    /// listens.
    static bool tell(const QString& runtimeFolder, const QString& line);

signals:
    void told(const QString& line);

private:
    QString m_socket;
    QLocalServer m_server;
    int m_lock = -1;
    bool m_first = true;
};

} // namespace murmeli
