#include "simulator/service/jsontext.h"

#include <array>
#include <charconv>

namespace Simulator {

namespace {

QByteArray escaped(QChar character)
{
    switch (character.unicode()) {
    case '"':
        return QByteArrayLiteral("\\\"");
    case '\\':
        return QByteArrayLiteral("\\\\");
    case '/':
        return QByteArrayLiteral("\\/");
    case '\n':
        return QByteArrayLiteral("\\n");
    default:
        break;
    }
    if (character.unicode() >= 0x20 && character.unicode() < 0x7f)
        return QByteArray(1, character.toLatin1());
    return "\\u" + QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
}

} // namespace

QByteArray numberText(double number)
{
    std::array<char, 400> digits{};
    const std::to_chars_result result = std::to_chars(digits.data(), digits.data() + digits.size(),
                                                      number, std::chars_format::fixed);
    return {digits.data(), int(result.ptr - digits.data())};
}

void JsonText::separate()
{
    if (m_needsComma)
        m_text += ',';
    m_needsComma = true;
}

JsonText &JsonText::open(char bracket)
{
    separate();
    m_text += bracket;
    m_needsComma = false;
    return *this;
}

JsonText &JsonText::close(char bracket)
{
    m_text += bracket;
    m_needsComma = true;
    return *this;
}

JsonText &JsonText::key(const QString &name)
{
    value(name);
    m_text += ':';
    m_needsComma = false;
    return *this;
}

JsonText &JsonText::value(const QString &text)
{
    separate();
    m_text += '"';
    for (const QChar character : text)
        m_text += escaped(character);
    m_text += '"';
    return *this;
}

JsonText &JsonText::value(double number)
{
    separate();
    m_text += numberText(number);
    return *this;
}

JsonText &JsonText::value(qint64 number)
{
    separate();
    m_text += QByteArray::number(number);
    return *this;
}

JsonText &JsonText::null()
{
    separate();
    m_text += "null";
    return *this;
}

} // namespace Simulator
