#include "registeredTests.h"

#include <QApplication>
#include <QTest>

#include <memory>

int main(int argc, char* argv[])
{
    const QApplication app{argc, argv};
    int failures = 0;
    for (const auto& make : registeredTests()) {
        const std::unique_ptr<QObject> test{make()};
        failures += QTest::qExec(test.get(), argc, argv);
    }
    return failures;
}
