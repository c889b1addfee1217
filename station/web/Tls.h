// SPDX-License-Identifier: MIT
#pragma once

#include "station/WebServer.h"

#include <memory>
#include <openssl/ssl.h>
#include <string>

namespace kel {

struct FreeTlsContext {
    void operator()(SSL_CTX* context) const noexcept { SSL_CTX_free(context); }
};
using TlsContext = std::unique_ptr<SSL_CTX, FreeTlsContext>;

/// A context with a plan's certificate and key. std::runtime_error, a sentence, if they cannot be used.
[[nodiscard]] TlsContext tlsContext(const WebPlan& plan);

/// Whether the certificate of a context is for a host.
[[nodiscard]] bool isCertified(SSL_CTX* context, const std::string& host);

} // namespace kel
