#ifndef MAVRIL_VIDEOOVERLAY_ELEMENTPARAM_H
#define MAVRIL_VIDEOOVERLAY_ELEMENTPARAM_H

#include <VarundoPlatformExport.h>

#include <QHash>
#include <QString>
#include <QVariant>

namespace Mavril::VideoOverlay {

/// An overlay element's parameter set, from name to value; and the names that the parameters and the elements
/// have.
class VARUNDO_PLATFORM_EXPORT ElementParam
{
public:
    // Parameter names.
    static const QString NAME_COLUMNBOUND;   ///< the data column that an element shows
    static const QString NAME_STATIC_ID;     ///< the number of a static text
    static const QString NAME_COLUMNCAPTION; ///< an element's caption

    // Element names: all distinct. An element is found under its key, so the names of the status texts are
    // the static ids "1" to "4", and that of the free text box is its caption.
    static const QString NAME_SECTION_DISTANCE_COUNTER;
    static const QString NAME_SAT_DISTANCE_COUNTER;
    static const QString NAME_TOTAL_DISTANCE_COUNTER;
    static const QString NAME_DATE;
    static const QString NAME_TIME;
    static const QString NAME_VIDEO_TIME_COUNTER;
    static const QString NAME_STATUS_TEXT_1;
    static const QString NAME_STATUS_TEXT_2;
    static const QString NAME_STATUS_TEXT_3;
    static const QString NAME_STATUS_TEXT_4;
    static const QString NAME_CRAWLER_TEMPERATURE;
    static const QString NAME_CRAWLER_PRESSURE;
    static const QString NAME_CRAWLER_ROLL;
    static const QString NAME_CRAWLER_PITCH;
    static const QString NAME_CAMERA_TILT;
    static const QString NAME_CAMERA_PAN;
    static const QString NAME_CAMERA_TEMPERATURE;
    static const QString NAME_CAMERA_PRESSURE;
    static const QString NAME_OBJECT_TEMPERATURE;
    static const QString NAME_SPEED;
    static const QString NAME_OSD_FREE_TEXT_BOX;

    bool contains(const QString& name) const { return m_values.contains(name); }
    /// An invalid QVariant when it is missing.
    QVariant value(const QString& name) const { return m_values.value(name); }
    void insert(const QString& name, const QVariant& value) { m_values.insert(name, value); }

private:
    QHash<QString, QVariant> m_values;
};

} // namespace Mavril::VideoOverlay

#endif
