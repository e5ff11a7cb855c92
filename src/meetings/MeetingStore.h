#pragma once

#include "Hearing.h"
#include "MeetingListModel.h"
#include "ProtocolFinder.h"
#include "base/Lease.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace murmeli {

class Scheduler;
struct Paths;

/// Keeps the list of recorded meetings: scans the folder of summary files beside the main thread every 20 s,
/// and soon after the folder has changed. Main thread only.
class MeetingStore final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the main window")
    Q_PROPERTY(murmeli::MeetingListModel* list READ list CONSTANT FINAL)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged FINAL)
    Q_PROPERTY(bool loaded READ loaded NOTIFY loadingChanged FINAL) ///< the first scan has ended

public:
    MeetingStore(const Paths& paths, const Language& language, Scheduler& scheduler,
                 QObject* parent = nullptr);

    [[nodiscard]] MeetingListModel* list() { return &m_list; }
    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] bool loaded() const { return m_loaded; }

    /// Whether it looks for meetings by itself; it does from the beginning.
    void setWatching(bool on);

    /// Starts a scan, or another one after that which runs.
    Q_INVOKABLE void reload();

    [[nodiscard]] std::shared_ptr<ProtocolFinder> protocols() const { return m_protocols; }

signals:
    void loadingChanged();
    void touched(const QStringList& ids); ///< those whose files were written, before scanned()
    void
    scanned(); ///< after every scan, also when nothing has changed, and when more is known of its meetings

private:
    void take(const MeetingScanner::Result& result);
    void show(const QDate& today);
    void listen();
    void watchFolder();
    void reloadSoon();

    QString m_folder;
    Scheduler& m_scheduler;
    MeetingListModel m_list;
    std::shared_ptr<ProtocolFinder> m_protocols;
    std::shared_ptr<MeetingScanner> m_scanner; ///< used by one scan at a time
    std::shared_ptr<Hearing> m_hearing;        ///< used by one reading at a time
    QList<ListedMeeting> m_found;
    QSet<QString> m_tooShort; ///< ids of meetings with hardly any transcript
    QFileSystemWatcher m_watcher;
    Lease m_watching;
    bool m_loading = false;
    bool m_loaded = false;
    bool m_again = false; ///< asked for while a scan ran
    bool m_soon = false;
    bool m_listening = false;
    bool m_listenAgain = false;
};

} // namespace murmeli
