#pragma once

#include "account/AuthManager.h"
#include "base/Drafts.h"
#include "base/Files.h"
#include "glossary/GlossaryStore.h"
#include "handout/HandoutModel.h"
#include "margin/MeetingMarks.h"
#include "meetings/Meeting.h"
#include "protocol/ProtocolChanges.h"
#include "protocol/ProtocolEditor.h"
#include "protocol/ProtocolFileMaker.h"
#include "protocol/SectionListModel.h"
#include "receipts/SentModel.h"
#include "report/ReportLoader.h"
#include "transcript/TranscriptModel.h"
#include "ui/ViewMemory.h"

#include <QObject>
#include <QPoint>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>

namespace murmeli {

class Desktop;
class MeetingLocks;
class MeetingStore;
class OwnSettings;

/// One opened meeting: its protocol and what can be done with it. Main thread only.
class MeetingDetailModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString tldr READ tldr NOTIFY changed FINAL)
    Q_PROPERTY(QString dateLine READ dateLine NOTIFY changed FINAL) ///< day and time
    Q_PROPERTY(
        QString heard READ heard NOTIFY changed FINAL) ///< key of what is wrong with its sound, or empty
    Q_PROPERTY(bool edited READ edited NOTIFY changed FINAL)
    Q_PROPERTY(bool loaded READ loaded NOTIFY changed FINAL)
    Q_PROPERTY(bool hasProtocol READ hasProtocol NOTIFY changed FINAL)
    Q_PROPERTY(bool hasTranscript READ hasTranscript NOTIFY changed FINAL)
    Q_PROPERTY(bool reading READ reading NOTIFY readingChanged FINAL)       ///< the transcript is open
    Q_PROPERTY(bool analysing READ analysing NOTIFY analysingChanged FINAL) ///< the analysis is open
    Q_PROPERTY(Sheet sheet READ sheet NOTIFY sheetChanged FINAL)
    Q_PROPERTY(bool visiting READ visiting CONSTANT FINAL) ///< a moment or a row, and leaves with it
    Q_PROPERTY(QString draft READ draft WRITE setDraft NOTIFY draftChanged FINAL) ///< of a remark
    Q_PROPERTY(murmeli::SectionListModel* sections READ sections CONSTANT FINAL)
    Q_PROPERTY(murmeli::ProtocolEditor* editor READ editor CONSTANT FINAL)
    Q_PROPERTY(murmeli::ProtocolChanges* changes READ changes CONSTANT FINAL)
    Q_PROPERTY(murmeli::SentModel* sent READ sent CONSTANT FINAL)
    Q_PROPERTY(
        murmeli::HandoutModel* handout READ handout NOTIFY sheetChanged FINAL) ///< once its sheet was open
    Q_PROPERTY(bool locked READ locked WRITE setLocked NOTIFY lockedChanged FINAL) ///< nothing of it is sent
    Q_PROPERTY(bool lockable READ lockable NOTIFY lockedChanged FINAL)
    Q_PROPERTY(murmeli::AuthManager* account READ account CONSTANT FINAL)
    Q_PROPERTY(murmeli::GlossaryStore* glossary READ glossary CONSTANT FINAL)
    Q_PROPERTY(murmeli::ReportLoader* report READ report CONSTANT FINAL)
    Q_PROPERTY(murmeli::ProtocolFileMaker* files READ files CONSTANT FINAL)
    Q_PROPERTY(murmeli::TranscriptModel* transcript READ transcript CONSTANT FINAL)
    Q_PROPERTY(murmeli::MeetingMarks* marks READ marks CONSTANT FINAL)
    Q_PROPERTY(murmeli::ViewMemory* views READ views CONSTANT FINAL)

