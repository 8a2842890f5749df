// Sets one setting to one number after the other, until it is killed. Says 2n before it sets n and 2n + 1
// after.
#include <CApplicationSettings.h>

#include <QCoreApplication>

#include <unistd.h>

namespace {

bool say(quint32 word)
{
    return write(STDOUT_FILENO, &word, sizeof word) == sizeof word;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    CApplicationSettings* const settings = CApplicationSettings::instance();
    settings->setFileName(arguments.at(1));
    const QString ballast(arguments.at(2).toInt(), QLatin1Char('x')); // writing takes its time
    for (quint32 number = 1; say(2 * number); ++number) {
        settings->setCustomSetting(QStringLiteral("number"), QString::number(number) + ballast);
        if (!say(2 * number + 1)) {
            break;
        }
    }
    return 1; // nobody listens any more
}
