// Opening, naming and closing lists.
#include "unit_test.h"

namespace list_registry_test {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using OpenList = unit_test;
using ListNames = unit_test;
using CloseList = unit_test;

struct name_row {
    const char* when;
    int32_t listtype;
    const char* name;
};

constexpr name_row LIST_NAMES[] = {
    {"contacts", LIST_CONTACT, "Contacts"},
    {"events", LIST_EVENT, "Calendar"},
    {"to-dos", LIST_TODO, "Tasks"},
    {"no list, below", 0, ""},
    {"no list, above", 4, ""},
    {"no list, negative", -1, ""},
};

} // namespace

// ---- Opening --------------------------------------------------------------------------------------------------------

TEST_F(OpenList, SucceedsInSilenceForEveryKnownList)
{
    for (int32_t listtype : {1, 2, 3}) {
        for (int32_t mode : {0, 1, 2, 3, -1}) {
            SCOPED_TRACE(listtype);
            jint result = -1;
            EXPECT_EQ(console_of([&] {
                          result = Java_com_qvr_zek_pim_PIMImpl_openPIMListN(jni.env(), nullptr, listtype, mode);
                      }),
                      "");
            EXPECT_EQ(result, 0);
        }
    }
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(OpenList, NotesAnUnknownListOnTheConsoleAndSucceedsAllTheSame)
{
    for (int32_t listtype : {0, 4, -1, 601}) {
        SCOPED_TRACE(listtype);
        jint result = -1;
        EXPECT_EQ(
            console_of([&] { result = Java_com_qvr_zek_pim_PIMImpl_openPIMListN(jni.env(), nullptr, listtype, 1); }),
            ":71  line, It is invalid list type\n");
        EXPECT_EQ(result, 0);
        EXPECT_THAT(platform.traces, Each(Field(&trace_message::text, Not(HasSubstr("invalid")))));
    }
}

TEST_F(OpenList, MarksItsEntry)
{
    Java_com_qvr_zek_pim_PIMImpl_openPIMListN(jni.env(), nullptr, LIST_EVENT, 1);
    ASSERT_FALSE(platform.traces.empty());
    EXPECT_THAT(platform.traces.front(),
                trace(TRACE_STEP, ">>>>>>> %s\n", ">>>>>>> Java_com_qvr_zek_pim_PIMImpl_openPIMListN\n"));
    EXPECT_EQ(platform.traces.front().path, "java-runtime/jsr75/pims/native/common/pimimplnatives.cpp");
    EXPECT_EQ(platform.traces.front().function, "Java_com_qvr_zek_pim_PIMImpl_openPIMListN");
}

// ---- Naming ---------------------------------------------------------------------------------------------------------

TEST_F(ListNames, AreOneForEachListType)
{
    for (const name_row& row : LIST_NAMES) {
        SCOPED_TRACE(row.when);
        jobjectArray names = Java_com_qvr_zek_pim_PIMImpl_listPIMListsN(jni.env(), nullptr, row.listtype);
        EXPECT_THAT(jni.texts(names), ElementsAre(row.name));
        EXPECT_EQ(jni.element_class(names), "java/lang/String");
        EXPECT_THAT(platform.calls, IsEmpty());
        start_over();
    }
}

TEST_F(ListNames, AreMadeInTheOrderOfTheirSteps)
{
    Java_com_qvr_zek_pim_PIMImpl_listPIMListsN(jni.env(), nullptr, LIST_EVENT);
    EXPECT_THAT(jni.calls, ElementsAre("FindClass(java/lang/String)", "NewObjectArray(1, java/lang/String)",
                                       "NewStringUTF(Calendar)", "SetObjectArrayElement(0, Calendar)"));
    EXPECT_THAT(platform.traces,
                ElementsAre(trace(TRACE_STEP, ">>>>>>> %s\n", ">>>>>>> Java_com_qvr_zek_pim_PIMImpl_listPIMListsN\n"),
                            trace(TRACE_STEP, "%s \n", "Calendar \n")));
}

TEST_F(ListNames, AreNullWhenTheMachineCannotMakeThem)
{
    for (const char* failing : {"FindClass", "NewObjectArray", "NewStringUTF"}) {
        SCOPED_TRACE(failing);
        jni.fail(failing);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMImpl_listPIMListsN(jni.env(), nullptr, LIST_CONTACT), nullptr);
        ASSERT_TRUE(jni.pending);
        EXPECT_EQ(jni.pending->thrown_by, failing);
        keep_exception("the machine's own error goes on to Java");
        start_over();
    }
}

// ---- Closing --------------------------------------------------------------------------------------------------------

TEST_F(CloseList, OnlyMarksItsEntry)
{
    for (int32_t listtype : {1, 2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        Java_com_qvr_zek_pim_PIMListImpl_closePIMListN(jni.env(), nullptr, listtype, 9);
        EXPECT_THAT(platform.traces,
                    ElementsAre(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_closePIMListN ***\n")));
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(jni.calls, IsEmpty());
        start_over();
    }
}

} // namespace list_registry_test
