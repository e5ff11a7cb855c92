#pragma once

#include "account/AuthManager.h"
#include "base/Files.h"
#include "glossary/GlossaryStore.h"
#include "localisation/Language.h"
#include "margin/MeetingLocks.h"
#include "margin/RecordingMarks.h"
#include "meetings/SummaryWatch.h"
#include "notices/LongRecording.h"
#include "notices/NoticeBoard.h"
#include "notices/Notifier.h"
#include "notices/Pulse.h"
#include "notices/WriteUp.h"
#include "panel/PanelModel.h"
#include "platform/Installation.h"
#include "receipts/Receipts.h"
#include "receipts/WatchedHttp.h"
#include "search/SearchIndex.h"
#include "service/AppInfo.h"
#include "service/AppState.h"
#include "service/OwnSettings.h"
#include "service/Paths.h"
#include "service/Prefs.h"
#include "service/RecordControl.h"
#include "settings/SettingsModel.h"
#include "setup/Setup.h"
#include "update/Updater.h"
#include "windows/MainModel.h"
#include "windows/QuitQuestion.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace murmeli {

class Desktop;
class Http;
class Processes;
class Scheduler;
class SecretStore;

/// What a start of the program may ask of the one that runs, besides an address of ours.
namespace wish {
inline constexpr QLatin1StringView beSeen{"activate"};
inline constexpr QLatin1StringView window{"window"};
inline constexpr QLatin1StringView record{"record"};
inline constexpr QLatin1StringView open{"open"}; ///< MEETING STAMP QUERY, percent-encoded, each may be empty
} // namespace wish

/// All state objects and every connection between them, without a window: what the program is before anybody
/// looks at it. Main thread only.
class Program final : public QObject {
    Q_OBJECT

public:
    /// What a test must control; all of it outlives the program.
    struct Outside {
        Scheduler& scheduler;
        Http& http;
        Processes& processes;
        Desktop& desktop;
        SecretStore& secrets;
        std::function<std::optional<qint64>(const QString& folder)> freeBytes = files::freeBytes;
    };

    Program(const Paths& paths, const Outside& outside, const Installation& installation,
            const AppInfo::Addresses& addresses, QObject* parent = nullptr);
    ~Program() override;
    Q_DISABLE_COPY_MOVE(Program)

    /// Begins what goes on by itself, and asks for the setup where the engine is missing or `forceSetup` asks
    /// for it.
    void start(bool forceSetup);

    /// What this start or a later one was for: an address of ours, or a wish.
    void told(const QString& line);

    /// What the main window shows; made with the first look at it.
    MainModel& main();

    /// The setup under way, or null.
    [[nodiscard]] Setup* setup() const { return m_setup.get(); }
    /// For whoever still shows it when setupFinished() tells that it goes.
    [[nodiscard]] std::unique_ptr<Setup> takeSetup() { return std::move(m_setup); }

    const Paths paths;
    Prefs prefs;
    OwnSettings own;
    MeetingLocks locks;
    Receipts receipts;
    WatchedHttp http;
    Language language;
    AppState state;
    RecordControl record;
    PanelModel panel;
    AuthManager account;
    Updater updater;
    SearchIndex index;
    SettingsModel settings;
    GlossaryStore glossary;
    Notifier notifier;
    Pulse pulse;
    LongRecording longRecording;
    SummaryWatch summaries;
    WriteUp writeUp;
    NoticeBoard board;
    RecordingMarks marks;
    QuitQuestion quitQuestion;

signals:
    void panelWanted();
    void somethingWanted(); ///< a later start wishes to be seen
    void mainWindowWanted();
    void toastWanted(const murmeli::ToastText& toast);
    void setupWanted();   ///< setup() is there
    void setupEnded();    ///< its installation
    void setupFinished(); ///< the user is through with it, and it goes
    void quitWanted();

private:
    void connectState();
    void connectPanel();
    void connectNotices();
    void sayNotWritten(OwnWritten why, const QString& file);
    void announce(noticeKind::NoticeKind kind);
    void openAsTold(QStringList parts);
    void beginSetup();
    void finishSetup();

    Outside m_outside;
    AppInfo::Addresses m_addresses;
    std::unique_ptr<MainModel> m_main;
    std::unique_ptr<Setup> m_setup;
};

} // namespace murmeli
