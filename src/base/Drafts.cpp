#include "Drafts.h"

#include "Background.h"
#include "Files.h"
#include "Json.h"
#include "Scheduler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <tuple>
#include <utility>

using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto pauseInTyping = 1s;
constexpr qint64 sizeLimit = 16 * 1024 * 1024; // bytes

} // namespace

Drafts::Drafts(QString file, Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_file(std::move(file)), m_scheduler(scheduler)
{
    m_writer.setMaxThreadCount(1);
    startOn(m_writer, [file = m_file] { files::removeUnfinished(file); });
    const auto read = [file = m_file] {
        return json::object(files::readWhole(file, sizeLimit).value_or(QByteArray{})).value_or(QJsonObject{});
    };
    inBackground(this, read, [this](const QJsonObject& kept) {
        for (auto draft = kept.begin(); draft != kept.end(); ++draft) {
            if (m_drafts.contains(draft.key()) || !draft->isString()) continue;
            m_drafts[draft.key()] = draft->toString();
            emit changed(draft.key());
        }
    });
}

Drafts::~Drafts()
{
    if (m_waiting) write();
    m_writer.waitForDone();
}

void Drafts::write()
{
    m_waiting.end();
    QJsonObject kept;
    for (auto draft = m_drafts.cbegin(); draft != m_drafts.cend(); ++draft)
        kept[draft.key()] = *draft;
    startOn(m_writer, [kept, file = m_file] {
        if (kept.isEmpty()) {
            QFile::remove(file);
            return;
        }
        QDir{}.mkpath(QFileInfo{file}.path());
        std::ignore = files::writePrivate(file, QJsonDocument{kept}.toJson(QJsonDocument::Compact));
    });
}

void Drafts::set(const QString& about, const QString& draft)
{
    if (of(about) == draft) return;
    if (draft.isEmpty()) {
        m_drafts.remove(about);
    } else {
        m_drafts[about] = draft;
    }
    m_scheduler.after(pauseInTyping, m_waiting.renew(), [this] { write(); });
    emit changed(about);
}

void Drafts::carryOut(const QString& about, const QString& draft)
{
    if (of(about) == draft) set(about, {});
    emit carriedOut();
}

} // namespace murmeli
