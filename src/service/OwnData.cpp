#include "OwnData.h"

#include "Paths.h"
#include "base/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli::ownData {

namespace {

constexpr auto patience = 2s;

QStringList places(const Paths& paths)
{
    return {paths.ownData + u"/margin"_s,          paths.ownData + u"/marks.jsonl"_s,
            paths.ownData + u"/edits"_s,           paths.ownData + u"/sent"_s,
            paths.ownCache + u"/pulse.json"_s,     paths.ownCache + u"/index-1.db"_s,
            paths.ownCache + u"/index-1.db-wal"_s, paths.ownCache + u"/index-1.db-shm"_s,
            paths.ownCache + u"/index.lock"_s,     paths.ownConfig + u"/settings.json"_s};
}

bool remove(const QString& path)
{
    const QFileInfo there{path};
    if (there.isDir() && !there.isSymLink()) return QDir{path}.removeRecursively();
    return QFile::remove(path) || (!there.exists() && !there.isSymLink());
}

} // namespace

qint64 size(const Paths& paths)
{
    qint64 bytes = 0;
    for (const QString& path : places(paths)) {
        const QFileInfo there{path};
        if (there.isFile()) bytes += there.size();
        QDirIterator files{path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories};
        while (files.hasNext()) {
            files.next();
            bytes += files.fileInfo().size();
        }
    }
    return bytes;
}

bool removeAll(const Paths& paths)
{
    if (!QFileInfo::exists(paths.ownData)) return std::ranges::all_of(places(paths), remove);
    const files::Lock lock{paths.ownData + u"/lock"_s, patience};
    return lock.held() && std::ranges::all_of(places(paths), remove);
}

} // namespace murmeli::ownData
