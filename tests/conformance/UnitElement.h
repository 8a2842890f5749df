#ifndef TOLVAR_VARUNDO_TESTS_UNITELEMENT_H
#define TOLVAR_VARUNDO_TESTS_UNITELEMENT_H

#include <Tolvar/Varundo/DataManager.h>

#include <QString>

namespace Tolvar::Varundo::Tests {

/// One row a protocol element: its name on the controller's side, its name on the overlay, where it stands in
/// the example unit's profile, and what the data model keeps of it. A getter that an element lacks is null.
struct UnitElement
{
    const char* name;
    const QString* key;
    int column;
    int row;
    bool shown;
    bool (DataManager::*visible)() const;
    QPoint (DataManager::*position)() const;
    ColorPair (DataManager::*colors)() const;
    int (DataManager::*format)() const;
    QString (DataManager::*text)() const;

    [[nodiscard]] bool isStatusLine() const { return text != nullptr; }

    struct Range
    {
        const UnitElement* first;
        const UnitElement* last;
        [[nodiscard]] const UnitElement* begin() const { return first; }
        [[nodiscard]] const UnitElement* end() const { return last; }
    };
    static Range all();
    /// Null if there is none.
    static const UnitElement* find(const QString& name);
};

} // namespace Tolvar::Varundo::Tests

#endif
