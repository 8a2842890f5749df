#include "Zelctl.h"

#include <QCoreApplication>
#include <QTextCodec>

int main(int argc, char** argv)
{
    // Arguments and output are UTF-8, whatever the locale says: a unit's text must not depend on it.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QCoreApplication application(argc, argv);
    Tolvar::Varundo::Zelctl::Zelctl zelctl;
    return zelctl.runCommandLine(QCoreApplication::arguments().mid(1));
}
