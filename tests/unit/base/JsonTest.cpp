#include "base/Json.h"

#include "registeredTests.h"
#include "support/Cases.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

class JsonTest : public QObject {
    Q_OBJECT

private slots:
    void typing()
    {
        const Cases<QByteArray, QString> cases{
            // which readers accept it, and as what
            {"true", "true", u"bool=1 flag=1"_s},
            {"one", "1", u"flag=1 int=1 num=1"_s},
            {"zero", "0", u"flag=0 int=0 num=0"_s},
            {"minus one", "-1", u"int=-1 num=-1"_s},
            {"whole with a point", "12.0", u"int=12 num=12"_s},
            {"fraction", "12.5", u"num=12.5"_s},
            {"largest integer", "9223372036854775807", u"int=9223372036854775807 num=9.22337e+18"_s},
            {"beyond 64 bits", "1e19", u"num=1e+19"_s},
            {"text", "\"2\"", u"text=2"_s},
            {"empty text", "\"\"", u"text="_s},
            {"null", "null", u""_s},
            {"array", "[{\"a\":1},2,{}]", u"objects=2"_s},
        };
        for (const auto& [name, value, seenAs] : cases) {
            CASE(name);
            const QJsonObject o = json::object("{\"k\":" + value + "}").value();
            QStringList seen;
            if (const auto v = json::boolean(o, "k"_L1)) seen += u"bool=%1"_s.arg(int(*v));
            if (const auto v = json::flag(o, "k"_L1)) seen += u"flag=%1"_s.arg(int(*v));
            if (const auto v = json::integer(o, "k"_L1)) seen += u"int=%1"_s.arg(*v);
            if (const auto v = json::number(o, "k"_L1)) seen += u"num=%1"_s.arg(*v);
            if (const auto v = json::optionalText(o, "k"_L1)) seen += u"text="_s + *v;
            if (const auto v = json::objects(o, "k"_L1); !v.isEmpty()) seen += u"objects=%1"_s.arg(v.size());
            QCOMPARE(seen.join(u' '), seenAs);
        }
    }

    void whatIsNoObjectIsNothing()
    {
        const Cases<QByteArray> cases{
            {"empty", ""},
            {"cut", "{\"a\":1"},
            {"array", "[1]"},
            {"text", "\"a\""},
            {"not UTF-8", "{\"a\":\"\xff\xfe\"}"},
            {"deep", QByteArray(100'000, '[')},
            {"deep in an object", "{\"a\":" + QByteArray(100'000, '[') + "}"},
            {"zeros", QByteArray(4096, '\0')},
            {"two values", "{} {}"},
        };
        for (const auto& [name, bytes] : cases) {
            CASE(name);
            QVERIFY(!json::object(bytes));
            QCOMPARE(json::withMember(bytes, u"k"_s, true), "{\"k\":true}"_ba);
        }
    }

    void membersKeepTheirVeryLetters()
    {
        const Cases<QByteArray, QByteArray> cases{
            {"added", R"({"locale":"en","x":1})", R"({"locale":"en","x":1,"k":false})"},
            {"replaced", R"({ "k" : [1, {"k": 2}] , "x":1 })", R"({"k":false,"x":1})"},
            {"digits of any length", R"({"big":123456789012345678901234567890,"f":1.10,"e":1E+2,"n":-0})",
             R"({"big":123456789012345678901234567890,"f":1.10,"e":1E+2,"n":-0,"k":false})"},
            {"escapes and brackets in texts",
             "{\"a \\\" }, \\\\\":\"[ \\u0416 , : \\\\\",\"b\":{\"c\":[ \"x y\" , {} ]}}",
             "{\"a \\\" }, \\\\\":\"[ \\u0416 , : \\\\\",\"b\":{\"c\":[\"x y\",{}]},\"k\":false}"},
            {"key written with an escape", R"({"\u006b":1})", R"({"\u006b":false})"},
            {"empty object", " { } ", R"({"k":false})"},
            {"byte order mark", "\xef\xbb\xbf{\"a\":1}", R"({"a":1,"k":false})"},
            {"two of a name", R"({"k":1,"a":2,"k":3})", R"({"a":2,"k":false})"},
        };
        for (const auto& [name, old, expected] : cases) {
            CASE(name);
            QCOMPARE(json::withMember(old, u"k"_s, false), expected);
        }
    }

    void valuesInTheDepth()
    {
        const QByteArray old = R"({"a":[{"t":"x","n":12345678901234567890},"y",[1, 2]],"b":{"c":1.50}})";
        const Cases<QList<json::Step>, QByteArray> cases{
            {"element",
             {u"a"_s, 1},
             R"({"a":[{"t":"x","n":12345678901234567890},"n",[1,2]],"b":{"c":1.50}})"},
            {"member of an element",
             {u"a"_s, 0, u"t"_s},
             R"({"a":[{"t":"n","n":12345678901234567890},"y",[1,2]],"b":{"c":1.50}})"},
            {"new member",
             {u"b"_s, u"d"_s},
             R"({"a":[{"t":"x","n":12345678901234567890},"y",[1,2]],"b":{"c":1.50,"d":"n"}})"},
            {"in an array of arrays",
             {u"a"_s, 2, 1},
             R"({"a":[{"t":"x","n":12345678901234567890},"y",[1,"n"]],"b":{"c":1.50}})"},
            {"beyond the end", {u"a"_s, 3}, {}}, // leads nowhere
            {"before the start", {u"a"_s, -1}, {}},
            {"a key in an array", {u"a"_s, u"t"_s}, {}},
            {"a position in an object", {u"b"_s, 0}, {}},
            {"through a text", {u"a"_s, 1, u"t"_s}, {}},
            {"through what is not there", {u"z"_s, u"t"_s}, {}},
        };
        for (const auto& [name, path, expected] : cases) {
            CASE(name);
            QCOMPARE(json::withValueAt(old, path, u"n"_s).value_or(QByteArray{}), expected);
        }
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
