#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace murmeli {

/// Where a command writes: data to the standard output, messages to the standard error output. When nobody
/// reads any more the process ends, as those do that are piped into "head".
class Terminal {
public:
    Terminal();

    [[nodiscard]] bool isTerminal() const { return m_terminal; }
    /// Columns of the terminal; 0 where there is none, and nothing is cut.
    [[nodiscard]] int width() const { return m_width; }

    /// A line. On a terminal its control characters are spaces.
    void line(const QString& text) const;
    /// A line that has no more columns than the terminal.
    void row(const QString& text) const { line(fitted(text)); }
    void bytes(const QByteArray& bytes) const;
    void json(const QJsonObject& object, bool oneLine = false) const;

    /// To the standard error output, as "murmeli: …".
    void message(const QString& text) const;
    /// On the same line again and again, where a person looks on; empty: no more.
    void progress(const QString& text) const;

    /// Faint, where a person looks on who wants colours.
    [[nodiscard]] QString faint(const QString& text) const;
    /// Cut to the terminal's columns; without one as it stands.
    [[nodiscard]] QString fitted(const QString& text) const;

    /// Whether somebody still reads.
    [[nodiscard]] bool isRead() const;

    /// How many columns a text takes.
    static int columns(QStringView text);

private:
    /// Without signs that a terminal would obey.
    [[nodiscard]] QString shown(QString text) const;

    bool m_terminal = false;
    bool m_colours = false;
    bool m_watched = false; ///< messages are read by a person
    int m_width = 0;
};

} // namespace murmeli
