#ifndef TOLVAR_VARUNDO_TEST_SIGNALLOG_H
#define TOLVAR_VARUNDO_TEST_SIGNALLOG_H

#include "ValueText.h"

#include <QMetaMethod>
#include <QObject>
#include <QStringList>

namespace Tolvar::Varundo::Test {

/// Writes down the signals of any number of objects, in the order of emission: "name(argument, argument)". A
/// lambda takes each, so that no type has to be known to the meta-type system.
class SignalLog
{
public:
    template <class Sender, class... Arguments>
    void watch(const Sender* sender, void (Sender::*signal)(Arguments...))
    {
        const QString name = QString::fromLatin1(QMetaMethod::fromSignal(signal).name());
        QObject::connect(sender, signal, &m_context, [this, name](Arguments... arguments) {
            const QStringList texts{asText(arguments)...};
            m_lines.append(QStringLiteral("%1(%2)").arg(name, texts.join(QStringLiteral(", "))));
        });
    }

    /// What was emitted since the last call.
    [[nodiscard]] QStringList take()
    {
        QStringList lines;
        lines.swap(m_lines);
        return lines;
    }

private:
    QObject m_context;
    QStringList m_lines;
};

/// The signals that a class declares itself, in the order of declaration.
[[nodiscard]] inline QStringList declaredSignals(const QMetaObject& metaObject)
{
    QStringList signatures;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        if (metaObject.method(i).methodType() == QMetaMethod::Signal) {
            signatures.append(QString::fromLatin1(metaObject.method(i).methodSignature()));
        }
    }
    return signatures;
}

} // namespace Tolvar::Varundo::Test

#endif
