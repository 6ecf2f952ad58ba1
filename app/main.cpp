#include "app/applicationlook.h"
#include "base/helperprograms.h"
#include "base/runtimeconfig.h"
#include "base/terminationsignals.h"
#include "ui/mainwindow.h"

#include <QApplication>
#include <QLocale>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Brannock Works"));
    QApplication::setApplicationName(QStringLiteral("Orvik"));
    // Part of the identity, like the names; releases are counted in the licence dialog.
    QApplication::setApplicationVersion(QStringLiteral("0.0.1"));
    // A decimal point on every system.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::AnyCountry));
    RuntimeConfig::ensureRuntimeConfig();
    HelperPrograms::linkMissing();
    applyApplicationLook(application);

    MainWindow window;
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, &window, &MainWindow::shutDown);
    window.show();
    return QApplication::exec();
}
