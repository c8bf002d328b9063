#pragma once

#include "Draw.h"

#include <vector>

/// The sane values come first; two draws in three are among them.
template <typename Value>
struct Choice
{
    std::vector<Value> sane;
    std::vector<Value> hostile;

    const Value &at(int choice) const
    {
        constexpr int firstHostile = Draw::largest / 3 * 2;
        const bool isHostile = choice >= firstHostile && !hostile.empty();
        const std::vector<Value> &values = isHostile ? hostile : sane;
        return values.at(static_cast<std::size_t>(isHostile ? choice - firstHostile : choice) %
                         values.size());
    }
};
