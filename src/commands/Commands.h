#pragma once

#include "CommandLine.h"
#include "Library.h"
#include "Terminal.h"

#include <QDateTime>
#include <QJsonObject>

#include <functional>
#include <optional>

namespace murmeli {

class Desktop;
class Processes;
class Scheduler;

/// Murmeli in the shell: each command answers and ends, without a window, a lock or a display.
namespace commands {

enum Exit {
    Done = 0,
    Nothing = 1, ///< is there, or was found
    Misused = 2,
    Unanswered = 3, ///< by the service
    Unavailable = 4,
    Ambiguous = 6,
};

/// What a command works with; all of it outlives the command.
struct Context {
    const CommandLine& line;
    const Paths& paths;
    const Terminal& terminal;
    Scheduler& scheduler;
    Processes& processes;
    Desktop& desktop;
    QString language;

    [[nodiscard]] QString text(const char* key, const QString& argument = {}) const;
    [[nodiscard]] bool json() const { return line.has("--json"); }
    /// The number behind an option; nothing when it is none, which is then said.
    [[nodiscard]] std::optional<int> number(const char* option, int fallback) const;
    /// Fails with a message. \return `exit`
    [[nodiscard]] int fail(Exit exit, const char* key, const QString& argument = {}) const;
};

/// Runs what the first argument names. \return its exit status; nothing when it names no command.
std::optional<int> run(int argc, char** argv);

int status(const Context& context);
int record(const Context& context); ///< start, stop and toggle
int mark(const Context& context);
int list(const Context& context);
int show(const Context& context);
int exportMeeting(const Context& context);
int search(const Context& context);
int index(const Context& context);
int open(const Context& context);
int complete(const Context& context);

/// Does `work` with the one meeting that the operands mean, or says why it is none.
int withMeeting(const Context& context, const std::function<int(Library&, const Meeting&)>& work);
/// The meeting's members that every document has: "stem", "title", "start", "end", "duration_min".
QJsonObject toJson(const Meeting& meeting);
/// ISO 8601 with the local zone. \param seconds since 1970 UTC.
QString isoTime(double seconds);
/// Whether the command lays out pages, for which it needs a QGuiApplication.
bool makesPdf(const CommandLine& line);

} // namespace commands

} // namespace murmeli
