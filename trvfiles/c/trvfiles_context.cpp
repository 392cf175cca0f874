// The functions of trvfiles.h for machine contexts.

#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/sized_struct.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <cstddef>
#include <iterator>

namespace c = trv::c;

namespace {

struct TextField {
    std::wstring (CMachineContextData::*get)() const;
    void (CMachineContextData::*set)(const std::wstring&);
};

// By TRVFILES_CONTEXT_...
constexpr TextField fields[] = {
    {&CMachineContextData::getNameW, &CMachineContextData::setNameW},
    {&CMachineContextData::getCommentW, &CMachineContextData::setCommentW},
    {&CMachineContextData::getMachineNameW, &CMachineContextData::setMachineNameW},
    {&CMachineContextData::getMachinePositionW, &CMachineContextData::setMachinePositionW},
    {&CMachineContextData::getSurfaceGroupW, &CMachineContextData::setSurfaceGroupW},
    {&CMachineContextData::getClampingSystemW, &CMachineContextData::setClampingSystemW},
    {&CMachineContextData::getReferenceAxisForOriginProgramW,
     &CMachineContextData::setReferenceAxisForOriginProgramW},
};

const TextField& fieldOf(std::int32_t number) {
    c::require(number >= 0 && static_cast<std::size_t>(number) < std::size(fields),
               "the number is not that of a text of a machine context");
    return fields[number];
}

trvfiles_context_numbers numbersOf(const CMachineContextData& data) {
    trvfiles_context_numbers numbers = {};
    double* origin = numbers.origin_program;
    data.getOriginProgram(origin[0], origin[1], origin[2]);
    numbers.machine_proximity = data.getMachineProximity();
    numbers.clamping_proximity = data.getClampingProximity();
    return numbers;
}

}  // namespace

int32_t trvfiles_context_create(trvfiles_context* created, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::create<c::ContextObject>(created);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_copy(trvfiles_context context, trvfiles_context* created,
                              trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::create<c::ContextObject>(created, *c::objectOf<c::ContextObject>(context));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_read(trvfiles_context context, const char* path, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<c::ContextObject>(context);
        return std::int32_t{
            CQvFilesIO::sReadMachineContext(c::wideArgument(path), object->data, values)};
    });
}

int32_t trvfiles_context_read_memory(trvfiles_context context, const void* bytes, size_t length,
                                     trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<c::ContextObject>(context);
        return std::int32_t{CQvFilesIO::sReadMachineContextFromMemory(
            c::bytesArgument(bytes, length), object->data, values)};
    });
}

int32_t trvfiles_context_write(trvfiles_context context, const char* path, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<c::ContextObject>(context);
        return std::int32_t{
            CQvFilesIO::sWriteMachineContext(c::wideArgument(path), object->data, values)};
    });
}

int32_t trvfiles_context_write_memory(trvfiles_context context, trvfiles_texts bytes,
                                      trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<c::ContextObject>(context);
        const auto result = c::objectOf<c::TextsObject>(bytes);
        std::vector<std::string> written(1);
        const EFileIOStatus status =
            CQvFilesIO::sWriteMachineContextToMemory(written.front(), object->data, values);
        if (status == eFileIOSuccess) result->texts = std::move(written);
        return std::int32_t{status};
    });
}

int32_t trvfiles_context_get_text(trvfiles_context context, int32_t field, trvfiles_texts text,
                                  trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<c::ContextObject>(context);
        const auto result = c::objectOf<c::TextsObject>(text);
        result->texts = {c::utf8FromWide((object->data.*fieldOf(field).get)())};
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_set_text(trvfiles_context context, int32_t field, const char* text,
                                  trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<c::ContextObject>(context);
        (object->data.*fieldOf(field).set)(c::wideArgument(text));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_get_numbers(trvfiles_context context, trvfiles_context_numbers* numbers,
                                     trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::fill(numbers, numbersOf(c::objectOf<c::ContextObject>(context)->data));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_set_numbers(trvfiles_context context,
                                     const trvfiles_context_numbers* numbers,
                                     trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<c::ContextObject>(context);
        c::requireSized(numbers);
        const double* origin = numbers->origin_program;
        // A copy: a setter may run out of memory after another one has succeeded.
        CMachineContextData changed = object->data;
        changed.setOriginProgram(origin[0], origin[1], origin[2]);
        changed.setMachineProximity(numbers->machine_proximity);
        changed.setClampingProximity(numbers->clamping_proximity);
        object->data = std::move(changed);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_clear(trvfiles_context context, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::objectOf<c::ContextObject>(context)->data.clear();
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_context_is_null(trvfiles_context context, int32_t* is_null, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<c::ContextObject>(context);
        c::require(is_null);
        *is_null = object->data.isNull() ? 1 : 0;
        return TRVFILES_SUCCESS;
    });
}
