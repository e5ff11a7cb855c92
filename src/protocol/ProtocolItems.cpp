#include "ProtocolItems.h"

#include "base/Dates.h"
#include "base/Json.h"
#include "base/Text.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace murmeli::protocolItems {

namespace {

struct Row {
    QLatin1StringView key;
    QLatin1StringView field; ///< of an element that is an object; empty: such elements do not count
};

constexpr std::array editableRows = {Row{"decisions"_L1, {}},  Row{"action_items"_L1, "task"_L1},
                                     Row{"next_steps"_L1, {}}, Row{"open_questions"_L1, {}},
                                     Row{"risks"_L1, {}},      Row{"summary"_L1, {}},
                                     Row{"tldr"_L1, {}}};
constexpr std::array shownRows = {Row{"decisions"_L1, "text"_L1}, Row{"action_items"_L1, "task"_L1},
                                  Row{"next_steps"_L1, "text"_L1}, Row{"open_questions"_L1, "text"_L1},
                                  Row{"risks"_L1, "text"_L1}};

std::optional<QString> elementText(const QJsonValue& element, QLatin1StringView field)
{
    if (element.isString()) return element.toString();
    if (field.isEmpty() || !element.isObject()) return std::nullopt;
    return json::optionalText(element.toObject(), field);
}

} // namespace

QList<ProtocolItem> editable(const QJsonObject& summary)
{
    QList<ProtocolItem> items;
    for (const Row& row : editableRows) {
        const QJsonValue value = summary.value(row.key);
        if (value.isString() && !murmeli::text::trimmed(value.toString()).isEmpty())
            items.append({row.key, 0, value.toString(), std::nullopt, true});
        const QJsonArray list = value.toArray();
        for (qsizetype i = 0; i < list.size(); ++i) {
            const QJsonValue element = list[i];
            const auto text = elementText(element, row.field);
            if (!text) continue;
            const auto field = element.isObject() ? std::optional{QString{row.field}} : std::nullopt;
            items.append({row.key, i, *text, field, false});
        }
    }
    return items;
}

QList<ProtocolSection> sections(const QJsonObject& summary)
{
    QList<ProtocolSection> sections;
    for (const Row& row : shownRows) {
        ProtocolSection section{row.key, u"detail."_s + row.key, {}};
        const QJsonArray list = summary.value(row.key).toArray();
        for (qsizetype i = 0; i < list.size(); ++i) {
            const QString text = murmeli::text::trimmed(elementText(list[i], row.field).value_or(QString{}));
            if (!text.isEmpty()) section.items.append({i, text});
        }
        if (!section.items.isEmpty()) sections.append(section);
    }
    return sections;
}

bool isEdited(const QJsonObject& summary)
{
    return json::boolean(summary.value("_meta"_L1).toObject(), "edited"_L1).value_or(false);
}

std::optional<QByteArray> corrected(const QByteArray& bytes, const QString& section, qsizetype index,
                                    const QString& text, double now)
{
    const auto summary = json::object(bytes);
    const auto* const row = std::ranges::find(editableRows, section, &Row::key);
    if (!summary || row == editableRows.end()) return std::nullopt;

    const QJsonValue value = summary->value(section);
    QList<json::Step> path{section};
    if (!value.isString()) {
        const QJsonArray list = value.toArray();
        if (index < 0 || index >= list.size()) return std::nullopt;
        path.append(index);
        if (list[index].isObject() && !row->field.isEmpty()) {
            path.append(QString{row->field});
        } else if (!list[index].isString()) {
            return std::nullopt;
        }
    }
    auto result = json::withValueAt(bytes, path, text);

    const QString meta = u"_meta"_s;
    const QJsonObject old = summary->value(meta).toObject();
    if (result && !summary->value(meta).isObject()) result = json::withMember(*result, meta, QJsonObject{});
    const auto note = [&](const QString& key, const QJsonValue& noted) {
        if (result) result = json::withValueAt(*result, {meta, key}, noted);
    };
    note(u"edited"_s, true);
    note(u"edited_at"_s, dates::iso8601(now));
    const qint64 edits = json::integer(old, "edits"_L1).value_or(0);
    note(u"edits"_s, edits < std::numeric_limits<qint64>::max() ? edits + 1 : edits);
    return result;
}

} // namespace murmeli::protocolItems
