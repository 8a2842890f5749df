#ifndef TOLVAR_VARUNDO_TESTS_SESSIONSCRIPT_H
#define TOLVAR_VARUNDO_TESTS_SESSIONSCRIPT_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace Tolvar::Varundo::Tests {

/// A session between a controller and a unit, written down as text: the notation that docs/protocol.md
/// explains and that the files in sessions/ use. A plain value, no I/O.
class SessionScript
{
public:
    enum class Action : quint8 {
        Send,    ///< bytes from the controller, in one write
        Expect,  ///< bytes that the unit answers
        Check,   ///< what is then true at the unit
        Happen,  ///< something that happens at the unit
        Connect, ///< another controller connects
        Reset,   ///< a fresh unit
    };

    struct Step
    {
        Action action;
        int line; ///< in the file, from 1
        QByteArray bytes;
        QVector<int> wildcards; ///< indexes into bytes
        QStringList words;      ///< of a check or an event; quotes removed, escapes resolved
    };

    /// Reads a text whose first line is that line of the file. If it is not well-formed or holds nothing that
    /// could be played, error says so, with file and line.
    static SessionScript parse(const QString& text, const QString& fileName, int firstLine = 1);

    [[nodiscard]] const QString& error() const { return m_error; } ///< empty when there is none
    [[nodiscard]] const QVector<Step>& steps() const { return m_steps; }
    /// "file:line: ", for messages about a step.
    [[nodiscard]] QString place(const Step& step) const;

private:
    struct Word
    {
        QString text;
        bool quoted;
    };

    bool parseLine(const QString& line, int number);
    bool addSegment(const QVector<Word>& segment, int number);
    bool addBytes(Action action, const QVector<Word>& words, int number);
    bool appendNumber(Step& step, const QString& word);
    bool mayHaveWildcards(const Step& step) const;
    bool fail(int line, const QString& what);
    static bool split(const QString& line, QVector<Word>& words);

    QString m_fileName;
    QString m_error;
    QVector<Step> m_steps;
};

} // namespace Tolvar::Varundo::Tests

#endif
