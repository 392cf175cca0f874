#include <trvfiles/assembly/invalid_data_policy.h>

#include <QDomImplementation>

#include <mutex>

namespace trv {

void setInvalidDataPolicy() {
    // Qt holds the policy in a plain variable. A lock alone would not do: the parsers of other
    // threads read the variable without it, so nothing may write the value that is there already.
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    if (QDomImplementation::invalidDataPolicy() != QDomImplementation::ReturnNullNode) {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    }
}

}  // namespace trv
