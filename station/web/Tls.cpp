// SPDX-License-Identifier: MIT
#include "station/web/Tls.h"

#include "station/web/Secrets.h"

#include <openssl/err.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace kel {

namespace {

std::string reason()
{
    const unsigned long number = ERR_get_error();
    ERR_clear_error();
    const char* const text = ERR_reason_error_string(number);
    return text ? text : "the file does not hold one";
}

} // namespace

TlsContext tlsContext(const WebPlan& plan)
{
    ERR_clear_error();
    TlsContext made(SSL_CTX_new(TLS_server_method()));
    SSL_CTX* const context = made.get();
    SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    if (SSL_CTX_use_certificate_chain_file(context, plan.certificate.c_str()) != 1)
        throw std::runtime_error("The certificate " + plan.certificate.string() + " cannot be used: " + reason() + ".");
    static_cast<void>(readSecretFile(plan.key, "key"));
    if (SSL_CTX_use_PrivateKey_file(context, plan.key.c_str(), SSL_FILETYPE_PEM) != 1)
        throw std::runtime_error("The key " + plan.key.string() + " cannot be used with the certificate " +
                                 plan.certificate.string() + ": " + reason() + ".");
    return made;
}

bool isCertified(SSL_CTX* context, const std::string& host)
{
    X509* const certificate = SSL_CTX_get0_certificate(context);
    return certificate && X509_check_host(certificate, host.data(), host.size(), 0, nullptr) == 1;
}

} // namespace kel
