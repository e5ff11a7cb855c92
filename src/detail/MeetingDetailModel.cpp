#include "MeetingDetailModel.h"

#include "base/Background.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "localisation/Language.h"
#include "margin/MeetingLocks.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/MeetingStore.h"
#include "meetings/ProtocolFile.h"
#include "meetings/SummaryFile.h"
#include "platform/Desktop.h"
#include "receipts/Receipts.h"
#include "service/Paths.h"

#include <QDir>
#include <QStandardPaths>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype titleLength = 400; // code units; a title has one line

} // namespace

MeetingDetailModel::MeetingDetailModel(const Ground& ground, const Meeting& meeting, Work work,
                                       QObject* parent)
    : QObject(parent),
      m_ground(ground),
      m_meeting(meeting),
      m_work(std::move(work)),
      m_changes({.paths = ground.paths,
                 .writer = ground.writer,
                 .language = ground.language,
                 .desktop = ground.desktop,
                 .scheduler = ground.scheduler},
                meeting),
      m_sent(ground.receipts, ground.language, ground.scheduler, meeting.id),
      m_report({.account = ground.account,
                .http = ground.http,
                .language = ground.language,
                .desktop = ground.desktop,
                .scheduler = ground.scheduler,
                .protocols = ground.store.protocols(),
                .webOrigin = ground.webOrigin}),
      m_marks(ground.paths, meeting.id, ground.scheduler),
      m_transcript({.protocols = ground.store.protocols(),
                    .language = ground.language,
                    .desktop = ground.desktop,
                    .marks = m_marks})
{
    load();
    m_sent.load();
    ground.locks.look(meeting.id);
    connect(&ground.locks, &MeetingLocks::changed, this, [this](const QString& id) {
        if (id != m_meeting.id) return;
        emit lockedChanged();
        if (!m_ground.locks.wasRead(id)) return;
        for (const auto& work : std::exchange(m_waiting, {}))
            work();
    });
    connect(&m_report, &ReportLoader::momentWanted, this, &MeetingDetailModel::openTranscript);
    connect(&ground.store, &MeetingStore::scanned, this, [this] {
        if (const Meeting* now = m_ground.store.list()->find(m_meeting.id); now && *now != m_meeting) {
            m_meeting = *now;
            m_file.reset(); // its protocol's place is part of it
        }
        load();
        m_marks.load();
        m_ground.locks.look(m_meeting.id);
    });
    connect(&ground.language, &Language::changed, this, &MeetingDetailModel::changed);
    connect(&ground.drafts, &Drafts::changed, this, [this](const QString& meeting) {
        if (meeting == m_meeting.id) emit draftChanged();
    });
    connect(m_work.files.get(), &ProtocolFileMaker::shared, this, &MeetingDetailModel::built);
    connect(m_work.editor.get(), &ProtocolEditor::fixed, this, [this] {
        const ProtocolChange& change = m_work.editor->change();
        m_edited = true;
        load(Correction{change.section, change.index, m_sections.textOf(change.section, change.index)});
    });
    connect(&m_changes, &ProtocolChanges::told, this, [this] {
        if (m_work.editor->outcome() != ProtocolEditor::Outcome::Working)
            m_work.editor->reset(); // the older one
    });
    connect(&m_changes, &ProtocolChanges::copied, this,
            [this](qint64 bytes) { noteCopied(u"excerpt"_s, bytes); });
    connect(&m_report, &ReportLoader::copied, this,
            [this](qint64 bytes) { noteCopied(u"excerpt"_s, bytes); });
    connect(&m_transcript, &TranscriptModel::copied, this,
            [this](bool whole, qint64 bytes) { noteCopied(whole ? u"transcript"_s : u"excerpt"_s, bytes); });
    connect(&m_changes, &ProtocolChanges::written, this, [this](const ProtocolChange& change) {
        m_edited = true;
        load(Correction{change.section, change.index, m_sections.textOf(change.section, change.index)});
    });
}

MeetingDetailModel::~MeetingDetailModel() = default;

QString MeetingDetailModel::title() const { return text::oneLine(m_meeting.title.left(titleLength)); }

QString MeetingDetailModel::tldr() const { return text::shortened(m_meeting.tldr); }

QString MeetingDetailModel::dateLine() const
{
    const QDate today = m_ground.scheduler.moment().date();
    return captions::dateLine(m_meeting, today, m_ground.language.current());
}

QString MeetingDetailModel::heard() const { return captions::heardKey(m_meeting.heard); }

