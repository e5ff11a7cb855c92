#include "Updater.h"

#include "base/Dates.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "platform/Desktop.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto firstCheck = 30s;
constexpr auto checkInterval = 1h;
constexpr auto installTime = 90s;
constexpr qsizetype longestLabel = 60;     // characters of a version or a day
constexpr qint64 recordLimit = 256 * 1024; // bytes; a release record has a few thousand

// Runs $1 with its output in $2 or, where that is somebody else's, in $3. The place is one that everybody may
// write to: another's file there must not stop us, and a link must not lead us to empty what it points at.
const QString detachedScript = uR"sh(
log=$2
[ -e "$log" ] || (umask 077; set -C; : > "$log") 2>/dev/null
if [ -L "$log" ] || [ ! -f "$log" ] || [ ! -O "$log" ]; then
    log=$3
    mkdir -p "$(dirname "$log")"
fi
{ : > "$log"; } 2>/dev/null || log=/dev/null
nohup bash "$1" >"$log" 2>&1 &)sh"_s;

/// The components of a version; what is no whole number counts as 0.
QList<qint64> components(const QString& version)
{
    QList<qint64> numbers;
    for (const QString& piece : version.split(u'.', Qt::SkipEmptyParts)) {
        numbers.append(text::wholeNumber(piece).value_or(0));
    }
    return numbers;
}

struct PhaseLook {
    const char* titleKey;
    const char* subtitleKey;
    accent::Accent accent;
};

PhaseLook lookOf(Updater::Phase phase)
{
    switch (phase) {
    case Updater::Phase::UpToDate:
        return {"update.title.uptodate", "update.subtitle.uptodate", accent::Success};
    case Updater::Phase::Available:
        return {"update.title.available", "update.subtitle.available", accent::News};
    case Updater::Phase::Installing:
        return {"update.title.available", "update.subtitle.installing", accent::Progress};
    case Updater::Phase::Failed:
        return {"update.title.failed", "update.subtitle.failed", accent::Failure};
    case Updater::Phase::Idle:
    case Updater::Phase::Checking:
        break;
    }
    return {"update.title.checking", "update.subtitle.checking", accent::Progress};
}

} // namespace

Updater::Updater(Place place, Http& http, Processes& processes, Desktop& desktop, Scheduler& scheduler,
                 MayInterrupt mayInterrupt, QObject* parent)
    : QObject(parent),
      m_place(std::move(place)),
      m_http(http),
      m_processes(processes),
      m_desktop(desktop),
      m_scheduler(scheduler),
      m_mayInterrupt(std::move(mayInterrupt))
{
}

bool Updater::isNewer(const QString& a, const QString& b)
{
    const QList<qint64> left = components(a);
    const QList<qint64> right = components(b);
    for (qsizetype at = 0; at < std::max(left.size(), right.size()); ++at) {
        if (left.value(at) != right.value(at)) return left.value(at) > right.value(at);
    }
    return false;
}

QStringList Updater::paragraphs() const
{
    QStringList paragraphs;
    for (const QString& line : m_notes.split(u'\n', Qt::SkipEmptyParts)) {
        if (const QString paragraph = text::trimmed(line); !paragraph.isEmpty())
            paragraphs.append(text::shortened(paragraph));
    }
    return paragraphs;
}

Message Updater::title() const { return Message::of(lookOf(m_phase).titleKey); }

Message Updater::subtitle() const
{
    return Message::of(lookOf(m_phase).subtitleKey, m_phase == Phase::UpToDate ? current() : m_latest);
}

accent::Accent Updater::accent() const { return lookOf(m_phase).accent; }

QString Updater::timeText(const QDateTime& moment, const QString& language)
{
    return dates::bySkeleton(moment, language, u"Hm"_s);
}

void Updater::setPhase(Phase phase)
{
    if (!m_busy) m_phase = phase;
    emit changed();
}

void Updater::check()
{
    const QUrl url{m_place.versionUrl};
    if (!url.isValid()) return;
    m_scheduler.after(0ms, this, [this] { setPhase(Phase::Checking); });
    m_http.send(Purpose{u"version"_s}, {.url = url, .timeout = 60s, .answerLimit = recordLimit}, this,
                [this](const HttpAnswer& answer) { take(answer.body); });
}

void Updater::take(const QByteArray& record)
{
    const auto object = json::object(record);
    const auto version = object ? json::optionalText(*object, "version"_L1) : std::nullopt;
    if (!version) {
        setPhase(Phase::Failed);
        return;
    }
    m_latest = text::shortened(text::oneLine(*version), longestLabel);
    m_available = isNewer(*version, current());
    m_notes = json::text(*object, "notes"_L1);
    m_released = text::shortened(text::oneLine(json::text(*object, "released"_L1)), longestLabel);
    m_lastChecked = m_scheduler.moment();
    setPhase(m_available ? Phase::Available : Phase::UpToDate);
    if (m_available && m_mayInterrupt()) runUpdate();
}

void Updater::runUpdate()
{
    if (m_busy || !replaceable()) return;
    m_phase = Phase::Installing;
    m_busy = true;
    // A missing script fails into its log; there is nobody to wait for either way.
    m_processes.startDetached(u"/bin/bash"_s, {u"-c"_s, detachedScript, u"murmeli"_s, m_place.script,
                                               m_place.log, m_desktop.stateFolder() + u"/update.log"_s});
    m_scheduler.after(installTime, this, [this] {
        if (!std::exchange(m_busy, false)) return;
        m_available = false;
        setPhase(Phase::UpToDate);
    });
    emit changed();
}

void Updater::reveal() { m_desktop.reveal(bundlePath(), u"/Applications"_s); }

void Updater::startAutoCheck()
{
    m_scheduler.after(firstCheck, this, [this] { check(); });
    m_scheduler.every(checkInterval, m_checking.renew(), [this] { check(); });
}

} // namespace murmeli
