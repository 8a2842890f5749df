#ifndef TOLVAR_VARUNDO_SIMULATOR_ELEMENTTEXTS_H
#define TOLVAR_VARUNDO_SIMULATOR_ELEMENTTEXTS_H

#include <QHash>
#include <QString>

#include <functional>

namespace Mavril::VideoOverlay {
class CVideoOverlayText;
} // namespace Mavril::VideoOverlay

namespace Tolvar::Varundo {
class DataManager;
} // namespace Tolvar::Varundo

namespace Tolvar::Varundo::Simulator {

class SimulatedClock;
class SimulatedDevices;
struct VideoCounter;

/// What an element has to show at this moment. The library moves and colours a bound element, its value is
/// the host's: it comes from the devices, the clock and the counter. Any other element shows its own text.
///
/// Keeps references to what it reads, and no state. GUI thread; owned by the SimulatedUnit.
class ElementTexts
{
public:
    struct Shown
    {
        QString label; ///< stands before the value: a bound element's own text
        QString text;
        QString unit;

        QString inWhole() const; ///< as drawn; empty when there is nothing to draw
    };

    /// The data model is asked for the inclination's format alone.
    ElementTexts(const SimulatedDevices& devices, const SimulatedClock& clock, const VideoCounter& counter,
                 const DataManager& dataManager);

    Shown of(Mavril::VideoOverlay::CVideoOverlayText& element) const;

private:
    using Value = std::function<Shown(const QString& unit)>;

    QHash<QString, Value> m_values; // by the name that an element is bound to
};

} // namespace Tolvar::Varundo::Simulator

#endif
