#include "InstructionsFile.h"

#include "Paths.h"
#include "base/Files.h"
#include "base/Text.h"

#include <QStringDecoder>

namespace murmeli::instructionsFile {

namespace {

constexpr qint64 sourceLimit = 16 * 1024 * 1024; // bytes; of a larger file nobody wants the beginning

} // namespace

bool load(const QString& source, const QString& target)
{
    const auto bytes = files::readWhole(source, sourceLimit);
    if (!bytes || bytes->isEmpty()) return false;
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decoder(*bytes);
    return !decoder.hasError() && !text.isEmpty() &&
           files::writeAtomic(target, text::first(text, Paths::instructionsLimit).toUtf8());
}

std::optional<qint64> size(const QString& target)
{
    const files::Identity found = files::identity(target);
    return found.size < 0 ? std::nullopt : std::optional{found.size};
}

} // namespace murmeli::instructionsFile
