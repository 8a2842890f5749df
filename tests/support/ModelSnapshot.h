#ifndef TOLVAR_VARUNDO_TEST_MODELSNAPSHOT_H
#define TOLVAR_VARUNDO_TEST_MODELSNAPSHOT_H

#include "ModelTable.h"
#include "SignalLog.h"

#include <QMap>

#include <type_traits>

namespace Tolvar::Varundo::Test {

/// All that a data model holds at one moment, as text under the names of its getters.
class ModelSnapshot
{
public:
    explicit ModelSnapshot(const DataManager& model)
    {
        forEachProperty([&](const auto& row) { note(row.property, (model.*row.get)()); });
        note("lineText", model.lineText());
        note("lineColorPair", model.lineColorPair());
        note("cursorPosition", model.cursorPosition());
        note("textCodec", int(model.textCodec()));
    }

    /// What is different in the later one: "property = value", in the order of the names.
    [[nodiscard]] QStringList changesTo(const ModelSnapshot& later) const
    {
        QStringList changes;
        for (auto it = later.m_values.begin(); it != later.m_values.end(); ++it) {
            if (m_values.value(it.key()) != it.value()) {
                changes.append(QStringLiteral("%1 = %2").arg(it.key(), it.value()));
            }
        }
        return changes;
    }

    [[nodiscard]] QString value(const char* property) const
    {
        return m_values.value(QLatin1String(property));
    }

private:
    template <class Value>
    void note(const char* property, const Value& value)
    {
        m_values.insert(QLatin1String(property), asText(value));
    }

    QMap<QString, QString> m_values;
};

/// Writes down every signal of a data model.
inline void watchModel(SignalLog& log, const DataManager& model)
{
    forEachProperty([&](const auto& row) { log.watch(&model, row.changed); });
    log.watch(&model, &DataManager::lineTextChanged);
    log.watch(&model, &DataManager::cursorPositionChanged);
}

/// Gives every property a value that no other property and no command of the tests has, so that a change to
/// the wrong one shows. Every flag becomes the one given: a flag has no third value.
inline void fillModel(DataManager& model, bool visible)
{
    int i = 0;
    forEachProperty([&](const auto& row) {
        ++i;
        using Value = decltype((model.*row.get)());
        if constexpr (std::is_same_v<Value, bool>) {
            (model.*row.set)(visible);
        } else if constexpr (std::is_same_v<Value, int>) {
            (model.*row.set)(1000 + i);
        } else if constexpr (std::is_same_v<Value, float>) {
            (model.*row.set)(static_cast<float>(i) + 0.5F);
        } else if constexpr (std::is_same_v<Value, QPoint>) {
            (model.*row.set)(QPoint(2000 + i, 3000 + i));
        } else if constexpr (std::is_same_v<Value, ColorPair>) {
            (model.*row.set)(ColorPair(QColor(i, 17, 18), QColor(19, i, 20)));
        } else {
            (model.*row.set)(QStringLiteral("text %1").arg(i));
        }
    });
    model.setLineText({QStringLiteral("a line"), QStringLiteral("another")}, 0);
    model.setLineColorPair(ColorPair(QColor(21, 22, 23), QColor(24, 25, 26)));
    model.setCursorPosition(4000, 5000);
    model.setTextCodec(static_cast<DataManager::TextCodec>(99)); // unknown: behaves like the default
}

} // namespace Tolvar::Varundo::Test

#endif
