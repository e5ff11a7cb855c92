#pragma once

#include <QList>
#include <QObject>

#include <functional>

/// Test classes of one executable: each registers itself with MURMELI_TEST below its definition.
inline QList<std::function<QObject*()>>& registeredTests()
{
    static QList<std::function<QObject*()>> tests;
    return tests;
}

#define MURMELI_TEST(Class)                                                                                  \
    static const bool registered##Class = [] {                                                               \
        registeredTests().append([]() -> QObject* { return new Class; });                                    \
        return true;                                                                                         \
    }();
