#ifndef TOLVAR_VARUNDO_TESTS_PROFILE_H
#define TOLVAR_VARUNDO_TESTS_PROFILE_H

#include "ModelTables.h"

#include <string>
#include <vector>

namespace Tolvar::Varundo::Model {

/// An element of a profile, for the model as it is, for the unit to be written as JSON.
struct ProfileElement
{
    enum class Kind : std::uint8_t { Bound, Static, Free, Plain };

    Kind kind = Kind::Bound;
    std::string identity; ///< binding, number or caption; the key of the element as well
    int column = 0;
    int row = 0;
    bool enabled = true;
    bool visible = true;
    int type = 0;
    std::u16string text;
    std::u16string unit;
    int timeout = 0;
    std::uint32_t textColor = White;
    std::uint32_t backgroundColor = Blue;
};

using Profile = std::vector<ProfileElement>;

/// There are only so many different ones; the number is taken modulo that.
[[nodiscard]] Profile profileVariant(int number);
constexpr int ProfileVariants = 6;

} // namespace Tolvar::Varundo::Model

#endif
