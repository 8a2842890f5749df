// bare_application SECONDS: the Qt application that a host is before it has a Runner. What unit_application
// costs more than this is what the library costs.

#include "FootprintReport.h"

#include <QGuiApplication>

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    return Tolvar::Varundo::Test::runIdleAndReport(QCoreApplication::arguments().value(1).toInt());
}
