#include "Mark.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

QString Mark::stamp() const
{
    constexpr double longestMeeting = 1e9; // seconds; more is a damaged figure
    const auto seconds = qint64(std::clamp(time - begin, 0.0, longestMeeting));
    const auto two = [](qint64 number) { return u"%1"_s.arg(number, 2, 10, QChar{u'0'}); };
    const QString tail = two(seconds % 60);
    if (seconds < 3600) return two(seconds / 60) + u':' + tail;
    return QString::number(seconds / 3600) + u':' + two(seconds / 60 % 60) + u':' + tail;
}

} // namespace murmeli
