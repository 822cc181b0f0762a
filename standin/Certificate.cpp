// SPDX-License-Identifier: GPL-3.0-or-later
#include "Certificate.h"

#include <stdexcept>

#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace standin {
namespace {

void require(bool done)
{
    if (!done)
        throw std::runtime_error("OpenSSL could not make a certificate");
}

void addExtension(X509* certificate, int nid, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    require(extension != nullptr);
    const int added = X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
    require(added == 1);
}

} // namespace

Certificate makeCertificate()
{
    // Wide on both sides: clients are also run under a clock that is set or sped up.
    constexpr long validBefore = 10L * 365 * 24 * 3600;
    constexpr long validAfter = 10L * 365 * 24 * 3600;
    // A browser refuses two certificates of one issuer with the same number.
    unsigned serial = 0;
    require(RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial) == 1);

    Certificate result{decltype(Certificate::key)(EVP_EC_gen("P-256")),
                       decltype(Certificate::certificate)(X509_new())};
    EVP_PKEY* key = result.key.get();
    X509* certificate = result.certificate.get();
    require(key && certificate);

    require(X509_set_version(certificate, 2) == 1);
    require(ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), serial | 1U) == 1);
    require(X509_gmtime_adj(X509_getm_notBefore(certificate), -validBefore) != nullptr);
    require(X509_gmtime_adj(X509_getm_notAfter(certificate), validAfter) != nullptr);
    require(X509_set_pubkey(certificate, key) == 1);

    X509_NAME* name = X509_get_subject_name(certificate);
    require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                       reinterpret_cast<const unsigned char*>("localhost"), -1, -1,
                                       0)
            == 1);
    require(X509_set_issuer_name(certificate, name) == 1);
    addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1");
    require(X509_sign(certificate, key, EVP_sha256()) > 0);
    return result;
}

} // namespace standin
