#ifndef TOLVAR_VARUNDO_TESTS_UNITCHECK_H
#define TOLVAR_VARUNDO_TESTS_UNITCHECK_H

#include <QString>
#include <QStringList>

namespace Tolvar::Varundo::Tests {

class ExampleUnit;
struct UnitElement;

/// Looks whether what a session says about the unit is true, both in the data model and on the overlay:
/// "meter-counter-1 position 10,2", "text 3,4 "abc"", "told video-counter 1 2 3". Used for one sentence.
class UnitCheck
{
public:
    UnitCheck(ExampleUnit& unit, const QStringList& words);

    /// Why the sentence is not true, or that nobody understands it; empty if it is true.
    [[nodiscard]] QString failure();

private:
    QString word(int index) const { return m_words.value(index); }
    QString wants(const QString& found) const;
    QString equal(const QString& found, int from) const;
    QString elementFailure(const UnitElement& element);
    QString positionFailure(const UnitElement& element);
    QString colorsFailure(const UnitElement& element);
    QString freeTextFailure();
    QString writtenTextFailure();
    QString noTextFailure();
    QString notUnderstood() const;

    ExampleUnit& m_unit;
    QStringList m_words;
};

} // namespace Tolvar::Varundo::Tests

#endif
