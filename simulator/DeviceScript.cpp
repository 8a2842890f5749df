#include "DeviceScript.h"

#include "JsonWords.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

#include <cmath>

namespace Tolvar::Varundo::Simulator {

namespace {

bool failed(QString* error, const QString& what)
{
    *error = what;
    return false;
}

double seconds(int milliseconds)
{
    return milliseconds / 1000.0;
}

} // namespace

std::optional<DeviceScript> DeviceScript::readFile(const QString& file, QString* error)
{
    QFile source(file);
    const bool isOpen = source.open(QIODevice::ReadOnly);
    const QByteArray json = isOpen ? source.read(MaxBytes + 1) : QByteArray();
    if (source.error() != QFile::NoError) {
        *error = QStringLiteral("%1: cannot be read: %2").arg(file, source.errorString());
        return std::nullopt;
    }
    DeviceScript script;
    QString what;
    if (!script.parse(json, &what)) {
        *error = file + what;
        return std::nullopt;
    }
    return script;
}

bool DeviceScript::parse(const QByteArray& json, QString* error)
{
    if (json.size() > MaxBytes) {
        return failed(error, QStringLiteral(": larger than %1 bytes").arg(MaxBytes));
    }
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(json, &fault);
    if (fault.error != QJsonParseError::NoError) {
        // The offset is that of the first byte that was not looked at.
        return failed(error,
                      QStringLiteral(":%1: %2").arg(JsonWords::lineAndColumn(json, qMax(fault.offset - 1, 0)),
                                                    fault.errorString()));
    }
    if (!document.isObject()) {
        return failed(error, QStringLiteral(": expected an object with \"steps\", got an array"));
    }
    QString what;
    return readRoot(document.object(), &what) || failed(error, QStringLiteral(": ") + what);
}

bool DeviceScript::readRoot(const QJsonObject& root, QString* error)
{
    const QString repeatField = QStringLiteral("repeat");
    const QString stepsField = QStringLiteral("steps");
    *error = JsonWords::unknownField(root, {repeatField, stepsField});
    if (!error->isEmpty()) {
        return false;
    }
    const QJsonValue repeat = root.value(repeatField);
    if (!repeat.isUndefined() && !repeat.isBool()) {
        return failed(error, QStringLiteral("repeat: ") +
                                 JsonWords::expected(QStringLiteral("true or false"), repeat));
    }
    const QJsonArray steps = root.value(stepsField).toArray();
    if (steps.isEmpty()) {
        return failed(error,
                      QStringLiteral("steps: ") +
                          (root.value(stepsField).isArray()
                               ? QStringLiteral("expected one step at least, got none")
                               : JsonWords::expected(QStringLiteral("an array"), root.value(stepsField))));
    }
    if (steps.size() > MaxSteps) {
        return failed(error,
                      QStringLiteral("steps: expected %1 at most, got %2").arg(MaxSteps).arg(steps.size()));
    }
    for (int i = 0; i < steps.size(); ++i) {
        QString what;
        if (!readStep(steps.at(i), &what)) {
            return failed(error, QStringLiteral("steps[%1]").arg(i) + what);
        }
    }
    m_repeats = repeat.toBool();
    if (m_repeats && m_steps.constLast().atMs < ShortestRoundMs) {
        return failed(error, QStringLiteral("repeat: expected a last step at %1 seconds or later, got %2")
                                 .arg(seconds(ShortestRoundMs))
                                 .arg(seconds(m_steps.constLast().atMs)));
    }
    return true;
}

/// Appends one step. An error begins with what follows the step's own place.
bool DeviceScript::readStep(const QJsonValue& json, QString* error)
{
    const QString atField = QStringLiteral("at");
    if (!json.isObject()) {
        return failed(error, QStringLiteral(": ") + JsonWords::expected(QStringLiteral("an object"), json));
    }
    QJsonObject step = json.toObject();
    *error = JsonWords::unknownField(step, QStringList{atField} + DeviceSettings::deviceNames());
    if (!error->isEmpty()) {
        return failed(error, QStringLiteral(": ") + *error);
    }
    const double at = step.value(atField).toDouble(std::nan(""));
    const double earliest = m_steps.isEmpty() ? 0.0 : seconds(m_steps.constLast().atMs);
    if (!(at >= earliest && at <= seconds(LatestStepMs))) {
        const QString range = QStringLiteral("seconds from %1%2 to %3")
                                  .arg(earliest)
                                  .arg(m_steps.isEmpty() ? QString() : QStringLiteral(" (the step before)"))
                                  .arg(seconds(LatestStepMs));
        return failed(error, QStringLiteral(".at: ") + JsonWords::expected(range, step.value(atField)));
    }
    step.remove(atField);
    QString what;
    const auto settings = DeviceSettings::read(step, &what);
    if (!settings) {
        return failed(error, QStringLiteral(".") + what);
    }
    m_steps.append({static_cast<int>(std::lround(at * 1000.0)), *settings});
    return true;
}

} // namespace Tolvar::Varundo::Simulator
