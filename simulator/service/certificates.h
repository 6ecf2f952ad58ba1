#pragma once

class QString;

namespace Simulator {

enum class Transport;

/**
 * Has openssl make what an encrypted service needs, in files of @p folder: authority.pem, host.pem
 * and the host's key, host.key.
 *
 * Certificates are valid for 90 days. False with the program's own words when there are none.
 */
bool makeCertificates(Transport transport, const QString &folder, QString *errorText);

} // namespace Simulator
