#pragma once

/// @file
/// The path of a component: the names from the root down, each with its index among its siblings.
///
/// Threads: any.

#include <trvfiles/assembly/component_body.h>

#include <cstddef>
#include <string>
#include <vector>

namespace trv::cli {

enum class PathForm {
    /// The names are escaped by shown().
    visible,
    /// The names are unchanged.
    exact
};

/// The path of the component that a walk has reached. A part of the text is only built when a path
/// is asked for, and only once for all components below it.
class PathText {
public:
    explicit PathText(PathForm form) : form_(form) {}

    /// Goes to the root, or from a component to one of its children.
    ///
    /// @param component  has to live until leave()
    /// @param index      among the siblings; ignored for the root
    void enter(const ComponentBody& component, std::size_t index);
    void leave();

    /// In UTF-8, for example "Bracket OP10/Left vise[1]/Body[0]". Valid until the next call.
    const std::string& text();

private:
    struct Step {
        const ComponentBody* component;
        std::size_t index;
        /// The length of the path up to this component, if it is built.
        std::size_t length;
    };

    void appendStep(const Step& step, bool isRoot);

    PathForm form_;
    std::vector<Step> steps_;
    /// The number of steps from the root down whose length is valid.
    std::size_t builtSteps_ = 0;
    std::string text_;
};

}  // namespace trv::cli
