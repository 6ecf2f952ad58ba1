#include "app/applicationlook.h"
#include "base/runtimeconfig.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tools/pictures/album.h"
#include "tools/pictures/regionpictures.h"
#include "tools/pictures/windowpictures.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QSettings>
#include <QTextStream>
#include <QTimer>

#include <cstdlib>

namespace {

constexpr int limitMs = 15 * 60 * 1000; // an unexpected message box must not block for ever

int fail(const QString &sentence)
{
    QTextStream(stderr) << sentence << Qt::endl;
    return EXIT_FAILURE;
}

/// The file as a first start leaves it goes into the album; then this run gets its own archive.
void configure(Album &album, const QString &apiBase)
{
    RuntimeConfig::ensureRuntimeConfig();
    album.addText(QStringLiteral("orvik-ini"), RuntimeConfig::configFilePath());
    QSettings file(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    file.setIniCodec("UTF-8");
    file.setValue(QStringLiteral("network/apiBase"), apiBase);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Brannock Works"));
    QApplication::setApplicationName(QStringLiteral("Orvik"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::AnyCountry));
    applyApplicationLook(application);
    if (argc != 2)
        return fail(QStringLiteral("usage: orvik-pictures FOLDER"));
    QTimer::singleShot(limitMs, &application, [] {
        fail(QStringLiteral("the windows did not get on with their work"));
        std::_Exit(EXIT_FAILURE);
    });

    Simulator::Server server(Simulator::Archive::sample());
    QString errorText;
    if (!server.start(&errorText))
        return fail(errorText);
    Album album(QString::fromLocal8Bit(argv[1]));
    configure(album, server.baseUrl());

    const QString session = WindowPictures::takeFirstFilm(album);
    if (session.isEmpty())
        return fail(QStringLiteral("the first film was not made"));
    album.addText(QStringLiteral("manifest"), session + QStringLiteral("/manifest.csv"));
    album.addText(QStringLiteral("session"), session + QStringLiteral("/session.json"));
    if (!RegionPictures::take(album, session, QStringLiteral("AIA 171")))
        return fail(QStringLiteral("the session has no frames"));
    const QString mishaps = WindowPictures::takeLog(album, server);
    if (mishaps.isEmpty())
        return fail(QStringLiteral("the session for the log did not end"));
    album.addText(QStringLiteral("manifest-mishaps"), mishaps + QStringLiteral("/manifest.csv"));
    return album.isComplete() ? EXIT_SUCCESS : EXIT_FAILURE;
}
