#ifndef TOLVAR_VARUNDO_ZELCTL_PRINTER_H
#define TOLVAR_VARUNDO_ZELCTL_PRINTER_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace Tolvar::Varundo::Zelctl {

/// What the user gets to see: results on standard output, all else on standard error, in UTF-8, a whole line
/// at a time.
class Printer
{
public:
    explicit Printer(bool json)
        : m_json(json)
    {}

    void setJson(bool json) { m_json = json; }

    /// Where in a script the commands now come from; empty for none. Stands in front of every error.
    void setPlace(const QString& place) { m_place = place; }

    /// One result: the text, or with --json the object. An empty text prints nothing.
    void result(const QString& text, const QJsonObject& object) const;
    void plain(const QString& text) const;
    void error(const QString& text) const;

    /// One line of --verbose.
    void trace(bool outgoing, const QByteArray& bytes, const QString& meaning) const;

    [[nodiscard]] static QString hex(const QByteArray& bytes);

private:
    QString m_place;
    bool m_json;
};

} // namespace Tolvar::Varundo::Zelctl

#endif
