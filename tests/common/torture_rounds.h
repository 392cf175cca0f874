#pragma once

#include <algorithm>
#include <cstdlib>

namespace trv::testing {

/// The factor for the number of random attempts and of steps: the value of the environment variable
/// TRV_TORTURE_ROUNDS, or 1 without it.
inline int tortureRounds() {
    const char* rounds = std::getenv("TRV_TORTURE_ROUNDS");
    return rounds == nullptr ? 1 : std::max(1, std::atoi(rounds));
}

}  // namespace trv::testing
