#include "SetupStep.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli::setupSteps {

namespace {

struct Names {
    QLatin1StringView raw;
    QLatin1StringView symbol;
};

constexpr std::array<Names, allSetupSteps.size()> names = {{
    {"system"_L1, "shippingbox"_L1},
    {"app"_L1, "arrow.down.app"_L1},
    {"venv"_L1, "cube"_L1},
    {"engine"_L1, "gearshape.2"_L1},
    {"asr"_L1, "waveform"_L1},
    {"models"_L1, "brain"_L1},
    {"service"_L1, "bolt"_L1},
}};

} // namespace

QString rawValue(SetupStep step) { return names.at(size_t(step)).raw; }

std::optional<SetupStep> byRawValue(const QString& raw)
{
    const auto* const found = std::ranges::find(allSetupSteps, raw, &rawValue);
    return found == allSetupSteps.end() ? std::nullopt : std::optional{*found};
}

QString labelKey(SetupStep step) { return u"setup.step."_s + rawValue(step); }

QString symbol(SetupStep step) { return names.at(size_t(step)).symbol; }

} // namespace murmeli::setupSteps
