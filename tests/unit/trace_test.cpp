// How the library traces: what it hands to the platform's hook.
#include "pimtrace.h"

#include <functional>
#include <string>

#include "pimutil.h"
#include "unit_test.h"

namespace trace_test {

namespace {

using TraceMacro = unit_test;
using TraceHook = unit_test;
using TraceOfPort = unit_test;
using TraceOfNative = unit_test;

int other_hook_calls = 0;

// The hook's own shape is variadic.
// NOLINTNEXTLINE(cert-dcl50-cpp)
__attribute__((format(printf, 6, 7))) int other_hook(const char*, int, const char*, int, int, const char*, ...)
{
    return ++other_hook_calls;
}

} // namespace

// ---- The macro ------------------------------------------------------------------------------------------------------

TEST_F(TraceMacro, HandsOverThePlaceTheComponentAndTheRawFormat)
{
    const int line = __LINE__ + 1;
    PIM_TRACE(TRACE_RECOVERABLE, "%s 0x%X %d\n", "text", 0x2au, -1);
    ASSERT_EQ(platform.traces.size(), 1u);
    const trace_message message = platform.traces.front();
    EXPECT_EQ(message.path, "tests/unit/trace_test.cpp");
    EXPECT_EQ(message.line, line);
    EXPECT_EQ(message.function, "TestBody");
    EXPECT_EQ(message.component, 0x1d000022);
    EXPECT_EQ(message.severity, 0x2000000);
    EXPECT_EQ(message.format, "%s 0x%X %d\n");
    EXPECT_EQ(message.text, "text 0x2A -1\n");
    platform.traces.clear(); // Not the library's own: the fixture knows those by their path.
}

TEST_F(TraceMacro, KnowsThreeSeverities)
{
    EXPECT_EQ(TRACE_STEP, 0x4000000);
    EXPECT_EQ(TRACE_RECOVERABLE, 0x2000000);
    EXPECT_EQ(TRACE_HARD, 0x1000000);
}

TEST_F(TraceMacro, NamesTheLineTwiceInAnAssertion)
{
    const int line = __LINE__ + 1;
    PIM_TRACE_ASSERT("final", 41);
    ASSERT_EQ(platform.traces.size(), 1u);
    const trace_message message = platform.traces.front();
    EXPECT_EQ(message.line, line);
    EXPECT_EQ(message.severity, TRACE_HARD);
    EXPECT_EQ(message.format, ">>[ASSERT][%s][%d]final fail(%d)\n\n");
    EXPECT_EQ(message.text, ">>[ASSERT][TestBody][" + std::to_string(line) + "]final fail(41)\n\n");
    platform.traces.clear();
}

// ---- The hook -------------------------------------------------------------------------------------------------------

TEST_F(TraceHook, IsReadAfreshForEachMessage)
{
    const java_printf_function recording = java_printf_handler;
    other_hook_calls = 0;
    // The hook is exchanged between two messages of one and the same call.
    platform.before_call = [&](const std::string&) { java_printf_handler = other_hook; };
    platform.fail("contact_db_service_connect", 1);
    int32_t error = 0;
    native_function_initialize(LIST_CONTACT, nullptr, &error);
    java_printf_handler = recording;
    EXPECT_EQ(platform.traces.size(), 1u);
    EXPECT_EQ(other_hook_calls, 1);
}

// ---- The places -----------------------------------------------------------------------------------------------------

TEST_F(TraceOfPort, NamesTheFileAndThePortFunction)
{
    int32_t error = 0;
    native_function_initialize(LIST_CONTACT, nullptr, &error);
    native_function_finalize(LIST_CONTACT, nullptr);
    ASSERT_EQ(platform.traces.size(), 2u);
    for (const trace_message& message : platform.traces)
        EXPECT_EQ(message.path, "java-runtime/jsr75/pims/native/limo-arm/pimutil.cpp");
    EXPECT_EQ(platform.traces[0].function, "native_function_initialize");
    EXPECT_EQ(platform.traces[1].function, "native_function_finalize");
    EXPECT_NE(platform.traces[0].line, platform.traces[1].line);
}

// Natives that mark their entry, each with the file it stands in.
TEST_F(TraceOfNative, MarksTheEntryFirstWithTheNativesOwnName)
{
    JNIEnv* env = nullptr;
    struct {
        const char* name;
        const char* file;
        const char* format;
        std::function<void()> call;
    } const rows[] = {
        {"PIMImpl_openPIMListN", "pimimplnatives", ">>>>>>> %s\n",
         [&] { Java_com_qvr_zek_pim_PIMImpl_openPIMListN(env, nullptr, 1, 1); }},
        {"PIMImpl_listPIMListsN", "pimimplnatives", ">>>>>>> %s\n",
         [&] { Java_com_qvr_zek_pim_PIMImpl_listPIMListsN(env, nullptr, 1); }},
        {"PIMListImpl_closePIMListN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_closePIMListN(env, nullptr, 1, 0); }},
        {"PIMListImpl_nextRecordN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(env, nullptr, 1, 0, -1); }},
        {"PIMListImpl_nextRecordInCategoryN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(env, nullptr, 1, 0, -1, nullptr); }},
        {"PIMListImpl_nextRecordWithMatchStrN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(env, nullptr, 1, 0, -1, nullptr); }},
        {"PIMListImpl_removeItemN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_removeItemN(env, nullptr, 1, 0, 1); }},
        {"PIMListImpl_maxCategoriesN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN(env, nullptr, 1, 0); }},
        {"PIMListImpl_getCategoriesN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN(env, nullptr, 1, 0); }},
        {"PIMListImpl_addCategoryN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(env, nullptr, 1, 0, nullptr); }},
        {"PIMListImpl_renameCategoryN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(env, nullptr, 1, 0, nullptr, nullptr); }},
        {"PIMListImpl_isCategoryN", "pimlistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(env, nullptr, 1, 0, nullptr); }},
        {"PIMItemImpl_maxCategoriesN", "pimitemimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_PIMItemImpl_maxCategoriesN(env, nullptr, 1, 0); }},
        {"ToDoListImpl_nextSortedToDoN", "todolistimplnatives", "%s ***\n",
         [&] { Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN(env, nullptr, 0, 103, 0); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        env = jni.env();
        row.call();
        ASSERT_FALSE(platform.traces.empty());
        const trace_message& mark = platform.traces.front();
        const std::string symbol = std::string("Java_com_qvr_zek_pim_") + row.name;
        EXPECT_EQ(mark.path, std::string("java-runtime/jsr75/pims/native/common/") + row.file + ".cpp");
        EXPECT_EQ(mark.function, symbol);
        EXPECT_EQ(mark.severity, TRACE_STEP);
        EXPECT_EQ(mark.format, row.format);
        EXPECT_THAT(mark.text, testing::HasSubstr(symbol));
        EXPECT_EQ(mark.calls_before, 0u) << "before anything is asked of a store";
        start_over();
    }
}

} // namespace trace_test
