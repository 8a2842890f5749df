#include "CountingPrinter.h"

#include "Demand.h"
#include "Printer.h"

#include <QJsonDocument>

namespace Tolvar::Varundo {

namespace {

int errorCount = 0;

} // namespace

int Test::CountingPrinter::errors()
{
    return errorCount;
}

namespace Zelctl {

void Printer::result(const QString& text, const QJsonObject& object) const
{
    if (m_json) {
        const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact);
        Test::demand(QJsonDocument::fromJson(line).isObject() && !line.contains('\n'),
                     "a result is one line of JSON");
    } else if (!text.isEmpty()) {
        plain(text);
    }
}

void Printer::plain(const QString& text) const
{
    Test::demand(!text.toUtf8().isEmpty(), "there is something to print");
}

void Printer::error(const QString& text) const
{
    Test::demand(!text.isEmpty(), "an error says what is wrong");
    ++errorCount;
}

void Printer::trace(bool, const QByteArray&, const QString&) const {}

QString Printer::hex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

} // namespace Zelctl

} // namespace Tolvar::Varundo
