#include "Notifier.h"

#include "base/Dates.h"
#include "base/Files.h"
#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "platform/Desktop.h"
#include "service/Paths.h"
#include "service/Prefs.h"

#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

Notifier::Notifier(const Paths& paths, const Prefs& prefs, const Language& language, Desktop& desktop,
                   const Scheduler& scheduler, Show show)
    : m_logFile(paths.notificationsLog),
      m_prefs(prefs),
      m_language(language),
      m_desktop(desktop),
      m_scheduler(scheduler),
      m_show(std::move(show))
{
}

void Notifier::recordingChanged(const QString& from, const QString& to)
{
    const bool started = to == "recording"_L1;
    const bool ended = from == "recording"_L1;
    if (from == to || (!started && !ended)) return;

    const QString key = started ? u"notify.started"_s : u"notify.finished"_s;
    announce({.title = m_language.t(key + u".title"_s),
              .message = m_language.t(key + u".body"_s),
              .tone = started ? noticeTone::Starting : noticeTone::Passing});
}

void Notifier::announce(const ToastText& toast)
{
    if (!m_prefs.get(pref::notifications)) {
        log(u"пропущено: уведомления выключены"_s);
        return;
    }
    m_desktop.askForPeace(&m_asking, [this, toast](bool wanted) {
        if (!wanted) m_show(toast);
        log(wanted ? u"пропущено: не беспокоить"_s : u"показано: "_s + toast.title);
    });
}

void Notifier::log(const QString& text) const
{
    const QString line = dates::iso8601(m_scheduler.now()) + u' ' + text + u'\n';
    std::ignore = files::append(m_logFile, line.toUtf8());
}

} // namespace murmeli
