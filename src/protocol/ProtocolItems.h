#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

/// The items of a protocol in its summary file: which can be shown, which can be corrected. Pure functions,
/// any thread.
namespace murmeli {

struct ProtocolItem {
    QString section; ///< key in the summary file
    qsizetype index = 0;
    QString text;
    std::optional<QString> field; ///< the member that holds the text where the element is an object
    bool isAlone = false;         ///< its section is a text, not a list
    bool operator==(const ProtocolItem&) const = default;
};

/// A section as it is shown.
struct ProtocolSection {
    struct Item {
        qsizetype index = 0; ///< position in the summary file's list
        QString text;
        bool operator==(const Item&) const = default;
    };
    QString key; ///< in the summary file
    QString titleKey;
    QList<Item> items;
    bool operator==(const ProtocolSection&) const = default;
};

namespace protocolItems {

/// Everything that a remark can mean, in the order in which the server is told.
QList<ProtocolItem> editable(const QJsonObject& summary);

/// The sections to show, without empty ones.
QList<ProtocolSection> sections(const QJsonObject& summary);

/// Whether the protocol was corrected before.
bool isEdited(const QJsonObject& summary);

/// `bytes` (the summary file) with the item replaced and the correction noted; all else as it was written.
/// \param now seconds since 1970 UTC. \return nothing when the item is none that can be written.
std::optional<QByteArray> corrected(const QByteArray& bytes, const QString& section, qsizetype index,
                                    const QString& text, double now);

} // namespace protocolItems

} // namespace murmeli
