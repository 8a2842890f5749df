#ifndef TOLVAR_VARUNDO_TEST_OBSERVEDSERIALADAPTOR_H
#define TOLVAR_VARUNDO_TEST_OBSERVEDSERIALADAPTOR_H

#include <Tolvar/Varundo/SerialAdaptor.h>

#include <QSerialPort>
#include <QStringList>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Tolvar::Varundo::Test {

/// An adaptor that writes down what it passes on, and acts on it as it is told.
class ObservedSerialAdaptor
{
public:
    ObservedSerialAdaptor()
        : m_adaptor(std::make_unique<SerialAdaptor>(QStringLiteral("/dev/ttyUSB1")))
    {
        QObject::connect(m_adaptor.get(), &SerialAdaptor::receivedValidMessage,
                         [this](const CommandMessage& record) {
                             m_records.push_back(record);
                             if (m_action) {
                                 m_action(record);
                             }
                         });
        QObject::connect(m_adaptor.get(), &SerialAdaptor::printableCharReceived,
                         [this](char byte) { m_typed.append(byte); });
        QObject::connect(m_adaptor.get(), &SerialAdaptor::serialPortError,
                         [this](const QString& text) { m_errors.append(text); });
    }

    [[nodiscard]] SerialAdaptor& operator*() { return *m_adaptor; }
    [[nodiscard]] SerialAdaptor* operator->() { return m_adaptor.get(); }
    void destroy() { m_adaptor.reset(); }
    [[nodiscard]] QSerialPort& port() const { return *m_adaptor->findChild<QSerialPort*>(); }

    /// What is done with every record that is passed on.
    void onRecord(std::function<void(const CommandMessage&)> action) { m_action = std::move(action); }

    [[nodiscard]] const std::vector<CommandMessage>& records() const { return m_records; }
    [[nodiscard]] const QByteArray& typed() const { return m_typed; }
    [[nodiscard]] const QStringList& errors() const { return m_errors; }
    void forget()
    {
        m_records.clear();
        m_typed.clear();
        m_errors.clear();
    }

private:
    std::unique_ptr<SerialAdaptor> m_adaptor;
    std::function<void(const CommandMessage&)> m_action;
    std::vector<CommandMessage> m_records;
    QByteArray m_typed;
    QStringList m_errors;
};

} // namespace Tolvar::Varundo::Test

#endif
