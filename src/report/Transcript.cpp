#include "Transcript.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QString heading = u"Транскрипт"_s;

QStringView stripped(QStringView text, QStringView characters)
{
    while (!text.isEmpty() && characters.contains(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && characters.contains(text.back()))
        text.chop(1);
    return text;
}

} // namespace

std::optional<QString> Transcript::textOf(const QString& protocol)
{
    const qsizetype start = protocol.indexOf(heading);
    if (start < 0) return std::nullopt;
    QString result;
    const auto lines = QStringView{protocol}.sliced(start).split(u'\n', Qt::SkipEmptyParts);
    for (QStringView line : lines) {
        if (line.endsWith(u'\r')) line.chop(1);
        line = stripped(line, u"> ");
        if (!line.startsWith(u'[')) continue;
        if (!result.isEmpty()) result += u'\n';
        result += line;
    }
    return result;
}

std::optional<qint64> Transcript::seconds(const QString& stamp)
{
    QList<qint64> numbers;
    const auto parts = stripped(stamp, u"[] ").split(u':', Qt::SkipEmptyParts);
    for (const QStringView part : parts) {
        if (const auto number = text::wholeNumber(part.toString())) numbers.append(*number);
    }
    if (numbers.size() < 2) return std::nullopt;
    const std::array<qint64, 3> factors =
        numbers.size() == 3 ? std::array<qint64, 3>{3600, 60, 1} : std::array<qint64, 3>{60, 1, 0};
    qint64 sum = 0;
    for (size_t i = 0; i < factors.size(); ++i) {
        qint64 part = 0;
        const qint64 number = numbers.value(qsizetype(i));
        if (factors.at(i) == 0) break;
        if (qMulOverflow(number, factors.at(i), &part) || qAddOverflow(sum, part, &sum)) return std::nullopt;
    }
    return sum;
}

Transcript::Transcript(const QString& text)
{
    const auto lines = QStringView{text}.split(u'\n', Qt::SkipEmptyParts);
    QStringList stamps;
    m_lines.reserve(lines.size());
    for (const QStringView line : lines) {
        const qsizetype end = line.indexOf(u']');
        if (end < 0) continue;
        const QString stamp = line.first(end + 1).toString();
        if (!m_byStamp.contains(stamp)) stamps.append(stamp);
        m_byStamp.insert(stamp, m_lines.size());
        m_lines.append(text::trimmed(line.sliced(end + 1).toString()));
    }
    for (const QString& stamp : std::as_const(stamps)) {
        if (const auto at = seconds(stamp)) m_marks.append({*at, m_byStamp.value(stamp)});
    }
    std::ranges::stable_sort(m_marks, {}, &Mark::seconds);
}

std::optional<Transcript::Quote> Transcript::quote(const QString& stamp) const
{
    qsizetype line = m_byStamp.value(stamp, -1);
    if (line < 0) {
        const auto at = seconds(stamp);
        if (!at) return std::nullopt;
        const auto after = std::ranges::upper_bound(m_marks, *at, {}, &Mark::seconds);
        if (after == m_marks.begin()) return std::nullopt;
        line = std::ranges::lower_bound(m_marks, std::prev(after)->seconds, {}, &Mark::seconds)->line;
    }
    return Quote{m_lines[line], m_lines.value(line - 1), m_lines.value(line + 1)};
}

} // namespace murmeli
