// The functions of trvfiles.h for axis files.

#include <trvfiles/axis/axis_file.h>
#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/sized_struct.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/text/path_resolution.h>

#include <algorithm>

namespace c = trv::c;

namespace {

constexpr std::int32_t maxTags = 3;

// A resource of Qt is not an axis file. The system would take ":/x" for a path in the current
// directory.
QString axisPath(const char* path) {
    const QString text = c::pathArgument(path);
    return trv::isResource(text) ? QString() : text;
}

trvfiles_axis axisOf(const trv::AxisContent& content) {
    trvfiles_axis axis = {};
    std::copy(content.matrix.begin(), content.matrix.end(), axis.matrix);
    axis.tag_count = content.tagCount;
    std::copy_n(content.tags.begin(), content.tagCount, axis.tags);
    return axis;
}

std::string textOf(const trvfiles_axis* axis) {
    c::requireSized(axis);
    const std::int32_t* tags = axis->tags;
    const bool hasTags = axis->tag_count == maxTags;
    c::require(hasTags || axis->tag_count == 0, "the number of tags is neither 0 nor 3");
    c::require(!hasTags || *std::min_element(tags, tags + maxTags) >= 0, "a tag is negative");
    trv::AxisMatrix matrix;
    std::copy_n(axis->matrix, matrix.size(), matrix.begin());
    return hasTags ? trv::axisFileText(matrix, tags[0], tags[1], tags[2])
                   : trv::axisFileText(matrix, -1, -1, -1);
}

}  // namespace

int32_t trvfiles_axis_read(const char* path, trvfiles_axis* axis, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const QString file = axisPath(path);
        c::requireSized(axis);
        trv::AxisContent content;
        const EFileIOStatus status = trv::readAxisFile(file, content, values);
        if (status == eFileIOSuccess) c::fill(axis, axisOf(content));
        return std::int32_t{status};
    });
}

int32_t trvfiles_axis_read_memory(const void* bytes, size_t length, trvfiles_axis* axis,
                                  trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const std::string_view text = c::bytesArgument(bytes, length);
        c::requireSized(axis);
        trv::AxisContent content;
        const EFileIOStatus status = trv::readAxisBytes(text, content, values);
        if (status == eFileIOSuccess) c::fill(axis, axisOf(content));
        return std::int32_t{status};
    });
}

int32_t trvfiles_axis_write(const char* path, const trvfiles_axis* axis, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        return std::int32_t{trv::writeAxisFile(axisPath(path), textOf(axis), values)};
    });
}

int32_t trvfiles_axis_write_memory(const trvfiles_axis* axis, trvfiles_texts bytes,
                                   trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto result = c::objectOf<c::TextsObject>(bytes);
        result->texts = {textOf(axis)};
        return TRVFILES_SUCCESS;
    });
}
