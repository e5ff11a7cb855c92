#include "MainModel.h"

#include "base/Text.h"
#include "platform/Desktop.h"
#include "receipts/Receipts.h"
#include "service/Paths.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

MainModel::MainModel(const Ground& ground, QObject* parent)
    : QObject(parent),
      m_ground(ground),
      m_store(ground.paths, ground.language, ground.scheduler),
      m_writer(ground.paths, ground.processes, ground.scheduler),
      m_search({.store = m_store,
                .index = ground.index,
                .glossary = ground.glossary,
                .language = ground.language,
                .scheduler = ground.scheduler}),
      m_drafts(ground.desktop.stateFolder() + u"/drafts.json"_s, ground.scheduler),
      m_assistant(ground.glossary, m_drafts),
      m_homeless({.paths = ground.paths,
                  .state = ground.state,
                  .meetings = *m_store.list(),
                  .language = ground.language,
                  .scheduler = ground.scheduler})
{
    ground.glossary.reload();
    connect(&m_store, &MeetingStore::touched, this,
            [this](const QStringList& ids) { m_touched.append(ids); });
    connect(&m_store, &MeetingStore::scanned, this, &MainModel::followMeetings);
    connect(&m_drafts, &Drafts::carriedOut, &m_store, &MeetingStore::reload);
    connect(&m_store, &MeetingStore::scanned, &m_homeless, &HomelessMarks::look);
    connect(&ground.marks, &RecordingMarks::settled, &m_homeless, &HomelessMarks::look);
    const auto readMarks = [this] {
        if (m_detail) m_detail->marks()->load();
    };
    connect(&ground.marks, &RecordingMarks::settled, this, readMarks);
    connect(&m_homeless, &HomelessMarks::settled, this, readMarks);
}

MainModel::~MainModel() = default;

void MainModel::setOnScreen(bool onScreen)
{
    m_onScreen = onScreen;
    m_store.setWatching(onScreen);
}

void MainModel::setTab(Tab tab)
{
    if (std::exchange(m_tab, tab) != tab) emit tabChanged();
}

void MainModel::open(const QString& id)
{
    const Meeting* meeting = m_store.list()->find(id);
    if (!meeting) return;
    auto old = std::exchange(
        m_detail,
        std::make_unique<MeetingDetailModel>(
            MeetingDetailModel::Ground{m_ground.paths, m_store, m_ground.glossary, m_drafts, m_ground.locks,
                                       m_ground.own, m_ground.index.files(), m_ground.receipts,
                                       m_ground.account, m_ground.http, m_writer, m_ground.desktop,
                                       m_ground.language, m_ground.scheduler, m_ground.webOrigin},
            *meeting, workOn(*meeting)));
    emit detailChanged();
    leave(std::move(old));
}

void MainModel::openAt(const QString& id, const FoundPlace& place)
{
    open(id);
    if (!m_detail || m_detail->id() != id) return;
    const Passage& passage = place.passage;
    switch (passage.kind) {
    case Passage::Kind::Said:
        return m_detail->visitTranscript(passage.stamp);
    case Passage::Kind::Promise:
    case Passage::Kind::Analysis:
        return m_detail->visitReport(int(passage.index));
    default:
        return m_detail->visitItem(passage.section, passage.index);
    }
}

void MainModel::followMeetings()
{
    m_ground.index.follow(m_store.list()->all(), std::exchange(m_touched, {}));
}

void MainModel::openOnceThere(const QString& id, const QString& stamp, const QString& query)
{
    setTab(Tab::Meetings);
    const auto go = [this, id, stamp, query] {
        open(id);
        if (!m_detail || m_detail->id() != id || (stamp.isEmpty() && query.isEmpty())) return;
        m_detail->openTranscript(stamp);
        if (!query.isEmpty()) m_detail->transcript()->setQuery(query);
    };
    if (m_store.list()->find(id)) return go();
    connect(&m_store, &MeetingStore::scanned, this, go, Qt::SingleShotConnection);
    m_store.reload();
}

MeetingDetailModel::Work MainModel::workOn(const Meeting& meeting)
{
    if (m_work.contains(meeting.id)) return m_work[meeting.id];
    const MeetingDetailModel::Work work{
        std::make_shared<ProtocolEditor>(m_ground.webOrigin, m_ground.account, m_ground.http, m_writer),
        std::make_shared<ProtocolFileMaker>(m_ground.paths, m_ground.processes, m_ground.desktop)};
    connect(work.editor.get(), &ProtocolEditor::fixed, this,
            [this, id = meeting.id](const QString& remark) { m_drafts.carryOut(id, remark); });
    connect(work.files.get(), &ProtocolFileMaker::saveEnded, this,
            [this, id = meeting.id, title = meeting.title, made = work.files.get()] {
                const bool seen = m_onScreen && m_tab == Tab::Meetings && m_detail && m_detail->id() == id;
                const bool saved = made->outcome() == ProtocolFileMaker::Outcome::Saved;
                if (saved) {
                    Receipt receipt = m_ground.receipts.begun();
                    receipt.stem = id;
                    receipt.kind = u"file"_s;
                    receipt.to = QFileInfo{QFileInfo{made->lastBuilt()}.path()}.fileName();
                    receipt.parts = QStringList{u"protocol"_s};
                    m_ground.receipts.noteFile(receipt, made->lastBuilt());
                }
                if (!seen) emit fileEnded(text::oneLine(title), saved, made->message());
            });
    return m_work.insert(meeting.id, work).value();
}

void MainModel::leave(std::unique_ptr<MeetingDetailModel> detail)
{
    if (!detail) return;
    m_touched.append(detail->id()); // what was marked, corrected or analysed there is to be found
    followMeetings();
    if (detail->editor()->outcome() != ProtocolEditor::Outcome::Working &&
        detail->files()->outcome() != ProtocolFileMaker::Outcome::Working)
        m_work.remove(detail->id());
    detail.release()->deleteLater(); // its view still reads it
}

QString MainModel::back()
{
    auto old = std::exchange(m_detail, nullptr);
    emit detailChanged();
    const QString id = old ? old->id() : QString{};
    leave(std::move(old));
    return id;
}

} // namespace murmeli
