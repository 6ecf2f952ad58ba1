#include "simulator/service/answer.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

namespace Simulator {

namespace {

Answer proxyPage(int status)
{
    const QByteArray title = QByteArray::number(status) + ' ' + reasonOf(status);
    return {status, "text/html",
            "<html>\r\n<head><title>" + title + "</title></head>\r\n<body>\r\n<center><h1>" +
                title + "</h1></center>\r\n<hr><center>nginx</center>\r\n</body>\r\n</html>\r\n"};
}

} // namespace

QByteArray reasonOf(int status)
{
    static const QMap<int, QByteArray> reasons = {{200, "OK"},
                                                  {400, "Bad Request"},
                                                  {404, "Not Found"},
                                                  {429, "Too Many Requests"},
                                                  {500, "Internal Server Error"},
                                                  {502, "Bad Gateway"},
                                                  {503, "Service Unavailable"},
                                                  {504, "Gateway Timeout"}};
    return reasons.value(status, "Error");
}

Answer jsonAnswer(const QJsonObject &object, int status)
{
    return {status, "application/json;charset=UTF-8",
            QJsonDocument(object).toJson(QJsonDocument::Compact).replace("/", "\\/")};
}

Answer pageOfError(const QString &text, int status)
{
    return {status, "text/html;charset=UTF-8",
            "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<title>Helioviewer.org API</title>\n</head>\n<body>\n"
            "<div class=\"error\"><strong>Error:</strong> " +
                text.toHtmlEscaped().toUtf8() + "</div>\n</body>\n</html>\n"};
}

Answer errorObject(const QString &text, int number)
{
    return jsonAnswer({{QStringLiteral("error"), text}, {QStringLiteral("errno"), number}}, 500);
}

Answer jpxErrorObject(const QString &text)
{
    return jsonAnswer({{QStringLiteral("error"), text}, {QStringLiteral("uri"), QJsonValue::Null}});
}

Answer answerWithStatus(int status)
{
    if (status == 400)
        return pageOfError(QStringLiteral("No value set for required parameter \"date\"."));
    if (status == 500)
        return errorObject(QStringLiteral("Unable to connect to the database: Connection refused"),
                           2002);
    return proxyPage(status);
}

} // namespace Simulator
