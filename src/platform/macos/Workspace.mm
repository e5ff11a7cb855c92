#include "Workspace.h"

#import <AppKit/AppKit.h>

using namespace Qt::StringLiterals;

namespace murmeli::workspace {

void reveal(const QString& path, const QString& root)
{
    [[NSWorkspace sharedWorkspace] selectFile:path.toNSString() inFileViewerRootedAtPath:root.toNSString()];
}

QString computerName() { return QString::fromNSString([[NSHost currentHost] localizedName]); }

QString stateFolder(const QString& home) { return home + u"/Library/Logs/Murmeli"_s; }

} // namespace murmeli::workspace
