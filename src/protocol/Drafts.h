#pragma once

#include <QHash>
#include <QObject>
#include <QString>

namespace murmeli {

/// The remarks that were written and not carried out yet, by the meeting. Main thread only.
class Drafts final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] QString of(const QString& meeting) const { return m_drafts.value(meeting); }

    void set(const QString& meeting, const QString& draft);

    /// The words of a remark that was are wanted no more, unless others have come in their place.
    void carryOut(const QString& meeting, const QString& remark);

signals:
    void changed(const QString& meeting);
    void carriedOut();

private:
    QHash<QString, QString> m_drafts;
};

} // namespace murmeli
