#include "ReceiptFiles.h"

#include "base/Dates.h"
#include "service/Paths.h"

#include <QDateTime>
#include <QDir>
#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qint64 monthLimit = 16 * 1024 * 1024; // bytes

QString monthOf(const Receipt& receipt) { return dates::iso8601(receipt.time).left(7) + u".jsonl"_s; }

QDate dayOf(const Receipt& receipt) { return QDateTime::fromSecsSinceEpoch(qint64(receipt.time)).date(); }

} // namespace

ReceiptFiles::ReceiptFiles(const Paths& paths) : m_folder(paths.ownData) {}

OwnLines ReceiptFiles::month(const QString& name) const
{
    return OwnLines{{m_folder, u"sent/"_s + name, monthLimit}};
}

ReceiptFiles::Read ReceiptFiles::of(const QString& stem) const
{
    Read read;
    QHash<QString, qsizetype> known;
    for (const QString& name :
         QDir{m_folder + u"/sent"_s}.entryList({u"*.jsonl"_s}, QDir::NoFilter, QDir::Name)) {
        const OwnLines::Content content = month(name).read();
        read.unreadable = read.unreadable || content.unreadable;
        for (const QJsonObject& line : content.lines) {
            const Receipt receipt = Receipt::of(line);
            if (receipt.id.isEmpty() || (!stem.isEmpty() && receipt.stem != stem)) continue;
            if (const auto at = known.constFind(receipt.id); at != known.cend()) {
                read.receipts[*at] = receipt;
            } else {
                known.insert(receipt.id, read.receipts.size());
                read.receipts.append(receipt);
            }
        }
    }
    std::ranges::stable_sort(read.receipts, std::greater{}, &Receipt::time);
    return read;
}

OwnWritten ReceiptFiles::add(const Receipt& receipt) const
{
    return month(monthOf(receipt)).append(receipt.line());
}

OwnWritten ReceiptFiles::addOnceADay(const Receipt& receipt) const
{
    const OwnLines::Content content = month(monthOf(receipt)).read();
    if (content.unreadable) return OwnWritten::Unreadable;
    const bool there = std::ranges::any_of(content.lines, [&](const QJsonObject& line) {
        const Receipt other = Receipt::of(line);
        return other.kind == receipt.kind && other.parts.isEmpty() && dayOf(other) == dayOf(receipt);
    });
    return there ? OwnWritten::Yes : add(receipt);
}

} // namespace murmeli
