#include "simulator/service/certificates.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace Simulator {

namespace {

constexpr long secondsPerDay = 86400;
constexpr long validDays = 90;

void setSerialNumber(X509 *certificate)
{
    quint32 serial = 0;
    RAND_bytes(reinterpret_cast<unsigned char *>(&serial), sizeof serial);
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), quint64(serial) + 1);
}

void setCommonName(X509 *certificate, const QByteArray &commonName)
{
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(commonName.constData()),
                               commonName.size(), -1, 0);
}

void addExtension(X509 *certificate, X509 *issuer, int kind, const QByteArray &value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

/// Named, dated, with a key of its own; not signed yet.
Identity draft(const QByteArray &commonName)
{
    Identity identity;
    identity.key.reset(EVP_EC_gen("P-256"));
    identity.certificate.reset(X509_new());
    X509 *certificate = identity.certificate.get();
    X509_set_version(certificate, X509_VERSION_3);
    setSerialNumber(certificate);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -secondsPerDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate), (validDays - 1) * secondsPerDay);
    X509_set_pubkey(certificate, identity.key.get());
    setCommonName(certificate, commonName);
    return identity;
}

void sign(Identity &identity, const Identity &issuer)
{
    X509_set_issuer_name(identity.certificate.get(),
                         X509_get_subject_name(issuer.certificate.get()));
    X509_sign(identity.certificate.get(), issuer.key.get(), EVP_sha256());
}

} // namespace

Identity makeAuthority()
{
    Identity identity = draft("Sample Archive Authority");
    X509 *certificate = identity.certificate.get();
    addExtension(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(certificate, certificate, NID_subject_key_identifier, "hash");
    sign(identity, identity);
    return identity;
}

Identity makeHostIdentity(const QByteArray &commonName, const QByteArray &subjectAltName,
                          const Identity *authority)
{
    Identity identity = draft(commonName);
    const Identity &issuer = authority ? *authority : identity;
    X509 *certificate = identity.certificate.get();
    addExtension(certificate, issuer.certificate.get(), NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate, issuer.certificate.get(), NID_subject_alt_name, subjectAltName);
    addExtension(certificate, issuer.certificate.get(), NID_ext_key_usage, "serverAuth");
    sign(identity, issuer);
    return identity;
}

QByteArray pemOf(const Identity &identity)
{
    BIO *memory = BIO_new(BIO_s_mem());
    PEM_write_bio_X509(memory, identity.certificate.get());
    char *bytes = nullptr;
    const long length = BIO_get_mem_data(memory, &bytes);
    QByteArray pem(bytes, int(length));
    BIO_free(memory);
    return pem;
}

} // namespace Simulator
