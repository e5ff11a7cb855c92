#include "ProtocolChanges.h"

#include "base/Background.h"
#include "base/Dates.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "language/Difference.h"
#include "localisation/DrawnDifference.h"
#include "localisation/Language.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/SummaryFile.h"
#include "platform/Desktop.h"

#include <QFile>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using Kind = ProtocolChange::Kind;
using State = ChangeHistory::State;

constexpr qsizetype mostRows = 1000;
constexpr qsizetype mostCompared = 2000; // characters of an item that are compared on the screen
constexpr int rowRole = Qt::UserRole;

/// The name of a section; summary and short summary are the same to a reader.
QString titleOf(const QString& section, const QString& language)
{
    const bool summary = section == "summary"_L1 || section == "tldr"_L1;
    return Language::text(language, summary ? u"detail.summary"_s : u"detail."_s + section);
}

QList<words::Piece> between(const QString& before, const QString& after)
{
    QList<words::Piece> pieces = words::brief(words::difference(before, after));
    if (pieces.isEmpty()) // they are too long
        pieces =
            words::difference(text::shortened(before, mostCompared), text::shortened(after, mostCompared));
    for (words::Piece& piece : pieces)
        piece.text = text::shortened(piece.text, mostCompared);
    return pieces;
}

} // namespace

ProtocolChanges::ProtocolChanges(const Ground& ground, const Meeting& meeting, QObject* parent)
    : QAbstractListModel(parent), m_ground(ground), m_meeting(meeting)
{
    connect(&ground.language, &Language::changed, this, [this] {
        if (!m_rows.isEmpty()) emit dataChanged(index(0), index(int(m_rows.size()) - 1));
        emit changed();
    });
}

ProtocolChanges::~ProtocolChanges() = default;

void ProtocolChanges::load(const Meeting& meeting)
{
    m_meeting = meeting;
    const auto read = [ledger = Ledger{m_ground.paths, meeting.id}, file = meeting.jsonPath,
                       comparing = m_comparing]() -> std::optional<Content> {
        const Ledger::Content lines = ledger.read();
        if (lines.changes.isEmpty() && !lines.unreadable) return Content{};
        files::Identity identity;
        const auto bytes = files::readWhole(QFile::encodeName(file), summaryFile::sizeLimit, &identity);
        const auto summary = bytes ? json::object(*bytes) : std::nullopt;
        if (!summary) return std::nullopt; // it is being rewritten
        const QList<ProtocolItem> items = protocolItems::editable(*summary);
        Content content{.history = ChangeHistory::of(lines, items),
                        .rows = {},
                        .fileTime = double(identity.modifiedNs) / 1e9,
                        .unreadable = lines.unreadable,
                        .unfinished = std::ranges::any_of(lines.changes, [&](const ProtocolChange& change) {
                            return !lines.ended.contains(change.id);
                        })};
        for (const ChangeHistory::Entry& entry : std::as_const(content.history.entries)) {
            const bool undo = entry.state == State::Holds;
            const ProtocolChange wish{.section = entry.change.section,
                                      .index = entry.change.index,
                                      .before = undo ? entry.change.after : entry.change.before};
            if (ProtocolWriter::meant(items, wish, ProtocolWriter::Where::Anywhere))
                content.possible.insert(entry.change.id);
        }
        content.rows = comparing ? rowsOf(compared(lines.original, items)) : rowsOf(content.history);
        return content;
    };
    inBackground(m_load.renew(), read, [this](const std::optional<Content>& content) {
        if (!content) return;
        if (content->unfinished && !std::exchange(m_settled, true)) m_ground.writer.settle(m_meeting);
        m_gone.subtract(content->possible);
        m_writing.subtract(std::exchange(m_written, {}));
        m_history = content->history;
        m_fileTime = content->fileTime;
        m_unreadable = content->unreadable;
        setRows(content->rows);
        emit changed();
    });
}

QList<ProtocolChanges::Row> ProtocolChanges::rowsOf(const ChangeHistory& history)
{
    QList<Row> rows;
    for (const auto& foreign : history.foreign)
        rows.append({.foreign = foreign, .pieces = between(foreign.before, foreign.after)});
    for (qsizetype i = history.entries.size() - 1; i >= 0 && rows.size() < mostRows; --i) {
        const ChangeHistory::Entry& entry = history.entries[i];
        rows.append({.entry = entry, .pieces = between(entry.change.before, entry.change.after)});
    }
    return rows;
}

