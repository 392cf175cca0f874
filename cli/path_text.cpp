#include <cli/path_text.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>

namespace trv::cli {

void PathText::enter(const ComponentBody& component, std::size_t index) {
    steps_.push_back({&component, index, 0});
}

void PathText::leave() {
    steps_.pop_back();
    builtSteps_ = std::min(builtSteps_, steps_.size());
}

const std::string& PathText::text() {
    text_.resize(builtSteps_ == 0 ? 0 : steps_[builtSteps_ - 1].length);
    for (; builtSteps_ < steps_.size(); ++builtSteps_) {
        appendStep(steps_[builtSteps_], builtSteps_ == 0);
        steps_[builtSteps_].length = text_.size();
    }
    return text_;
}

// The only function that knows the syntax of a path.
void PathText::appendStep(const Step& step, bool isRoot) {
    const std::string& narrow = step.component->name;
    const QString name = form_ == PathForm::visible ? shown(narrow) : fromNarrow(narrow);
    if (!isRoot) {
        text_ += '/' + name.toStdString() + '[' + std::to_string(step.index) + ']';
    } else {
        text_ += name.isEmpty() ? "(root)" : name.toStdString();
    }
}

}  // namespace trv::cli
