#pragma once

#include <QByteArray>
#include <QString>

class QJsonObject;

namespace Simulator {

/// What the service sends.
struct Answer
{
    int status = 200;
    QByteArray contentType;
    QByteArray body;
};

/// "Service Unavailable"
QByteArray reasonOf(int status);

/// On one line and in the service's spelling, "/" as "\/".
Answer jsonAnswer(const QJsonObject &object, int status = 200);
/// 400: a web page that holds the text after "Error:".
Answer pageOfError(const QString &text, int status = 400);
/// 500: {"error":TEXT,"errno":N}
Answer errorObject(const QString &text, int number);
/// 200: {"error":TEXT,"uri":null}, which getJPX sends for what goes wrong inside it.
Answer jpxErrorObject(const QString &text);
/// What is really sent with a status: the service's own answer for 400 and 500, else a page of the
/// proxy in front of it.
Answer answerWithStatus(int status);

} // namespace Simulator