public:
    /// What lies over the protocol.
    enum class Sheet { None, Changes, Sent, HandOut };
    Q_ENUM(Sheet)

    /// What the meeting stands among; all of it outlives the model.
    struct Ground {
        const Paths& paths;
        MeetingStore& store;
        GlossaryStore& glossary;
        Drafts& drafts;
        MeetingLocks& locks;
        OwnSettings& settings;
        MeetingFiles files;
        Receipts& receipts;
        AuthManager& account;
        Http& http;
        ProtocolWriter& writer;
        Desktop& desktop;
        const Language& language;
        Scheduler& scheduler;
        QString webOrigin;
    };
    /// What goes on when the meeting is left, and is found again when it comes back.
    struct Work {
        std::shared_ptr<ProtocolEditor> editor;
        std::shared_ptr<ProtocolFileMaker> files;
    };

    MeetingDetailModel(const Ground& ground, const Meeting& meeting, Work work, QObject* parent = nullptr);
    ~MeetingDetailModel() override;
    Q_DISABLE_COPY_MOVE(MeetingDetailModel)

    [[nodiscard]] QString id() const { return m_meeting.id; }
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString tldr() const;
    [[nodiscard]] QString dateLine() const;
    [[nodiscard]] QString heard() const;
    [[nodiscard]] bool edited() const { return m_edited; }
    [[nodiscard]] bool loaded() const { return m_loaded; }
    [[nodiscard]] bool hasProtocol() const { return m_protocol.has_value(); }
    [[nodiscard]] QString draft() const { return m_ground.drafts.of(m_meeting.id); }
    void setDraft(const QString& draft) { m_ground.drafts.set(m_meeting.id, draft); }
    [[nodiscard]] SectionListModel* sections() { return &m_sections; }
    [[nodiscard]] ProtocolEditor* editor() { return m_work.editor.get(); }
    [[nodiscard]] ProtocolChanges* changes() { return &m_changes; }
    [[nodiscard]] SentModel* sent() { return &m_sent; }
    [[nodiscard]] HandoutModel* handout() { return m_handout.get(); }
    [[nodiscard]] bool locked() const;
    void setLocked(bool locked);
    [[nodiscard]] bool lockable() const;
    [[nodiscard]] Sheet sheet() const { return m_sheet; }
    [[nodiscard]] AuthManager* account() { return &m_ground.account; }
    [[nodiscard]] GlossaryStore* glossary() { return &m_ground.glossary; }
    [[nodiscard]] ReportLoader* report() { return &m_report; }
    [[nodiscard]] ProtocolFileMaker* files() { return m_work.files.get(); }
    [[nodiscard]] bool analysing() const { return m_analysing; }
    [[nodiscard]] bool hasTranscript() const { return m_hasTranscript; }
    [[nodiscard]] bool visiting() const { return m_visiting; }
    [[nodiscard]] bool reading() const { return m_reading; }
    [[nodiscard]] TranscriptModel* transcript() { return &m_transcript; }
    [[nodiscard]] MeetingMarks* marks() { return &m_marks; }
    [[nodiscard]] ViewMemory* views() { return &m_views; }

    /// Sends the draft. Nothing when it is empty or a remark is on its way.
    Q_INVOKABLE void sendRemark();

    /// Takes the last change of the protocol back.
    Q_INVOKABLE void undoLast();

    Q_INVOKABLE void openSheet(murmeli::MeetingDetailModel::Sheet sheet);
    Q_INVOKABLE void closeSheet() { openSheet(Sheet::None); }

    /// Asks where, in front of `window`, and builds the PDF there.
    Q_INVOKABLE void save(QWindow* window);

    /// Builds a PDF for passing on, which may take minutes; built() tells where it is. A second press has it
    /// at once.
    Q_INVOKABLE void share();
    Q_INVOKABLE void shareAnew(); ///< for when that is outdated
    /// Lets the desktop offer its ways to pass it on, at a place in `window`. \return false where it has
    /// none; then ours are left.
    Q_INVOKABLE bool offer(const QString& path, QWindow* window, const QPointF& at);
    enum Way { Mail, Open, Folder, Copy };
    Q_ENUM(Way)
    Q_INVOKABLE void passOn(const QString& path, murmeli::MeetingDetailModel::Way way);

    Q_INVOKABLE void reveal();

    /// Puts an item of the protocol, all of it, or a part that was selected on the clipboard.
    Q_INVOKABLE void copyItem(int row);
    Q_INVOKABLE void copyProtocol();
    Q_INVOKABLE void copyText(const QString& text);

    /// Reads the analysis that is stored, and again with every change of the meeting until it is closed.
    Q_INVOKABLE void openReport();
    Q_INVOKABLE void closeReport();
    /// The same for somebody who has come for this one place, and leaves the meeting with it: a moment of the
    /// transcript, a row of the report, or an item of the protocol, which then lights up.
    void visitTranscript(const QString& stamp);
    void visitReport(int row);
    void visitItem(const QString& section, qsizetype index);

    /// Opens the transcript, at a stamp if there is one.
    Q_INVOKABLE void openTranscript(const QString& stamp);
    Q_INVOKABLE void closeTranscript();
    /// Asks for an analysis.
    Q_INVOKABLE void buildReport();

signals:
    void changed();
    void draftChanged();
    void analysingChanged();
    void readingChanged();
    void sheetChanged();
    void lockedChanged();
    void built(const QString& path);
    void itemShown(int row); ///< what somebody has come for, in the list of sections
    void corrected(int row); ///< the protocol was: where, in the list of sections

private:
    struct Content {
        bool changed = true; ///< since it was read last; if not, only `protocol` says something
        std::optional<files::Identity> file; ///< nothing when it may change again without a trace
        bool readable = false;
        QList<ProtocolSection> sections;
        bool edited = false;
        std::optional<QString> protocol;
        files::Identity protocolFile;
        bool hasTranscript = false;
    };
    struct Correction {
        QString section;
        qsizetype index = 0;
        QString before;
    };
    /// Reads the file; what was corrected in it is marked then.
    void load(const std::optional<Correction>& correction = {});
    void noteCopied(const QString& part, qint64 bytes);
    void noteHandedOut(const QString& kind, const QString& to, const QString& path);
    /// Runs once it is known whether the meeting is locked: what has just been opened is not refused.
    void onceLockIsKnown(const std::function<void()>& work);
    void openHandout();
    void showWanted();
    void take(const Content& content, const std::optional<Correction>& correction);

    Ground m_ground;
    Meeting m_meeting;
    std::optional<files::Identity> m_file; ///< which state of the summary file is shown
    SectionListModel m_sections{nullptr};
    Work m_work;
    ProtocolChanges m_changes;
    SentModel m_sent;
    std::unique_ptr<HandoutModel> m_handout;
    ReportLoader m_report;
    MeetingMarks m_marks;
    TranscriptModel m_transcript;
    std::optional<QString> m_protocol;
    files::Identity m_protocolFile;
    bool m_hasTranscript = false;
    bool m_analysing = false;
    bool m_reading = false;
    bool m_visiting = false;
    Sheet m_sheet = Sheet::None;
    std::optional<std::pair<QString, qsizetype>> m_wanted; ///< item of the protocol
    ViewMemory m_views{nullptr};
    QList<std::function<void()>> m_waiting; ///< for the lock
    bool m_edited = false;
    bool m_loaded = false;
};

} // namespace murmeli
