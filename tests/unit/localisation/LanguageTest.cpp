#include "localisation/Language.h"

#include "localisation/Texts.h"
#include "registeredTests.h"
#include "service/Prefs.h"

#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class LanguageTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_prefs = std::make_unique<Prefs>(m_dir->filePath(u"prefs.json"_s));
    }

    void choosesTheLanguage_data()
    {
        QTest::addColumn<QJsonValue>("stored");
        QTest::addColumn<QStringList>("system");
        QTest::addColumn<QString>("locale");
        QTest::newRow("choice wins") << QJsonValue{u"en"_s} << QStringList{u"ru-RU"_s} << u"en"_s;
        QTest::newRow("unsupported choice and system")
            << QJsonValue{u"de"_s} << QStringList{u"de-DE"_s} << u"ru"_s;
        QTest::newRow("first of the system's")
            << QJsonValue{} << QStringList{u"en-US"_s, u"ru-RU"_s} << u"en"_s;
        QTest::newRow("not the second") << QJsonValue{} << QStringList{u"de-DE"_s, u"en-US"_s} << u"ru"_s;
        QTest::newRow("no system language") << QJsonValue{} << QStringList{} << u"ru"_s;
        QTest::newRow("case of the choice counts")
            << QJsonValue{u"EN"_s} << QStringList{u"ru-RU"_s} << u"ru"_s;
        QTest::newRow("case of the system's does not") << QJsonValue{} << QStringList{u"EN_GB"_s} << u"en"_s;
        QTest::newRow("wrong type") << QJsonValue{true} << QStringList{u"en"_s} << u"en"_s;
        QTest::newRow("one letter") << QJsonValue{} << QStringList{u"C"_s} << u"ru"_s;
    }
    void choosesTheLanguage()
    {
        QFETCH(QJsonValue, stored);
        QFETCH(QStringList, system);
        if (!stored.isNull()) m_prefs->set(u"locale"_s, stored);
        const Language language{*m_prefs, [&] { return system; }};
        QTEST(language.locale(), "locale");
    }

    void everythingFollowsAChangeTogether()
    {
        Language language{*m_prefs, [] { return QStringList{u"ru"_s}; }};
        QSignalSpy changed{&language, &Language::changed};
        QCOMPARE(language.t(u"record.start"_s), u"Записать встречу"_s);
        const Message message = Message::of("update.plate", u"2.3.1"_s);
        m_prefs->set(u"locale"_s, u"en"_s);
        QCOMPARE(language.t(u"record.start"_s), u"Записать встречу"_s);
        QCOMPARE(language.say(message), u"Версия 2.3.1"_s);
        language.refresh();
        language.refresh();
        QCOMPARE(language.t(u"record.start"_s), u"Record a meeting"_s);
        QCOMPARE(language.say(message), u"Version 2.3.1"_s);
        QCOMPARE(language.say(Message::foreignOr(u"Слова %@"_s, "update.plate")), u"Слова %@"_s);
        QCOMPARE(language.current(), u"en"_s);
        QCOMPARE(changed.size(), 1);
    }

    void insertsTheArgumentLiterally()
    {
        QCOMPARE(Language::text(u"ru"_s, u"update.plate"_s, u"2.3.1"_s), u"Версия 2.3.1"_s);
        QCOMPARE(Language::text(u"ru"_s, u"update.plate"_s, u"%@ %1 \\1"_s), u"Версия %@ %1 \\1"_s);
        QCOMPARE(Language::text(u"en"_s, u"common.close"_s, u"x"_s), u"Close"_s);
        QCOMPARE(Language::text(u"en"_s, u"no.such.key"_s), u"no.such.key"_s);
        QCOMPARE(Language::text(u"de"_s, u"common.close"_s), u"Закрыть"_s);
    }

    void bothTablesHoldTheSameKeysAndPlaceholders()
    {
        compareTables(texts::russian, texts::english);
        compareTables(texts::russianOwn, texts::englishOwn);
    }

private:
    template <std::size_t size>
    static void compareTables(const std::array<texts::Text, size>& russian,
                              const std::array<texts::Text, size>& english)
    {
        static const QRegularExpression keyForm{u"^[a-z_]+(\\.[a-z_]+)+$"_s};
        static const QRegularExpression cyrillic{u"[а-яё]"_s, QRegularExpression::CaseInsensitiveOption};
        QSet<QString> keys;
        for (const auto& row : russian) {
            const QString key = QString::fromLatin1(row.key);
            QVERIFY2(keyForm.match(key).hasMatch(), row.key);
            QVERIFY2(!keys.contains(key), row.key);
            keys.insert(key);
        }
        for (const auto& row : english) {
            const QString key = QString::fromLatin1(row.key);
            QVERIFY2(keys.remove(key), row.key);
            const QString text = QString::fromUtf16(row.text);
            QVERIFY2(!text.isEmpty(), row.key);
            QVERIFY2(key == u"locale.ru"_s || !text.contains(cyrillic), row.key);
            const auto placeholders = text.count(u"%@"_s);
            QVERIFY2(placeholders <= 1, row.key);
            QCOMPARE(Language::text(u"ru"_s, key).count(u"%@"_s), placeholders);
        }
        QVERIFY(keys.isEmpty());
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Prefs> m_prefs;
};

MURMELI_TEST(LanguageTest)
#include "LanguageTest.moc"
