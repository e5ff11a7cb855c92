#include "Rhythm.h"

#include <QStringList>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr size_t enough = 8; // intervals that make a rhythm
constexpr size_t kept = 32;
constexpr double shortest = 0.2; // seconds
constexpr double longest = 60;
constexpr double leastSilence = 20;
constexpr double silentBeats = 8;
const QStringList statuses{u"idle"_s, u"recording"_s, u"processing"_s}; // a file can name any number

} // namespace

void Rhythm::heard(const QString& status, double seconds)
{
    if (!statuses.contains(status) || seconds <= 0) return;
    std::deque<double>& heard = m_heard[status];
    heard.push_back(seconds);
    if (heard.size() > kept) heard.pop_front();
}

std::optional<double> Rhythm::of(const QString& status) const
{
    const auto heard = m_heard.constFind(status);
    if (heard == m_heard.cend() || heard->size() < enough) {
        const auto remembered = m_remembered.constFind(status);
        return remembered == m_remembered.cend() ? std::nullopt : std::optional{*remembered};
    }
    std::vector<double> sorted(heard->begin(), heard->end());
    std::ranges::sort(sorted);
    const double median = sorted[sorted.size() / 2];
    if (median > longest) return std::nullopt;
    return std::max(median, shortest);
}

void Rhythm::remember(const QHash<QString, double>& learned)
{
    for (auto it = learned.begin(); it != learned.end(); ++it) {
        if (statuses.contains(it.key()) && *it >= shortest && *it <= longest) m_remembered[it.key()] = *it;
    }
}

void Rhythm::remember(const QJsonObject& learned)
{
    QHash<QString, double> rhythms;
    for (auto it = learned.begin(); it != learned.end(); ++it)
        rhythms[it.key()] = it->toDouble();
    remember(rhythms);
}

bool Rhythm::isSilence(const QString& status, double seconds) const
{
    const auto rhythm = of(status);
    return rhythm && seconds >= std::max(leastSilence, silentBeats * *rhythm);
}

QHash<QString, double> Rhythm::learned() const
{
    QHash<QString, double> learned;
    for (const QString& status : statuses) {
        if (const auto rhythm = of(status)) learned[status] = *rhythm;
    }
    return learned;
}

} // namespace murmeli
