#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>

/// Files that Murmeli alone writes, in folders of its own: a JSON object each, or one a line, of version 1.
/// What does not parse, is too large or comes from a newer version is read as far as it goes and never
/// written over. Everything here waits for the disk, and writing up to two seconds for our other processes:
/// beside the main thread.
namespace murmeli {

/// Where a file of our own lies.
struct OwnPlace {
    QString folder; ///< that holds the lock, and the file somewhere in it
    QString name;   ///< of the file, with the folders between; nothing is kept where one of them is ".."
    qint64 limit;   ///< bytes; a larger file is one that cannot be read
};

enum class OwnWritten { Yes, Unreadable, Failed };

/// A file that is written whole.
class OwnFile {
public:
    explicit OwnFile(OwnPlace place) : m_place(std::move(place)) {}

    struct Content {
        QJsonObject object;      ///< empty when there is none
        bool unreadable = false; ///< and must not be written over
    };
    [[nodiscard]] Content read() const;

    /// Sets the members that `change` gives for what stands there; all others stay as they were written. When
    /// it gives none, nothing is written.
    [[nodiscard]] OwnWritten change(const std::function<QJsonObject(const QJsonObject&)>& change) const;

private:
    OwnPlace m_place;
};

/// A file that grows by a line a time.
class OwnLines {
public:
    explicit OwnLines(OwnPlace place) : m_place(std::move(place)) {}

    struct Content {
        QList<QJsonObject> lines; ///< without those that do not parse or are of a newer version
        bool unreadable = false;
    };
    [[nodiscard]] Content read() const;

    [[nodiscard]] OwnWritten append(const QJsonObject& line) const;

    /// Leaves out the lines that `unwanted` names; those that do not parse stay.
    [[nodiscard]] OwnWritten remove(const std::function<bool(const QJsonObject&)>& unwanted) const;

private:
    OwnPlace m_place;
};

} // namespace murmeli
