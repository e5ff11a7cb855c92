#include "Commands.h"

#include "base/Dates.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "platform/Desktop.h"
#include "platform/SingleInstance.h"
#include "service/AppInfo.h"
#include "service/Prefs.h"

#include <QFileInfo>
#include <QGuiApplication>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <langinfo.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace murmeli::commands {

namespace {

/// Qt wants UTF-8, and says so on the terminal where the environment names something else.
void wantUtf8()
{
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return;
    if (!qEnvironmentVariableIsEmpty("LC_ALL")) {
        qputenv("LC_ALL", "C.UTF-8");
    } else {
        qputenv("LC_CTYPE", "C.UTF-8");
    }
}

int help(const Context& context)
{
    const QStringList& operands = context.line.operands();
    const CommandSpec* spec = operands.isEmpty() ? nullptr : CommandLine::find(operands.first());
    if (!operands.isEmpty() && !spec) return context.fail(Misused, "command.fault.command", operands.first());
    const auto optionLines = [&](const QList<CommandOption>& options) {
        for (const CommandOption& option : options) {
            const QString name = CommandLine::written(option).leftJustified(18);
            context.terminal.line(u"  "_s + name + u' ' + context.text(option.about.data()));
        }
    };
    if (spec) {
        context.terminal.line(CommandLine::usage(*spec));
        context.terminal.line(context.text(spec->about.data()) + u'\n');
        optionLines(spec->options);
        optionLines(CommandLine::commonOptions());
        return Done;
    }
    context.terminal.line(u"murmeli [--window | --record | --setup]\nmurmeli COMMAND …\n"_s);
    for (const CommandSpec& one : CommandLine::commands()) {
        if (one.name == "complete"_L1) continue; // for shells
        context.terminal.line(u"  "_s + QString{one.name}.leftJustified(9) + context.text(one.about.data()));
    }
    context.terminal.line(u'\n' + context.text("command.more_help"));
    return Done;
}

int dispatch(const Context& context)
{
    const QLatin1StringView name = context.line.spec().name;
    if (name == "status"_L1) return status(context);
    if (name == "start"_L1 || name == "stop"_L1 || name == "toggle"_L1) return record(context);
    if (name == "mark"_L1) return mark(context);
    if (name == "list"_L1) return list(context);
    if (name == "show"_L1) return show(context);
    if (name == "search"_L1) return search(context);
    if (name == "export"_L1) return exportMeeting(context);
    if (name == "open"_L1) return open(context);
    if (name == "index"_L1) return index(context);
    if (name == "complete"_L1) return complete(context);
    return help(context);
}

} // namespace

QString Context::text(const char* key, const QString& argument) const
{
    return Language::text(language, QString::fromLatin1(key), argument);
}

int Context::fail(Exit exit, const char* key, const QString& argument) const
{
    const QString usage = exit == Misused ? u" — murmeli help "_s + line.spec().name : QString{};
    terminal.message(text(key, argument) + usage);
    return exit;
}

std::optional<int> Context::number(const char* option, int fallback) const
{
    if (!line.has(option)) return fallback;
    bool good = false;
    const int number = line.value(option).toInt(&good);
    if (good && number >= 0) return number;
    std::ignore = fail(Misused, "command.fault.number", line.value(option));
    return std::nullopt;
}

QString isoTime(double seconds)
{
    return dates::iso8601Local(QDateTime::fromMSecsSinceEpoch(qint64(seconds * 1000)));
}

QJsonObject toJson(const Meeting& meeting)
{
    QJsonObject object{{u"stem"_s, meeting.id},
                       {u"title"_s, meeting.title},
                       {u"start"_s, dates::iso8601Local(meeting.startedAt)}};
    if (const auto end = meeting.endedAt()) object[u"end"_s] = dates::iso8601Local(*end);
    if (meeting.durationMin) object[u"duration_min"_s] = *meeting.durationMin;
    return object;
}

std::optional<int> run(int argc, char** argv)
{
    const CommandSpec* spec = argc > 1 ? CommandLine::find(QString::fromLocal8Bit(argv[1])) : nullptr;
    if (!spec) return std::nullopt;
    wantUtf8();
    QStringList arguments;
    for (int i = 2; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const CommandLine line{*spec, arguments};

    // A text document cannot be laid out without one, but it needs no display.
    const bool drawsPages = makesPdf(line);
    if (drawsPages) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qunsetenv("QT_QPA_PLATFORMTHEME"); // it would want the desktop
        SingleInstance::runtimeFolder();   // else Qt says on the terminal that none is named
    }
    const auto app = drawsPages
                         ? std::unique_ptr<QCoreApplication>{std::make_unique<QGuiApplication>(argc, argv)}
                         : std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setApplicationName(u"murmeli"_s);

    const QString home = qEnvironmentVariable("HOME");
    if (home.isEmpty() || !QFileInfo{home}.isDir()) {
        std::fputs("murmeli: there is no home folder; HOME must name one\n", stderr);
        return Unavailable;
    }
    const auto desktop = makeDesktop(home);
    const auto own = desktop->ownFolders();
    const Paths paths{home, {.data = own.data, .cache = own.cache, .config = own.config}};
    const Prefs prefs{paths.prefsFile};
    const QString wished = line.value("--lang");
    const bool known = Language::supported.contains(wished);
    const QString language =
        known ? wished : Language{prefs, [&desktop] { return desktop->preferredLanguages(); }}.locale();
    const Terminal terminal;
    SystemScheduler scheduler;
    SystemProcesses processes;
    const Context context{line, paths, terminal, scheduler, processes, *desktop, language};
    if (line.has("--lang") && !known) return context.fail(Misused, "command.fault.lang", wished);
    if (!line.fault().isEmpty()) {
        return context.fail(Misused, line.fault().toLatin1().constData(), line.faultArgument());
    }
    if (line.has("--help")) {
        const CommandLine asked{*CommandLine::find(u"help"_s), {spec->name}};
        return help({asked, paths, terminal, scheduler, processes, *desktop, language});
    }
    return dispatch(context);
}

} // namespace murmeli::commands
