#include "output/csvfields.h"

QString CsvFields::quote(const QString &value)
{
    const QLatin1Char mark('"');
    return mark + QString(value).replace(mark, QLatin1String("\"\"")) + mark;
}

void CsvFields::split(QStringView line)
{
    m_ends.clear();
    // Fields are never longer than the line they stand in.
    m_text.resize(static_cast<int>(line.size()));
    QChar *const begin = m_text.data();
    QChar *out = begin;
    bool insideQuotes = false;
    for (const QChar *in = line.begin(); in != line.end(); ++in) {
        if (*in == QLatin1Char('"')) {
            const bool doubled = insideQuotes && in + 1 != line.end() && in[1] == *in;
            if (doubled)
                *out++ = *in++;
            else
                insideQuotes = !insideQuotes;
        } else if (*in == QLatin1Char(',') && !insideQuotes) {
            m_ends.append(static_cast<int>(out - begin));
        } else {
            *out++ = *in;
        }
    }
    m_ends.append(static_cast<int>(out - begin));
}

QStringRef CsvFields::at(int index) const
{
    if (index < 0 || index >= m_ends.size())
        return {};
    const int begin = index == 0 ? 0 : m_ends.at(index - 1);
    return m_text.midRef(begin, m_ends.at(index) - begin);
}
