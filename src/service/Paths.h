#pragma once

#include <QString>

namespace murmeli {

/// Every file and folder shared with the service, derived once from the home folder, and Murmeli's own ones.
/// Nothing here looks at the disk: the shared folders are made by the service and the setup, our own ones by
/// the first write.
struct Paths {
    /// Folders of our own, where the system wants them.
    struct Own {
        QString data, cache, config;
    };
    explicit Paths(const QString& home, const Own& own = {});

    QString home;
    QString root; ///< "MeetingNotes"
    QString recordings;
    QString logs; ///< summary files, stored analyses and the notifications log
    QString inbox;
    QString userInstructions;
    QString vaultDir; ///< finished protocols as Markdown
    QString modelsMarker;
    QString stateFile;
    QString commandFile;
    QString authFlagFile;
    QString prefsFile;
    QString accountFile;
    QString updateScript;
    QString python;
    QString pdfScript;      ///< makes a PDF of a summary file
    QString rebuildScript;  ///< renders the protocol anew from its summary file
    QString recorderScript; ///< the recorder's answers about permissions
    QString notificationsLog;
    QString appAgentFile;
    QString ownData;     ///< what cannot be made again
    QString ownCache;    ///< what may be deleted at any moment
    QString ownConfig;   ///< preferences that the service need not know
    QString agentLoader; ///< loads and unloads the login agent, where the system has such agents

    static constexpr auto appAgentLabel = "com.valdor.quillet.app";
    static constexpr qsizetype instructionsLimit = 20'000; ///< characters
};

} // namespace murmeli
