#include "base/Json.h"

#include "registeredTests.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class JsonTest : public QObject {
    Q_OBJECT

private slots:
    void typing_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("seenAs"); // which readers accept it, and as what
        QTest::newRow("true") << "true"_ba << u"bool=1 flag=1"_s;
        QTest::newRow("one") << "1"_ba << u"flag=1 int=1 num=1"_s;
        QTest::newRow("zero") << "0"_ba << u"flag=0 int=0 num=0"_s;
        QTest::newRow("minus one") << "-1"_ba << u"int=-1 num=-1"_s;
        QTest::newRow("whole with a point") << "12.0"_ba << u"int=12 num=12"_s;
        QTest::newRow("fraction") << "12.5"_ba << u"num=12.5"_s;
        QTest::newRow("largest integer")
            << "9223372036854775807"_ba << u"int=9223372036854775807 num=9.22337e+18"_s;
        QTest::newRow("beyond 64 bits") << "1e19"_ba << u"num=1e+19"_s;
        QTest::newRow("text") << "\"2\""_ba << u"text=2"_s;
        QTest::newRow("empty text") << "\"\""_ba << u"text="_s;
        QTest::newRow("null") << "null"_ba << u""_s;
        QTest::newRow("array") << "[{\"a\":1},2,{}]"_ba << u"objects=2"_s;
    }
    void typing()
    {
        QFETCH(QByteArray, value);
        const QJsonObject o = json::object("{\"k\":" + value + "}").value();
        QStringList seen;
        if (const auto v = json::boolean(o, "k"_L1)) seen += u"bool=%1"_s.arg(int(*v));
        if (const auto v = json::flag(o, "k"_L1)) seen += u"flag=%1"_s.arg(int(*v));
        if (const auto v = json::integer(o, "k"_L1)) seen += u"int=%1"_s.arg(*v);
        if (const auto v = json::number(o, "k"_L1)) seen += u"num=%1"_s.arg(*v);
        if (const auto v = json::optionalText(o, "k"_L1)) seen += u"text="_s + *v;
        if (const auto v = json::objects(o, "k"_L1); !v.isEmpty()) seen += u"objects=%1"_s.arg(v.size());
        QTEST(seen.join(u' '), "seenAs");
    }

    void whatIsNoObjectIsNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << ""_ba;
        QTest::newRow("cut") << "{\"a\":1"_ba;
        QTest::newRow("array") << "[1]"_ba;
        QTest::newRow("text") << "\"a\""_ba;
        QTest::newRow("not UTF-8") << "{\"a\":\"\xff\xfe\"}"_ba;
        QTest::newRow("deep") << QByteArray(100'000, '[');
        QTest::newRow("deep in an object") << "{\"a\":" + QByteArray(100'000, '[') + "}";
        QTest::newRow("zeros") << QByteArray(4096, '\0');
        QTest::newRow("two values") << "{} {}"_ba;
    }
    void whatIsNoObjectIsNothing()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!json::object(bytes));
        QCOMPARE(json::withMember(bytes, u"k"_s, true), "{\"k\":true}"_ba);
    }

    void membersKeepTheirVeryLetters_data()
    {
        QTest::addColumn<QByteArray>("old");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("added") << R"({"locale":"en","x":1})"_ba
                               << R"({"locale":"en","x":1,"k":false})"_ba;
        QTest::newRow("replaced") << R"({ "k" : [1, {"k": 2}] , "x":1 })"_ba
                                  << R"({"k":false,"x":1})"_ba;
        QTest::newRow("digits of any length")
            << R"({"big":123456789012345678901234567890,"f":1.10,"e":1E+2,"n":-0})"_ba
            << R"({"big":123456789012345678901234567890,"f":1.10,"e":1E+2,"n":-0,"k":false})"_ba;
        QTest::newRow("escapes and brackets in texts")
            << "{\"a \\\" }, \\\\\":\"[ \\u0416 , : \\\\\",\"b\":{\"c\":[ \"x y\" , {} ]}}"_ba
            << "{\"a \\\" }, \\\\\":\"[ \\u0416 , : \\\\\",\"b\":{\"c\":[\"x y\",{}]},\"k\":false}"_ba;
        QTest::newRow("key written with an escape") << R"({"\u006b":1})"_ba
                                                    << R"({"\u006b":false})"_ba;
        QTest::newRow("empty object") << " { } "_ba
                                      << R"({"k":false})"_ba;
        QTest::newRow("byte order mark") << "\xef\xbb\xbf{\"a\":1}"_ba
                                         << R"({"a":1,"k":false})"_ba;
        QTest::newRow("two of a name") << R"({"k":1,"a":2,"k":3})"_ba
                                       << R"({"a":2,"k":false})"_ba;
    }
    void membersKeepTheirVeryLetters()
    {
        QFETCH(QByteArray, old);
        QTEST(json::withMember(old, u"k"_s, false), "expected");
    }

    void valuesInTheDepth_data()
    {
        using Path = QList<json::Step>;
        QTest::addColumn<QByteArray>("old");
        QTest::addColumn<Path>("path");
        QTest::addColumn<QByteArray>("expected"); ///< null: the path leads nowhere
        const QByteArray old = R"({"a":[{"t":"x","n":12345678901234567890},"y",[1, 2]],"b":{"c":1.50}})";
        QTest::newRow("element")
            << old << Path{u"a"_s, 1}
            << R"({"a":[{"t":"x","n":12345678901234567890},"n",[1,2]],"b":{"c":1.50}})"_ba;
        QTest::newRow("member of an element")
            << old << Path{u"a"_s, 0, u"t"_s}
            << R"({"a":[{"t":"n","n":12345678901234567890},"y",[1,2]],"b":{"c":1.50}})"_ba;
        QTest::newRow("new member")
            << old << Path{u"b"_s, u"d"_s}
            << R"({"a":[{"t":"x","n":12345678901234567890},"y",[1,2]],"b":{"c":1.50,"d":"n"}})"_ba;
        QTest::newRow("in an array of arrays")
            << old << Path{u"a"_s, 2, 1}
            << R"({"a":[{"t":"x","n":12345678901234567890},"y",[1,"n"]],"b":{"c":1.50}})"_ba;
        QTest::newRow("beyond the end") << old << Path{u"a"_s, 3} << QByteArray{};
        QTest::newRow("before the start") << old << Path{u"a"_s, -1} << QByteArray{};
        QTest::newRow("a key in an array") << old << Path{u"a"_s, u"t"_s} << QByteArray{};
        QTest::newRow("a position in an object") << old << Path{u"b"_s, 0} << QByteArray{};
        QTest::newRow("through a text") << old << Path{u"a"_s, 1, u"t"_s} << QByteArray{};
        QTest::newRow("through what is not there") << old << Path{u"z"_s, u"t"_s} << QByteArray{};
    }
    void valuesInTheDepth()
    {
        QFETCH(QByteArray, old);
        QFETCH(QList<json::Step>, path);
        QTEST(json::withValueAt(old, path, u"n"_s).value_or(QByteArray{}), "expected");
    }

    void prettyStaysWithinReason()
    {
        QByteArray deep = "[1,2]";
        for (int i = 0; i < 500; ++i)
            deep = "{\"a\": " + deep + ", \"b\": \"" + QByteArray(100, 'x') + "\"}";
        const QByteArray pretty = json::pretty(deep);
        QVERIFY(pretty.size() < 2 * deep.size());
        QCOMPARE(QJsonDocument::fromJson(pretty), QJsonDocument::fromJson(deep));
    }

    void keysAndValuesAreEscaped()
    {
        const QByteArray bytes = json::withMember("{}", u"«\"\\»"_s, u"строка\n\"x\""_s);
        QCOMPARE(QJsonDocument::fromJson(bytes).object().value(u"«\"\\»"_s).toString(), u"строка\n\"x\""_s);
    }
};

MURMELI_TEST(JsonTest)
#include "JsonTest.moc"
