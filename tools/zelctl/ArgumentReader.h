#ifndef TOLVAR_VARUNDO_ZELCTL_ARGUMENTREADER_H
#define TOLVAR_VARUNDO_ZELCTL_ARGUMENTREADER_H

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

namespace Tolvar::Varundo::Zelctl {

/// Reads a command's arguments one after the other. The first thing that is wrong stays as the error; what is
/// read afterwards does not matter, so a caller asks once, at the end.
class ArgumentReader
{
public:
    explicit ArgumentReader(const QStringList& arguments)
        : m_arguments(arguments)
    {}

    [[nodiscard]] bool atEnd() const { return m_at >= m_arguments.size(); }
    [[nodiscard]] QString peek() const { return m_arguments.value(m_at); }

    /// The names say in errors what is missing or wrong.
    QString word(const QString& name);
    int integer(const QString& name, int smallest, int largest);
    quint8 byte(const QString& name) { return static_cast<quint8>(integer(name, 0, 255)); }
    float single(const QString& name);
    double real(const QString& name);
    quint8 color(const QString& name);
    QDate date(const QString& name);
    QTime time(const QString& name);

    /// All that is left, as one text with blanks between.
    QString text(const QString& name);
    QStringList rest();

    void fail(const QString& error);

    /// True if everything was there, was right, and nothing is left.
    [[nodiscard]] bool finish();
    [[nodiscard]] QString error() const { return m_error; }

private:
    QStringList m_arguments;
    QString m_error;
    int m_at = 0;
};

} // namespace Tolvar::Varundo::Zelctl

#endif
