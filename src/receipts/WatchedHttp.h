#pragma once

#include "base/Http.h"

#include <functional>

namespace murmeli {

class Receipts;

/// The gate between the program and the network: nothing of a locked meeting passes, and of what carries
/// something of the user's a receipt begins before the first byte goes. Main thread only.
class WatchedHttp final : public Http {
public:
    /// \param isLocked whether nothing of a meeting may be sent; answers from memory.
    WatchedHttp(Http& network, Receipts& receipts, std::function<bool(const QString& stem)> isLocked);

    /// A request that is refused is answered so, and not one byte is sent.
    void send(const Purpose& purpose, const HttpRequest& request, QObject* context, Done done) override;

private:
    Http& m_network;
    Receipts& m_receipts;
    std::function<bool(const QString& stem)> m_isLocked;
};

} // namespace murmeli
