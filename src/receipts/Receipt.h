#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace murmeli {

/// That something has left this computer, or was to: never what it said.
struct Receipt {
    QString id;
    double time = 0; ///< in seconds since 1970 UTC
    QString stem;    ///< of the meeting; empty where nothing of one was in it
    QString kind;    ///< a purpose's, or "clipboard", "file", "mail"
    QString to;      ///< an origin, the name of a folder, a program
    qint64 bytes = 0;
    QStringList parts;
    qint64 items = 0;
    QString result; ///< "begun", "answered", "refused" or "failed"; empty where nobody answers
    int status = 0; ///< of an answer
    QString reason; ///< of a failure: "offline", "broken", "timeout", "tls", "status" or "cancelled"

    static Receipt begun(double now);
    /// Lenient: a member that is missing or of another type is empty.
    static Receipt of(const QJsonObject& line);
    [[nodiscard]] QJsonObject line() const;

    bool operator==(const Receipt&) const = default;
};

} // namespace murmeli
