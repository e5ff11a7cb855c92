#pragma once

#include "Handout.h"
#include "HandoutPages.h"
#include "base/Lease.h"
#include "localisation/Message.h"
#include "platform/Desktop.h"

#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class QTemporaryDir;

namespace murmeli {

class Language;
class OwnSettings;
class Receipts;

/// A part of the meeting that may be handed out.
struct HandoutRow {
    Q_GADGET
    QML_VALUE_TYPE(handoutRow)
    Q_PROPERTY(int part MEMBER part FINAL)
    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString amount MEMBER amount FINAL) ///< how much there is
    Q_PROPERTY(bool chosen MEMBER chosen FINAL)

public:
    int part = 0;
    QString title;
    QString amount;
    bool chosen = false;
    bool operator==(const HandoutRow&) const = default;
};

/// What of a meeting is handed out, how it will look, and the ways out. Reads, lays out and writes beside the
/// main thread; its own functions are for that thread only.
class HandoutModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(QList<murmeli::HandoutRow> rows READ rows NOTIFY changed FINAL)
    Q_PROPERTY(bool hideNames READ hideNames WRITE setHideNames NOTIFY changed FINAL)
    Q_PROPERTY(bool hideNumbers READ hideNumbers WRITE setHideNumbers NOTIFY changed FINAL)
    Q_PROPERTY(QString example READ example NOTIFY changed FINAL) ///< of a hidden name
    Q_PROPERTY(int hidden READ hidden NOTIFY changed FINAL)       ///< names; -1 when they are not hidden
    Q_PROPERTY(int pages READ pages NOTIFY changed FINAL)
    Q_PROPERTY(int edition READ edition NOTIFY changed FINAL)  ///< of the pages: another one, other pictures
    Q_PROPERTY(bool ready READ isReady NOTIFY changed FINAL)   ///< it can be handed out
    Q_PROPERTY(bool asking READ isAsking NOTIFY changed FINAL) ///< whether the transcript may go
    Q_PROPERTY(murmeli::Message message READ message NOTIFY changed FINAL) ///< what has become of it
    Q_PROPERTY(bool failed READ hasFailed NOTIFY changed FINAL)            ///< the message says why

public:
    enum class Way { Clipboard, Markdown, Mail, Pdf };
    Q_ENUM(Way)

    struct Ground {
        MeetingFiles files;
        OwnSettings& settings;
        Receipts& receipts;
        Desktop& desktop;
        const Language& language;
        QString home; ///< where files go when there is no folder for downloads
    };
    HandoutModel(Ground ground, const Meeting& meeting, QObject* parent = nullptr);
    ~HandoutModel() override;
    Q_DISABLE_COPY_MOVE(HandoutModel)

    [[nodiscard]] const QList<HandoutRow>& rows() const { return m_rows; }
    [[nodiscard]] bool hideNames() const { return m_choice.hideNames; }
    void setHideNames(bool hide);
    [[nodiscard]] bool hideNumbers() const { return m_choice.hideNumbers; }
    void setHideNumbers(bool hide);
    [[nodiscard]] QString example() const;
    [[nodiscard]] int hidden() const { return m_choice.hideNames && m_made.hidden ? m_made.people : -1; }
    [[nodiscard]] int pages() const { return m_made.pages; }
    [[nodiscard]] int edition() const { return m_edition; }
    [[nodiscard]] bool isReady() const;
    [[nodiscard]] bool isAsking() const { return m_asked.has_value(); }
    [[nodiscard]] const Message& message() const { return m_message; }
    [[nodiscard]] bool hasFailed() const { return m_failed; }

    /// Remembered for the next meeting too.
    Q_INVOKABLE void choose(int part, bool chosen);

    /// Hands it out; asks first for a transcript whose names are hidden. \param window in front of which it
    /// is asked where to.
    Q_INVOKABLE void handOut(murmeli::HandoutModel::Way way, QWindow* window);
    Q_INVOKABLE void answer(bool yes, QWindow* window);

    /// Reads the meeting again.
    void load(const Meeting& meeting);

    /// A page for the screen, later; none when there is no such page any more.
    void draw(int page, int pixels, QObject* context, std::function<void(const HandoutPages::Picture&)> done);

signals:
    void changed();

private:
    struct Made { ///< what is known of the pages
        int pages = 0;
        int people = 0;
        bool hidden = false; ///< they are
        QString first;
        QString pdfName, markdownName;
    };
    struct Output {
        QString left; ///< a name that is
        QString title;
        QStringList parts; ///< for its receipt
        QString plain, html, markdown;
        Message failure;
        QString path; ///< of a file that was written
        qint64 bytes = 0;
    };
    struct Desk; ///< what the working thread has
    void make();
    void produce(Way way, const QString& path);
    void send(Way way, const Output& output);
    void mail(const Output& output);
    void note(const Output& output, const QString& kind, const QString& to, qint64 bytes);
    void listRows();
    void say(const Message& message, bool failed = false);

    Ground m_ground;
    Meeting m_meeting;
    std::shared_ptr<const HandoutSource> m_source;
    HandoutChoice m_choice;
    std::shared_ptr<Desk> m_desk;
    std::shared_ptr<std::atomic<quint64>> m_newest =
        std::make_shared<std::atomic<quint64>>(0); ///< of the makings
    QList<HandoutRow> m_rows;
    Made m_made;
    int m_edition = 0;
    bool m_making = false;
    bool m_working = false;
    std::optional<Way> m_asked;
    struct Wish {
        Way way;
        QPointer<QWindow> window;
    };
    std::optional<Wish> m_wish; ///< for when the pages are there
    Message m_message;
    bool m_failed = false;
    std::unique_ptr<QTemporaryDir> m_folder; ///< for what goes into a letter
    Lease m_load;
    Lease m_make;
    QThreadPool m_paper; ///< one thread
};

} // namespace murmeli
