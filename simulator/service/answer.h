#pragma once

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QVector>

namespace Simulator {

/// What the service sends: status line, headers of its own, body.
struct Answer
{
    int status = 200;
    QByteArray contentType = QByteArrayLiteral("application/json");
    QByteArray body;
    QVector<QPair<QByteArray, QByteArray>> headers;
};

/// 200 unless told otherwise, "application/json".
Answer jsonAnswer(const QByteArray &body);
/// 400: a web page that holds the text after "Error:".
Answer pageOfError(const QString &text, int status = 400);
/// 500: {"error":TEXT,"errno":N}
Answer errorObject(const QString &text, int number);
/// 200: {"error":TEXT,"uri":null}, which getJPX sends for what goes wrong inside it.
Answer jpxErrorObject(const QString &text);
/// What is really sent with a status: the service's own object for 500, a front proxy's page else.
Answer answerWithStatus(int status);

} // namespace Simulator
