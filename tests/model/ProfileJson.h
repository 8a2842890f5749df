#ifndef TOLVAR_VARUNDO_TESTS_PROFILEJSON_H
#define TOLVAR_VARUNDO_TESTS_PROFILEJSON_H

#include "Profile.h"

#include <QByteArray>

namespace Tolvar::Varundo::Model {

/// The profile as the host reads it. Whatever there is a field for is written out.
[[nodiscard]] QByteArray profileJson(const Profile& profile);

} // namespace Tolvar::Varundo::Model

#endif
