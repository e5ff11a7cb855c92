#include "MainModel.h"

#include <utility>

namespace murmeli {

MainModel::MainModel(const Ground& ground, QObject* parent)
    : QObject(parent),
      m_ground(ground),
      m_store(ground.paths, ground.language, ground.scheduler),
      m_glossary(ground.account, ground.http, ground.prefs, ground.language, ground.scheduler),
      m_assistant(m_glossary)
{
}

MainModel::~MainModel() = default;

void MainModel::setTab(Tab tab)
{
    if (std::exchange(m_tab, tab) != tab) emit tabChanged();
}

void MainModel::open(const QString& id)
{
    const Meeting* meeting = m_store.list()->find(id);
    if (!meeting) return;
    auto old = std::exchange(
        m_detail, std::make_unique<MeetingDetailModel>(
                      MeetingDetailModel::Ground{m_ground.paths, m_store, m_glossary, m_ground.account,
                                                 m_ground.http, m_ground.processes, m_ground.language,
                                                 m_ground.scheduler, m_ground.webOrigin, m_background},
                      *meeting));
    emit detailChanged();
    if (old) old.release()->deleteLater(); // its view still reads it
}

QString MainModel::back()
{
    auto old = std::exchange(m_detail, nullptr);
    emit detailChanged();
    if (!old) return {};
    const QString id = old->id();
    old.release()->deleteLater();
    return id;
}

} // namespace murmeli
