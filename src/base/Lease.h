#pragma once

#include <QObject>

#include <memory>

namespace murmeli {

/// The context of the newest of several requests: renewing or ending it drops the answers to those before, as
/// the end of any context does. It may be ended from within such an answer. Main thread only.
class Lease {
public:
    [[nodiscard]] QObject* renew()
    {
        m_context = std::make_unique<QObject>();
        return m_context.get();
    }
    void end() { m_context.reset(); }
    explicit operator bool() const { return m_context != nullptr; }

private:
    std::unique_ptr<QObject> m_context;
};

} // namespace murmeli
