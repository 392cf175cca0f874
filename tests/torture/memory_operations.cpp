#include <tests/assembly/sample_components.h>
#include <tests/common/file_bytes.h>
#include <tests/environment/store_access.h>
#include <tests/machine_context/context_samples.h>
#include <tests/torture/operations.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/line_source.h>

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

namespace trv::testing {

std::vector<Operation> facadeOperations();
std::vector<Operation> runtimeOperations();
std::vector<Operation> cFileOperations();
std::vector<Operation> cMemoryOperations();

namespace {

Outcome makeAStore(Workshop& at) {
    Store store;
    store.reset();
    const int status = at.under([&] {
        store.reset(create_store());
        return store == nullptr ? 0 : 1;
    });
    return {status, ""};
}

// A store whose initial storage is full, so the next texts make it grow.
class FilledStore : public Store {
public:
    FilledStore() {
        add_section(*this, "var");
        for (int i = 0; i < 64; ++i)
            set_variable(*this, 0,
                         ("NAME" + std::to_string(i) + " = a value of this entry").c_str());
    }
};

// Runs one change of a store. If it fails, sections and messages are unchanged.
template <class Change>
Outcome change(Workshop& at, Change operation) {
    const FilledStore store;
    const std::vector<std::string> before = messagesOf(store, 0);
    const int sections = section_count(store);
    const std::string long_text(3000, 'x');
    const int status = at.under([&] { return operation(store.get(), long_text); });
    if (status < 0) {
        EXPECT_EQ(messagesOf(store, 0), before);
        EXPECT_EQ(section_count(store), sections);
    }
    EXPECT_EQ(valueOf(store, 0, "NAME7").substr(0, 7), "a value");
    return {status, std::to_string(message_count(store, 0))};
}

Outcome addSections(Workshop& at) {
    return change(at, [](message_store* store, const std::string&) {
        return find_or_add_section(store, "another");
    });
}

Outcome registerName(Workshop& at) {
    return change(at, [](message_store* store, const std::string& text) {
        return register_file_name(store, text.c_str()) < 0 ? -1 : 0;
    });
}

Outcome appendMessage(Workshop& at) {
    return change(at, [](message_store* store, const std::string& text) {
        return append_message(store, 0, text.c_str(), byProgram, 0);
    });
}

Outcome replaceMessage(Workshop& at) {
    return change(at, [](message_store* store, const std::string& text) {
        return replace_message(store, 0, 3, ("NAME3 = +;" + text).c_str(), byProgram, 0);
    });
}

Outcome setMessageBeyondTheEnd(Workshop& at) {
    return change(at, [](message_store* store, const std::string& text) {
        return set_message(store, 0, 200, text.c_str());
    });
}

Outcome setVariable(Workshop& at) {
    return change(at, [](message_store* store, const std::string& text) {
        return set_variable(store, 0, ("NEW = " + text).c_str());
    });
}

Outcome removeParameter(Workshop& at) {
    return change(at, [](message_store* store, const std::string&) {
        return remove_parameter(store, 0, "NAME5");
    });
}

Outcome convertNewlines(Workshop& at) {
    return change(at, [](message_store* store, const std::string&) {
        convert_newlines(store);
        return 0;
    });
}

Outcome findReferences(Workshop& at) {
    const FilledStore store;
    set_variable(store, 0, "NAME9 = +;and more");
    set_variable(store, 0, "NAME9 = +;+");
    std::string value;
    const int status = at.under([&] {
        const char* found = find_parameter(store, 0, "name9", false);
        value = found == nullptr ? "" : found;
        return found == nullptr ? 0 : 1;
    });
    return {status, value};
}

Outcome describeOrigins(Workshop& at) {
    char origin[200];
    const int status = at.under([&] {
        const char* value = get_variable("ROOT");
        return describe_variable_origin(origin, sizeof origin, "ROOT", value);
    });
    return {status, status == 0 ? origin : ""};
}

Outcome expandText(Workshop& at) {
    std::string result = "before";
    const int status = at.under([&] {
        return expand_path(std::vector<std::string>{"$LIB/a", "${LIB}//b", "?CFG"}, &result);
    });
    return {status, result};
}

Outcome usePool(Workshop& at) {
    using pool_owner = std::unique_ptr<storage_pool, decltype(&pool_destroy)>;
    pool_owner pool(nullptr, pool_destroy);
    const int status = at.under([&] {
        pool.reset(pool_create(64));
        if (pool == nullptr) return -1;
        std::int32_t used = 0;
        for (int i = 0; i < 8; ++i) {
            const std::int32_t offset = pool_add_string(pool.get(), "a text of the pool");
            // A pool that cannot grow is unchanged.
            if (offset < 0) return pool_used(pool.get()) == used ? -1 : -2;
            used = pool_used(pool.get());
        }
        pool_trim(pool.get());
        return 0;
    });
    return {status, ""};
}

Outcome resizeBlocks(Workshop& at) {
    void* block = allocate_temporary(10);
    std::memcpy(block, "123456789", 10);
    const int status = at.under([&] {
        void* resized = resize_temporary(block, 100000);
        if (resized == nullptr) return -1;
        block = resized;
        return 0;
    });
    EXPECT_STREQ(static_cast<const char*>(block), "123456789");
    EXPECT_EQ(_Wfree(block), 0);
    return {status, ""};
}

Outcome walkList(Workshop& at) {
    const int status = at.under([&] {
        list_begin("a directory with a long name; another one that is as long;c");
        int count = 0;
        while (list_next_element() != nullptr)
            ++count;
        return count;
    });
    list_end();
    return {status, ""};
}

Outcome readALine(Workshop& at) {
    const std::string path = at.path("a line").string();
    writeBytes(path, "a line\n");
    char line[20] = "";
    const int status = at.under([&] {
        CL8BFile source(path.c_str());
        static_cast<void>(source.lineNumber());
        return static_cast<int>(source.readLine(line, sizeof line));
    });
    return {status, line};
}

Outcome copyARecord(Workshop& at) {
    const CMachineContextData data = allFields();
    CMachineContextData other = prefilled();
    const int status = at.under([&] {
        CMachineContextData copy = data;
        copy.setCommentW(copy.getNameW() + L" and a longer text than fits in place");
        other = copy;
        return 0;
    });
    if (status == threwBadAlloc) {
        EXPECT_EQ(ContextFields(other), ContextFields(prefilled()));
    }
    return {status, ::testing::PrintToString(ContextFields(other))};
}

Outcome workOnAssemblies(Workshop& at) {
    const CTrvAssemblyData data = assemblyOf(
        group("root", {leaf("a", "a.stl"), group("b", {leaf("c", "c.stl"), leaf("d", "d.stl")})}));
    std::size_t placed = 0;
    const int status = at.under([&] {
        CTrvAssemblyData copy = data;
        const bool wasEqual = copy == data;
        auto components = copy.getRootComponent().getComponents();
        components.push_back(components.front());
        copy.getRootComponent().setComponents(components);
        placed = copy.getComponentFileList().size();
        return wasEqual && copy != data ? 1 : 0;
    });
    return {status, std::to_string(placed)};
}

// If an edit fails, the tree is as it was before it.
Outcome editAnAssembly(Workshop& at) {
    CTrvAssemblyData data =
        assemblyOf(group("root", {leaf("a", "a.stl"), group("b", {leaf("c", "c.stl")})}));
    const CTrvAssemblyComponentData added = group("d", {leaf("e", "e.stl")});
    CTrvAssemblyNode& root = data.getRootComponent().node();
    const int status = at.under([&] {
        root.insertChild(0, added);
        root.getChild(1).assign(root.getChild(0).toComponent());
        root.removeChild(2);
        int count = 0;
        root.visit([&count](CTrvAssemblyNode& node, std::size_t level) {
            if (level == 2) node.setNameW(L"a name that is too long for a string without a block");
            ++count;
            return CTrvAssemblyNode::Visit::proceed;
        });
        return count;
    });
    EXPECT_TRUE(root.getChildCount() == 2 || root.getChildCount() == 3);
    return {status, std::to_string(data.getComponentNumber())};
}

Outcome writeContextToMemory(Workshop& at) {
    const CMachineContextData data = allFields();
    std::string text = "old";
    CFileFault fault;
    const int status =
        at.under([&] { return CQvFilesIO::sWriteMachineContextToMemory(text, data, &fault); });
    if (status != eFileIOSuccess) {
        EXPECT_EQ(text, "old");
    }
    return {status, text};
}

Outcome readContextFromMemory(Workshop& at) {
    const std::string text = bytesOf(at.path("f.mctx"));
    CMachineContextData data;
    CFileFault fault;
    const int status =
        at.under([&] { return CQvFilesIO::sReadMachineContextFromMemory(text, data, &fault); });
    return {status, ::testing::PrintToString(ContextFields(data))};
}

Outcome writeAssemblyToMemory(Workshop& at) {
    const CTrvAssemblyData data = assemblyOf(group("root", {leaf("a", "a.stl")}));
    std::string bytes = "old";
    CFileFault fault;
    const int status =
        at.under([&] { return CQvFilesIO::sWriteTrvAssemblyToMemory(bytes, data, &fault); });
    if (status != eFileIOSuccess) {
        EXPECT_EQ(bytes, "old");
    }
    return {status, bytes};
}

Outcome readAssemblyFromMemory(Workshop& at, const char* name) {
    const std::string bytes = bytesOf(at.path(name));
    CTrvAssemblyData data;
    CFileFault fault;
    const int status =
        at.under([&] { return CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, data, &fault); });
    if (status != eFileIOSuccess) {
        EXPECT_TRUE(data.getRootComponent() == CTrvAssemblyComponentData());
    }
    return {status, std::to_string(data.getComponentNumber())};
}

Outcome copyAnAxisInMemory(Workshop& at) {
    const std::string bytes = bytesOf(at.path("f.axis"));
    std::string text = "old";
    double matrix[16] = {};
    int tags[3] = {1, 2, 3};
    const int status = at.under([&] {
        CFileFault fault;
        const EFileIOStatus read =
            CQvFilesIO::sReadAxisFromMemory(bytes, matrix, tags[0], tags[1], tags[2], &fault);
        if (read != eFileIOSuccess) return read;
        return CQvFilesIO::sWriteAxisToMemory(text, matrix, tags[0], tags[1], tags[2], &fault);
    });
    if (status != eFileIOSuccess) {
        EXPECT_EQ(text, "old");
    }
    return {status, text};
}

Outcome nameFiles(Workshop& at) {
    const CQvFilesIO files(at.wide(""));
    std::wstring name;
    const int status = at.under([&] {
        const CQvFilesIO copy = files;
        name = copy.absoluteFileName(std::wstring(L"sub/f.mctx"));
        return copy.absoluteFileName(std::string("sub/f.mctx")).empty() ? 0 : 1;
    });
    return {status, std::filesystem::path(name).string()};
}

}  // namespace

