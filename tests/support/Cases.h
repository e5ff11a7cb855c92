#pragma once

#include <QTest>

#include <initializer_list>
#include <tuple>

namespace murmeli {

/// A table of cases, each of which begins with its name. A test goes through them with
///     for (const auto& [name, given, expected] : cases) {
///         CASE(name);
template <typename... Columns>
using Cases = std::initializer_list<std::tuple<const char*, Columns...>>;

/// Tells which case it was when a check fails while this lives.
class CaseName {
public:
    explicit CaseName(const char* name) : m_name(name) {}
    ~CaseName()
    {
        if (QTest::currentTestFailed() && !m_failedBefore) qInfo("That was the case “%s”.", m_name);
    }
    Q_DISABLE_COPY_MOVE(CaseName)

private:
    const char* m_name;
    bool m_failedBefore = QTest::currentTestFailed();
};

} // namespace murmeli

#define CASE(name) const murmeli::CaseName caseName(name)
