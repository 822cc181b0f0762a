// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace standin {

struct OpenSslDeleter {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
};

/// A self-signed certificate for this machine's loopback names, made afresh and kept in memory.
struct Certificate {
    std::unique_ptr<EVP_PKEY, OpenSslDeleter> key;
    std::unique_ptr<X509, OpenSslDeleter> certificate;
};

/// Throws std::runtime_error when OpenSSL cannot make one.
Certificate makeCertificate();

} // namespace standin