QList<ProtocolChanges::Row> ProtocolChanges::rowsOf(const QList<ComparedItem>& items)
{
    QList<Row> rows;
    for (const ComparedItem& item : items) {
        const bool first = rows.isEmpty() || rows.last().item->section != item.section;
        rows.append({.item = item, .titled = first, .pieces = between(item.before, item.after)});
    }
    return rows;
}

void ProtocolChanges::setRows(const QList<Row>& rows)
{
    const auto same = std::ranges::mismatch(m_rows, rows).in1 - m_rows.begin();
    qsizetype was = m_rows.size();
    qsizetype now = rows.size();
    while (was > same && now > same && m_rows[was - 1] == rows[now - 1]) {
        --was;
        --now;
    }
    const qsizetype replaced = std::min(was, now);
    for (qsizetype i = same; i < replaced; ++i) {
        m_rows[i] = rows[i];
        emit dataChanged(index(int(i)), index(int(i)));
    }
    if (was > now) {
        beginRemoveRows({}, int(now), int(was) - 1);
        m_rows = rows;
        endRemoveRows();
    } else if (now > was) {
        beginInsertRows({}, int(was), int(now) - 1);
        m_rows = rows;
        endInsertRows();
    }
}

void ProtocolChanges::setComparing(bool comparing)
{
    if (std::exchange(m_comparing, comparing) == comparing) return;
    setRows({});
    emit changed();
    load(m_meeting);
}

QString ProtocolChanges::counts() const
{
    const QString language = m_ground.language.current();
    const auto undone = std::ranges::count(m_history.entries, State::Undone, &ChangeHistory::Entry::state);
    const QString all = Language::count(language, u"ledger.changes"_s, total());
    return undone > 0 ? all + u", "_s + Language::count(language, u"ledger.undone"_s, undone) : all;
}

int ProtocolChanges::overwrittenCount() const
{
    return int(std::ranges::count(m_history.entries, State::Overwritten, &ChangeHistory::Entry::state));
}

QString ProtocolChanges::overwritten() const
{
    QStringList sections;
    for (const auto& entry : m_history.entries) {
        const QString title = titleOf(entry.change.section, m_ground.language.current());
        if (entry.state == State::Overwritten && !sections.contains(title)) sections.append(title);
    }
    return sections.join(u", "_s);
}

const ChangeHistory::Entry* ProtocolChanges::entryAt(int row) const
{
    return row >= 0 && row < m_rows.size() && m_rows[row].entry ? &*m_rows[row].entry : nullptr;
}

void ProtocolChanges::undo(int row)
{
    const auto* entry = entryAt(row);
    if (entry && entry->state == State::Holds) write(*entry, Kind::Undo);
}

void ProtocolChanges::redo(int row)
{
    const auto* entry = entryAt(row);
    if (entry && entry->state != State::Holds) write(*entry, Kind::Redo);
}

void ProtocolChanges::undoLast()
{
    QSet<QString> passed = m_gone;
    for (const auto& foreign : std::as_const(m_history.foreign))
        passed.insert(foreign.change);
    const auto last =
        std::find_if(m_history.entries.crbegin(), m_history.entries.crend(), [&](const auto& entry) {
            const QString& id = entry.change.id;
            return entry.state == State::Holds && !passed.contains(id) && !m_writing.contains(id);
        });
    if (last != m_history.entries.crend()) write(*last, Kind::Undo);
}

void ProtocolChanges::restore()
{
    for (const auto& entry : QList{m_history.entries}) {
        if (entry.state == State::Overwritten) write(entry, Kind::Redo);
    }
}

void ProtocolChanges::keep()
{
    QStringList ids;
    for (const auto& entry : std::as_const(m_history.entries)) {
        if (entry.state == State::Overwritten) ids.append(entry.change.id);
    }
    const auto note = [ledger = Ledger{m_ground.paths, m_meeting.id}, ids, now = m_ground.scheduler.now()] {
        return std::ranges::all_of(
            ids, [&](const QString& id) { return ledger.keep(id, now) == OwnWritten::Yes; });
    };
    inBackground(this, note, [this](bool noted) {
        if (!noted) say(Message::of("own.failed", u"edits"_s), true);
        load(m_meeting);
    });
}