std::vector<Operation> fileOperations() {
    std::vector<Operation> operations = facadeOperations();
    for (std::vector<Operation> more : {runtimeOperations(), cFileOperations()})
        std::move(more.begin(), more.end(), std::back_inserter(operations));
    return operations;
}

std::vector<Operation> memoryOperations() {
    std::vector<Operation> operations = {
        {"MakeAStore", 1, {0}, makeAStore},
        {"AddASection", 1, {-1}, addSections},
        {"RegisterAName", 0, {-1}, registerName},
        {"AppendAMessage", 0, {-1}, appendMessage},
        {"ReplaceAMessage", 0, {-1}, replaceMessage},
        {"SetAMessageBeyondTheEnd", 0, {-1}, setMessageBeyondTheEnd},
        {"SetAVariable", 0, {-1}, setVariable},
        {"RemoveAParameter", 0, {}, removeParameter},
        {"ConvertNewlines", 0, {}, convertNewlines},
        {"FindAParameterWithReferences", 1, {}, findReferences},
        {"DescribeAnOrigin", 0, {}, describeOrigins},
        {"ExpandAPath", EXP_OK, {}, expandText},
        {"UseAPool", 0, {-1}, usePool},
        {"ResizeABlock", 0, {-1}, resizeBlocks},
        {"WalkAList", 3, {}, walkList},
        {"ReadALine", 7, {0}, readALine},
        {"CopyARecord", 0, {}, copyARecord},
        {"WorkOnAssemblies", 1, {}, workOnAssemblies},
        {"EditAnAssembly", 5, {}, editAnAssembly},
        {"WriteAMachineContextToMemory", 1, {4, 5}, writeContextToMemory},
        {"ReadAMachineContextFromMemory", 1, {}, readContextFromMemory},
        {"WriteAnAssemblyToMemory", 1, {}, writeAssemblyToMemory},
        inQt({"ReadAnAssemblyFromMemory",
              1,
              {4},
              [](Workshop& at) { return readAssemblyFromMemory(at, "f.assembly"); }}),
        inQt({"ReadADeepUnusualAssemblyFromMemory",
              1,
              {4},
              [](Workshop& at) { return readAssemblyFromMemory(at, "deep-unusual.assembly"); }}),
        {"CopyAnAxisInMemory", 1, {}, copyAnAxisInMemory},
        {"NameFiles", 1, {}, nameFiles},
    };
    std::vector<Operation> more = cMemoryOperations();
    std::move(more.begin(), more.end(), std::back_inserter(operations));
    return operations;
}

}  // namespace trv::testing
