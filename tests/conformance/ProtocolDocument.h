#ifndef TOLVAR_VARUNDO_TESTS_PROTOCOLDOCUMENT_H
#define TOLVAR_VARUNDO_TESTS_PROTOCOLDOCUMENT_H

#include <QString>
#include <QStringList>
#include <QVector>

namespace Tolvar::Varundo::Tests {

/// docs/protocol.md as a test sees it: its session blocks, and its tables by the heading above them.
class ProtocolDocument
{
public:
    struct Block
    {
        QString heading; ///< the nearest one above
        int line;        ///< of the block's first line, from 1
        QString text;
    };
    struct Table
    {
        QString heading;
        int line; ///< of the header row
        QStringList columns;
        QVector<QStringList> rows;
    };

    explicit ProtocolDocument(const QString& fileName);

    [[nodiscard]] const QString& fileName() const { return m_fileName; }
    [[nodiscard]] const QString& error() const { return m_error; } ///< empty when it was read
    [[nodiscard]] const QVector<Block>& blocks() const { return m_blocks; }
    /// The first table under this heading; one without rows if there is none.
    [[nodiscard]] Table table(const QString& heading) const;

private:
    void read(const QStringList& lines);
    int readFence(const QStringList& lines, int from);
    int readTable(const QStringList& lines, int from);
    static QStringList cells(const QString& line);

    QString m_fileName;
    QString m_error;
    QString m_heading; ///< while reading
    QVector<Block> m_blocks;
    QVector<Table> m_tables;
};

} // namespace Tolvar::Varundo::Tests

#endif
