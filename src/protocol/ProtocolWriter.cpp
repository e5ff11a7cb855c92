#include "ProtocolWriter.h"

#include "ChangeHistory.h"
#include "base/Background.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "meetings/Meeting.h"
#include "meetings/SummaryFile.h"
#include "service/Paths.h"

#include <QFileInfo>
#include <QPointer>
#include <QUuid>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

using Written = ProtocolWriter::Written;
using Where = ProtocolWriter::Where;

// The service may be rewriting the file at the very moment.
constexpr auto lookPause = 100ms;
constexpr int mostLooks = 20;
constexpr int idleThread = 1000; // milliseconds for which the thread waits for more

} // namespace

std::optional<ProtocolItem> ProtocolWriter::meant(const QList<ProtocolItem>& items,
                                                  const ProtocolChange& change, Where where)
{
    QList<ProtocolItem> same;
    for (const ProtocolItem& item : items) {
        if (item.section != change.section || item.text != change.before) continue;
        if (item.isAlone || item.index == change.index) return item;
        same.append(item);
    }
    return where == Where::Anywhere && same.size() == 1 ? std::optional{same.first()} : std::nullopt;
}

/// A change on its way. Used beside the main thread by one look at a time.
struct ProtocolWriter::Attempt {
    Ledger ledger;
    QString file;
    ProtocolChange change;
    Where where;
    QPointer<QObject> context; ///< main thread only, as what follows
    Done done;
    int looks = 0;
    bool begun = false; ///< the ledger was asked to note it
    bool listed = false;

    /// \return nothing while the service is in the middle of writing.
    std::optional<Written> look(double now);
    std::optional<Written> put(double now);
};

std::optional<Written> ProtocolWriter::Attempt::look(double now)
{
    auto written = put(now);
    if (!written && ++looks > mostLooks) written = Written::Failed;
    if (!written || !listed) return written;
    // When this cannot be noted, what the item reads tells.
    std::ignore = ledger.end(change.id, *written == Written::Yes, now);
    return written;
}

std::optional<Written> ProtocolWriter::Attempt::put(double now)
{
    files::removeUnfinished(file);
    const auto bytes = files::readWhole(file, summaryFile::sizeLimit);
    if (!bytes) return Written::Failed;
    const auto summary = json::object(*bytes);
    if (!summary) return std::nullopt;
    const QList<ProtocolItem> items = protocolItems::editable(*summary);
    const auto item = meant(items, change, where);
    if (!item) return Written::Changed;
    const auto corrected = protocolItems::corrected(*bytes, item->section, item->index, change.after, now);
    if (!corrected) return Written::NotFound;
    change.index = item->index;
    change.field = item->field.value_or(QString{});
    if (!std::exchange(begun, true)) {
        change.time = now;
        listed = ledger.begin(change, items) == OwnWritten::Yes;
    }
    // A remark is what the user wants in any case; but what is undone unseen would look like somebody else's.
    if (!listed && change.kind != ProtocolChange::Kind::Remark) return Written::Failed;
    const auto unchanged = [&] { return files::readWhole(file, summaryFile::sizeLimit) == bytes; };
    switch (files::writeAtomicIf(file, *corrected, unchanged)) {
    case files::Written::Yes:
        return listed ? Written::Yes : Written::Unlisted;
    case files::Written::Overtaken:
        return std::nullopt;
    case files::Written::Failed:
        break;
    }
    return Written::Failed;
}

ProtocolWriter::ProtocolWriter(const Paths& paths, Processes& processes, Scheduler& scheduler,
                               QObject* parent)
    : QObject(parent),
      m_paths(paths),
      m_processes(processes),
      m_scheduler(scheduler),
      m_start(scheduler.now())
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(idleThread);
}

ProtocolWriter::~ProtocolWriter() = default;

void ProtocolWriter::write(const Meeting& meeting, ProtocolChange change, Where where, QObject* context,
                           Done done)
{
    change.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    go(std::make_shared<Attempt>(Attempt{.ledger = Ledger{m_paths, meeting.id},
                                         .file = meeting.jsonPath,
                                         .change = std::move(change),
                                         .where = where,
                                         .context = context,
                                         .done = std::move(done)}));
}

void ProtocolWriter::settle(const Meeting& meeting)
{
    const auto end = [ledger = Ledger{m_paths, meeting.id}, file = meeting.jsonPath, start = m_start,
                      now = m_scheduler.now()] {
        const Ledger::Content content = ledger.read();
        const auto bytes = files::readWhole(file, summaryFile::sizeLimit);
        const auto summary = bytes ? json::object(*bytes) : std::nullopt;
        if (!summary || content.unreadable) return;
        QSet<QString> carriedOut;
        for (const ProtocolChange& change :
             ChangeHistory::carriedOut(content, protocolItems::editable(*summary)))
            carriedOut.insert(change.id);
        for (const ProtocolChange& change : content.changes) {
            if (content.ended.contains(change.id) || change.time >= start) continue;
            std::ignore = ledger.end(change.id, carriedOut.contains(change.id), now);
        }
    };
    startOn(m_disk, end);
}

void ProtocolWriter::go(const std::shared_ptr<Attempt>& attempt)
{
    const auto look = [attempt, now = m_scheduler.now()] { return attempt->look(now); };
    whenFinished(startOn(m_disk, look), this, [this, attempt](const std::optional<Written>& written) {
        if (!written) {
            m_scheduler.after(lookPause, this, [this, attempt] { go(attempt); });
            return;
        }
        // Nobody waits for it: the protocol follows when it follows, also when we have gone.
        const bool changed = *written == Written::Yes || *written == Written::Unlisted;
        if (changed && QFileInfo::exists(m_paths.python))
            m_processes.startDetached(m_paths.python, {m_paths.rebuildScript, attempt->file});
        if (attempt->context) attempt->done(*written, attempt->change);
    });
}

} // namespace murmeli
