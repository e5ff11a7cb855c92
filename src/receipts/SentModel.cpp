#include "SentModel.h"

#include "ReceiptWords.h"
#include "Receipts.h"
#include "base/Background.h"
#include "base/Dates.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "localisation/Language.h"
#include "meetings/MeetingCaptions.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr int rowRole = Qt::UserRole;
constexpr qsizetype mostRows = 2000;

QString symbolOf(const QString& kind)
{
    if (kind == "analysis"_L1) return u"doc.text"_s;
    if (kind == "remark"_L1) return u"pencil"_s;
    if (kind == "glossary"_L1) return u"brain"_s;
    if (kind == "clipboard"_L1) return u"doc.on.doc"_s;
    if (kind == "file"_L1) return u"square.and.arrow.down"_s;
    if (kind == "mail"_L1) return u"paperplane"_s;
    return kind == "version"_L1 ? u"arrow.down.circle"_s : u"person.crop.circle"_s;
}

QString filledOnes(const QStringList& parts)
{
    QStringList filled = parts;
    filled.removeAll({});
    return filled.join(u", "_s);
}

/// Whether it counts as sent: what a lock has refused stands in the list alone.
bool hasLeft(const Receipt& receipt) { return receipt.result != "refused"_L1; }

} // namespace

SentModel::SentModel(const Receipts& receipts, const Language& language, const Scheduler& scheduler,
                     QString stem, QObject* parent)
    : QAbstractListModel(parent),
      m_files(receipts.files()),
      m_language(language),
      m_scheduler(scheduler),
      m_stem(std::move(stem))
{
    connect(&receipts, &Receipts::changed, this, &SentModel::load);
    connect(&language, &Language::changed, this, [this] {
        if (!m_rows.isEmpty()) emit dataChanged(index(0), index(int(m_rows.size()) - 1));
    });
}

SentModel::~SentModel() = default;

void SentModel::load()
{
    const auto read = [files = m_files, stem = m_stem] { return files.of(stem); };
    inBackground(m_load.renew(), read, [this](const ReceiptFiles::Read& read) {
        m_loaded = true;
        m_unreadable = read.unreadable;
        m_total = int(std::ranges::count_if(read.receipts, hasLeft));
        if (const QList<Row> rows = rowsOf(read.receipts); rows != m_rows) {
            beginResetModel();
            m_rows = rows;
            endResetModel();
        }
        emit changed();
    });
}

QList<SentModel::Row> SentModel::rowsOf(const QList<Receipt>& receipts) const
{
    QList<Row> rows;
    qsizetype heading = -1;
    QString month;
    for (const Receipt& receipt : receipts) {
        const QString its = dates::iso8601(receipt.time).left(7);
        if (m_stem.isEmpty() && (heading < 0 || its != month)) {
            if (!rows.isEmpty()) rows.last().last = true;
            heading = rows.size();
            month = its;
            rows.append({.month = Month{.time = receipt.time}, .receipt = {}});
        }
        const bool first = rows.isEmpty() || rows.last().month;
        if (heading >= 0 && hasLeft(receipt)) {
            ++rows[heading].month->receipts;
            rows[heading].month->bytes += receipt.bytes;
        }
        if (rows.size() < mostRows) rows.append({.month = {}, .receipt = receipt, .first = first});
    }
    if (!rows.isEmpty()) rows.last().last = true;
    return rows;
}

SentRow SentModel::drawn(const Month& month) const
{
    const QString language = m_language.current();
    const QString name =
        dates::bySkeleton(QDateTime::fromSecsSinceEpoch(qint64(month.time)), language, u"yyyyLLLL"_s);
    SentRow shown;
    shown.heading = true;
    shown.title = text::capitalizedFirst(name);
    shown.line = Language::count(language, u"sent.times"_s, month.receipts);
    if (month.bytes > 0)
        shown.line += Language::text(language, u"common.dot"_s) + Language::size(language, month.bytes);
    shown.spoken = shown.title + u". "_s + shown.line;
    return shown;
}

SentRow SentModel::drawn(const Row& row) const
{
    if (row.month) return drawn(*row.month);
    const QString language = m_language.current();
    const Receipt& receipt = row.receipt;
    const QString when = captions::moment(QDateTime::fromSecsSinceEpoch(qint64(receipt.time)),
                                          m_scheduler.moment().date(), language);
    const QString place = receiptWords::place(receipt, language);
    SentRow shown;
    shown.first = row.first;
    shown.last = row.last;
    shown.symbol = symbolOf(receipt.kind);
    shown.title = receiptWords::title(receipt, language);
    shown.line = place.isEmpty() ? when : when + u" → "_s + place;
    if (m_stem.isEmpty() && !receipt.stem.isEmpty())
        shown.line += Language::text(language, u"common.dot"_s) +
                      text::shortened(text::oneLine(receipt.stem), receiptWords::longest);
    for (const auto& [part, key] :
         {std::pair{"names", "sent.without_names"}, {"numbers", "sent.without_numbers"}}) {
        if (!receipt.parts.contains(QLatin1StringView{part})) continue;
        shown.line +=
            Language::text(language, u"common.dot"_s) + Language::text(language, QString::fromLatin1(key));
    }
    if (receipt.bytes > 0) shown.size = Language::count(language, u"sent.bytes"_s, receipt.bytes);
    shown.result = receiptWords::result(receipt, language);
    shown.good = receipt.result == "answered"_L1;
    shown.spoken = filledOnes({shown.title, shown.line, shown.size, shown.result});
    return shown;
}

int SentModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_rows.size()); }

QVariant SentModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != rowRole) return {};
    return QVariant::fromValue(drawn(m_rows[index.row()]));
}

QHash<int, QByteArray> SentModel::roleNames() const { return {{rowRole, "row"}}; }

} // namespace murmeli
