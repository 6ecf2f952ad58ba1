#pragma once

#include "acquisition/acquisitioncontroller.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QStringList>

#include <functional>
#include <memory>

/// All that a controller tells, in order.
class SessionEvents
{
public:
    void listenTo(const AcquisitionController *sender);

    /**
     * Log lines as they stand, but only the endpoint of a "curl:" line, and "[state] ...",
     * "[progress] value/maximum", "[timing] ...", "[preview] ...", "[finished] ...".
     */
    QStringList events;
    QStringList logLines() const; ///< of the events, without "curl:" lines
    int count(const char *beginning) const;

    /// Called with each event from inside the slot that noted it.
    std::function<void(const QString &)> onEvent;

    QString sessionDirectory; ///< of the last session that ended

private:
    void note(const QString &event);
};

/// A service that has an image of aia() at every full minute and of suvi() every two minutes from
/// second 10 on, and a controller that talks to it through the real curl.
class AcquisitionFixture final : public SessionEvents
{
public:
    AcquisitionFixture();

    static DataSource aia() { return {10, "AIA 171"_s, "SDO/AIA/171"_s}; }
    static DataSource suvi() { return {2003, "GOES-R SUVI 195"_s, "GOES/SUVI/195"_s}; }

    /// With an image every @p spacingSeconds from @p start to 2024-05-02.
    static Simulator::ArchiveSource regular(const DataSource &source, const char *start,
                                            int spacingSeconds);

    /// Seconds from 2024-05-01T00:00:00Z on, one request a minute, 256 px wide.
    static AcquisitionSettings settings(int seconds, const QVector<DataSource> &sources);

    /// Starts a session and waits for its end.
    bool run(const AcquisitionSettings &settings);

    /// Processes that this one has started and that are alive or not waited for.
    static QString children();

    TestFolder::OutputRoot output;
    Simulator::Server server;
    std::unique_ptr<AcquisitionController> controller;
};
