#include "base/Json.h"
#include "registeredTests.h"
#include "settings/SettingsModel.h"
#include "support/Cases.h"
#include "support/TestProgram.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const SettingRow& rowOf(const SettingsModel& model, const QString& id)
{
    for (const SettingSection& section : model.sections()) {
        for (const SettingRow& row : section.rows) {
            if (row.id == id) return row;
        }
    }
    qFatal("There is no row %s", qPrintable(id));
}

} // namespace

class SettingsTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<TestProgram>(); }
    void cleanup() { m.reset(); }

    void everyRowHasItsTextsAndItsPicture()
    {
        for (const QString& language : {u"ru"_s, u"en"_s}) {
            const auto exists = [&](const QString& key) { return Language::text(language, key) != key; };
            QVERIFY(!exists(u"no.such.key"_s));
            for (const SettingSection& section : m->settings.sections()) {
                QVERIFY2(exists(u"section."_s + section.id), qPrintable(section.id));
                for (const SettingRow& row : section.rows) {
                    const auto has = [&](const QString& key) { QVERIFY2(exists(key), qPrintable(key)); };
                    has(row.id + u".title"_s);
                    if (const auto* stepper = std::get_if<StepperSetting>(&row.control))
                        has(stepper->unitKey);
                    if (const auto* action = std::get_if<ActionSetting>(&row.control)) has(action->buttonKey);
                    if (const auto* choice = std::get_if<ChoiceSetting>(&row.control)) {
                        for (const SettingOption& option : choice->options)
                            has(option.labelKey);
                    }
                    const QString subtitle = Language::say(language, m->settings.stateOf(row.id).subtitle);
                    QVERIFY2(!subtitle.isEmpty() && !subtitle.contains(u".subtitle"_s) &&
                                 !subtitle.contains(u'%'),
                             qPrintable(row.id + u": "_s + subtitle));
                    QVERIFY2(QFile::exists(u":/qt/qml/Murmeli/Ui/symbols/"_s + row.icon + u".svg"_s),
                             qPrintable(row.icon));
                }
            }
        }
    }

    void values()
    {
        struct Shown {
            bool toggles = true; ///< all of them
            QString language = u"ru"_s;
            QString format = u"full"_s;
            int hours = 3;
            int days = 3;
        };
        const Cases<QByteArray, Shown> cases{
            {"a damaged file", "{\"auto_record\":false", {}},
            {"all of it",
             R"({"locale":"en","notifications":false,"launch_at_login":false,"auto_record":false,
                 "max_record_hours":6,"protocol_format":"short","send_telegram":false,
                 "delete_source_on_success":false,"keep_source_days":30})",
             {false, u"en"_s, u"short"_s, 6, 30}},
            {"other types",
             R"({"locale":1,"notifications":0,"launch_at_login":"false","auto_record":null,
                 "max_record_hours":"4","protocol_format":true,"send_telegram":{},
                 "delete_source_on_success":[],"keep_source_days":true})",
             {}},
            {"beyond the bounds",
             R"({"max_record_hours":0,"keep_source_days":31})",
             {.hours = 1, .days = 30}},
            {"far beyond them",
             R"({"max_record_hours":-9e18,"keep_source_days":9e18})",
             {.hours = 1, .days = 30}},
            {"words nobody knows", R"({"locale":"de","protocol_format":"long"})", {}},
        };
        for (const auto& [name, preferences, shown] : cases) {
            CASE(name);
            m->write(m->paths.prefsFile, preferences);
            SettingsModel& settings = m->settings;
            settings.refresh();
            for (const QString& key : {u"notifications"_s, u"launch_at_login"_s, u"auto_record"_s,
                                       u"send_telegram"_s, u"delete_source_on_success"_s})
                QVERIFY2(settings.stateOf(key).value.toBool() == shown.toggles, qPrintable(key));
            QCOMPARE(settings.stateOf(u"locale"_s).value.toString(), shown.language);
            QCOMPARE(settings.stateOf(u"protocol_format"_s).value.toString(), shown.format);
            QCOMPARE(settings.stateOf(u"max_record_hours"_s).value.toInt(), shown.hours);
            QCOMPARE(settings.stateOf(u"keep_source_days"_s).value.toInt(), shown.days);
        }
        for (const auto& [asked, stored] : {std::pair{0, 1}, std::pair{6, 6}, std::pair{7, 6}}) {
            m->settings.set(u"max_record_hours"_s, asked); // is stored within its bounds
            QCOMPARE(m->prefs.load()[u"max_record_hours"_s].toInt(), stored);
        }
    }

    void aToggleHidesARowAndLeavesItsValue()
    {
        const SettingRow& days = rowOf(m->settings, u"keep_source_days"_s);
        m->settings.set(days.id, 12);
        QVERIFY(m->settings.stateOf(days.id).hidden);
        m->settings.set(u"delete_source_on_success"_s, false);
        QVERIFY(!m->settings.stateOf(days.id).hidden);
        m->settings.set(u"delete_source_on_success"_s, true);
        QVERIFY(m->settings.stateOf(days.id).hidden);
        QCOMPARE(m->settings.stateOf(days.id).value.toInt(), 12);
    }

    void whatOthersWriteIsSeen()
    {
        m->scheduler.advance(1500ms);
        QSignalSpy changed{&m->settings, &SettingsModel::changed};
        m->write(m->paths.prefsFile, R"({"auto_record":false})");
        m->scheduler.advance(1500ms);
        QVERIFY(!changed.isEmpty());
        QVERIFY(!m->settings.stateOf(u"auto_record"_s).value.toBool());

        changed.clear();
        m->scheduler.advance(15s);
        QVERIFY(changed.isEmpty()); // nothing is drawn again without a reason
    }

    void theLanguageChangesAtOnce()
    {
        const QSignalSpy changed{&m->language, &Language::changed};
        m->settings.set(u"locale"_s, u"en"_s);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(m->language.t(u"settings.title"_s), u"Settings"_s);
        QCOMPARE(m->settings.stateOf(u"locale"_s).value.toString(), u"en"_s);
    }

    void launchAtLogin()
    {
        SettingsModel& settings = m->settings;
        const QString calls = m->home.filePath(u"calls"_s);
        const QString loader = m->home.filePath(u"launchctl"_s);
        m->write(loader, "#!/bin/sh\nprintf '%s\\n' \"$*\" >> '" + calls.toUtf8() + "'\n");
        QVERIFY(chmod(loader.toLocal8Bit().constData(), 0755) == 0);
        const auto called = [&] { return QString::fromUtf8(files::readWhole(calls, 1000).value_or("")); };
        const QString agent = m->home.path() + u"/Library/LaunchAgents/com.valdor.quillet.app.plist\n"_s;
        const QString target = u" gui/%1/com.valdor.quillet.app\n"_s.arg(::getuid());
        settings.set(u"launch_at_login"_s, true);
        QCOMPARE(m->desktop.loginItem, true);
        QString all = u"enable"_s + target + u"load "_s + agent;
        QTRY_COMPARE(called(), all);
        settings.set(u"launch_at_login"_s, false);
        all += u"disable"_s + target + u"unload "_s + agent;
        QTRY_COMPARE(called(), all);
        m->desktop.byAgent = true; // it would end us
        settings.set(u"launch_at_login"_s, false);
        all += u"disable"_s + target;
        QTRY_COMPARE(called(), all);
        settings.set(u"notifications"_s, false);
        QCOMPARE(m->desktop.loginItem, false);
        QVERIFY(QFile::remove(loader)); // there is no such program, and nobody minds
        settings.set(u"launch_at_login"_s, true);
        QVERIFY(settings.stateOf(u"launch_at_login"_s).value.toBool());
    }

    void instructions()
    {
        const QString loaded = u"Загружена, %1 КБ. Действует только для ваших встреч"_s;
        const QString refused = u"Файл не подошёл: он пуст или это не текст в UTF-8"_s;
        const QByteArray before = "earlier";
        const QByteArray rule = "# Пиши коротко\n";
        const auto repeated = [](const QString& text, int times) { return text.repeated(times).toUtf8(); };
        const Cases<QByteArray, QByteArray, QString> cases{
            // what is in the chosen file, what is in place afterwards, and what is said
            {"text", rule, rule, loaded.arg(1)},
            {"a kilobyte", QByteArray(1024, 'a'), QByteArray(1024, 'a'), loaded.arg(1)},
            {"and a byte", QByteArray(1025, 'a'), QByteArray(1025, 'a'), loaded.arg(2)},
            // A reader counts characters: neither bytes nor halves of them.
            {"as long as may be", repeated(u"я"_s, 20'000), repeated(u"я"_s, 20'000), loaded.arg(40)},
            {"longer", repeated(u"👩‍💻"_s, 20'001), repeated(u"👩‍💻"_s, 20'000),
             loaded.arg(215)},
            {"empty", "", before, refused},
            {"not UTF-8", "\xcf\xf0\xe8\xe2\xe5\xf2", before, refused},
            {"huge", QByteArray(17 * 1024 * 1024, 'a'), before, refused},
        };
        const SettingRow& row = rowOf(m->settings, u"instructions"_s);
        for (const auto& [name, content, kept, subtitle] : cases) {
            CASE(name);
            m->write(m->paths.userInstructions, before);
            const QString chosen = m->home.filePath(u"rules.md"_s);
            m->write(chosen, content);
            QTRY_VERIFY(m->program.own.isKnown()); // which the settings tell of too
            QSignalSpy changed{&m->settings, &SettingsModel::changed};
            m->settings.loadInstructions(chosen);
            QVERIFY(changed.wait());
            QVERIFY(files::readWhole(m->paths.userInstructions, 1'000'000) == kept);
            QCOMPARE(m->language.say(m->settings.stateOf(row.id).subtitle), subtitle);
            QVERIFY(m->settings.hasInstructions());
            QCOMPARE(m->settings.stateOf(row.id).buttonKey, u"instructions.replace"_s);

            changed.clear();
            m->settings.run(settingAction::ClearInstructions, nullptr);
            QVERIFY(!QFile::exists(m->paths.userInstructions));
            QVERIFY(!changed.isEmpty());
            QVERIFY(!m->settings.hasInstructions());
            QCOMPARE(m->settings.stateOf(row.id).buttonKey, u"instructions.load"_s);
            QVERIFY(says("instructions.subtitle.none"));
        }
    }

    void whatWasSaidOfAFilePasses()
    {
        const QString chosen = m->home.filePath(u"rules.md"_s);
        m->write(chosen, "# Пиши коротко\n");
        QVERIFY(QDir{}.mkpath(m->paths.userInstructions)); // nothing can be saved there
        m->settings.loadInstructions(chosen);
        QTRY_VERIFY(says("instructions.subtitle.not_saved"));
        m->settings.opened();
        QVERIFY(says("instructions.subtitle.none"));
        QVERIFY(QFile::remove(chosen) && ::mkfifo(QFile::encodeName(chosen).constData(), 0600) == 0);
        m->settings.loadInstructions(chosen); // does not wait for somebody to write into the pipe
        QTRY_VERIFY(says("instructions.subtitle.refused"));
        QVERIFY(QDir{}.rmdir(m->paths.userInstructions));
        m->write(m->paths.userInstructions, "# Из службы\n");
        m->settings.refresh();
        QVERIFY(!says("instructions.subtitle.refused"));
    }

    void buttonsOpenTheirPlaces()
    {
        QDir{}.mkpath(m->paths.recordings);
        const QUrl site{u"http://127.0.0.1:1/account"_s};
        m->settings.run(settingAction::ConnectTelegram, nullptr);
        m->settings.run(settingAction::OpenAccount, nullptr);
        QCOMPARE(m->desktop.opened, (QList{site, site}));
        m->settings.run(settingAction::OpenRecordings, nullptr);
        m->settings.run(settingAction::OpenLogs, nullptr);
        QCOMPARE(m->desktop.folders, (QStringList{m->paths.recordings, m->paths.logs}));
    }

    void theAccountRowSaysWhose()
    {
        const auto lead = [this] { return m->settings.stateOf(u"account"_s).lead; };
        QCOMPARE(lead(), QString{});
        m->account.login();
        m->account.handle(u"murmeli://auth#access_token=a&email=anna%40example.org"_s);
        QCOMPARE(lead(), u"anna@example.org"_s);
        m->account.logout();
        QCOMPARE(lead(), QString{});
    }

    void telegram()
    {
        const SettingRow& row = rowOf(m->settings, u"telegram"_s);
        QCOMPARE(m->language.say(m->settings.stateOf(row.id).subtitle),
                 u"Не подключено — протоколы некуда слать"_s);
        QCOMPARE(m->settings.stateOf(row.id).buttonKey, u"telegram.action"_s);
        m->serviceWrites(R"({"status":"idle","telegram_connected":true})");
        QCOMPARE(m->language.say(m->settings.stateOf(row.id).subtitle), u"Подключено"_s);
        QCOMPARE(m->settings.stateOf(row.id).buttonKey, u"telegram.action.open"_s);
    }

    void theVersionTellsHowTheUpdaterFares()
    {
        const SettingRow& row = rowOf(m->settings, u"version"_s);
        const auto subtitle = [&] {
            const SettingState state = m->settings.stateOf(row.id);
            return state.lead == m->updater.current() ? m->language.say(state.subtitle) : QString{};
        };
        QCOMPARE(subtitle(), u"Обновления ставятся сами, проверка — раз в час"_s);
        const auto says = [](const char* key, const QString& version = {}) {
            return Language::text(u"ru"_s, QString::fromLatin1(key), version);
        };
        m->publish(R"({"version":"0.8.0"})");
        m->settings.run(settingAction::CheckUpdate, nullptr);
        m->scheduler.advance(0ms);
        QCOMPARE(subtitle(), says("update.subtitle.checking"));
        QTRY_COMPARE(subtitle(), says("update.subtitle.uptodate", u"0.8.0"_s));
        m->publish("no record");
        m->check();
        QCOMPARE(subtitle(), says("update.subtitle.failed"));
        m->serviceSays("recording");
        m->publish(R"({"version":"0.9.0"})");
        m->check();
        QCOMPARE(subtitle(), says("update.subtitle.available", u"0.9.0"_s));
    }

    void ownSettingsAndAllOwnData()
    {
        const QString file = m->paths.ownConfig + u"/settings.json"_s;
        m->write(file, R"({"v":1,"later":[1],"remind_long":false})");
        m->program.own.load();
        QTRY_COMPARE(m->settings.stateOf(u"remind_long"_s).value, QVariant{false});
        m->settings.set(u"remind_long"_s, true);
        QTRY_COMPARE(files::readWhole(file, 1000), QByteArray{R"({"v":1,"later":[1],"remind_long":true})"});
        QVERIFY(!m->prefs.load().contains(u"remind_long"_s));

        m->write(m->paths.ownData + u"/margin/a.json"_s, QByteArray(3000, ' '));
        m->write(m->paths.ownData + u"/other"_s, "of somebody else");
        m->settings.opened();
        const auto size = [&] { return m->language.say(m->settings.stateOf(u"own_data"_s).subtitle); };
        QTRY_COMPARE(size(), u"Пометки и настройки этого компьютера: 4 КБ"_s);
        m->settings.run(settingAction::DeleteOwnData, nullptr);
        QCOMPARE(m->settings.stateOf(u"own_data"_s).buttonKey, u"own_data.keep"_s);
        m->settings.run(settingAction::ShowOwnData, nullptr); // which then says "keep"
        QVERIFY(m->desktop.folders.isEmpty());
        m->settings.run(settingAction::DeleteOwnData, nullptr);
        QVERIFY(QFile::exists(file));
        m->settings.run(settingAction::DeleteOwnData, nullptr);
        QTRY_COMPARE(m->settings.stateOf(u"own_data"_s).subtitle.key, u"own_data.subtitle.none"_s);
        QVERIFY(!QFile::exists(file));
        QVERIFY(!QFile::exists(m->paths.ownData + u"/margin"_s));
        QVERIFY(QFile::exists(m->paths.ownData + u"/other"_s));

        m->write(file, R"({"v":2})");
        QSignalSpy said{&m->program, &Program::toastWanted};
        m->settings.set(u"remind_long"_s, false);
        QTRY_COMPARE(said.size(), 1);
        QCOMPARE(files::readWhole(file, 1000), QByteArray{R"({"v":2})"});
    }

private:
    [[nodiscard]] bool says(const char* key) const
    {
        return m->language.say(m->settings.stateOf(u"instructions"_s).subtitle) ==
               Language::text(u"ru"_s, QString::fromLatin1(key));
    }

    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(SettingsTest)
#include "SettingsTest.moc"
