// A sequence of calls of the C interface, decoded from the bytes of the input, with live, released
// and wrong handles. The handles are compared with a plain list of what is live.

#include <fuzz/harness/configured_variables.h>
#include <fuzz/harness/known_handles.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <trvfiles/c/trvfiles.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

namespace trv::fuzz {
namespace {

constexpr const char* fileNames[] = {"c.xml", "c.mctx", "c.dat", "c.msg", "missing"};

// A size that a host may have forgotten to set.
template <class Struct>
Struct structOf(InputReader& input) {
    Struct values = {};
    const int wrong = input.number(8) == 0 ? input.number(static_cast<int>(sizeof values)) : 0;
    values.size = wrong != 0 ? static_cast<std::size_t>(wrong) : sizeof values;
    return values;
}

class Caller : private KnownHandles {
public:
    explicit Caller(std::string_view input) : KnownHandles(input), before_(liveHandles()) {
        require(trvfiles_channel_set_output(1, 0, 0) == TRVFILES_SUCCESS, "output can be set");
        for (const Kind kind : createdKinds)
            createOne(kind);
    }
    ~Caller() {
        for (const Known& known : known_)
            require((trvfiles_release(known.handle, 0) == TRVFILES_SUCCESS) == known.isLive,
                    "a live object is released once");
        require(liveHandles() == before_, "no call keeps an object");
        trvfiles_channel_set_output(0, 0, 0);
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    void play() {
        constexpr int maxCalls = 200;
        for (int i = 0; i < maxCalls && !input_.isAtEnd(); ++i)
            playOne();
    }

private:
    static std::size_t liveHandles() {
        std::size_t count = 0;
        require(trvfiles_live_handles(&count, 0) == TRVFILES_SUCCESS, "handles can be counted");
        return count;
    }

    void playOne() {
        isWrong_ = false;
        fault_ = input_.number(2) == 0 ? 0 : pick(fault);
        // No fault at all is not a wrong one.
        if (fault_ == 0) isWrong_ = false;
        isFaultWrong_ = isWrong_;
        checkStatus(call(input_.number(40)));
    }

    void checkStatus(std::int32_t status) const {
        require(std::strcmp(trvfiles_status_text(status), "not a status") != 0,
                "each result is a status");
        require(status != TRVFILES_INTERNAL_ERROR, "no unexpected exception is thrown");
        require(status != TRVFILES_OUT_OF_MEMORY, "memory does not run out");
        if (isWrong_) {
            // Another argument may have been refused before the handle.
            require(status == TRVFILES_BAD_HANDLE || status == TRVFILES_BAD_ARGUMENT ||
                        status == TRVFILES_BAD_TEXT,
                    "a wrong handle is refused");
        } else {
            require(status != TRVFILES_BAD_HANDLE, "a live handle is accepted");
            checkFault(status);
        }
    }

    void checkFault(std::int32_t status) const {
        if (fault_ == 0) return;
        trvfiles_fault_values values = {};
        values.size = sizeof values;
        require(trvfiles_fault_get(fault_, &values) == TRVFILES_SUCCESS, "a fault can be read");
        require((values.reason_length == 0) == (status == TRVFILES_SUCCESS),
                "a failure has a reason");
        require(std::strlen(values.reason) == values.reason_length, "a reason is one text");
        for (std::size_t i = 0; i < values.note_count; ++i) {
            trvfiles_note note = {};
            note.size = sizeof note;
            require(trvfiles_fault_get_note(fault_, i, &note) == TRVFILES_SUCCESS,
                    "a note can be read");
            require(*trvfiles_note_kind_name(note.kind) != '\0', "a note has a kind");
        }
    }

    std::string text() {
        std::string text(input_.piece().substr(0, 300));
        text.resize(std::strlen(text.c_str()));
        return text;
    }
    std::string path() {
        return ownFile(fileNames[input_.number(static_cast<int>(std::size(fileNames)))]);
    }
    std::size_t index() {
        const unsigned value = input_.byte();
        return value == 255 ? SIZE_MAX : value;
    }

    std::int32_t createOne(Kind kind) {
        if (kind == fault) {
            fault_ = 0;
            isWrong_ = false;
        }
        return create(kind, [&](trvfiles_handle* created) {
            if (kind == fault) return trvfiles_fault_create(created);
            if (kind == texts) return trvfiles_texts_create(created, fault_);
            if (kind == context) return trvfiles_context_create(created, fault_);
            if (kind == assembly) return trvfiles_assembly_create(created, fault_);
            return trvfiles_messages_create(created, fault_);
        });
    }

    std::int32_t release() {
        Known& known = known_[static_cast<std::size_t>(input_.byte()) % known_.size()];
        fault_ = 0;
        isWrong_ = !known.isLive;
        known.isLive = false;
        return trvfiles_release(known.handle, 0);
    }

    std::int32_t call(int number) {
        switch (number / 10) {
            case 0:
                return callAssembly(number % 10, pick(assembly));
            case 1:
                return callComponent(number % 10, pick(assembly));
            case 2:
                return callRecord(number % 10);
            default:
                return callRuntime(number % 10);
        }
    }

    std::int32_t callAssembly(int number, trvfiles_assembly target) {
        const trvfiles_handle result = number == 3 ? pick(texts) : 0;
        const trvfiles_handle other = number == 4 ? pick(assembly) : 0;
        const std::string file = path();
        const std::string_view bytes = number == 1 ? input_.piece() : std::string_view();
        std::int32_t flag = 0;
        switch (number) {
            case 0:
                return trvfiles_assembly_read(target, file.c_str(), fault_);
            case 1:
                return trvfiles_assembly_read_memory(target, bytes.data(), bytes.size(), fault_);
            case 2:
                return trvfiles_assembly_write(target, file.c_str(), fault_);
            case 3:
                return trvfiles_assembly_write_memory(target, result, fault_);
            case 4:
                return trvfiles_assembly_equal(target, other, &flag, fault_);
            case 5:
                return create(assembly, [&](trvfiles_handle* created) {
                    return trvfiles_assembly_copy(target, created, fault_);
                });
            case 6:
                return create(placements, [&](trvfiles_handle* created) {
                    return trvfiles_assembly_flatten(target, nullptr, created, fault_);
                });
            case 7:
                return create(components, [&](trvfiles_handle* created) {
                    return trvfiles_assembly_components(target, created, fault_);
                });
            case 8:
                return setComponents(target);
            default:
                return checkTables();
        }
    }

    // Arrays of random content. Those that are refused leave the assembly as it was.
    std::int32_t setComponents(trvfiles_assembly target) {
        std::size_t parents[8] = {TRVFILES_NO_INDEX};
        std::size_t offsets[9] = {};
        const std::string names = text();
        auto table = structOf<trvfiles_component_table>(input_);
        table.count = static_cast<std::size_t>(input_.number(9));
        for (std::size_t i = 1; i < 8; ++i)
            parents[i] = static_cast<std::size_t>(input_.number(8));
        for (std::size_t& offset : offsets)
            offset = static_cast<std::size_t>(input_.byte());
        std::sort(offsets, offsets + (input_.number(8) == 0 ? 0 : 9));
        table.parent = parents;
        table.name = offsets;
        table.text = names.c_str();
        table.text_length = names.size();
        const std::size_t before = componentCount(target);
        const std::int32_t status = trvfiles_assembly_set_components(target, &table, fault_);
        const bool isSet = status == TRVFILES_SUCCESS;
        require(componentCount(target) == (isSet ? table.count : before),
                "an assembly has the components of the table, or its own");
        return status;
    }

    static std::size_t componentCount(trvfiles_assembly target) {
        std::size_t count = 0;
        trvfiles_component_count(target, &count, 0);
        return count;
    }

    // Every number of a table can be read.
    std::int32_t checkTables() {
        // No assembly is used.
        isWrong_ = isFaultWrong_;
        const trvfiles_components all = pick(components);
        auto table = structOf<trvfiles_component_table>(input_);
        const std::int32_t status = trvfiles_components_get(all, &table, fault_);
        if (status != TRVFILES_SUCCESS) return status;
        require(table.subtree_size[0] == table.count, "the root is above all components");
        for (std::size_t i = 0; i < table.count; ++i) {
            require(i == 0 ? table.parent[i] == TRVFILES_NO_INDEX : table.parent[i] < i,
                    "a parent is before its children");
            require(i + table.subtree_size[i] <= table.count, "a subtree is in the table");
            require(table.geometry[i] <= table.geometry[i + 1], "texts do not overlap");
        }
        require(table.geometry[table.count] == table.text_length, "all texts are in the table");
        return status;
    }

    std::int32_t callComponent(int number, trvfiles_assembly target) {
        const std::size_t at = index();
        const std::size_t position = number == 4 ? index() : 0;
        const trvfiles_handle result = number == 1 ? pick(texts) : 0;
        const trvfiles_handle other = number == 6 || number > 7 ? pick(assembly) : 0;
        const std::string value = number == 2 ? text() : std::string();
        const auto field = static_cast<std::int32_t>(input_.number(4));
        auto component = structOf<trvfiles_component>(input_);
        const double vector[9] = {input_.real(), 1, 2, 3, 4, 5, 6, 7, input_.real()};
        std::uint32_t bits = 0;
        switch (number) {
            case 0:
                return trvfiles_component_get(target, at, &component, fault_);
            case 1:
                return trvfiles_component_get_text(target, at, field, result, fault_);
            case 2:
                return trvfiles_component_set_text(target, at, field, value.c_str(), fault_);
            case 3:
                return trvfiles_component_set_placement(target, at, vector, vector, fault_);
            case 4:
                return trvfiles_component_add(target, at, position, 0, 0, nullptr, fault_);
            case 5:
                return trvfiles_component_remove(target, at, fault_);
            case 6:
                return trvfiles_component_compare(target, at, other, 0, &bits, fault_);
            case 7:
                return trvfiles_component_set_enabled(target, at, field, fault_);
            default:
                return addCopy(target, at, other);
        }
    }

    // Not to a large assembly: a copy of the whole may double it.
    std::int32_t addCopy(trvfiles_assembly target, std::size_t at, trvfiles_assembly source) {
        constexpr std::size_t large = 1000;
        // 0 would be a default component.
        if (source == 0) source = 1;
        if (componentCount(target) + componentCount(source) > large) source = target;
        const bool isLarge = componentCount(target) > large / 2;
        return trvfiles_component_add(target, at, 0, isLarge ? target : source,
                                      isLarge ? SIZE_MAX : 0, nullptr, fault_);
    }

    std::int32_t callRecord(int number) {
        const trvfiles_context target = number < 7 ? pick(context) : 0;
        const trvfiles_handle result = number == 3 || number == 4 || number == 9 ? pick(texts) : 0;
        const std::string file = path();
        const std::string value = number == 5 ? text() : std::string();
        const std::string_view bytes =
            number == 1 || number == 7 ? input_.piece() : std::string_view();
        const auto field = static_cast<std::int32_t>(input_.number(8));
        auto numbers = structOf<trvfiles_context_numbers>(input_);
        auto axis = structOf<trvfiles_axis>(input_);
        axis.matrix[12] = input_.real();
        axis.tag_count = static_cast<std::int32_t>(input_.number(5));
        switch (number) {
            case 0:
                return trvfiles_context_read(target, file.c_str(), fault_);
            case 1:
                return trvfiles_context_read_memory(target, bytes.data(), bytes.size(), fault_);
            case 2:
                return trvfiles_context_write(target, file.c_str(), fault_);
            case 3:
                return trvfiles_context_write_memory(target, result, fault_);
            case 4:
                return trvfiles_context_get_text(target, field, result, fault_);
            case 5:
                return trvfiles_context_set_text(target, field, value.c_str(), fault_);
            case 6:
                return trvfiles_context_set_numbers(target, &numbers, fault_);
            case 7:
                return trvfiles_axis_read_memory(bytes.data(), bytes.size(), &axis, fault_);
            case 8:
                return trvfiles_axis_write(file.c_str(), &axis, fault_);
            default:
                return trvfiles_axis_write_memory(&axis, result, fault_);
        }
    }

    std::int32_t callRuntime(int number) {
        const trvfiles_messages target = number > 1 && number < 7 ? pick(messages) : 0;
        const trvfiles_handle result = number > 4 && number < 9 ? pick(texts) : 0;
        const std::string value = text();
        const std::string file = path();
        switch (number) {
            case 0:
                return createOne(createdKinds[input_.number(5)]);
            case 1:
                return release();
            case 2:
                return trvfiles_messages_load(target, file.c_str(), fault_);
            case 3:
                return trvfiles_messages_set_entry(target, "section", value.c_str(), fault_);
            case 4:
                return trvfiles_messages_save(target, file.c_str(), input_.number(2), fault_);
            case 5:
                return trvfiles_messages_find(target, "section", value.c_str(), 0, result, fault_);
            case 6:
                return trvfiles_messages_list(target, "section", result, fault_);
            case 7:
                return trvfiles_expand(value.c_str(), input_.number(2), result, fault_);
            case 8:
                return trvfiles_variable_get(input_.number(3), value.c_str(), result, fault_);
            default:
                return readTexts(pick(texts));
        }
    }

    // All results are texts in UTF-8 with a zero after them.
    std::int32_t readTexts(trvfiles_texts list) const {
        std::size_t count = 0;
        const std::int32_t status = trvfiles_texts_count(list, &count, fault_);
        for (std::size_t i = 0; i < count; ++i) {
            const char* text = nullptr;
            std::size_t length = 0;
            require(trvfiles_texts_get(list, i, &text, &length, 0) == TRVFILES_SUCCESS,
                    "a text can be read");
            require(text[length] == '\0', "a text ends with a zero");
        }
        return status;
    }

    static constexpr Kind createdKinds[] = {texts, context, assembly, messages, fault};

    std::size_t before_;
    trvfiles_fault fault_ = 0;
    bool isFaultWrong_ = false;
};

}  // namespace

void checkCInterface(std::string_view input) {
    const StorageBalance balance;
    ConfiguredVariables variables;
    variables.variable("SITE = Erlbach");
    variables.variable("LIB = $SITE/lib");
    variables.path("CFG = $LIB;other");
    Caller(input).play();
}

}  // namespace trv::fuzz
