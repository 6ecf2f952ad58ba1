#include "simulator/service/answer.h"

#include "simulator/service/jsontext.h"

namespace Simulator {

namespace {

QByteArray reasonOf(int status)
{
    static const QVector<QPair<int, QByteArray>> reasons = {
        {301, "Moved Permanently"},   {302, "Found"},
        {307, "Temporary Redirect"},  {308, "Permanent Redirect"},
        {401, "Unauthorized"},        {403, "Forbidden"},
        {404, "Not Found"},           {408, "Request Timeout"},
        {429, "Too Many Requests"},   {502, "Bad Gateway"},
        {503, "Service Unavailable"}, {504, "Gateway Timeout"}};
    for (const auto &reason : reasons)
        if (reason.first == status)
            return reason.second;
    return "Error";
}

Answer proxyPage(int status)
{
    const QByteArray title = QByteArray::number(status) + ' ' + reasonOf(status);
    return {status,
            "text/html",
            "<html>\r\n<head><title>" + title + "</title></head>\r\n<body>\r\n<center><h1>" +
                title + "</h1></center>\r\n<hr><center>nginx</center>\r\n</body>\r\n</html>\r\n",
            {}};
}

} // namespace

Answer jsonAnswer(const QByteArray &body)
{
    Answer answer;
    answer.body = body;
    return answer;
}

Answer pageOfError(const QString &text, int status)
{
    const QByteArray body = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n"
                            "<meta charset=\"utf-8\">\n<title>Helioviewer.org API</title>\n"
                            "</head>\n<body>\n<div class=\"error\"><strong>Error:</strong> " +
                            text.toHtmlEscaped().toUtf8() + "</div>\n</body>\n</html>\n";
    return {status, "text/html;charset=UTF-8", body, {}};
}

Answer errorObject(const QString &text, int number)
{
    JsonText json;
    json.beginObject()
        .member(QStringLiteral("error"), text)
        .member(QStringLiteral("errno"), number)
        .endObject();
    return {500, "application/json;charset=UTF-8", json.text(), {}};
}

Answer jpxErrorObject(const QString &text)
{
    JsonText json;
    json.beginObject().member(QStringLiteral("error"), text);
    json.key(QStringLiteral("uri")).null().endObject();
    return jsonAnswer(json.text());
}

Answer answerWithStatus(int status)
{
    if (status == 400)
        return pageOfError(QStringLiteral("No value set for required parameter \"date\"."));
    if (status == 500)
        return errorObject(QStringLiteral("Unable to connect to the database: Connection refused"),
                           2002);
    Answer page = proxyPage(status);
    if (status == 429)
        page.headers = {{"Retry-After", "1"}};
    return page;
}

} // namespace Simulator
