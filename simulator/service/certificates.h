#pragma once

class QString;

namespace Simulator {

enum class Transport;

/**
 * Creates with openssl what an encrypted service needs, in @p folder: authority.pem, host.pem and
 * the host's key, host.key.
 *
 * Certificates are valid for 90 days. Returns false, with openssl's own words, on failure.
 */
bool makeCertificates(Transport transport, const QString &folder, QString *errorText);

} // namespace Simulator
