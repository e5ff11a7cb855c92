#include "base/Json.h"
#include "registeredTests.h"
#include "settings/SettingsModel.h"
#include "support/TestProgram.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

/// A row as one line: what it is, its default, what it may become, and its texts' keys.
QString lineOf(const SettingRow& row)
{
    QStringList words{row.id, row.icon};
    switch (row.kind) {
    case settingKind::Toggle:
        words << u"toggle"_s << (row.on ? u"on"_s : u"off"_s);
        break;
    case settingKind::Choice:
        words << u"choice"_s << row.choice;
        for (const SettingOption& option : row.options)
            words << option.value + u'=' + option.labelKey;
        break;
    case settingKind::Stepper:
        words << u"stepper"_s << QString::number(row.number)
              << QString::number(row.least) + u".."_s + QString::number(row.most) << row.unitKey;
        break;
    default:
        words << u"action"_s << QString::number(row.action) << row.buttonKey;
    }
    if (row.dynamicSubtitle) words << u"dynamic"_s;
    if (!row.hiddenWhenOn.isEmpty()) words << u"hidden by "_s + row.hiddenWhenOn;
    return words.join(u' ');
}

QString describe(const QList<SettingSection>& sections)
{
    QString all;
    for (const SettingSection& section : sections) {
        all += section.id + u'\n';
        for (const SettingRow& row : section.rows)
            all += u"  "_s + lineOf(row) + u'\n';
    }
    return all;
}

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

    void catalogue()
    {
        QCOMPARE(describe(SettingsCatalog::sections(u"en"_s)), uR"(general
  locale globe choice en ru=locale.ru en=locale.en
  notifications bell toggle on
  launch_at_login power toggle on
recording
  auto_record waveform toggle on
  max_record_hours timer stepper 3 1..6 unit.hours
protocol
  instructions doc.badge.gearshape action 0 instructions.load dynamic
delivery
  protocol_format doc.text choice full full=protocol_format.full short=protocol_format.short
  send_telegram paperplane toggle on
  telegram link action 2 telegram.action dynamic
storage
  delete_source_on_success trash toggle on
  keep_source_days calendar stepper 3 1..30 unit.days hidden by delete_source_on_success
  open_recordings folder action 3 open_recordings.action
about
  version arrow.down.circle action 4 check_update.action dynamic
  account person.crop.circle action 6 account.action
  open_logs doc.plaintext action 5 open_logs.action
)"_s);
    }

    void everyRowHasItsTextsAndItsPicture_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("Russian") << u"ru"_s;
        QTest::newRow("English") << u"en"_s;
    }
    void everyRowHasItsTextsAndItsPicture()
    {
        QFETCH(QString, language);
        const auto exists = [&](const QString& key) { return Language::text(language, key) != key; };
        QVERIFY(!exists(u"no.such.key"_s));
        for (const SettingSection& section : m->settings.sections()) {
            QVERIFY2(exists(u"section."_s + section.id), qPrintable(section.id));
            for (const SettingRow& row : section.rows) {
                const auto has = [&](const QString& key) { QVERIFY2(exists(key), qPrintable(key)); };
                has(row.id + u".title"_s);
                if (!row.unitKey.isEmpty()) has(row.unitKey);
                if (!row.buttonKey.isEmpty()) has(row.buttonKey);
                for (const SettingOption& option : row.options)
                    has(option.labelKey);
                const QString subtitle = m->settings.subtitle(row, language, 0);
                QVERIFY2(!subtitle.isEmpty() && !subtitle.contains(u".subtitle"_s) &&
                             !subtitle.contains(u'%'),
                         qPrintable(row.id + u": "_s + subtitle));
                QVERIFY2(QFile::exists(u":/qt/qml/Murmeli/Ui/symbols/"_s + row.icon + u".svg"_s),
                         qPrintable(row.icon));
            }
        }
    }

    void values_data()
    {
        QTest::addColumn<QByteArray>("preferences");
        QTest::addColumn<QString>("toggles"); // those that are on, or "all"
        QTest::addColumn<QString>("texts");   // language and format
        QTest::addColumn<QString>("numbers"); // hours and days
        const auto row = [](const char* name, const char* preferences, const char* toggles, const char* texts,
                            const char* numbers) {
            QTest::newRow(name) << QByteArray{preferences} << QString::fromLatin1(toggles)
                                << QString::fromLatin1(texts) << QString::fromLatin1(numbers);
        };
        row("no file", "", "all", "ru full", "3 3");
        row("a damaged file", "{\"auto_record\":false", "all", "ru full", "3 3");
        row("all of it",
            R"({"locale":"en","notifications":false,"launch_at_login":false,"auto_record":false,
                "max_record_hours":6,"protocol_format":"short","send_telegram":false,
                "delete_source_on_success":false,"keep_source_days":30})",
            "", "en short", "6 30");
        row("other types",
            R"({"locale":1,"notifications":0,"launch_at_login":"false","auto_record":null,
                "max_record_hours":"4","protocol_format":true,"send_telegram":{},
                "delete_source_on_success":[],"keep_source_days":true})",
            "all", "ru full", "3 3");
        row("beyond the bounds", R"({"max_record_hours":0,"keep_source_days":31})", "all", "ru full", "1 30");
        row("far beyond them", R"({"max_record_hours":-9e18,"keep_source_days":9e18})", "all", "ru full",
            "1 30");
        row("words nobody knows", R"({"locale":"de","protocol_format":"long"})", "all", "ru full", "3 3");
    }
    void values()
    {
        QFETCH(QByteArray, preferences);
        if (!preferences.isEmpty()) m->write(m->paths.prefsFile, preferences);
        const SettingsModel& settings = m->settings;
        QStringList on, off;
        for (const QString& key : {u"notifications"_s, u"launch_at_login"_s, u"auto_record"_s,
                                   u"send_telegram"_s, u"delete_source_on_success"_s})
            (settings.boolean(key, 0) ? on : off) << key;
        QTEST(off.isEmpty() ? u"all"_s : on.join(u' '), "toggles");
        QTEST(settings.string(u"locale"_s, 0) + u' ' + settings.string(u"protocol_format"_s, 0), "texts");
        QTEST(QString::number(settings.integer(u"max_record_hours"_s, 0)) + u' ' +
                  QString::number(settings.integer(u"keep_source_days"_s, 0)),
              "numbers");
    }

    void aNumberIsStoredWithinItsBounds_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("asked");
        QTest::addColumn<int>("stored");
        const auto row = [](const QString& key, int asked, int stored) {
            QTest::addRow("%s %d", qPrintable(key), asked) << key << asked << stored;
        };
        row(u"max_record_hours"_s, 0, 1);
        row(u"max_record_hours"_s, 6, 6);
        row(u"max_record_hours"_s, 7, 6);
        row(u"keep_source_days"_s, -1, 1);
        row(u"keep_source_days"_s, 30, 30);
        row(u"keep_source_days"_s, 1000, 30);
    }
    void aNumberIsStoredWithinItsBounds()
    {
        QFETCH(QString, key);
        QFETCH(int, asked);
        m->settings.setInt(key, asked);
        QTEST(m->prefs.load()[key].toInt(), "stored");
    }

    void aToggleHidesARowAndLeavesItsValue()
    {
        const SettingRow& days = rowOf(m->settings, u"keep_source_days"_s);
        m->settings.setInt(days.id, 12);
        QVERIFY(m->settings.hides(days, 0));
        m->settings.setBool(u"delete_source_on_success"_s, false);
        QVERIFY(!m->settings.hides(days, 0));
        m->settings.setBool(u"delete_source_on_success"_s, true);
        QVERIFY(m->settings.hides(days, 0));
        QCOMPARE(m->settings.integer(days.id, 0), 12);
    }

    void whatOthersWriteIsSeen()
    {
        m->scheduler.advance(1500ms);
        const int before = m->settings.revision();
        m->write(m->paths.prefsFile, R"({"auto_record":false})");
        m->scheduler.advance(1500ms);
        QVERIFY(m->settings.revision() > before);
        QVERIFY(!m->settings.boolean(u"auto_record"_s, 0));

        const int quiet = m->settings.revision();
        m->scheduler.advance(15s);
        QCOMPARE(m->settings.revision(), quiet); // nothing is drawn again without a reason
    }

    void theLanguageChangesAtOnce()
    {
        const QSignalSpy changed{&m->language, &Language::changed};
        m->settings.setString(u"locale"_s, u"en"_s);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(m->language.t(u"settings.title"_s), u"Settings"_s);
        QCOMPARE(m->settings.string(u"locale"_s, 0), u"en"_s);
    }

    void launchAtLogin()
    {
        SettingsModel& settings = m->settings;
        settings.setBool(u"launch_at_login"_s, false); // there is no such program, and nobody minds
        QVERIFY(!settings.boolean(u"launch_at_login"_s, 0));

        const QString calls = m->home.filePath(u"calls"_s);
        const QString loader = m->home.filePath(u"launchctl"_s);
        m->write(loader, "#!/bin/sh\nprintf '%s\\n' \"$*\" >> '" + calls.toUtf8() + "'\n");
        QVERIFY(chmod(loader.toLocal8Bit().constData(), 0755) == 0);
        const auto called = [&] { return QString::fromUtf8(files::readWhole(calls, 1000).value_or("")); };
        const QString agent = m->home.path() + u"/Library/LaunchAgents/com.valdor.quillet.app.plist\n"_s;
        settings.setBool(u"launch_at_login"_s, true);
        QCOMPARE(m->desktop.loginItem, true);
        QTRY_COMPARE(called(), u"load "_s + agent);
        settings.setBool(u"launch_at_login"_s, false);
        QTRY_COMPARE(called(), u"load "_s + agent + u"unload "_s + agent);
        settings.setBool(u"notifications"_s, false);
        QCOMPARE(m->desktop.loginItem, false);
    }

    void instructions_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("kept"); // what is in place afterwards; null: what was before
        QTest::addColumn<QString>("subtitle");
        const auto loaded = [](const QString& size) {
            return u"Загружена, "_s + size + u" КБ. Действует только для ваших встреч"_s;
        };
        const QString refused = u"Файл не подошёл: он пуст или это не текст в UTF-8"_s;
        const QByteArray rule = "# Пиши коротко\n"_ba;
        QTest::newRow("text") << rule << rule << loaded(u"1"_s);
        QTest::newRow("a kilobyte") << QByteArray(1024, 'a') << QByteArray(1024, 'a') << loaded(u"1"_s);
        QTest::newRow("and a byte") << QByteArray(1025, 'a') << QByteArray(1025, 'a') << loaded(u"2"_s);
        // A reader counts characters: neither bytes nor halves of them.
        QTest::newRow("as long as may be") << QString{u"я"_s}.repeated(20'000).toUtf8()
                                           << QString{u"я"_s}.repeated(20'000).toUtf8() << loaded(u"40"_s);
        QTest::newRow("longer") << QString{u"👩‍💻"_s}.repeated(20'001).toUtf8()
                                << QString{u"👩‍💻"_s}.repeated(20'000).toUtf8() << loaded(u"215"_s);
        QTest::newRow("empty") << ""_ba << QByteArray{} << refused;
        QTest::newRow("not UTF-8") << "\xcf\xf0\xe8\xe2\xe5\xf2"_ba << QByteArray{} << refused;
        QTest::newRow("huge") << QByteArray(17 * 1024 * 1024, 'a') << QByteArray{} << refused;
    }
    void instructions()
    {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, kept);
        const QByteArray before = "earlier";
        m->write(m->paths.userInstructions, before);
        const QString chosen = m->home.filePath(u"rules.md"_s);
        m->write(chosen, content);
        QSignalSpy changed{&m->settings, &SettingsModel::changed};
        m->settings.loadInstructions(chosen);
        QVERIFY(changed.wait());
        QCOMPARE(files::readWhole(m->paths.userInstructions, 1'000'000).value_or("none"),
                 kept.isNull() ? before : kept);
        const SettingRow& row = rowOf(m->settings, u"instructions"_s);
        QTEST(m->settings.subtitle(row, u"ru"_s, 0), "subtitle");
        QVERIFY(m->settings.hasInstructions());
        QCOMPARE(m->settings.buttonKey(row, 0), u"instructions.replace"_s);

        const int revision = m->settings.revision();
        m->settings.run(settingAction::ClearInstructions, nullptr);
        QVERIFY(!QFile::exists(m->paths.userInstructions));
        QVERIFY(m->settings.revision() > revision);
        QVERIFY(!m->settings.hasInstructions());
        QCOMPARE(m->settings.buttonKey(row, 0), u"instructions.load"_s);
        QCOMPARE(m->settings.subtitle(row, u"ru"_s, 0),
                 Language::text(u"ru"_s, u"instructions.subtitle.none"_s));
    }

    void whatWasSaidOfAFilePasses()
    {
        const auto says = [this](const char* key) {
            return m->settings.subtitle(rowOf(m->settings, u"instructions"_s), u"ru"_s, 0) ==
                   Language::text(u"ru"_s, QString::fromLatin1(key));
        };
        const QString chosen = m->home.filePath(u"rules.md"_s);
        m->write(chosen, "# Пиши коротко\n");
        QVERIFY(QDir{}.mkpath(m->paths.userInstructions)); // nothing can be saved there
        m->settings.loadInstructions(chosen);
        QTRY_VERIFY(says("instructions.subtitle.not_saved"));
        m->settings.opened();
        QVERIFY(says("instructions.subtitle.none"));
        m->write(chosen, "");
        m->settings.loadInstructions(chosen);
        QTRY_VERIFY(says("instructions.subtitle.refused"));
        QVERIFY(QDir{}.rmdir(m->paths.userInstructions));
        m->write(m->paths.userInstructions, "# Из службы\n");
        m->settings.refresh();
        QVERIFY(!says("instructions.subtitle.refused"));
    }

    void aPipeOfInstructionsIsRefused()
    {
        const QString pipe = m->home.filePath(u"pipe.md"_s);
        QVERIFY(mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0);
        QSignalSpy changed{&m->settings, &SettingsModel::changed};
        m->settings.loadInstructions(pipe);
        QVERIFY(changed.wait());
        QVERIFY(!m->settings.hasInstructions());
    }

    void buttonsOpenTheirPlaces_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<QUrl>("place");
        QTest::newRow("Telegram") << int(settingAction::ConnectTelegram)
                                  << QUrl{u"http://127.0.0.1:1/account"_s};
        QTest::newRow("account") << int(settingAction::OpenAccount) << QUrl{u"http://127.0.0.1:1/account"_s};
        QTest::newRow("recordings") << int(settingAction::OpenRecordings) << QUrl{u"recordings"_s};
        QTest::newRow("logs") << int(settingAction::OpenLogs) << QUrl{u"logs"_s};
    }
    void buttonsOpenTheirPlaces()
    {
        QFETCH(int, action);
        QFETCH(QUrl, place);
        QDir{}.mkpath(m->paths.recordings);
        if (place.isRelative())
            place = QUrl::fromLocalFile(place.path() == u"logs"_s ? m->paths.logs : m->paths.recordings);
        m->settings.run(action, nullptr);
        const QStringList folders = place.isLocalFile() ? QStringList{place.toLocalFile()} : QStringList{};
        QCOMPARE(m->desktop.folders, folders);
        QCOMPARE(m->desktop.opened, place.isLocalFile() ? QList<QUrl>{} : QList{place});
    }

    void telegram()
    {
        const SettingRow& row = rowOf(m->settings, u"telegram"_s);
        QCOMPARE(m->settings.subtitle(row, u"ru"_s, 0), u"Не подключено — протоколы некуда слать"_s);
        QCOMPARE(m->settings.buttonKey(row, 0), u"telegram.action"_s);
        m->write(m->paths.stateFile, R"({"status":"idle","telegram_connected":true})");
        m->scheduler.advance(1500ms);
        QCOMPARE(m->settings.subtitle(row, u"ru"_s, 0), u"Подключено"_s);
        QCOMPARE(m->settings.buttonKey(row, 0), u"telegram.action.open"_s);
    }

    void theVersionTellsHowTheUpdaterFares()
    {
        const SettingRow& row = rowOf(m->settings, u"version"_s);
        const auto subtitle = [&] { return m->settings.subtitle(row, u"ru"_s, 0); };
        QCOMPARE(subtitle(), u"0.8.0 · Обновления ставятся сами, проверка — раз в час"_s);
        const auto check = [&](const QByteArray& record) {
            m->publish(record);
            m->settings.run(settingAction::CheckUpdate, nullptr);
            m->scheduler.advance(0ms);
            const QString asking = subtitle();
            if (!QTest::qWaitFor([&] { return m->updater.phase() != Updater::Phase::Checking; }))
                return QString{};
            return asking;
        };
        QCOMPARE(check(R"({"version":"0.8.0"})"), Language::text(u"ru"_s, u"update.subtitle.checking"_s));
        QCOMPARE(subtitle(), Language::text(u"ru"_s, u"update.subtitle.uptodate"_s, u"0.8.0"_s));
        check("no record");
        QCOMPARE(subtitle(), Language::text(u"ru"_s, u"update.subtitle.failed"_s));
        m->write(m->paths.stateFile, R"({"status":"recording"})");
        m->scheduler.advance(1500ms);
        check(R"({"version":"0.9.0"})");
        QCOMPARE(subtitle(), Language::text(u"ru"_s, u"update.subtitle.available"_s, u"0.9.0"_s));
    }

private:
    std::unique_ptr<TestProgram> m;
};

MURMELI_TEST(SettingsTest)
#include "SettingsTest.moc"
