#ifndef TOLVAR_VARUNDO_TEST_WRITEBENCH_H
#define TOLVAR_VARUNDO_TEST_WRITEBENCH_H

#include "ModelSnapshot.h"

#include <Tolvar/Varundo/Protocol.h>
#include <Tolvar/Varundo/WriteCommandParser.h>

namespace Tolvar::Varundo::Test {

/// A write parser with a data model of its own; tells everything that a command did.
class WriteBench
{
public:
    WriteBench()
    {
        watchModel(m_log, model);
        m_log.watch(&parser, &WriteCommandParser::writeDateValue);
        m_log.watch(&parser, &WriteCommandParser::writeTimeValue);
        m_log.watch(&parser, &WriteCommandParser::writeCursorPosition);
        m_log.watch(&parser, &WriteCommandParser::writeLine);
        m_log.watch(&parser, &WriteCommandParser::writeTextOnCursorPosition);
        m_log.watch(&parser, &WriteCommandParser::writeInclinationFormat);
        m_log.watch(&parser, &WriteCommandParser::setDistanceCounterSection);
        m_log.watch(&parser, &WriteCommandParser::setDistanceCounterTotal);
        m_log.watch(&parser, &WriteCommandParser::setDistanceCounterSat);
        m_log.watch(&parser, &WriteCommandParser::writeVideoCounter);
        m_log.watch(&parser, &WriteCommandParser::writeMeasurement3DPosition);
        m_log.watch(&parser, &WriteCommandParser::writeMeasurement3DOrientation);
    }

    void fill()
    {
        fillModel(model, true);
        static_cast<void>(m_log.take());
    }

    /// What was emitted, in order, by the parser and by the model.
    QStringList emittedBy(int cmdId, const QByteArray& payload)
    {
        CommandMessage message;
        message.cmdId = static_cast<quint8>(cmdId);
        message.grpId = Protocol::Write;
        message.length = static_cast<quint16>(payload.size());
        message.data = payload;
        parser.parseCommandMessage(message);
        return m_log.take();
    }

    /// What the model holds that it did not hold before, and then what was emitted.
    QStringList effectOf(int cmdId, const QByteArray& payload)
    {
        const ModelSnapshot before(model);
        const QStringList emitted = emittedBy(cmdId, payload);
        return before.changesTo(ModelSnapshot(model)) + emitted;
    }

    DataManager model;
    WriteCommandParser parser{&model};

private:
    SignalLog m_log;
};

} // namespace Tolvar::Varundo::Test

#endif
