#ifndef PLATFORM_REPEATEDFIELD_H
#define PLATFORM_REPEATEDFIELD_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace Mavril::VideoOverlay {

/// A field that a JSON object has a second time. Qt's JSON reader silently takes the last one, so that the
/// author of a profile would never learn why the other has no effect.
struct RepeatedField
{
    QString name;
    int offset; // of the second one, in bytes

    /// The first one in a document. It must be one that Qt's JSON reader has accepted: only its strings and
    /// braces are looked at.
    static std::optional<RepeatedField> find(const QByteArray& json);
};

} // namespace Mavril::VideoOverlay

#endif
