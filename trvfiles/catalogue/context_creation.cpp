#include <trvfiles/catalogue/context_creation.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

namespace trv {
namespace {

using platform::file_handle;
using platform::file_mode;

// As in CQvFilesIO::copyFile(), a full disk is not noticed here. Writing the context notices it.
void copyBytes(std::FILE* from, std::FILE* to) {
    char block[16384];
    std::size_t read = 0;
    while ((read = std::fread(block, 1, sizeof block, from)) != 0) {
        if (std::fwrite(block, 1, read, to) != read) return;
    }
}

}  // namespace

ContextCreation::ContextCreation(QString contextFile, existing what)
    : contextFile_(std::move(contextFile)) {
    std::string target;
    if (runtimePath(contextFile_, target)) held_.emplace(target, own_temporary_name, what);
}

ContextCreation::~ContextCreation() {
    removeReference();
}

bool ContextCreation::copyAxis(const QString& axisFile, const QString& referenceFile,
                               existing what) {
    // The caller that holds the context may be using its own copy under this name.
    if (failedWith(ETIMEDOUT)) return true;
    if (!isOpenable(referenceFile)) return false;
    std::filesystem::path path = systemPath(referenceFile);
    const file_handle to = what == existing::refused
                               ? platform::open_new(path, file_mode::binary)
                               : platform::open_for_write(path, file_mode::binary);
    if (to == nullptr) return false;
    reference_ = std::move(path);
    const file_handle from = openForRead(axisFile, file_mode::binary);
    if (from == nullptr) {
        // The empty file stays, as after CQvFilesIO::copyFile().
        reference_.clear();
        return false;
    }
    copyBytes(from.get(), to.get());
    return true;
}

bool ContextCreation::write(const CMachineContextData& record) {
    // The report below may end the process, so the copy is removed before it.
    const bool canBeSaved = held_ && held_->is_open();
    if (!canBeSaved) removeReference();
    if (failedWith(EEXIST)) return false;
    CMachineContextIO file(contextFile_);
    if (file.write(record, held_ ? &*held_ : nullptr) != eFileIOSuccess) return false;
    reference_.clear();
    return true;
}

bool ContextCreation::failedWith(int reason) const {
    return held_ && !held_->is_open() && held_->open_failure() == reason;
}

void ContextCreation::removeReference() {
    if (!reference_.empty()) platform::remove_file(reference_);
    reference_.clear();
}

}  // namespace trv
