#pragma once

#include "MeetingScanner.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>
#include <vector>

namespace murmeli {

class Language;

/// The meetings that match the search, newest first, with the day as section. A rescan changes only the rows
/// that differ, so that scroll position, selection and focus stay. Main thread only.
class MeetingListModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the list")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged FINAL)
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY countChanged FINAL)      ///< there is no meeting at all
    Q_PROPERTY(QString today READ todayText NOTIFY todayChanged FINAL) ///< changes with the day

public:
    enum Role {
        IdRole = Qt::UserRole,
        TitleRole,
        SummaryRole,
        TimeRole,
        DayRole,
        DateRole, ///< where there are no days above the rows
        TitleHitRole,
        SummaryHitRole,
        HeardRole
    };

    /// \param language in which times are written.
    explicit MeetingListModel(const Language& language, QObject* parent = nullptr);

    [[nodiscard]] QString query() const { return m_query; }
    [[nodiscard]] int count() const { return int(m_shown.size()); }
    [[nodiscard]] bool isEmpty() const { return m_all->isEmpty(); }
    [[nodiscard]] QDate today() const { return m_today; }
    [[nodiscard]] QString todayText() const { return m_today.toString(Qt::ISODate); }

    /// What is searched for in titles and summaries, whatever the case; white space at its ends does not
    /// count.
    void setQuery(const QString& query);

    /// What is found elsewhere than in titles and summaries.
    struct Found {
        QStringList ids;
        bool inOrder = false; ///< of these ids, and not by days
        bool alone = false;   ///< what the query finds in titles and summaries does not count
        bool operator==(const Found&) const = default;
    };
    void setFound(const std::optional<Found>& found);
    /// Whether the query finds any meeting by its title or summary.
    [[nodiscard]] bool findsTitles() const { return !m_needle.isEmpty() && !m_titled.empty(); }

    /// The meetings as a scan found them; `today` is the day it is.
    void setMeetings(const QList<ListedMeeting>& meetings, const QDate& today);

    /// All of them, whatever is searched for; the newest first.
    [[nodiscard]] const QList<ListedMeeting>& all() const { return *m_all; }
    [[nodiscard]] const Meeting* find(const QString& id) const;

    Q_INVOKABLE [[nodiscard]] QString idAt(int row) const;
    Q_INVOKABLE [[nodiscard]] int rowOf(const QString& id) const;
    /// The heading of a section, in `language`. \param day as DayRole gives it.
    Q_INVOKABLE [[nodiscard]] QString dayTitle(const QString& day, const QString& language) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
    void queryChanged();
    void countChanged();
    void todayChanged();

private:
    using Row = std::shared_ptr<const ListedMeeting>; // holds the whole list that it is from
    using Rows = QList<Row>;

    void filterTitles(bool narrower);
    [[nodiscard]] Rows matching();
    [[nodiscard]] Row rowAt(qsizetype position) const { return {m_all, &m_all->at(position)}; }
    [[nodiscard]] qsizetype positionOf(const QString& id);
    void become(const Rows& rows);
    bool becomeByDifference(const Rows& rows);
    void reset(const Rows& rows);
    [[nodiscard]] QVariant hit(const QString& text) const;

    const Language& m_language;
    std::shared_ptr<const QList<ListedMeeting>> m_all = std::make_shared<QList<ListedMeeting>>();
    Rows m_shown;
    QString m_query;
    QString m_needle;                ///< trimmed and lower-cased
    std::vector<qsizetype> m_titled; ///< positions of meetings that it finds; ascending
    std::optional<Found> m_found;
    QHash<QString, qsizetype> m_positions; ///< by the id, once somebody searches
    QDate m_today;
};

} // namespace murmeli
