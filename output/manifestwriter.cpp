#include "output/manifestwriter.h"

#include "output/manifestcolumns.h"
#include "output/manifestrow.h"
#include "output/sessionfiles.h"

#include <QDir>
#include <QStringList>
#include <QTextCodec>

namespace {

/// As a text stream of the locale stores it, which puts no byte-order mark in front.
QByteArray encoded(const QString &text)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return QTextCodec::codecForLocale()->fromUnicode(text.constData(), text.size(), &state);
}

QString headerLine()
{
    QStringList names;
    for (const char *name : ManifestColumns::names)
        names.append(QLatin1String(name));
    return names.join(QLatin1Char(',')) + QLatin1Char('\n');
}

} // namespace

bool ManifestWriter::create(const QString &sessionDirectory)
{
    m_wholeBytes = 0;
    m_file.setFileName(QDir(sessionDirectory).filePath(SessionFiles::manifest()));
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text |
                     QIODevice::Unbuffered))
        return false;
    const bool written = writeWhole(encoded(headerLine()), nullptr);
    if (!written)
        m_file.close();
    return written;
}

bool ManifestWriter::append(const ManifestRow &row, QString *errorText)
{
    if (!isOpen())
        return true;
    m_waiting.push_back(encoded(ManifestRows::toLine(row)));
    return writeWaiting(errorText);
}

bool ManifestWriter::close()
{
    if (!isOpen())
        return true;
    const bool written = writeWaiting(nullptr);
    m_waiting.clear();
    m_file.close();
    return written && m_file.error() == QFileDevice::NoError; // a network disk may refuse only now
}

/// Stops at the first line that does not fit, so that a full disk costs each new row one attempt.
bool ManifestWriter::writeWaiting(QString *errorText)
{
    while (!m_waiting.empty()) {
        if (!writeWhole(m_waiting.front(), errorText))
            return false;
        m_waiting.pop_front();
    }
    return true;
}

/// Writes @p line completely, or else truncates the file to what it was.
bool ManifestWriter::writeWhole(const QByteArray &line, QString *errorText)
{
    qint64 done = 0;
    while (done < line.size()) {
        // Only a full disk accepts part of a line; the next write then gives the reason.
        const qint64 taken = m_file.write(line.constData() + done, line.size() - done);
        if (taken <= 0) {
            if (errorText)
                *errorText = m_file.errorString();
            m_file.resize(m_wholeBytes); // goes back there, too
            return false;
        }
        done += taken;
    }
    m_wholeBytes = m_file.pos();
    return true;
}
