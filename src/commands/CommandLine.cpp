#include "CommandLine.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr CommandOption json{"--json"_L1, {}, "command.option.json"_L1};
constexpr CommandOption noWait{"--no-wait"_L1, {}, "command.option.no_wait"_L1};
constexpr CommandOption limit{"--limit"_L1, "N"_L1, "command.option.limit"_L1};
constexpr CommandOption since{"--since"_L1, "DAY"_L1, "command.option.since"_L1};
constexpr CommandOption until{"--until"_L1, "DAY"_L1, "command.option.until"_L1};

} // namespace

const QList<CommandSpec>& CommandLine::commands()
{
    static const QList<CommandSpec> list{
        {"status"_L1,
         ""_L1,
         0,
         0,
         "command.status"_L1,
         {{"--watch"_L1, {}, "command.option.watch"_L1}, json}},
        {"start"_L1, ""_L1, 0, 0, "command.start"_L1, {noWait}},
        {"stop"_L1, ""_L1, 0, 0, "command.stop"_L1, {noWait}},
        {"toggle"_L1, ""_L1, 0, 0, "command.toggle"_L1, {noWait}},
        {"mark"_L1, "[TEXT]"_L1, 0, -1, "command.mark"_L1, {}},
        {"list"_L1, ""_L1, 0, 0, "command.list"_L1, {since, until, limit, json}},
        {"show"_L1,
         "MEETING"_L1,
         1,
         -1,
         "command.show"_L1,
         {{"--transcript"_L1, {}, "command.option.transcript"_L1},
          {"--analysis"_L1, {}, "command.option.analysis"_L1},
          {"--edits"_L1, {}, "command.option.edits"_L1},
          {"--sent"_L1, {}, "command.option.sent"_L1},
          json}},
        {"search"_L1,
         "QUERY"_L1,
         1,
         -1,
         "command.search"_L1,
         {limit,
          {"--places"_L1, "N"_L1, "command.option.places"_L1},
          {"--best"_L1, {}, "command.option.best"_L1},
          {"--no-update"_L1, {}, "command.option.no_update"_L1},
          json}},
        {"export"_L1,
         "MEETING"_L1,
         1,
         -1,
         "command.export"_L1,
         {{"--format"_L1, "FORMAT"_L1, "command.option.format"_L1},
          {"--sections"_L1, "LIST"_L1, "command.option.sections"_L1},
          {"--hide-names"_L1, {}, "command.option.hide_names"_L1},
          {"--hide-numbers"_L1, {}, "command.option.hide_numbers"_L1},
          {"-o"_L1, "FILE"_L1, "command.option.output"_L1}}},
        {"open"_L1,
         "[MEETING]"_L1,
         0,
         -1,
         "command.open"_L1,
         {{"--at"_L1, "STAMP"_L1, "command.option.at"_L1},
          {"--find"_L1, "QUERY"_L1, "command.option.find"_L1}}},
        {"index"_L1, ""_L1, 0, 0, "command.index"_L1, {{"--rebuild"_L1, {}, "command.option.rebuild"_L1}}},
        {"complete"_L1, "WORDS"_L1, 0, -1, "command.complete"_L1, {}},
        {"help"_L1, "[COMMAND]"_L1, 0, 1, "command.help"_L1, {}},
    };
    return list;
}

const QList<CommandOption>& CommandLine::commonOptions()
{
    static const QList<CommandOption> list{{"--lang"_L1, "LANGUAGE"_L1, "command.option.lang"_L1},
                                           {"--help"_L1, {}, "command.option.help"_L1}};
    return list;
}

const CommandSpec* CommandLine::find(const QString& name)
{
    const auto& list = commands();
    const auto found = std::ranges::find_if(list, [&](const CommandSpec& spec) { return name == spec.name; });
    return found == list.end() ? nullptr : &*found;
}

CommandLine::CommandLine(const CommandSpec& spec, const QStringList& arguments) : m_spec(spec)
{
    take(arguments);
}

void CommandLine::take(const QStringList& arguments)
{
    bool only = m_spec.name == "complete"_L1; // these words belong to another command
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (only || !argument.startsWith(u'-') || argument == "-"_L1) {
            m_operands.append(argument);
            continue;
        }
        if (argument == "--"_L1) {
            only = true;
            continue;
        }
        const QString name = argument.section(u'=', 0, 0);
        const auto known = [&](const QList<CommandOption>& options) {
            const auto it = std::ranges::find_if(
                options, [&](const CommandOption& option) { return name == option.name; });
            return it == options.end() ? nullptr : &*it;
        };
        const CommandOption* option = known(m_spec.options);
        if (!option) option = known(commonOptions());
        if (!option && m_spec.operands == "QUERY"_L1 && !name.startsWith("--"_L1)) { // what must not be there
            m_operands.append(argument);
            continue;
        }
        if (!option) return fail("command.fault.option"_L1, name);
        QString value;
        if (!option->value.isEmpty() && argument.contains(u'=')) {
            value = argument.section(u'=', 1);
        } else if (!option->value.isEmpty()) {
            if (++i >= arguments.size()) return fail("command.fault.value"_L1, name);
            value = arguments[i];
        } else if (argument.contains(u'=')) {
            return fail("command.fault.no_value"_L1, name);
        }
        m_options.insert(name, value);
    }
    if (has("--help")) return;
    if (m_operands.size() < m_spec.least) return fail("command.fault.missing"_L1, m_spec.operands);
    if (m_spec.most >= 0 && m_operands.size() > m_spec.most)
        return fail("command.fault.operand"_L1, m_operands.last());
}

void CommandLine::fail(QLatin1StringView key, const QString& argument)
{
    m_fault = key;
    m_faultArgument = argument;
}

QString CommandLine::usage(const CommandSpec& spec)
{
    QString line = u"murmeli "_s + spec.name;
    for (const CommandOption& option : spec.options)
        line += u" ["_s + written(option) + u']';
    return spec.operands.isEmpty() ? line : line + u' ' + spec.operands;
}

QString CommandLine::written(const CommandOption& option)
{
    return option.value.isEmpty() ? QString{option.name} : option.name + u' ' + option.value;
}

} // namespace murmeli
