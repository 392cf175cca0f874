#pragma once

#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/require.h>
#include <trvfiles/c/trvfiles.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace trv::fuzz {

enum Kind { texts, context, assembly, components, placements, messages, fault };

/// The handles that an input has created and released, as a plain list. The input chooses from it.
class KnownHandles {
protected:
    struct Known {
        trvfiles_handle handle;
        Kind kind;
        bool isLive;
    };

    explicit KnownHandles(std::string_view input) : input_(input) {}
    ~KnownHandles() = default;
    KnownHandles(const KnownHandles&) = delete;
    KnownHandles& operator=(const KnownHandles&) = delete;

    // A live handle of the kind, or any other number.
    trvfiles_handle pick(Kind kind) {
        if (input_.number(16) == 0) return pickWrong(kind);
        const auto start = static_cast<std::size_t>(input_.byte());
        for (std::size_t i = 0; i < known_.size(); ++i) {
            const Known& known = known_[(start + i) % known_.size()];
            if (known.kind == kind && known.isLive) return known.handle;
        }
        isWrong_ = true;
        return 0;
    }

    trvfiles_handle pickWrong(Kind kind) {
        const auto choice = static_cast<std::size_t>(input_.byte());
        if (choice < known_.size()) {
            const Known& known = known_[choice];
            isWrong_ = isWrong_ || known.kind != kind || !known.isLive;
            return known.handle;
        }
        isWrong_ = true;
        return choice % 3 == 0 ? 0 : choice << (choice % 64);
    }

    // Adds what a call has created.
    template <class Create>
    std::int32_t create(Kind kind, Create call) {
        trvfiles_handle created = 0;
        const std::int32_t status = call(&created);
        require((created != 0) == (status == TRVFILES_SUCCESS), "a success has an object");
        if (created != 0) known_.push_back({created, kind, true});
        return status;
    }

    InputReader input_;
    std::vector<Known> known_;
    /// Whether a handle that is not live, or of another kind, has been chosen for the call.
    bool isWrong_ = false;
};

}  // namespace trv::fuzz
