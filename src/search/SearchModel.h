#pragma once

#include "FoundPlace.h"
#include "SearchIndex.h"
#include "Searcher.h"
#include "base/Lease.h"

#include <QColor>
#include <QObject>
#include <QThreadPool>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace murmeli {

class GlossaryStore;
class Language;
class MeetingStore;
class Scheduler;

/// What somebody looks for in all meetings, and what is found: which of them the list shows, and the places
/// in them. Asks and reads beside the main thread; its own functions are for that thread only.
class SearchModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the list of meetings")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged FINAL)
    Q_PROPERTY(QString speaker READ speaker WRITE setSpeaker NOTIFY queryChanged FINAL) ///< empty: anybody
    Q_PROPERTY(Period period READ period WRITE setPeriod NOTIFY queryChanged FINAL)
    Q_PROPERTY(Where where READ where WRITE setWhere NOTIFY queryChanged FINAL)
    Q_PROPERTY(bool best READ isBest WRITE setBest NOTIFY queryChanged FINAL) ///< first; else the newest
    Q_PROPERTY(bool searching READ isSearching NOTIFY queryChanged FINAL)     ///< for anything
    Q_PROPERTY(bool settled READ isSettled NOTIFY changed FINAL)              ///< all that is found is known
    Q_PROPERTY(QString layout READ layout NOTIFY changed FINAL) ///< is looked for instead, if not empty
    Q_PROPERTY(QList<murmeli::SearchWayOut> waysOut READ waysOut NOTIFY changed FINAL)
    Q_PROPERTY(QStringList speakers READ speakers NOTIFY changed FINAL) ///< by how often they take part
    Q_PROPERTY(bool building READ isBuilding NOTIFY changed FINAL)      ///< the index
    Q_PROPERTY(int revision READ revision NOTIFY placesChanged FINAL)   ///< of places, counts and trouble

public:
    enum Period { Ever, Week, Month, Year };
    Q_ENUM(Period)
    enum Where { Everywhere, InTitle, InProtocol, InAnalysis, InTranscript };
    Q_ENUM(Where)

    struct Ground {
        MeetingStore& store;
        SearchIndex& index;
        const GlossaryStore& glossary;
        const Language& language;
        Scheduler& scheduler;
    };
    explicit SearchModel(const Ground& ground, QObject* parent = nullptr);
    ~SearchModel() override;
    Q_DISABLE_COPY_MOVE(SearchModel)

    [[nodiscard]] QString query() const { return m_query; }
    void setQuery(const QString& query);
    [[nodiscard]] QString speaker() const { return m_speaker; }
    void setSpeaker(const QString& speaker);
    [[nodiscard]] Period period() const { return m_period; }
    void setPeriod(Period period);
    [[nodiscard]] Where where() const { return m_where; }
    void setWhere(Where where);
    [[nodiscard]] bool isBest() const { return m_best; }
    void setBest(bool best);

    [[nodiscard]] bool isSearching() const;
    [[nodiscard]] bool isSettled() const { return m_settled; }
    [[nodiscard]] QString layout() const { return m_answer.layout; }
    [[nodiscard]] const QList<SearchWayOut>& waysOut() const { return m_waysOut; }
    [[nodiscard]] const QStringList& speakers() const { return m_speakers; }
    [[nodiscard]] bool isBuilding() const { return m_ground.index.isIncomplete(); }
    [[nodiscard]] int revision() const { return m_revision; }

    /// How much is found, in `language`; empty when nothing is looked for.
    Q_INVOKABLE [[nodiscard]] QString counts(const QString& language) const;
    /// Why not everything can be found, in `language`; empty when it can.
    Q_INVOKABLE [[nodiscard]] QString trouble(const QString& language) const;

    /// Looks for places in the meetings of the list from a row on.
    Q_INVOKABLE void lookFrom(int row);
    /// The places in a meeting; none as long as nobody has looked.
    Q_INVOKABLE [[nodiscard]] QList<murmeli::FoundPlace> placesIn(const QString& meeting) const;
    /// A place's text with what was found on this ground and in this ink, as rich text.
    Q_INVOKABLE [[nodiscard]] static QString marked(const murmeli::FoundPlace& place, const QColor& ground,
                                                    const QColor& ink);
    /// How a place is read out, in `language`.
    Q_INVOKABLE [[nodiscard]] static QString spoken(const murmeli::FoundPlace& place,
                                                    const QString& language);

    Q_INVOKABLE void more(); ///< meetings, when there are
    Q_INVOKABLE void searchAsTyped();
    Q_INVOKABLE void takeWayOut(const murmeli::SearchWayOut& way);
    Q_INVOKABLE void findSpeakers();

signals:
    void queryChanged();
    void changed();
    void placesChanged();

private:
    struct Places {
        quint64 search = 0; ///< to which they belong
        bool known = false;
        QList<FoundPlace> list;
    };
    struct Readers { ///< what the reading thread keeps
        explicit Readers(const MeetingFiles& meetingFiles) : files(meetingFiles) {}
        MeetingFiles files;
        words::Keys keys;
    };
    using Current = std::shared_ptr<std::atomic<quint64>>;

    void begin();
    void ask();
    void take(const SearchAnswer& answer);
    void confirm();
    void publish();
    void findWaysOut();
    void lookAgain();
    void sleepLater();
    void tell();
    [[nodiscard]] SearchQuestion question() const;

    Ground m_ground;
    QString m_query;
    QString m_speaker;
    Period m_period = Ever;
    Where m_where = Everywhere;
    bool m_best = false;
    bool m_asTyped = false;
    bool m_settled = true;
    int m_most;
    int m_candidates;
    SearchAnswer m_answer;
    QStringList m_confirmed; ///< of the candidates
    qsizetype m_read = 0;    ///< candidates that were looked at
    QList<SearchWayOut> m_waysOut;
    QStringList m_speakers;
    QHash<QString, Places> m_places; ///< by the meeting
    int m_firstRow = 0;
    int m_revision = 0;
    quint64 m_answered = 0; ///< number of the search that the answer is to
    quint64 m_search = 0;   ///< number of the newest one
    Current m_current = std::make_shared<std::atomic<quint64>>(0); ///< the same for other threads
    std::shared_ptr<Searcher> m_searcher; ///< of the asking thread; null while nobody searches
    std::shared_ptr<Readers> m_readers;   ///< of the reading thread; likewise
    Lease m_answering;
    Lease m_sleep;
    QThreadPool m_asking;  ///< one thread
    QThreadPool m_reading; ///< one thread, since files may lie on a disk that does not answer
};

} // namespace murmeli
