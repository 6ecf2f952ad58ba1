#pragma once

#include <QByteArray>
#include <QString>

namespace Simulator {

/**
 * Writes compact JSON in the order in which it is told, in the service's spelling: "/" as "\/",
 * other than ASCII as "\uXXXX", whole floats without a fraction.
 */
class JsonText
{
public:
    const QByteArray &text() const { return m_text; }

    JsonText &beginObject() { return open('{'); }
    JsonText &endObject() { return close('}'); }
    JsonText &beginArray() { return open('['); }
    JsonText &endArray() { return close(']'); }
    JsonText &key(const QString &name);

    JsonText &value(const QString &text);
    JsonText &value(double number);
    JsonText &value(qint64 number);
    JsonText &value(int number) { return value(qint64(number)); }
    JsonText &null();

    template<typename T>
    JsonText &member(const QString &name, const T &memberValue)
    {
        return key(name).value(memberValue);
    }

private:
    JsonText &open(char bracket);
    JsonText &close(char bracket);
    void separate();

    QByteArray m_text;
    bool m_needsComma = false;
};

/// "0.6046", "150753140000": the shortest text that reads back as the same number.
QByteArray numberText(double number);

} // namespace Simulator
