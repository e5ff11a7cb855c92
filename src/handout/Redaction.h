#pragma once

#include "language/Words.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace murmeli {

/// Replaces the names of people by "Участник 1", in every form in which Russian and English have them, and
/// finds those that are left. A plain value; any thread.
class Redaction {
public:
    Redaction() = default;
    /// \param names of everybody who may be named; \param label for somebody, as "Участник".
    Redaction(const QStringList& names, const QString& label);

    /// The text without names. People are numbered as they appear.
    [[nodiscard]] QString withoutNames(const QString& text);

    /// How many people have been met.
    [[nodiscard]] qsizetype count() const { return m_numbers.size(); }
    /// Who was met first, as they are named; empty when nobody was.
    [[nodiscard]] QString first() const { return m_first; }

    /// A name that stands in `text`, or a word that begins like one and is as long as one of its forms.
    [[nodiscard]] QString leftIn(const QString& text) const;

    /// Runs of digits with their signs become "…"; moments of the meeting, as [00:12:31], stay.
    static QString withoutNumbers(const QString& text);

private:
    struct Named {
        QSet<int> people;
        bool capital = false; ///< it is a name only with one
        bool own = false;     ///< a form of the name itself
    };
    struct Beginning { ///< of a name, and how long its forms are
        QString letters;
        QSet<qsizetype> sizes;
    };
    struct Found { ///< somebody in a text
        words::Span where;
        int person = 0;
    };
    void add(const QStringList& parts, int person);
    [[nodiscard]] const Named* named(QStringView word) const;
    [[nodiscard]] QList<Found> find(const QString& text) const;

    QString m_label;
    QHash<QString, Named> m_forms;
    QList<std::pair<QString, int>> m_written; ///< names in scripts that put no spaces between words
    QSet<QString> m_particles;                ///< as "de"; they belong to a name between its parts only
    QList<Beginning> m_beginnings;
    QHash<int, int> m_numbers;
    QStringList m_names; ///< of the people
    QString m_first;
};

} // namespace murmeli
