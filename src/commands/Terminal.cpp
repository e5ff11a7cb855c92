#include "Terminal.h"

#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr int cannotWrite = 4; // exit status
const QString faintBegin = u"\x1b[2m"_s;
const QString faintEnd = u"\x1b[0m"_s;

bool isWide(char32_t c)
{
    switch (QChar::script(c)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Hangul:
        return true;
    default:
        return c >= 0x1f300 && c <= 0x1faff; // emoji
    }
}

} // namespace

Terminal::Terminal() : m_terminal(::isatty(STDOUT_FILENO) != 0), m_watched(::isatty(STDERR_FILENO) != 0)
{
    std::signal(SIGPIPE, SIG_IGN); // NOLINT(bugprone-signal-handler): the write itself tells
    m_colours = m_terminal && qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
    struct winsize size {};
    if (m_terminal && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) m_width = size.ws_col;
}

void Terminal::bytes(const QByteArray& bytes) const
{
    const char* data = bytes.constData();
    for (qsizetype left = bytes.size(); left > 0;) {
        const ssize_t written = ::write(STDOUT_FILENO, data, size_t(left));
        if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (written < 0 && errno == EPIPE) std::_Exit(0);
        if (written < 0) {
            std::perror("murmeli");
            std::_Exit(cannotWrite);
        }
        data += written;
        left -= written;
    }
}

void Terminal::line(const QString& text) const { bytes((m_terminal ? shown(text) : text).toUtf8() + '\n'); }

QString Terminal::shown(QString text) const
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView rest = QStringView{text}.sliced(i);
        const bool ours = m_colours && (rest.startsWith(faintBegin) || rest.startsWith(faintEnd));
        if (text[i].category() == QChar::Other_Control && text[i] != u'\n' && !ours) text[i] = u' ';
    }
    return text;
}

void Terminal::json(const QJsonObject& object, bool oneLine) const
{
    const QJsonDocument document{object};
    bytes(oneLine ? document.toJson(QJsonDocument::Compact) + '\n' : document.toJson());
}

void Terminal::message(const QString& text) const
{
    const QByteArray line = "murmeli: " + (m_watched ? shown(text) : text).toUtf8() + '\n';
    std::ignore = std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
}

void Terminal::progress(const QString& text) const
{
    if (!m_watched) return;
    const QByteArray line = "\r\x1b[K" + text.toUtf8();
    std::ignore = std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
}

QString Terminal::faint(const QString& text) const { return m_colours ? faintBegin + text + faintEnd : text; }

int Terminal::columns(QStringView text)
{
    int columns = 0;
    bool escape = false;
    for (const char32_t c : text.toUcs4()) {
        if (c == U'\x1b') escape = true;
        if (!escape && QChar::category(c) != QChar::Mark_NonSpacing) columns += isWide(c) ? 2 : 1;
        if (escape && c == U'm') escape = false;
    }
    return columns;
}

QString Terminal::fitted(const QString& text) const
{
    if (m_width <= 0 || columns(text) <= m_width) return text;
    QString result;
    int used = 0;
    bool escape = false;
    for (const char32_t c : text.toUcs4()) {
        if (c == U'\x1b') escape = true;
        if (!escape) {
            const int wide = columns(QString::fromUcs4(&c, 1));
            if (used + wide > m_width - 1) break;
            used += wide;
        }
        result += QString::fromUcs4(&c, 1);
        if (escape && c == U'm') escape = false;
    }
    return result + u'…' + (m_colours ? faintEnd : QString{});
}

bool Terminal::isRead() const
{
    struct pollfd out {
        STDOUT_FILENO, 0, 0
    };
    return ::poll(&out, 1, 0) <= 0 || (out.revents & (POLLERR | POLLHUP)) == 0;
}

} // namespace murmeli
