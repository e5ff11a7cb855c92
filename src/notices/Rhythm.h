#pragma once

#include <QHash>
#include <QJsonObject>
#include <QString>

#include <deque>
#include <optional>

namespace murmeli {

/// How often the service writes its state while nothing changes in it, learned for each status apart: one
/// that writes only when something changes has no rhythm, and its silence says nothing. A plain value.
class Rhythm final {
public:
    /// The service has written the same content again after `seconds`.
    void heard(const QString& status, double seconds);

    /// Seconds between two writings; nothing while it is not known.
    [[nodiscard]] std::optional<double> of(const QString& status) const;

    /// Whether a service that has not written for so many seconds would have, if it lived.
    [[nodiscard]] bool isSilence(const QString& status, double seconds) const;

    /// Takes what an earlier run has learned, where this one has not.
    void remember(const QHash<QString, double>& learned);
    [[nodiscard]] QHash<QString, double> learned() const;
    /// The same as it is kept in a file.
    void remember(const QJsonObject& learned);

private:
    QHash<QString, std::deque<double>> m_heard; ///< the latest of each status
    QHash<QString, double> m_remembered;
};

} // namespace murmeli
