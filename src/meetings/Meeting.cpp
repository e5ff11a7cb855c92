#include "Meeting.h"

#include <cmath>

namespace murmeli {

std::optional<QDateTime> Meeting::endedAt() const
{
    constexpr double longest = 1e6; // minutes, two years; more is a damaged figure
    if (!durationMin || !(*durationMin > 0) || *durationMin > longest) return std::nullopt;
    return startedAt.addMSecs(std::llround(*durationMin * 60'000));
}

} // namespace murmeli
