#pragma once

#include "Transcript.h"
#include "base/Lease.h"
#include "language/Words.h"
#include "margin/MeetingMarks.h"
#include "meetings/Meeting.h"

#include <QAbstractListModel>
#include <QColor>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace murmeli {

class Desktop;
class Language;
class ProtocolFinder;

/// What was said at a meeting, line by line, to be read, searched and copied. Reads and searches beside the
/// main thread; its own functions are for that thread only.
class TranscriptModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(bool loaded READ loaded NOTIFY loadedChanged FINAL)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY loadedChanged FINAL) ///< there is no transcript
    Q_PROPERTY(bool cut READ isCut NOTIFY loadedChanged FINAL)     ///< only its beginning is shown
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged FINAL)
    Q_PROPERTY(int hitCount READ hitCount NOTIFY hitsChanged FINAL) ///< -1 before the first answer
    Q_PROPERTY(int hit READ hit NOTIFY hitsChanged FINAL)           ///< the current one, from 1; 0: none
    Q_PROPERTY(int here READ here NOTIFY hereChanged FINAL) ///< row of the moment it was opened at, or -1
    Q_PROPERTY(int current READ current NOTIFY selectionChanged FINAL) ///< row that the keyboard is at, or -1
    Q_PROPERTY(bool selecting READ isSelecting NOTIFY selectionChanged FINAL)

public:
    enum Role {
        StampRole = Qt::UserRole,
        SpeakerRole,
        WordsRole,
        PlaceRole,   ///< of the speaker, in the order of their first words; -1 without one
        MarksRole,   ///< texts of the marks below the line
        FoundRole,   ///< it has hits
        CurrentRole, ///< it has the current hit
        SelectedRole,
    };

    struct Ground {
        std::shared_ptr<ProtocolFinder> protocols;
        const Language& language;
        Desktop& desktop;
        MeetingMarks& marks;
    };
    explicit TranscriptModel(Ground ground, QObject* parent = nullptr);

    static constexpr qint64 longest = 16 * 1024 * 1024; ///< bytes of a protocol that are read

    /// Reads the meeting's transcript; what is shown stays until it is there.
    void load(const Meeting& meeting);
    /// Forgets it, for when nobody reads it any more.
    void close();
    /// Goes to what was said at a stamp, once it is loaded; an empty one: the beginning.
    void openAt(const QString& stamp);

    [[nodiscard]] bool loaded() const { return m_loaded; }
    [[nodiscard]] bool isEmpty() const { return m_lines.isEmpty(); }
    [[nodiscard]] bool isCut() const { return m_cut; }
    [[nodiscard]] QString query() const { return m_query; }
    void setQuery(const QString& query);
    [[nodiscard]] int hitCount() const { return m_query.trimmed().isEmpty() ? -1 : int(m_hits.size()); }
    [[nodiscard]] int hit() const { return m_hit + 1; }
    [[nodiscard]] int here() const { return m_here; }
    [[nodiscard]] int current() const { return m_last; }
    [[nodiscard]] bool isSelecting() const { return m_last >= 0; }

    Q_INVOKABLE void step(int direction); ///< to the next hit, or with -1 to the one before

    /// Selects a line, or all from the one selected first.
    Q_INVOKABLE void select(int row, bool extend);
    Q_INVOKABLE void clearSelection();

    /// Puts the selected lines on the clipboard, with who said them, when and where.
    Q_INVOKABLE void copyQuote();
    Q_INVOKABLE void copyAll();
    /// Marks the line that was selected last.
    Q_INVOKABLE void mark();

    /// A line's words with its hits on these grounds, the current one with its own ink, as rich text.
    Q_INVOKABLE [[nodiscard]] QString marked(int row, const QColor& ground, const QColor& current,
                                             const QColor& ink) const;
    /// How a row is read out, in `language`.
    Q_INVOKABLE [[nodiscard]] QString spoken(int row, const QString& language) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
    void copied(bool whole, qint64 bytes);
    void loadedChanged();
    void queryChanged();
    void hitsChanged();
    void hereChanged();
    void selectionChanged();
    void hitShown(int row); ///< the current hit is there

private:
    struct Content {
        QList<TranscriptLine> lines;
        bool cut = false;
    };
    struct Hit {
        int row = 0;
        words::Span span;
    };
    void take(const Content& content);
    void find();
    void takeHits(const QList<Hit>& hits);
    void settleHere();
    void placeMarks();
    void tellRows(int first, int last, const QList<int>& roles);
    [[nodiscard]] int rowAt(qint64 seconds) const;
    [[nodiscard]] std::pair<int, int> selected() const;
    [[nodiscard]] QString reference(const TranscriptLine& line) const;

    Ground m_ground;
    Meeting m_meeting;
    QList<TranscriptLine> m_lines;
    QHash<QString, int> m_places; ///< of the speakers
    QHash<int, QStringList> m_marks;
    QString m_query;
    QList<Hit> m_hits;
    QString m_wanted; ///< a stamp
    int m_hit = -1;
    int m_here = -1;
    int m_first = -1; ///< of the selection, as the next
    int m_last = -1;
    bool m_cut = false;
    bool m_loaded = false;
    Lease m_load;
    Lease m_find;
};

} // namespace murmeli
