// SPDX-License-Identifier: MIT
#pragma once

#include "station/WebServer.h"

#include <openssl/ssl.h>
#include <string>

namespace kel {

/// Sets up a context with a plan's certificate and key. std::runtime_error, a sentence, if they cannot be used.
void setUpTls(SSL_CTX* context, const WebPlan& plan);

/// Whether the certificate of a context is for a host.
[[nodiscard]] bool isCertified(SSL_CTX* context, const std::string& host);

} // namespace kel
