#include "base/filenames.h"

#include "base/utctext.h"

#include <QDateTime>
#include <QFile>
#include <QTextBoundaryFinder>

namespace {

/**
 * Trims @p text, turns everything that is neither a letter nor a number (in any script), "_" or
 * "-" into "_", and folds runs of "_" into one; @p fallback when that leaves nothing.
 */
QString safePart(const QString &text, const QString &fallback)
{
    const QLatin1Char underscore('_');
    const QString trimmed = text.trimmed();
    QString part;
    for (const QChar character : trimmed) {
        const bool kept = character.isLetterOrNumber() || character == QLatin1Char('-');
        if (kept)
            part.append(character);
        else if (!part.endsWith(underscore))
            part.append(underscore);
    }
    return part.isEmpty() ? fallback : part;
}

} // namespace

QString FileNames::datasourceFolder(const QString &nickname, const QDateTime &startUtc,
                                    const QString &suffix)
{
    constexpr int extensionBytes = 4; // ".mp4"
    const QString tail = QLatin1Char('_') + UtcText::toFolderText(startUtc) + suffix;
    return shortened(safePart(nickname, QStringLiteral("source")),
                     maxNameBytes - extensionBytes - tail.size()) +
           tail;
}

QString FileNames::roiPart(const QString &name)
{
    return safePart(name, QStringLiteral("ROI"));
}

QString FileNames::shortened(const QString &name, int maxBytes)
{
    const QString head = name.left(maxBytes + 1); // more can never fit
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, head);
    characters.toEnd();
    int length = head.size();
    while (QFile::encodeName(head.left(length)).size() > maxBytes)
        length = characters.toPreviousBoundary();
    return head.left(length);
}
