#include "CommandFile.h"

#include "base/Files.h"

#include <QLocale>

namespace murmeli::commandFile {

QByteArray text(Action action, double seconds)
{
    return QByteArray{R"({"action":")"} + (action == Action::Start ? "start" : "stop") + R"(","ts":)" +
           QByteArray::number(seconds, 'f', QLocale::FloatingPointShortest) + '}';
}

bool write(const QString& path, Action action, double seconds)
{
    return files::writeAtomic(path, text(action, seconds), files::Durable::No); // it is read at once or never
}

} // namespace murmeli::commandFile
