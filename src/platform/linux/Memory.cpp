#include "Memory.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>

#include <algorithm>
#include <fcntl.h>
#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace murmeli::memory {

namespace {

/// Of one that is loaded. Its pages that nobody can write hold what its file holds, unless the loader had to
/// write into them.
int letGoOfCode(dl_phdr_info* object, size_t, void*)
{
    const auto* first = object->dlpi_phdr;
    const auto* end = first + object->dlpi_phnum;
    const auto* dynamic =
        std::find_if(first, end, [](const auto& part) { return part.p_type == PT_DYNAMIC; });
    if (dynamic != end) {
        const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(object->dlpi_addr + dynamic->p_vaddr);
        for (; entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag == DT_TEXTREL) return 0;
        }
    }
    const auto page = size_t(::sysconf(_SC_PAGESIZE));
    for (const auto* part = first; part != end; ++part) {
        if (part->p_type != PT_LOAD || part->p_flags & PF_W) continue;
        const size_t from = (object->dlpi_addr + part->p_vaddr) & ~(page - 1);
        const size_t to = (object->dlpi_addr + part->p_vaddr + part->p_memsz + page - 1) & ~(page - 1);
        ::madvise(reinterpret_cast<void*>(from), to - from, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void giveBack() { malloc_trim(0); }

void rest()
{
    giveBack();
    dl_iterate_phdr(&letGoOfCode, nullptr);
}

void readAhead()
{
    const auto read = [](const QString& path) {
        const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
        if (file < 0) return;
        ::posix_fadvise(file, 0, 0, POSIX_FADV_WILLNEED);
        ::close(file);
    };
    for (const auto* part : {"Controls2", "Controls2Impl", "Templates2", "Layouts", "Shapes"})
        read(QLibraryInfo::path(QLibraryInfo::LibrariesPath) +
             u"/libQt6Quick%1.so.6"_s.arg(QLatin1StringView{part}));
    const QDir modules{QLibraryInfo::path(QLibraryInfo::QmlImportsPath)};
    for (const auto* folder : {"QtQml", "QtQuick", "QtQuick/Controls", "QtQuick/Controls/Basic",
                               "QtQuick/Controls/Basic/impl", "QtQuick/Controls/impl", "QtQuick/Layouts",
                               "QtQuick/Shapes", "QtQuick/Templates", "QtQuick/Window"}) {
        const QDir module{modules.filePath(QLatin1StringView{folder})};
        for (const QString& name : module.entryList({u"*.so"_s, u"qmldir"_s}, QDir::Files))
            read(module.filePath(name));
    }
}

} // namespace murmeli::memory
