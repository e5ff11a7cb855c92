#include "ProtocolFileMaker.h"

#include "base/Processes.h"
#include "base/Text.h"
#include "meetings/Meeting.h"
#include "platform/Desktop.h"
#include "service/Paths.h"

#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <QTemporaryDir>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype longestName = 180; // bytes, so that a name with its ending fits every file system

} // namespace

ProtocolFileMaker::ProtocolFileMaker(const Paths& paths, Processes& processes, Desktop& desktop,
                                     QObject* parent)
    : QObject(parent),
      m_python(paths.python),
      m_script(paths.pdfScript),
      m_processes(processes),
      m_desktop(desktop)
{
}

ProtocolFileMaker::~ProtocolFileMaker()
{
    // The script may be about to write it still: it ends first.
    qDeleteAll(findChildren<QObject*>(Qt::FindDirectChildrenOnly));
    if (!m_unfinished.isEmpty()) QFile::remove(m_unfinished);
}

QString ProtocolFileMaker::suggestedName(const Meeting& meeting, const QString& ending)
{
    QString title = text::oneLine(meeting.title.left(longestName));        // a code unit is a byte at least
    if (!title.isEmpty() && title.back().isHighSurrogate()) title.chop(1); // half a character
    title.replace(u'/', u'-').replace(u':', u'-');
    while (title.toUtf8().size() > longestName)
        title.chop(title.back().isLowSurrogate() ? 2 : 1);
    return meeting.startedAt.toString(u"yyyy-MM-dd"_s) + u' ' + title + u'.' + ending;
}

void ProtocolFileMaker::end(Outcome outcome, const QString& saved)
{
    m_outcome = outcome;
    m_saved = saved;
    emit changed();
}

Message ProtocolFileMaker::message() const
{
    switch (m_outcome) {
    case Outcome::Working:
        return Message::of("file.working");
    case Outcome::Saved:
        return Message::of("file.saved", m_saved);
    case Outcome::Outdated:
        return Message::of("file.outdated");
    case Outcome::Failed:
        return Message::of("file.error");
    case Outcome::Idle:
        break;
    }
    return {};
}

QString ProtocolFileMaker::symbol() const
{
    if (m_outcome == Outcome::Idle || m_outcome == Outcome::Working) return {};
    return m_outcome == Outcome::Saved ? u"checkmark.circle.fill"_s : u"exclamationmark.triangle"_s;
}

accent::Accent ProtocolFileMaker::accent() const
{
    if (m_outcome == Outcome::Failed) return accent::Failure;
    return m_outcome == Outcome::Outdated ? accent::Absence : accent::Success;
}

void ProtocolFileMaker::reset() { end(Outcome::Idle); }

void ProtocolFileMaker::build(const Meeting& meeting, const QString& destination,
                              std::function<void(bool built)> done)
{
    if (!QFileInfo::exists(m_python)) {
        QMetaObject::invokeMethod(
            this, [done = std::move(done)] { done(false); }, Qt::QueuedConnection);
        return;
    }
    const QString beside =
        QFileInfo{destination}.absolutePath() + u"/.murmeli-"_s + QUuid::createUuid().toString(QUuid::Id128);
    m_unfinished = beside + u".pdf"_s;
    const files::Identity state = files::identity(meeting.jsonPath);
    m_processes.run({.program = m_python, .arguments = {m_script, meeting.jsonPath, m_unfinished}}, this,
                    [this, done = std::move(done), destination, source = meeting.jsonPath,
                     state](const ProcessResult& result) {
                        const QString made = std::exchange(m_unfinished, {});
                        const bool built =
                            result.ok() && QFileInfo::exists(made) && files::moveOver(made, destination);
                        if (built) {
                            m_lastSource = source;
                            m_lastState = state;
                            m_lastBuilt = destination;
                        } else {
                            QFile::remove(made);
                        }
                        done(built);
                    });
}

void ProtocolFileMaker::save(const Meeting& meeting, const QString& destination)
{
    if (m_outcome == Outcome::Working) return;
    end(Outcome::Working);
    build(meeting, destination, [this, destination](bool built) {
        const QString name = QFileInfo{destination}.fileName();
        if (built) {
            m_desktop.copyFile(destination);
            end(Outcome::Saved, name);
        } else {
            end(Outcome::Failed);
        }
        emit saveEnded();
    });
}

void ProtocolFileMaker::share(const Meeting& meeting)
{
    if (m_outcome == Outcome::Working) return;
    if (m_lastSource == meeting.jsonPath && QFileInfo::exists(m_lastBuilt)) {
        if (files::identity(meeting.jsonPath) != m_lastState) end(Outcome::Outdated);
        emit shared(m_lastBuilt);
        return;
    }
    shareAnew(meeting);
}

void ProtocolFileMaker::shareAnew(const Meeting& meeting)
{
    if (m_outcome == Outcome::Working) return;
    if (!m_shareFolder) m_shareFolder = std::make_unique<QTemporaryDir>();
    m_shareFolder->setAutoRemove(false); // who got the file may still be reading it when we are gone
    end(Outcome::Working);
    const QString destination = m_shareFolder->filePath(suggestedName(meeting));
    build(meeting, destination, [this, destination](bool built) {
        if (built) {
            end(Outcome::Idle);
            emit shared(destination);
        } else {
            end(Outcome::Failed);
        }
    });
}

} // namespace murmeli
