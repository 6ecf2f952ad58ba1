/*
 * Runs one session of three minutes without a window and prints its log: a process that a test may
 * kill.
 */
#include "tests/acquisition/acquisitionroad.h"

#include <QGuiApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QTextStream out(stdout);
    AcquisitionController controller;
    QObject::connect(&controller, &AcquisitionController::logMessage, &controller,
                     [&out](const QString &line) { out << line << Qt::endl; });
    QObject::connect(&controller, &AcquisitionController::finished, &application,
                     &QCoreApplication::quit, Qt::QueuedConnection);
    const bool started = controller.start(
        AcquisitionRoad::settings(180, {AcquisitionRoad::aia(), AcquisitionRoad::suvi()}));
    return started ? QCoreApplication::exec() : 1;
}
