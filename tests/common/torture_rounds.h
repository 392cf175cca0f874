#pragma once

#include <algorithm>
#include <cstdlib>

namespace trv::testing {

/// How often what is only tried at random, or in steps, is tried: the number in the environment
/// variable TRV_TORTURE_ROUNDS, and 1 without it.
inline int tortureRounds() {
    const char* rounds = std::getenv("TRV_TORTURE_ROUNDS");
    return rounds == nullptr ? 1 : std::max(1, std::atoi(rounds));
}

}  // namespace trv::testing
