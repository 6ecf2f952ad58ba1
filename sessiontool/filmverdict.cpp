#include "sessiontool/filmverdict.h"

#include "output/filmfile.h"

#include <QFileInfo>

FilmVerdict FilmVerdicts::judge(const QString &path, qint64 pictures)
{
    using Kind = FilmVerdict::Kind;
    const QFileInfo file(path);
    if (!file.exists())
        return file.isSymLink()
                   ? FilmVerdict{Kind::Broken, QStringLiteral("is a link that leads nowhere")}
                   : FilmVerdict{Kind::Missing, QStringLiteral("is missing")};
    const std::optional<FilmFile::Content> content = FilmFile::read(path);
    if (!content)
        return {Kind::Other, QStringLiteral("is not a readable film")};
    if (content->isCutOff)
        return {Kind::Broken, QStringLiteral("is cut off")};
    const QString shown = QString::number(content->pictures);
    const QString told = QString::number(pictures);
    if (content->pictures < pictures)
        return {Kind::Broken, QStringLiteral("shows %1 of %2 pictures").arg(shown, told)};
    if (content->pictures > pictures) // a manifest that has lost rows must not cost the film
        return {Kind::Other,
                QStringLiteral("shows %1 pictures; manifest.csv lists %2").arg(shown, told)};
    return {Kind::Whole, {}};
}
