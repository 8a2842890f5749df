#include "ProtocolDocument.h"

#include <QFile>
#include <QFileInfo>

namespace Tolvar::Varundo::Tests {

namespace {

const QLatin1String Fence("```");
const QLatin1String SessionFence("```zel");

} // namespace

ProtocolDocument::ProtocolDocument(const QString& fileName)
    : m_fileName(QFileInfo(fileName).fileName())
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = fileName + QStringLiteral(": ") + file.errorString();
        return;
    }
    read(QString::fromUtf8(file.readAll()).split(QLatin1Char('\n')));
}

ProtocolDocument::Table ProtocolDocument::table(const QString& heading) const
{
    for (const Table& table : m_tables) {
        if (table.heading == heading) {
            return table;
        }
    }
    return {heading, 0, {}, {}};
}

void ProtocolDocument::read(const QStringList& lines)
{
    for (int i = 0; i < lines.size() && m_error.isEmpty(); ++i) {
        const QString& line = lines.at(i);
        if (line.startsWith(Fence)) {
            i = readFence(lines, i);
        } else if (line.startsWith(QLatin1Char('#'))) {
            m_heading = line.mid(line.indexOf(QLatin1Char(' '))).trimmed();
        } else if (line.startsWith(QLatin1Char('|'))) {
            i = readTable(lines, i);
        }
    }
}

/// Returns the index of the closing line.
int ProtocolDocument::readFence(const QStringList& lines, int from)
{
    const int end = lines.indexOf(Fence, from + 1);
    if (end < 0) {
        m_error = QStringLiteral("%1:%2: this block is not closed").arg(m_fileName).arg(from + 1);
        return lines.size();
    }
    if (lines.at(from) == SessionFence) {
        m_blocks.append({m_heading, from + 2, lines.mid(from + 1, end - from - 1).join(QLatin1Char('\n'))});
    }
    return end;
}

/// Returns the index of the last row.
int ProtocolDocument::readTable(const QStringList& lines, int from)
{
    Table table{m_heading, from + 1, cells(lines.at(from)), {}};
    int next = from + 2; // the line of dashes is no row
    for (; next < lines.size() && lines.at(next).startsWith(QLatin1Char('|')); ++next) {
        table.rows.append(cells(lines.at(next)));
    }
    m_tables.append(table);
    return next - 1;
}

/// Without the code marks, which are for the reader.
QStringList ProtocolDocument::cells(const QString& line)
{
    QStringList cells;
    for (const QString& cell : line.split(QLatin1Char('|')).mid(1)) {
        cells.append(QString(cell).remove(QLatin1Char('`')).trimmed());
    }
    cells.removeLast(); // behind the last bar
    return cells;
}

} // namespace Tolvar::Varundo::Tests
