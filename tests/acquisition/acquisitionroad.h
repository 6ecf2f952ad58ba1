#pragma once

#include "acquisition/acquisitioncontroller.h"
#include "simulator/service/server.h"
#include "tests/support/testfolder.h"

#include <QStringList>

#include <functional>
#include <memory>

/**
 * A service with three datasources, and a controller that talks to it through the real curl.
 *
 * AIA 171 (10) has an image at every full minute, SUVI 195 (2003) every two minutes from second 10
 * on, LASCO C2 (4) every 90 s from second 20 on.
 */
class AcquisitionRoad
{
public:
    AcquisitionRoad();

    static DataSource aia();
    static DataSource suvi();
    static DataSource lasco();

    /// Seconds from 2024-05-01T00:00:00Z on, one request a minute, 256 px wide.
    static AcquisitionSettings settings(int seconds, const QVector<DataSource> &sources);

    /// Starts a session and waits for its end.
    bool run(const AcquisitionSettings &settings);
    bool waitForEnd();

    /**
     * All signals in order: log lines as they stand, but only the endpoint of a "curl:" line, and
     * "[state] ...", "[progress] value/maximum", "[timing] ...", "[preview] ...", "[finished] ...".
     */
    QStringList events;
    QStringList logLines() const; ///< of the events, without "curl:" lines
    int count(const char *beginning) const;

    /// Called with each event from inside the slot that noted it.
    std::function<void(const QString &)> onEvent;

    QString sessionDirectory() const { return m_sessionDirectory; }
    QString sessionFile(const QString &name) const;
    /// Names in a folder of the session, with blanks between them.
    QString filesIn(const QString &folder) const;
    /// A column of the manifest, with blanks between its rows.
    QString column(const char *name) const;
    QJsonObject descriptor() const;
    QJsonObject describedSource(int index) const;

    /// Processes that this one has started and that are alive or not waited for.
    static QString children();

    TestFolder::OutputRoot output;
    Simulator::Server server;
    std::unique_ptr<AcquisitionController> controller;

private:
    void note(const QString &event);

    QString m_sessionDirectory;
};
