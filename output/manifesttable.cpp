#include "output/manifesttable.h"

#include "base/errortext.h"
#include "base/regularfile.h"

#include <QDir>

#include <algorithm>

namespace {

constexpr int maxLineCharacters = 1 << 20;

/// Leaves @p file at its beginning.
bool endsWithLineFeed(QFile &file)
{
    const bool ends = file.seek(std::max<qint64>(0, file.size() - 1)) && file.read(1) == "\n";
    file.seek(0);
    return ends;
}

} // namespace

bool ManifestTable::open(const QString &manifestPath, QString *errorText)
{
    m_file.setFileName(manifestPath);
    if (!RegularFile::open(m_file))
        return ErrorText::fail(
            errorText,
            QStringLiteral("Cannot open %1").arg(QDir::toNativeSeparators(manifestPath)));
    m_endsWithLine = endsWithLineFeed(m_file);
    m_file.setTextModeEnabled(true);
    m_stream.setDevice(&m_file);
    if (m_stream.atEnd())
        return ErrorText::fail(errorText, QStringLiteral("manifest.csv is empty."));
    readHeader();
    return true;
}

bool ManifestTable::next()
{
    while (readLine()) {
        const QStringView row = QStringView(m_line).trimmed();
        if (!row.isEmpty()) {
            m_fields.split(row);
            return true;
        }
    }
    return false;
}

bool ManifestTable::isCutOff() const
{
    return !m_endsWithLine && m_stream.atEnd() && m_fields.count() < m_headerFields;
}

QString ManifestTable::remark() const
{
    if (m_line.size() <= maxLineCharacters)
        return {};
    return QStringLiteral("line %1 of manifest.csv is longer than 1 MB. Only the rows before it "
                          "are read.")
        .arg(m_lineNumber);
}

/// False at the end of the file, and from a line on that is too long.
bool ManifestTable::readLine()
{
    if (m_line.size() > maxLineCharacters || !m_stream.readLineInto(&m_line, maxLineCharacters + 1))
        return false;
    ++m_lineNumber;
    return m_line.size() <= maxLineCharacters;
}

void ManifestTable::readHeader()
{
    if (readLine())
        m_fields.split(m_line);
    m_headerFields = m_fields.count();
    QStringList header;
    for (int position = 0; position < m_headerFields; ++position)
        header += m_fields.at(position).trimmed().toString();
    std::transform(ManifestColumns::names.begin(), ManifestColumns::names.end(),
                   m_positions.begin(), [&header](const char *name) {
                       return header.lastIndexOf(QLatin1String(name)); // -1 without one
                   });
}
