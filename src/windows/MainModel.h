#pragma once

#include "detail/MeetingDetailModel.h"
#include "glossary/AssistantModel.h"
#include "glossary/GlossaryStore.h"
#include "margin/HomelessMarks.h"
#include "margin/RecordingMarks.h"
#include "meetings/MeetingStore.h"
#include "search/SearchModel.h"
#include "settings/SettingsModel.h"
#include "ui/ViewMemory.h"

#include <QHash>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace murmeli {

/// What the main window shows: which tab, and which meeting is open. Main thread only.
class MainModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the main window")
    Q_PROPERTY(Tab tab READ tab WRITE setTab NOTIFY tabChanged FINAL)
    Q_PROPERTY(murmeli::MeetingDetailModel* detail READ detail NOTIFY detailChanged FINAL) ///< null: the list
    Q_PROPERTY(murmeli::MeetingStore* store READ store CONSTANT FINAL)
    Q_PROPERTY(murmeli::SearchModel* search READ search CONSTANT FINAL)
    Q_PROPERTY(murmeli::AuthManager* account READ account CONSTANT FINAL)
    Q_PROPERTY(murmeli::GlossaryStore* glossary READ glossary CONSTANT FINAL)
    Q_PROPERTY(murmeli::AssistantModel* assistant READ assistant CONSTANT FINAL)
    Q_PROPERTY(murmeli::SettingsModel* settings READ settings CONSTANT FINAL)
    Q_PROPERTY(murmeli::HomelessMarks* homeless READ homeless CONSTANT FINAL)
    Q_PROPERTY(murmeli::ViewMemory* views READ views CONSTANT FINAL)

public:
    enum class Tab { Meetings, Assistant, Settings };
    Q_ENUM(Tab)

    struct Ground {
        const Paths& paths;
        const AppState& state;
        RecordingMarks& marks;
        AuthManager& account;
        Http& http;
        MeetingLocks& locks;
        OwnSettings& own;
        Receipts& receipts;
        Processes& processes;
        Desktop& desktop;
        const Language& language;
        Scheduler& scheduler;
        SettingsModel& settings;
        GlossaryStore& glossary;
        SearchIndex& index;
        QString webOrigin;
    };

    explicit MainModel(const Ground& ground, QObject* parent = nullptr);
    ~MainModel() override;
    Q_DISABLE_COPY_MOVE(MainModel)

    [[nodiscard]] Tab tab() const { return m_tab; }
    void setTab(Tab tab);
    [[nodiscard]] MeetingDetailModel* detail() const { return m_detail.get(); }
    [[nodiscard]] MeetingStore* store() { return &m_store; }
    [[nodiscard]] SearchModel* search() { return &m_search; }
    [[nodiscard]] AuthManager* account() { return &m_ground.account; }
    [[nodiscard]] GlossaryStore* glossary() { return &m_ground.glossary; }
    [[nodiscard]] AssistantModel* assistant() { return &m_assistant; }
    [[nodiscard]] SettingsModel* settings() { return &m_ground.settings; }
    [[nodiscard]] HomelessMarks* homeless() { return &m_homeless; }
    [[nodiscard]] ViewMemory* views() { return &m_views; }

    Q_INVOKABLE void open(const QString& id);
    /// The same, at what was found there.
    Q_INVOKABLE void openAt(const QString& id, const murmeli::FoundPlace& place);
    /// The same for one that the next scan may bring, in the tab of the meetings; where there is one,
    /// at a moment of its transcript, or looking for something in that.
    void openOnceThere(const QString& id, const QString& stamp = {}, const QString& query = {});
    /// Back to the list. \return the meeting that was open.
    Q_INVOKABLE QString back();

    /// Whether the window shows. Meetings are looked for while it does; what ends while it does not has to be
    /// told elsewhere.
    void setOnScreen(bool onScreen);

signals:
    /// A protocol's file was saved, or could not be, and its meeting is not in sight.
    void fileEnded(const QString& meeting, bool saved, const murmeli::Message& line);
    void tabChanged();
    void detailChanged();

private:
    MeetingDetailModel::Work workOn(const Meeting& meeting);
    void followMeetings();
    void leave(std::unique_ptr<MeetingDetailModel> detail);

    Ground m_ground;
    MeetingStore m_store;
    ProtocolWriter m_writer;
    SearchModel m_search;
    Drafts m_drafts;
    AssistantModel m_assistant;
    HomelessMarks m_homeless;
    ViewMemory m_views{nullptr};
    Tab m_tab = Tab::Meetings;
    std::unique_ptr<MeetingDetailModel> m_detail;
    QStringList m_touched; ///< ids of meetings whose files were written
    bool m_onScreen = false;
    QHash<QString, MeetingDetailModel::Work> m_work; ///< by the meeting: of the open one, and what goes on
};

} // namespace murmeli
