#ifndef TOLVAR_VARUNDO_ZELCTL_ELEMENTNAME_H
#define TOLVAR_VARUNDO_ZELCTL_ELEMENTNAME_H

#include <Tolvar/Varundo/Client/CommandCatalog.h>

#include <QString>
#include <QStringList>
#include <QVector>

namespace Tolvar::Varundo::Zelctl {

class ArgumentReader;

/// An element as the user named it: the catalogue's name, and the number if there are several under one
/// command.
class ElementName
{
public:
    /// Takes one argument, or two for "status-line 2". Fails the reader if no command of this group has such
    /// an element; the error says what comes near it.
    static ElementName read(ArgumentReader& arguments, Protocol::Group group);

    [[nodiscard]] const QString& name() const { return m_name; }
    [[nodiscard]] int index() const { return m_index; } ///< -1 unless the element is indexed
    [[nodiscard]] QString text() const;                 ///< as it is typed

    /// What a command of this group can do with the element, in the catalogue's order.
    [[nodiscard]] QVector<Client::Verb> verbs(Protocol::Group group) const;

    /// Null if the element has no such command. Colours are found although most elements share one command.
    [[nodiscard]] const Client::CommandInfo* command(Protocol::Group group, Client::Verb verb) const;

    [[nodiscard]] static QString verbList(const QVector<Client::Verb>& verbs);

    /// Every name that can be typed for this group.
    [[nodiscard]] static QStringList all(Protocol::Group group);

private:
    void resolve(const QString& typed, Protocol::Group group);
    [[nodiscard]] QString unknownText(const QString& typed, Protocol::Group group) const;

    QString m_name;
    int m_index = -1;
};

} // namespace Tolvar::Varundo::Zelctl

#endif
