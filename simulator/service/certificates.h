#pragma once

#include <QByteArray>
#include <QString>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

namespace Simulator {

struct KeyDeleter
{
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
};

struct CertificateDeleter
{
    void operator()(X509 *certificate) const { X509_free(certificate); }
};

/// A certificate with its private key, made when it is needed.
struct Identity
{
    std::unique_ptr<EVP_PKEY, KeyDeleter> key;
    std::unique_ptr<X509, CertificateDeleter> certificate;
};

/// An authority that signs others; valid for 90 days from yesterday on, as all of these.
Identity makeAuthority();
/// For a host; @p subjectAltName as "IP:127.0.0.1,DNS:localhost". Signed by itself without @p
/// authority.
Identity makeHostIdentity(const QByteArray &commonName, const QByteArray &subjectAltName,
                          const Identity *authority);

QByteArray pemOf(const Identity &identity);

} // namespace Simulator
