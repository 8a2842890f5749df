#ifndef TOLVAR_VARUNDO_TESTS_RANDOM_H
#define TOLVAR_VARUNDO_TESTS_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <random>

namespace Tolvar::Varundo::Model {

/// The same seed gives the same numbers on every machine: only the generator's raw numbers are used.
class Random
{
public:
    explicit Random(std::uint32_t seed)
        : m_numbers(seed)
    {}

    int below(int limit) { return static_cast<int>(m_numbers() % static_cast<std::uint32_t>(limit)); }
    bool oneIn(int count) { return below(count) == 0; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }
    std::uint32_t bits() { return static_cast<std::uint32_t>(m_numbers()); }

    template <class List>
    const auto& oneOf(const List& list)
    {
        return *(std::begin(list) + below(static_cast<int>(std::size(list))));
    }

private:
    std::mt19937 m_numbers;
};

} // namespace Tolvar::Varundo::Model

#endif
