#pragma once

#include <QString>

#include <array>
#include <optional>

namespace murmeli {

/// The steps of an installation, in the order in which they are shown and blamed.
enum class SetupStep { System, App, Venv, Engine, Asr, Models, Service };

inline constexpr std::array allSetupSteps = {SetupStep::System, SetupStep::App, SetupStep::Venv,
                                             SetupStep::Engine, SetupStep::Asr, SetupStep::Models,
                                             SetupStep::Service};

/// How a step goes.
struct StepState {
    enum Kind { Waiting, Running, Done, Failed };
    Kind kind = Waiting;
    std::optional<int> percent; ///< of a running step, when it says so
    bool operator==(const StepState&) const = default;
};

namespace setupSteps {

QString rawValue(SetupStep step); ///< its name in marker lines
std::optional<SetupStep> byRawValue(const QString& raw);
QString labelKey(SetupStep step);
QString symbol(SetupStep step);

} // namespace setupSteps

} // namespace murmeli
