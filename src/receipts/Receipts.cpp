#include "Receipts.h"

#include "base/Background.h"
#include "base/Files.h"
#include "base/Scheduler.h"

#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr int idleThread = 1000; // milliseconds for which the thread waits for more

} // namespace

Receipts::Receipts(const Paths& paths, const Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_files(paths), m_scheduler(scheduler)
{
    m_disk.setMaxThreadCount(1);
    m_disk.setExpiryTimeout(idleThread);
}

Receipts::~Receipts() = default;

Receipt Receipts::begun() const { return Receipt::begun(m_scheduler.now()); }

void Receipts::note(const Receipt& receipt, QObject* context, std::function<void()> then)
{
    const auto write = [files = m_files, receipt] { return files.add(receipt); };
    whenFinished(startOn(m_disk, write), this,
                 [this, guard = QPointer{context}, then = std::move(then)](OwnWritten why) {
                     written(why);
                     if (guard && then) then();
                 });
}

void Receipts::noteCopied(const QString& stem, const QString& part, qint64 bytes)
{
    Receipt receipt = begun();
    receipt.stem = stem;
    receipt.kind = u"clipboard"_s;
    receipt.to = u"clipboard"_s;
    receipt.bytes = bytes;
    receipt.parts = QStringList{part};
    receipt.result.clear(); // nobody answers
    note(receipt);
}

void Receipts::noteFile(Receipt receipt, const QString& path)
{
    receipt.result.clear(); // nobody answers
    const auto write = [files = m_files, receipt, path]() mutable {
        receipt.bytes = std::max<qint64>(0, files::identity(path).size);
        return files.add(receipt);
    };
    whenFinished(startOn(m_disk, write), this, [this](OwnWritten why) { written(why); });
}

void Receipts::noteOnceADay(const Receipt& receipt)
{
    const QString day = m_scheduler.moment().date().toString(Qt::ISODate) + receipt.kind;
    if (m_today.contains(day)) return;
    const auto write = [files = m_files, receipt] { return files.addOnceADay(receipt); };
    whenFinished(startOn(m_disk, write), this, [this, day](OwnWritten why) {
        if (why == OwnWritten::Yes) m_today.insert(day);
        written(why);
    });
}

void Receipts::written(OwnWritten why)
{
    if (why == OwnWritten::Yes) {
        m_said = false;
        emit changed();
    } else if (!std::exchange(m_said, true)) {
        emit notWritten(why);
    }
}

} // namespace murmeli
