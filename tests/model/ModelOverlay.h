#ifndef TOLVAR_VARUNDO_TESTS_MODELOVERLAY_H
#define TOLVAR_VARUNDO_TESTS_MODELOVERLAY_H

#include "Profile.h"

#include <optional>
#include <string>
#include <vector>

namespace Tolvar::Varundo::Model {

/// No value: a colour that was never set.
using Color = std::optional<std::uint32_t>;

struct Colors
{
    Color text;
    Color background;
};

[[nodiscard]] inline bool operator==(const Colors& left, const Colors& right)
{
    return left.text == right.text && left.background == right.background;
}

/// What a viewer of the overlay and its host can see of one element.
struct Element
{
    std::string key; ///< empty: a text that the controller had made
    bool isText = true;
    int column = 0;
    int row = 0;
    bool enabled = false;
    bool visible = false;
    int type = 0;
    int timeout = 0;
    std::u16string text;
    std::u16string unit;
    Colors colors;
    std::optional<std::u16string> measured; ///< its size is that of this text in its font; otherwise 0

    [[nodiscard]] bool isCustom() const { return key.empty(); }
};

/// The elements in the order in which they were made.
class ModelOverlay
{
public:
    void replace(const Profile& profile);
    void clear() { m_elements.clear(); }
    [[nodiscard]] const std::vector<Element>& elements() const { return m_elements; }
    [[nodiscard]] std::vector<Element>& elements() { return m_elements; }

    /// The profile's element under a key, and the oldest custom text in a cell; null without.
    [[nodiscard]] Element* find(const std::string& key);
    [[nodiscard]] Element* customAt(int column, int row);
    Element& addCustom(int type, int column, int row, const Colors& colors, const std::u16string& text);

    void removeCustom();
    void removeEmptyCustom();
    void hideTimedOut();

private:
    std::vector<Element> m_elements;
};

} // namespace Tolvar::Varundo::Model

#endif
