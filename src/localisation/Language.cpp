#include "Language.h"

#include "Texts.h"
#include "base/Dates.h"
#include "base/Numbers.h"
#include "service/Prefs.h"

#include <QHash>
#include <QQmlEngine>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using Table = QHash<QString, QString>;

template <std::size_t shared, std::size_t own>
Table makeTable(const std::array<texts::Text, shared>& all, const std::array<texts::Text, own>& screens)
{
    Table table;
    table.reserve(qsizetype(shared + own));
    for (const auto& row : all)
        table.insert(QString::fromLatin1(row.key), QString::fromUtf16(row.text));
    for (const auto& row : screens)
        table.insert(QString::fromLatin1(row.key), QString::fromUtf16(row.text));
    return table;
}

const Table& russianTable()
{
    static const Table table = makeTable(texts::russian, texts::russianOwn);
    return table;
}

const Table& englishTable()
{
    static const Table table = makeTable(texts::english, texts::englishOwn);
    return table;
}

constexpr auto engineProperty = "murmeliLanguage";

} // namespace

const QString Language::fallback = u"ru"_s;
const QStringList Language::supported = {u"ru"_s, u"en"_s};

Language::Language(const Prefs& prefs, std::function<QStringList()> preferred, QObject* parent)
    : QObject(parent), m_prefs(prefs), m_preferred(std::move(preferred)), m_current(locale())
{
}

QString Language::locale() const
{
    const QString chosen = m_prefs.get(pref::locale);
    if (supported.contains(chosen)) return chosen;
    const QString system = m_preferred().value(0).left(2).toLower();
    return supported.contains(system) ? system : fallback;
}

void Language::refresh()
{
    const QString now = locale();
    if (std::exchange(m_current, now) != now) emit changed();
}

QString Language::text(const QString& language, const QString& key)
{
    if (language == "en"_L1) {
        if (const auto found = englishTable().constFind(key); found != englishTable().cend()) return *found;
    }
    return russianTable().value(key, key);
}

QString Language::text(const QString& language, const QString& key, const QString& argument)
{
    return text(language, key).replace("%@"_L1, argument);
}

QString Language::say(const QString& language, const Message& message)
{
    return message.key.isEmpty() ? message.own : text(language, message.key, message.argument);
}

QString Language::count(const QString& language, const QString& key, qint64 number)
{
    return text(language, key + u'.' + numbers::pluralForm(number, language),
                Language::number(language, number));
}

QString Language::number(const QString& language, qint64 number)
{
    return numbers::grouped(number, language);
}

QString Language::percent(const QString& language, int percent)
{
    return numbers::percent(percent, language);
}

QString Language::spokenDuration(const QString& language, double seconds)
{
    constexpr double longest = 1e12;
    return dates::spokenDuration(std::isfinite(seconds) ? qint64(std::clamp(seconds, 0.0, longest)) : 0,
                                 language);
}

QString Language::spokenPercent(const QString& language, int percent)
{
    return numbers::spokenPercent(percent, language);
}

QString Language::shortDuration(const QString& language, qint64 seconds)
{
    const auto part = [&](qint64 count, const char* unit) {
        return QString::number(count) + QChar{QChar::Nbsp} + text(language, QString::fromLatin1(unit));
    };
    if (seconds < 60) return part(seconds, "unit.seconds");
    const qint64 minutes = seconds / 60;
    if (minutes < 60) return part(minutes, "unit.minutes");
    const QString hours = part(minutes / 60, "unit.hours");
    return minutes % 60 == 0 ? hours : hours + u' ' + part(minutes % 60, "unit.minutes");
}

QString Language::size(const QString& language, qint64 bytes)
{
    constexpr qint64 kilobyte = 1000, megabyte = 1000 * kilobyte;
    return bytes < megabyte
               ? text(language, u"unit.kilobytes"_s, QString::number((bytes + kilobyte - 1) / kilobyte))
               : text(language, u"unit.megabytes"_s, QString::number(bytes / megabyte));
}

void Language::install(QQmlEngine& engine) { engine.setProperty(engineProperty, QVariant::fromValue(this)); }

Language* Language::create(QQmlEngine* engine, QJSEngine*)
{
    auto* language = engine->property(engineProperty).value<Language*>();
    Q_ASSERT_X(language, "Language", "install() it on the engine first");
    QJSEngine::setObjectOwnership(language, QJSEngine::CppOwnership);
    return language;
}

} // namespace murmeli
