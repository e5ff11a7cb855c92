#pragma once

#include "MeetingReport.h"
#include "ReportListModel.h"
#include "base/Lease.h"
#include "localisation/Message.h"
#include "meetings/Meeting.h"
#include "transcript/Transcript.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <utility>

namespace murmeli {

class AuthManager;
class Desktop;
class Language;
class Http;
class ProtocolFinder;
class Scheduler;

/// The analysis of one meeting: as it is stored beside the summary file, or asked of the service anew.
/// Reads and writes beside the main thread; its own functions are for that thread only.
class ReportLoader final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(bool loading READ loading NOTIFY changed FINAL)         ///< an analysis is on its way
    Q_PROPERTY(murmeli::Message error READ error NOTIFY changed FINAL) ///< empty when there is none
    Q_PROPERTY(bool needsSignIn READ needsSignIn NOTIFY changed FINAL)
    Q_PROPERTY(bool present READ present NOTIFY changed FINAL) ///< there is a report
    Q_PROPERTY(bool empty READ empty NOTIFY changed FINAL)     ///< nothing can be shown
    Q_PROPERTY(bool asked READ asked NOTIFY changed FINAL)     ///< the first load has ended
    Q_PROPERTY(murmeli::ReportListModel* rows READ rows CONSTANT FINAL)
    Q_PROPERTY(
        QString openStamp READ openStamp NOTIFY openStampChanged FINAL) ///< whose quotation is unfolded
    Q_PROPERTY(int wantedRow READ wantedRow WRITE setWantedRow NOTIFY wantedRowChanged FINAL) ///< to be shown
                                                                                              ///< next, or -1
    Q_PROPERTY(int checks READ checks NOTIFY checked FINAL) ///< comparisons of quotations so far
    Q_PROPERTY(QStringList quotation READ quotation NOTIFY openStampChanged FINAL)

public:
    struct Ground {
        const AuthManager& account;
        Http& http;
        const Language& language;
        Desktop& desktop;
        const Scheduler& scheduler;
        std::shared_ptr<ProtocolFinder> protocols;
        QString webOrigin;
    };
    struct Analysis {
        MeetingReport report;
        QList<ReportRow> rows;
    };
    explicit ReportLoader(Ground ground, QObject* parent = nullptr);

    [[nodiscard]] const std::optional<MeetingReport>& report() const { return m_report; }
    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] Message error() const { return m_error; }
    [[nodiscard]] bool needsSignIn() const { return m_error == Message::of(signInKey); }
    [[nodiscard]] bool present() const { return m_report.has_value(); }
    [[nodiscard]] bool empty() const
    {
        return !m_report || (m_report->isEmpty() && m_report->speakers.isEmpty());
    }
    [[nodiscard]] bool asked() const { return m_asked; }
    [[nodiscard]] ReportListModel* rows() { return &m_rows; }

    [[nodiscard]] int wantedRow() const { return m_wantedRow; }
    void setWantedRow(int row)
    {
        if (std::exchange(m_wantedRow, row) != row) emit wantedRowChanged();
    }

    /// Reads transcript, stored analysis and figures of the meeting.
    void load(const Meeting& meeting);
    /// The same for a meeting that is shown and has changed: what is unfolded stays where its analysis does.
    void follow(const Meeting& meeting);

    /// Asks the service for an analysis, unless one is on its way, and stores it.
    void build(const Meeting& meeting);

    /// Unfolds what was said at a stamp, or folds it; one is unfolded at a time, in a new report none.
    Q_INVOKABLE void toggle(const QString& stamp);
    /// To the open stamp in the transcript.
    Q_INVOKABLE void goToMoment() { emit momentWanted(m_openStamp); }
    Q_INVOKABLE void goTo(const QString& stamp) { emit momentWanted(stamp); }
    [[nodiscard]] QString openStamp() const { return m_openStamp; }

    /// What was said at the open stamp, the line before and the line after it; empty when that is not known.
    [[nodiscard]] QStringList quotation() const;

    [[nodiscard]] int checks() const { return m_checks; }
    /// What the comparison of all quotations has shown, in `language`; after so many of them.
    Q_INVOKABLE [[nodiscard]] QString quoteSum(const QString& language, int checks) const;
    /// How a quotation differs from what was said, as it is read out.
    Q_INVOKABLE [[nodiscard]] static QString spokenDifference(const murmeli::QuoteFinding& finding,
                                                              const QString& language);
    /// Whether the transcript has no such moment.
    Q_INVOKABLE [[nodiscard]] bool isOutside(const QString& stamp, int checks) const;

    /// Puts what the claim in a row says on the clipboard; nothing when the row is none.
    Q_INVOKABLE void copy(int row);

    /// A stamp as it is read out in `language`.
    Q_INVOKABLE [[nodiscard]] QString spoken(const QString& stamp, const QString& language) const;

    /// The stored analysis of a meeting: its file, and what it says. The latter waits for the disk; any
    /// thread.
    static QString storedFile(const Meeting& meeting);
    static Analysis stored(const Meeting& meeting);

signals:
    void copied(qint64 bytes);
    void changed();
    void openStampChanged();
    void wantedRowChanged();
    void checked();
    void momentWanted(const QString& stamp);

private:
    static constexpr auto signInKey = "report.error.auth";

    void unfold(const QString& stamp);
    void show(const std::optional<Analysis>& analysis, const Transcript& lines);
    void checkQuotes();
    void fail(const Message& error);
    void ask(const Meeting& meeting, const QString& transcript, const Transcript& lines,
             const QString& token);

    Ground m_ground;
    std::optional<MeetingReport> m_report;
    Transcript m_lines;
    ReportListModel m_rows{nullptr};
    QString m_openStamp;
    int m_wantedRow = -1;
    Message m_error;
    bool m_loading = false;
    bool m_asked = false;
    bool m_busy = false; ///< from the press to the answer
    Lease m_load;
    Lease m_check;
    int m_checks = 0;
};

} // namespace murmeli
