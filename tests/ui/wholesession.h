#pragma once

#include "simulator/archive/archive.h"

#include <QDateTime>
#include <QJsonObject>
#include <QVector>

#include <memory>

/// A whole session as it must come out: the texts in wholerun/, and what the service answers when
/// it is asked by other means than the program's.
class WholeSession final
{
public:
    /// A request as the ledger has to have it.
    struct Row
    {
        QString nickname;
        QDateTime requestedUtc;
        QDateTime actualUtc;
        QString file;       ///< empty without a frame
        QJsonObject answer; ///< as the service gives it

        double number(const char *key) const { return answer[QLatin1String(key)].toDouble(); }
        double kmPerPixel() const { return 695700 / number("rsun") * (number("width") / widthPx); }
    };

    static constexpr int widthPx = 256;
    static constexpr const char *geometryKeys[] = {"scale", "scaleCorrection", "width",    "height",
                                                   "rsun",  "refPixelX",       "refPixelY"};
    static std::shared_ptr<const Simulator::Archive> archive();
    static QString contentOf(const QString &path);
    /// Width, height, frames per second and number of frames of a film, as in "96,160,4/1,5".
    static QString shapeOf(const QString &film);

    void readRows();
    /// What the service at apiBase answers.
    QByteArray ask(const QString &question) const;
    /// The rows with a frame in a folder.
    QVector<Row> framesIn(const QString &folder) const;
    QString file(const QString &name) const { return directory + QLatin1Char('/') + name; }
    QString completedUtc() const;
    /// Line by line with wholerun/@p name.
    void compare(const QString &text, const char *name) const;
    /// With a scale, and the introduction: the whole frame squeezed, then the region. Or with a
    /// stamp and a label.
    void expectFilm(const QString &source, const char *region, const char *shape, int rotation,
                    bool scale) const;

    QString apiBase;
    QString output;
    QString directory; ///< the session's

private:
    QString named(QString text) const;

    QVector<Row> m_rows;
};
