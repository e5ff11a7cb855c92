#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// What the user noted to a moment of a meeting.
class Mark {
    Q_GADGET
    QML_VALUE_TYPE(mark)
    Q_PROPERTY(QString text MEMBER text FINAL)
    Q_PROPERTY(QString stamp READ stamp FINAL)

public:
    double time = 0;  ///< of its first letter, in seconds since 1970 UTC; what tells marks apart
    double begin = 0; ///< of its meeting, in the same
    QString text;

    /// From the meeting's begin, as "09:41" or "1:02:03".
    [[nodiscard]] QString stamp() const;

    static constexpr qsizetype longest = 500; ///< characters
    bool operator==(const Mark&) const = default;
};

} // namespace murmeli
