#include "InstructionsFile.h"

#include "Paths.h"
#include "base/Files.h"
#include "base/Text.h"

#include <QStringDecoder>

namespace murmeli::instructionsFile {

namespace {

constexpr qint64 sourceLimit = 16 * 1024 * 1024; // bytes; of a larger file nobody wants the beginning

} // namespace

Loaded load(const QString& source, const QString& target)
{
    const QByteArray bytes = files::readWhole(source, sourceLimit).value_or(QByteArray{});
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decoder(bytes);
    if (decoder.hasError() || text.isEmpty()) return Loaded::NoText;
    return files::writeAtomic(target, text::first(text, Paths::instructionsLimit).toUtf8())
               ? Loaded::Taken
               : Loaded::NotSaved;
}

std::optional<qint64> size(const QString& target)
{
    const files::Identity found = files::identity(target);
    return found.size < 0 ? std::nullopt : std::optional{found.size};
}

} // namespace murmeli::instructionsFile
