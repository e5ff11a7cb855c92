#include "Receipt.h"

#include "base/Dates.h"
#include "base/Json.h"

#include <QJsonArray>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace murmeli {

Receipt Receipt::begun(double now)
{
    return {.id = QUuid::createUuid().toString(QUuid::WithoutBraces), .time = now, .result = u"begun"_s};
}

Receipt Receipt::of(const QJsonObject& line)
{
    Receipt receipt{.id = json::text(line, "id"_L1),
                    .time = dates::fromIso8601(json::text(line, "t"_L1)).value_or(0),
                    .stem = json::text(line, "stem"_L1),
                    .kind = json::text(line, "kind"_L1),
                    .to = json::text(line, "to"_L1),
                    .bytes = json::integer(line, "bytes"_L1).value_or(0),
                    .parts = {},
                    .items = json::integer(line, "items"_L1).value_or(0),
                    .result = json::text(line, "result"_L1),
                    .status = int(json::integer(line, "status"_L1).value_or(0)),
                    .reason = json::text(line, "reason"_L1)};
    for (const auto& part : line[u"parts"_s].toArray())
        receipt.parts.append(part.toString());
    return receipt;
}

QJsonObject Receipt::line() const
{
    QJsonObject line{{u"id"_s, id},
                     {u"t"_s, dates::iso8601(time)},
                     {u"stem"_s, stem},
                     {u"kind"_s, kind},
                     {u"to"_s, to},
                     {u"bytes"_s, bytes},
                     {u"parts"_s, QJsonArray::fromStringList(parts)}};
    if (items > 0) line[u"items"_s] = items;
    if (!result.isEmpty()) line[u"result"_s] = result;
    if (status > 0) line[u"status"_s] = status;
    if (!reason.isEmpty()) line[u"reason"_s] = reason;
    return line;
}

} // namespace murmeli
