#include "ProtocolFile.h"

#include "base/Files.h"
#include "base/Text.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace murmeli::protocolFile {

std::optional<QString> transcriptIn(const QString& protocol)
{
    static const QString heading = u"Транскрипт"_s;
    const qsizetype start = protocol.indexOf(heading);
    if (start < 0) return std::nullopt;
    QString result;
    const auto lines = QStringView{protocol}.sliced(start).split(u'\n', Qt::SkipEmptyParts);
    for (QStringView line : lines) {
        if (line.endsWith(u'\r')) line.chop(1);
        line = text::stripped(line, u"> ");
        if (!line.startsWith(u'[')) continue;
        if (!result.isEmpty()) result += u'\n';
        result += line;
    }
    return result;
}

namespace {

std::optional<QString> transcriptOf(const std::optional<QByteArray>& bytes)
{
    if (!bytes) return std::nullopt;
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString protocol = decoder(*bytes);
    return decoder.hasError() ? std::nullopt : transcriptIn(protocol);
}

} // namespace

std::optional<QString> transcript(const QString& path, qint64 limit)
{
    return transcriptOf(files::readWhole(path, limit));
}

std::optional<QString> transcript(const QString& path, qint64 limit, bool* cut)
{
    auto bytes = files::readBeginning(path, limit);
    *cut = bytes && bytes->size() == limit && files::identity(path).size > limit;
    if (*cut) bytes->truncate(std::max<qsizetype>(0, bytes->lastIndexOf('\n'))); // whole lines
    return transcriptOf(bytes);
}

} // namespace murmeli::protocolFile
