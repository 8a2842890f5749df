#include "Printer.h"

#include <QJsonDocument>

#include <cstdio>

namespace Tolvar::Varundo::Zelctl {

namespace {

void writeLine(std::FILE* stream, QByteArray line)
{
    line.append('\n');
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stream);
    std::fflush(stream); // a reader at the other end of a pipe watches live
}

} // namespace

void Printer::result(const QString& text, const QJsonObject& object) const
{
    if (m_json) {
        writeLine(stdout, QJsonDocument(object).toJson(QJsonDocument::Compact));
    } else if (!text.isEmpty()) {
        plain(text);
    }
}

void Printer::plain(const QString& text) const
{
    writeLine(stdout, text.toUtf8());
}

void Printer::error(const QString& text) const
{
    const QString place = m_place.isEmpty() ? QString() : m_place + QStringLiteral(": ");
    writeLine(stderr, (QStringLiteral("zelctl: ") + place + text).toUtf8());
}

void Printer::trace(bool outgoing, const QByteArray& bytes, const QString& meaning) const
{
    const QLatin1String arrow(outgoing ? "> " : "< ");
    writeLine(stderr, (arrow + hex(bytes) + QStringLiteral("  ") + meaning).toUtf8());
}

QString Printer::hex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

} // namespace Tolvar::Varundo::Zelctl
