#pragma once

class QObject;

/// Lets SIGTERM, SIGINT and SIGHUP quit the application as its menu does, so that what it has started ends
/// with it. A second one ends it at once. Belongs to `parent`; once in a process, on the main thread.
namespace murmeli::endSignals {

void quitOn(QObject* parent);

} // namespace murmeli::endSignals