void MeetingDetailModel::load(const std::optional<Correction>& correction)
{
    const auto read = [meeting = m_meeting, known = m_file, protocol = m_protocol,
                       knownProtocol = m_protocolFile, hadTranscript = m_hasTranscript,
                       protocols = m_ground.store.protocols()] {
        Content content;
        const auto lookAtProtocol = [&] {
            if (!content.protocol) return;
            content.protocolFile = files::identity(*content.protocol);
            content.hasTranscript = content.protocolFile == knownProtocol
                                        ? hadTranscript
                                        : protocolFile::transcript(*content.protocol).has_value();
        };
        const auto find = [&] {
            const auto found = protocols->find(meeting);
            return found && QFileInfo::exists(*found) ? found : std::nullopt; // it may have gone meanwhile
        };
        const QByteArray path = QFile::encodeName(meeting.jsonPath);
        content.changed = files::identity(path) != known;
        if (!content.changed) {
            // The service may write the protocol later than its summary.
            content.protocol = protocol && QFileInfo::exists(*protocol) ? protocol : find();
            lookAtProtocol();
            return content;
        }
        files::Identity file;
        const auto bytes = files::readWhole(path, summaryFile::sizeLimit, &file);
        if (const auto summary = bytes ? json::object(*bytes) : std::nullopt) {
            content.readable = true;
            if (files::isSettled(file)) content.file = file;
            content.sections = protocolItems::sections(*summary);
            content.edited = protocolItems::isEdited(*summary);
        }
        content.protocol = find();
        lookAtProtocol();
        return content;
    };
    inBackground(this, read, [this, correction](const Content& content) { take(content, correction); });
}

void MeetingDetailModel::take(const Content& content, const std::optional<Correction>& correction)
{
    if (content.changed) {
        // A file that is being rewritten at this moment leaves what is shown.
        if (content.readable || !m_loaded) {
            m_sections.setSections(content.sections);
            m_edited = content.edited;
        }
        m_file = content.file;
        m_loaded = true;
        m_changes.load(m_meeting);
    }
    const bool moved = std::exchange(m_protocol, content.protocol) != content.protocol;
    if (m_analysing && (content.changed || moved)) m_report.follow(m_meeting);
    const bool rewritten = std::exchange(m_protocolFile, content.protocolFile) != content.protocolFile;
    m_hasTranscript = content.hasTranscript;
    if (m_reading && (moved || rewritten)) m_transcript.load(m_meeting);
    if (m_sheet == Sheet::HandOut && (content.changed || moved || rewritten)) m_handout->load(m_meeting);
    emit changed(); // and the day may have
    if (m_wanted) showWanted();
    if (correction)
        emit corrected(m_sections.markCorrected(correction->section, correction->index, correction->before));
}

void MeetingDetailModel::sendRemark()
{
    const QString remark = draft();
    if (text::trimmed(remark).isEmpty()) return;
    m_changes.forgetMessage();
    onceLockIsKnown([this, remark] { m_work.editor->apply(remark, m_meeting); });
}

void MeetingDetailModel::undoLast()
{
    if (m_work.editor->outcome() == ProtocolEditor::Outcome::Working) return; // its own change is on its way
    m_work.editor->reset();
    m_changes.undoLast();
}

void MeetingDetailModel::openSheet(Sheet sheet)
{
    if (std::exchange(m_sheet, sheet) == sheet) return;
    m_changes.forgetMessage(); // the list tells what has become of each
    if (sheet == Sheet::Changes) m_changes.load(m_meeting);
    if (sheet == Sheet::HandOut) openHandout();
    emit sheetChanged();
}

void MeetingDetailModel::openHandout()
{
    if (m_handout) return m_handout->load(m_meeting);
    m_handout = std::make_unique<HandoutModel>(HandoutModel::Ground{.files = m_ground.files,
                                                                    .settings = m_ground.settings,
                                                                    .receipts = m_ground.receipts,
                                                                    .desktop = m_ground.desktop,
                                                                    .language = m_ground.language,
                                                                    .home = m_ground.paths.home},
                                               m_meeting);
}

void MeetingDetailModel::save(QWindow* window)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (!QFileInfo{folder}.isDir()) folder = m_ground.paths.home;
    m_ground.desktop.askWhereToSave({.title = m_ground.language.t(u"file.dialog"_s),
                                     .suggested = folder + u'/' + ProtocolFileMaker::suggestedName(m_meeting),
                                     .kind = u"PDF (*.pdf)"_s,
                                     .suffix = u"pdf"_s},
                                    window, this,
                                    [this](const QString& path) { m_work.files->save(m_meeting, path); });
}

