#pragma once

#include "ToastCenter.h"

#include <QObject>
#include <QString>

#include <functional>

namespace murmeli {

class Desktop;
class Language;
class Prefs;
class Scheduler;
struct Paths;

/// Decides what is announced when a recording starts or ends, and keeps a log of it. Main thread only.
class Notifier final {
public:
    using Show = std::function<void(const ToastText&)>;

    Notifier(const Paths& paths, const Prefs& prefs, const Language& language, Desktop& desktop,
             const Scheduler& scheduler, Show show);

    /// To be told the status before and after every reading of the state.
    void recordingChanged(const QString& from, const QString& to);

    /// Shows a card unless the user wants none.
    void announce(const ToastText& toast);

    /// Appends a line with the time to the notifications log; a line that cannot be written is lost.
    void log(const QString& text) const;

private:
    QString m_logFile;
    const Prefs& m_prefs;
    const Language& m_language;
    Desktop& m_desktop;
    const Scheduler& m_scheduler;
    Show m_show;
    QObject m_asking; ///< stands for questions that may be answered when we have gone
};

} // namespace murmeli