void ProtocolChanges::write(const ChangeHistory::Entry& entry, Kind kind)
{
    const bool undo = kind == Kind::Undo;
    const ProtocolChange of = entry.change;
    if (m_writing.contains(of.id)) return;
    m_writing.insert(of.id);
    const ProtocolChange change{.kind = kind,
                                .section = of.section,
                                .index = of.index,
                                .before = undo ? of.after : of.before,
                                .after = undo ? of.before : of.after,
                                .of = of.id};
    m_gone.remove(of.id);
    m_ground.writer.write(
        m_meeting, change, ProtocolWriter::Where::Anywhere, this,
        [this](ProtocolWriter::Written outcome, const ProtocolChange& change) {
            using Written = ProtocolWriter::Written;
            m_written.insert(change.of);
            switch (outcome) {
            case Written::Yes:
                say(Message::of(change.kind == Kind::Undo ? "ledger.undone" : "ledger.redone", change.after));
                break;
            case Written::Unlisted:
                say(Message::of("ledger.failed"), true);
                break;
            case Written::Changed:
            case Written::NotFound:
                m_gone.insert(change.of);
                say(Message::of("ledger.gone"), true);
                break;
            case Written::Failed:
                say(Message::of("editor.error.save"), true);
                break;
            }
            if (outcome == Written::Yes || outcome == Written::Unlisted) emit written(change);
            if (!m_rows.isEmpty()) emit dataChanged(index(0), index(int(m_rows.size()) - 1));
            load(m_meeting);
        });
}

void ProtocolChanges::say(const Message& message, bool failed)
{
    m_message = message;
    m_failed = failed;
    if (!message.isEmpty()) emit told();
    emit changed();
}

void ProtocolChanges::forgetMessage()
{
    if (!m_message.isEmpty()) say({});
}

void ProtocolChanges::copyBefore(int row)
{
    const auto* entry = entryAt(row);
    if (!entry) return;
    const bool undone = entry->state != State::Holds; // then what was to come back is the text after it
    const QString& text = undone ? entry->change.after : entry->change.before;
    m_ground.desktop.copyText(text);
    emit copied(text.toUtf8().size());
}

ChangeRow ProtocolChanges::drawn(const Row& row) const
{
    const QString language = m_ground.language.current();
    const QDate today = m_ground.scheduler.moment().date();
    const auto momentOf = [&](double time) {
        return captions::moment(QDateTime::fromMSecsSinceEpoch(qint64(time * 1000)), today, language);
    };
    ChangeRow shown;
    if (row.item) {
        shown.title = titleOf(row.item->section, language);
    } else if (row.foreign) {
        shown.title = titleOf(row.foreign->section, language);
        shown.time = momentOf(m_fileTime);
        shown.foreign = true;
    } else if (row.entry) {
        const ChangeHistory::Entry& entry = *row.entry;
        shown.title = titleOf(entry.change.section, language);
        shown.time = momentOf(entry.change.time);
        shown.remark = text::shortened(entry.change.remark, mostCompared);
        shown.holds = entry.state == State::Holds;
        shown.undoable = shown.holds;
        shown.redoable = !shown.holds;
        shown.gone = m_gone.contains(entry.change.id);
        if (entry.state == State::Undone) {
            shown.note = Language::text(language, u"ledger.undone_at"_s, momentOf(entry.undoneAt));
        } else if (!shown.holds) {
            shown.note = Language::text(language, entry.state == State::Kept ? u"ledger.kept"_s
                                                                             : u"ledger.overwritten"_s);
        }
    }
    shown.pieces = drawnDifference::pieces(row.pieces);
    QStringList parts{shown.time.isEmpty() ? shown.title : shown.title + u", "_s + shown.time};
    if (shown.foreign) parts.append(Language::text(language, u"ledger.foreign"_s));
    const QString difference = drawnDifference::spoken(row.pieces, language);
    parts.append(difference.isEmpty() && row.item ? row.item->after : difference);
    if (!shown.remark.isEmpty()) parts.append(Language::text(language, u"ledger.remark"_s, shown.remark));
    if (!shown.note.isEmpty()) parts.append(shown.note);
    shown.spoken = parts.join(u". "_s);
    if (!row.titled) shown.title.clear();
    return shown;
}

int ProtocolChanges::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ProtocolChanges::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != rowRole) return {};
    return QVariant::fromValue(drawn(m_rows[index.row()]));
}

QHash<int, QByteArray> ProtocolChanges::roleNames() const { return {{rowRole, "row"}}; }

} // namespace murmeli
