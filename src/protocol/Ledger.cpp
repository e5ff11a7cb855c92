#include "Ledger.h"

#include "base/Dates.h"
#include "base/Json.h"
#include "service/Paths.h"

#include <QJsonArray>
#include <QUuid>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using Kind = ProtocolChange::Kind;

constexpr qint64 sizeLimit = 16 * 1024 * 1024; // bytes
constexpr std::array<std::pair<Kind, QLatin1StringView>, 3> kinds = {
    std::pair{Kind::Remark, "remark"_L1}, std::pair{Kind::Undo, "undo"_L1}, std::pair{Kind::Redo, "redo"_L1}};

std::optional<Kind> kindOf(const QString& name)
{
    for (const auto& [kind, written] : kinds) {
        if (name == written) return kind;
    }
    return std::nullopt;
}

QJsonValue fieldOf(const QString& field) { return field.isEmpty() ? QJsonValue{} : QJsonValue{field}; }

QJsonObject lineOf(const ProtocolChange& change)
{
    QJsonObject line{{u"id"_s, change.id},
                     {u"t"_s, dates::iso8601(change.time)},
                     {u"kind"_s, QString{kinds[size_t(change.kind)].second}},
                     {u"section"_s, change.section},
                     {u"index"_s, change.index},
                     {u"field"_s, fieldOf(change.field)},
                     {u"before"_s, change.before},
                     {u"after"_s, change.after},
                     {u"step"_s, u"begun"_s}};
    if (change.kind == Kind::Remark) {
        line[u"remark"_s] = change.remark;
    } else {
        line[u"of"_s] = change.of;
    }
    return line;
}

QJsonObject originalLine(const QList<ProtocolItem>& items, double time)
{
    QJsonArray list;
    for (const ProtocolItem& item : items)
        list.append(QJsonObject{{u"section"_s, item.section},
                                {u"index"_s, item.index},
                                {u"field"_s, fieldOf(item.field.value_or(QString{}))},
                                {u"text"_s, item.text}});
    return {{u"id"_s, QUuid::createUuid().toString(QUuid::WithoutBraces)},
            {u"t"_s, dates::iso8601(time)},
            {u"kind"_s, u"original"_s},
            {u"items"_s, list}};
}

ProtocolItem itemOf(const QJsonObject& object)
{
    return {.section = json::text(object, "section"_L1),
            .index = qsizetype(json::integer(object, "index"_L1).value_or(0)),
            .text = json::text(object, "text"_L1),
            .field = json::optionalText(object, "field"_L1)};
}

} // namespace

Ledger::Ledger(const Paths& paths, const QString& meeting)
    : m_lines({meeting.contains(u'/') ? QString{} : paths.ownData, u"edits/"_s + meeting + u".jsonl"_s,
               sizeLimit})
{
}

Ledger::Content Ledger::read() const
{
    const OwnLines::Content lines = m_lines.read();
    Content content{.unreadable = lines.unreadable};
    QSet<QString> failed;
    for (const QJsonObject& line : lines.lines) {
        if (json::text(line, "step"_L1) == "failed"_L1) failed.insert(json::text(line, "id"_L1));
    }
    for (const QJsonObject& line : lines.lines) {
        const QString id = json::text(line, "id"_L1);
        const QString step = json::text(line, "step"_L1);
        const QString kind = json::text(line, "kind"_L1);
        if (step == "done"_L1) {
            content.ended.insert(id);
        } else if (kind == "kept"_L1) {
            content.kept.insert(json::text(line, "of"_L1));
        } else if (kind == "original"_L1 && content.original.isEmpty()) {
            for (const QJsonObject& item : json::objects(line, "items"_L1))
                content.original.append(itemOf(item));
        } else if (const auto known = kindOf(kind); known && !id.isEmpty()) {
            if (failed.contains(id)) continue;
            if (*known == Kind::Redo) content.kept.remove(json::text(line, "of"_L1));
            content.changes.append({.id = id,
                                    .time = dates::fromIso8601(json::text(line, "t"_L1)).value_or(0),
                                    .kind = *known,
                                    .section = json::text(line, "section"_L1),
                                    .index = qsizetype(json::integer(line, "index"_L1).value_or(0)),
                                    .field = json::text(line, "field"_L1),
                                    .before = json::text(line, "before"_L1),
                                    .after = json::text(line, "after"_L1),
                                    .remark = json::text(line, "remark"_L1),
                                    .of = json::text(line, "of"_L1)});
        }
    }
    return content;
}

OwnWritten Ledger::begin(const ProtocolChange& change, const QList<ProtocolItem>& items) const
{
    const Content known = read();
    if (known.unreadable) return OwnWritten::Unreadable;
    if (known.original.isEmpty()) {
        const OwnWritten written = m_lines.append(originalLine(items, change.time));
        if (written != OwnWritten::Yes) return written;
    }
    return m_lines.append(lineOf(change));
}

OwnWritten Ledger::end(const QString& change, bool carriedOut, double now) const
{
    return m_lines.append({{u"id"_s, change},
                           {u"t"_s, dates::iso8601(now)},
                           {u"step"_s, carriedOut ? u"done"_s : u"failed"_s}});
}

OwnWritten Ledger::keep(const QString& change, double now) const
{
    return m_lines.append({{u"id"_s, QUuid::createUuid().toString(QUuid::WithoutBraces)},
                           {u"t"_s, dates::iso8601(now)},
                           {u"kind"_s, u"kept"_s},
                           {u"of"_s, change}});
}

} // namespace murmeli
