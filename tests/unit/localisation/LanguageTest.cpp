#include "localisation/Language.h"

#include "localisation/Texts.h"
#include "registeredTests.h"
#include "service/Prefs.h"
#include "support/Cases.h"

#include <QCryptographicHash>
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

    void choosesTheLanguage()
    {
        const Cases<QJsonValue, QStringList, QString> cases{
            {"choice wins", u"en"_s, {u"ru-RU"_s}, u"en"_s},
            {"unsupported choice and system", u"de"_s, {u"de-DE"_s}, u"ru"_s},
            {"first of the system's", {}, {u"en-US"_s, u"ru-RU"_s}, u"en"_s},
            {"not the second", {}, {u"de-DE"_s, u"en-US"_s}, u"ru"_s},
            {"no system language", {}, {}, u"ru"_s},
            {"case of the choice counts", u"EN"_s, {u"ru-RU"_s}, u"ru"_s},
            {"case of the system's does not", {}, {u"EN_GB"_s}, u"en"_s},
            {"wrong type", true, {u"en"_s}, u"en"_s},
            {"one letter", {}, {u"C"_s}, u"ru"_s},
        };
        for (const auto& [name, stored, preferred, locale] : cases) {
            CASE(name);
            m_prefs->set(u"locale"_s, stored);
            const Language language{*m_prefs, [system = preferred] { return system; }};
            QCOMPARE(language.locale(), locale);
        }
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

    // The first table is the product's word for word: whoever changes one of its texts means to, and says so
    // here.
    void theProductsTextsStand()
    {
        QCryptographicHash hash{QCryptographicHash::Md5};
        for (const auto* table : {&texts::russian, &texts::english}) {
            for (const auto& row : *table)
                hash.addData((QString::fromLatin1(row.key) + u'=' + QString::fromUtf16(row.text)).toUtf8());
        }
        QCOMPARE(hash.result().toHex(), "1f1171d5d09b3fd88789ce35c7be5bdd"_ba);
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
