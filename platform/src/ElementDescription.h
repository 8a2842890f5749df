#ifndef PLATFORM_ELEMENTDESCRIPTION_H
#define PLATFORM_ELEMENTDESCRIPTION_H

#include <QColor>
#include <QString>

#include <memory>

namespace Mavril::VideoOverlay {

class CVideoOverlayElement;

/// What a profile says of one element: read and checked, and not yet made. The initial values are those of a
/// field that is left out.
struct ElementDescription
{
    // What identifies it; exactly one of these is given.
    QString binding;
    int staticId = 0;
    QString caption;

    bool isText = true;
    int row = 0;
    int column = 0;
    int type = 0;
    bool enabled = true;
    bool visible = true;
    // Of a text:
    QString text;
    QString unit;
    int timeout = 0;
    QColor textColor = Qt::white;
    QColor backgroundColor = Qt::transparent;
    QString fontFamily; // empty: the application's font
    int fontSize = 0;   // points; 0: the application's size
    // Of any other element:
    int width = 0;
    int height = 0;

    /// Under which an accessor knows it; no two elements of a profile have the same.
    QString key() const;
    std::unique_ptr<CVideoOverlayElement> makeElement() const;
};

} // namespace Mavril::VideoOverlay

#endif