void MeetingDetailModel::share() { m_work.files->share(m_meeting); }

void MeetingDetailModel::shareAnew() { m_work.files->shareAnew(m_meeting); }

bool MeetingDetailModel::offer(const QString& path, QWindow* window, const QPointF& at)
{
    const bool offered = m_ground.desktop.share(path, window, at.toPoint());
    if (offered) noteHandedOut(u"file"_s, u"menu"_s, path);
    return offered;
}

void MeetingDetailModel::passOn(const QString& path, Way way)
{
    switch (way) {
    case Mail:
        noteHandedOut(u"mail"_s, u"mail"_s, path);
        return m_ground.desktop.mail({.file = path});
    case Open:
        return m_ground.desktop.openUrl(QUrl::fromLocalFile(path));
    case Folder:
        return m_ground.desktop.reveal(path, {});
    case Copy:
        noteHandedOut(u"clipboard"_s, u"clipboard"_s, path);
        return m_ground.desktop.copyFile(path);
    }
}

void MeetingDetailModel::noteHandedOut(const QString& kind, const QString& to, const QString& path)
{
    Receipt receipt = m_ground.receipts.begun();
    receipt.stem = m_meeting.id;
    receipt.kind = kind;
    receipt.to = to;
    receipt.parts = QStringList{u"protocol"_s};
    m_ground.receipts.noteFile(receipt, path);
}

void MeetingDetailModel::onceLockIsKnown(const std::function<void()>& work)
{
    if (m_ground.locks.wasRead(m_meeting.id)) {
        work();
    } else {
        m_waiting.append(work);
    }
}

bool MeetingDetailModel::locked() const
{
    return m_ground.locks.wasRead(m_meeting.id) && m_ground.locks.isLocked(m_meeting.id);
}

void MeetingDetailModel::setLocked(bool locked) { m_ground.locks.set(m_meeting.id, locked); }

bool MeetingDetailModel::lockable() const { return m_ground.locks.isReadable(m_meeting.id); }

void MeetingDetailModel::reveal()
{
    if (m_protocol) m_ground.desktop.reveal(*m_protocol, m_ground.paths.vaultDir);
}

void MeetingDetailModel::noteCopied(const QString& part, qint64 bytes)
{
    m_ground.receipts.noteCopied(m_meeting.id, part, bytes);
}

void MeetingDetailModel::copyItem(int row) { copyText(m_sections.text(row)); }

void MeetingDetailModel::copyProtocol()
{
    QStringList parts{title() + u'\n' + dateLine()};
    if (!m_meeting.tldr.isEmpty()) parts.append(m_meeting.tldr);
    parts.append(m_sections.words(m_ground.language.current()));
    const QString text = parts.join(u"\n\n"_s);
    m_ground.desktop.copyText(text);
    noteCopied(u"sections"_s, text.toUtf8().size());
}

void MeetingDetailModel::copyText(const QString& text)
{
    if (text.isEmpty()) return;
    m_ground.desktop.copyText(text);
    noteCopied(u"excerpt"_s, text.toUtf8().size());
}

void MeetingDetailModel::openReport()
{
    m_report.load(m_meeting);
    if (!std::exchange(m_analysing, true)) emit analysingChanged();
}

void MeetingDetailModel::closeReport()
{
    if (std::exchange(m_analysing, false)) emit analysingChanged();
}

void MeetingDetailModel::openTranscript(const QString& stamp)
{
    m_transcript.openAt(stamp);
    if (std::exchange(m_reading, true)) return;
    m_transcript.load(m_meeting);
    emit readingChanged();
}

void MeetingDetailModel::visitTranscript(const QString& stamp)
{
    m_visiting = true;
    openTranscript(stamp);
}

void MeetingDetailModel::visitReport(int row)
{
    m_visiting = true;
    m_report.setWantedRow(row);
    openReport();
}

void MeetingDetailModel::visitItem(const QString& section, qsizetype index)
{
    m_wanted = {section, index};
    if (m_loaded) showWanted();
}

void MeetingDetailModel::showWanted()
{
    const auto [section, index] = *std::exchange(m_wanted, std::nullopt);
    if (const int row = m_sections.light(section, index); row >= 0) emit itemShown(row);
}

void MeetingDetailModel::closeTranscript()
{
    if (!std::exchange(m_reading, false)) return;
    emit readingChanged();
    m_transcript.close();
}

void MeetingDetailModel::buildReport()
{
    onceLockIsKnown([this] { m_report.build(m_meeting); });
}

} // namespace murmeli
