#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace murmeli {

/// What a command takes. The texts are keys.
struct CommandOption {
    QLatin1StringView name;  ///< as "--limit"
    QLatin1StringView value; ///< what stands behind it, as "N"; empty for a switch
    QLatin1StringView about;
};
struct CommandSpec {
    QLatin1StringView name;
    QLatin1StringView operands; ///< as they stand in the usage
    int least;                  ///< operands
    int most;                   ///< the same; -1: any number, which are one text
    QLatin1StringView about;
    QList<CommandOption> options;
};

/// The arguments of a command, as they were given.
class CommandLine {
public:
    /// All there are, in the order in which they are listed.
    static const QList<CommandSpec>& commands();
    static const CommandSpec* find(const QString& name);
    /// Those that every command takes.
    static const QList<CommandOption>& commonOptions();

    /// \param arguments without the program and the command.
    CommandLine(const CommandSpec& spec, const QStringList& arguments);

    [[nodiscard]] const CommandSpec& spec() const { return m_spec; }
    /// What is wrong, as a text's key and its argument; empty when nothing is.
    [[nodiscard]] const QString& fault() const { return m_fault; }
    [[nodiscard]] const QString& faultArgument() const { return m_faultArgument; }

    [[nodiscard]] const QStringList& operands() const { return m_operands; }
    [[nodiscard]] QString text() const { return m_operands.join(u' '); }
    [[nodiscard]] bool has(const char* option) const
    {
        return m_options.contains(QString::fromLatin1(option));
    }
    [[nodiscard]] QString value(const char* option) const
    {
        return m_options.value(QString::fromLatin1(option));
    }

    /// How a command is written, as "murmeli list [--since DAY]".
    static QString usage(const CommandSpec& spec);
    /// As "--limit N".
    static QString written(const CommandOption& option);

private:
    void take(const QStringList& arguments);
    void fail(QLatin1StringView key, const QString& argument = {});

    const CommandSpec& m_spec;
    QStringList m_operands;
    QHash<QString, QString> m_options;
    QString m_fault;
    QString m_faultArgument;
};

} // namespace murmeli
