#include "AppState.h"

#include "base/Files.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "base/Text.h"

#include <QFile>

#include <array>
#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto pollInterval = 1500ms;
constexpr auto greetingTime = 2600ms;
constexpr qint64 sizeLimit = 1024 * 1024; // bytes; the service writes a few hundred
constexpr qsizetype longestText = 300; // characters of the service's own words; there is room for a few lines

constexpr qint64 restlessTime = 2'000'000'000; // nanoseconds

// The service may be rewriting the file at this very moment. It gets these pauses to finish before what
// stands there counts as damaged; all of them end well before the next poll.
constexpr std::array rereadPauses = {0ms, 10ms, 40ms, 150ms};

} // namespace

const QString AppState::defaultAuthTitle = u"Не найден пользователь — авторизуйтесь"_s;
const QString AppState::defaultAuthBody =
    u"Хотел доставить протокол встречи, но не смог найти твой аккаунт. Войди в Murmeli — и всё автоматически доставится."_s;

AppState::AppState(Paths paths, Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_paths(std::move(paths)), m_scheduler(scheduler)
{
    load();
    m_scheduler.every(pollInterval, this, [this] { load(); });
}

bool AppState::isRecording() const { return m_shown.status == "recording"_L1; }

bool AppState::isProcessing() const { return m_shown.status == "processing"_L1; }

void AppState::load()
{
    m_rereading.end();
    read(0);
}

void AppState::read(int rereads)
{
    files::Identity file;
    const auto bytes = files::readWhole(QFile::encodeName(m_paths.stateFile), sizeLimit, &file);
    const auto object = bytes ? json::object(*bytes) : std::nullopt;
    if (bytes && !object && rereads < int(rereadPauses.size())) {
        m_scheduler.after(rereadPauses.at(size_t(rereads)), m_rereading.renew(),
                          [this, rereads] { read(rereads + 1); });
        return;
    }

    m_reading = {file, bytes ? qHash(*bytes) : 0};
    Snapshot snapshot;
    if (bytes && !object && std::abs(files::nsSinceWritten(file)) < restlessTime) {
        // It is at it all the time: what was known is nearer to the truth than "idle".
        snapshot = m_shown;
        snapshot.authTitle = Snapshot{}.authTitle;
        snapshot.authBody = Snapshot{}.authBody;
    } else if (object) {
        snapshot.status = json::text(*object, "status"_L1, snapshot.status);
        snapshot.detail = text::shortened(json::text(*object, "detail"_L1), longestText);
        snapshot.telegramConnected = json::flag(*object, "telegram_connected"_L1).value_or(false);
        snapshot.since = json::number(*object, "since"_L1).value_or(0);
        snapshot.jobs = json::integer(*object, "jobs"_L1).value_or(0);
    }
    readFlag(snapshot);
    m_scheduler.after(0ms, this, [this, snapshot] { publish(snapshot); });
}

void AppState::readFlag(Snapshot& snapshot) const
{
    const auto bytes = files::readWhole(m_paths.authFlagFile, sizeLimit);
    // Its mere existence raises the flag, whatever it holds and however large it is.
    snapshot.authFlag = bytes.has_value() || files::isReadable(m_paths.authFlagFile);
    const auto object = bytes ? json::object(*bytes) : std::nullopt;
    if (!object) return;
    if (const QString title = json::text(*object, "title"_L1); !title.isEmpty())
        snapshot.authTitle = text::shortened(title, longestText);
    if (const QString body = json::text(*object, "body"_L1); !body.isEmpty())
        snapshot.authBody = text::shortened(body, longestText);
}

void AppState::publish(const Snapshot& snapshot)
{
    const Snapshot old = std::exchange(m_shown, snapshot);
    if (m_shown != old) emit changed();
    if (m_shown.authFlag && !old.authFlag) emit authRequired();
    emit statusRead(old.status, m_shown.status);
}

void AppState::dismissAuthBanner()
{
    QFile::remove(m_paths.authFlagFile); // when it stays, the next reading raises the banner again
    m_scheduler.after(0ms, this, [this] {
        if (!std::exchange(m_shown.authFlag, false)) return;
        emit changed();
    });
}

void AppState::greet()
{
    m_scheduler.after(greetingTime, m_greeting.renew(), [this] {
        m_welcome = false;
        emit welcomeChanged();
    });
    if (!std::exchange(m_welcome, true)) emit welcomeChanged();
}

void AppState::setArrowX(double x)
{
    if (qFuzzyCompare(std::exchange(m_arrowX, x), x)) return;
    emit arrowXChanged();
}

} // namespace murmeli
