#include "CommandFile.h"

#include "base/Files.h"

#include <array>
#include <charconv>

namespace murmeli::commandFile {

QByteArray text(Action action, double seconds)
{
    std::array<char, 400> digits{}; // the longest double in fixed notation has 309 digits before the point
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), seconds, std::chars_format::fixed);
    return QByteArray{R"({"action":")"} + (action == Action::Start ? "start" : "stop") + R"(","ts":)" +
           QByteArray{digits.data(), end.ptr - digits.data()} + '}';
}

bool write(const QString& path, Action action, double seconds)
{
    return files::writeAtomic(path, text(action, seconds), files::Durable::No); // it is read at once or never
}

} // namespace murmeli::commandFile
