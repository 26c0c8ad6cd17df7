// Raising Java exceptions and building Java arrays.
#include "pimnativeutil.h"

#include "unit_test.h"

namespace exception_test {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using RaiseException = unit_test;
using NewIntArray = unit_test;
using NewStringArray = unit_test;

struct code_row {
    const char* when;
    int32_t code;
    const char* class_name;
    bool constructed; // With a reason, before the plain throw.
};

constexpr code_row CODES[] = {
    {"PIM exception", 601, "javax/microedition/pim/PIMException", true},
    {"illegal argument", 602, "java/lang/IllegalArgumentException", false},
    {"unsupported field", 603, "javax/microedition/pim/UnsupportedFieldException", false},
    {"security", 604, "java/lang/SecurityException", false},
    {"null pointer", 605, "java/lang/NullPointerException", false},
    {"field full", 606, "javax/microedition/pim/FieldFullException", true},
    {"runtime", 607, "java/lang/RuntimeException", false},
    {"one below the table", 600, "java/lang/Exception", false},
    {"one above the table", 608, "java/lang/Exception", false},
    {"zero", 0, "java/lang/Exception", false},
    {"negative", -601, "java/lang/Exception", false},
};

} // namespace

// ---- Raising --------------------------------------------------------------------------------------------------------

TEST_F(RaiseException, LeavesTheClassOfTheCodePendingWithTheMessage)
{
    for (const code_row& row : CODES) {
        SCOPED_TRACE(row.when);
        raise_exception(jni.env(), "what happened", row.code, 3);
        ASSERT_TRUE(jni.pending);
        EXPECT_THAT(*jni.pending, exception(row.class_name, "what happened"));
        EXPECT_EQ(jni.pending->thrown_by, "ThrowNew");
        keep_exception("raised on purpose");
        start_over();
    }
}

TEST_F(RaiseException, ThrowsAnExceptionWithItsReasonFirstWhereTheClassTakesOne)
{
    for (const code_row& row : CODES) {
        SCOPED_TRACE(row.when);
        const std::string name = row.class_name;
        raise_exception(jni.env(), "text", row.code, 17);
        if (row.constructed) {
            EXPECT_THAT(jni.calls, ElementsAre("FindClass(" + name + ")",
                                               "GetMethodID(" + name + ", <init>, (Ljava/lang/String;I)V)",
                                               "NewStringUTF(text)", "NewObject(" + name + ", text, 17)",
                                               "Throw(" + name + ", text)", "ThrowNew(" + name + ", text)"));
            ASSERT_EQ(jni.constructed.size(), 1u);
            EXPECT_EQ(jni.constructed[0]->reason, 17);
        } else {
            EXPECT_THAT(jni.calls, ElementsAre("FindClass(" + name + ")", "ThrowNew(" + name + ", text)"));
        }
        keep_exception("raised on purpose");
        start_over();
    }
}

TEST_F(RaiseException, KeepsTheSecondThrowSoThatThePlainExceptionIsTheOneThatStays)
{
    raise_exception(jni.env(), "text", RAISE_PIM_EXCEPTION, 1);
    ASSERT_EQ(jni.thrown.size(), 2u);
    EXPECT_EQ(jni.thrown[0].thrown_by, "Throw");
    EXPECT_EQ(jni.thrown[1].thrown_by, "ThrowNew");
    EXPECT_EQ(jni.thrown[0].class_name, jni.thrown[1].class_name);
    EXPECT_EQ(jni.thrown[0].message, jni.thrown[1].message);
    keep_exception("raised on purpose");
}

TEST_F(RaiseException, LeavesTheErrorOfAFailedClassLookUpPending)
{
    for (const code_row& row : CODES) {
        SCOPED_TRACE(row.when);
        jni.fail("FindClass");
        raise_exception(jni.env(), "text", row.code, 1);
        ASSERT_TRUE(jni.pending);
        EXPECT_THAT(*jni.pending, exception("java/lang/NoClassDefFoundError", row.class_name));
        EXPECT_EQ(jni.calls.size(), 1u);
        keep_exception("the look-up's own");
        start_over();
    }
}

TEST_F(RaiseException, StillThrowsWhenTheExceptionWithAReasonCannotBeMade)
{
    for (const char* failing : {"GetMethodID", "NewStringUTF", "NewObject", "Throw"}) {
        SCOPED_TRACE(failing);
        jni.fail(failing);
        raise_exception(jni.env(), "text", RAISE_FIELD_FULL, 115);
        ASSERT_TRUE(jni.pending);
        EXPECT_THAT(*jni.pending, exception("javax/microedition/pim/FieldFullException", "text"));
        EXPECT_EQ(jni.pending->thrown_by, "ThrowNew");
        // Nothing is tried with what could not be had.
        EXPECT_THAT(jni.calls.at(jni.calls.size() - 2), StartsWith(std::string(failing) + "("));
        keep_exception("raised on purpose");
        start_over();
    }
}

TEST_F(RaiseException, ReportsNothingThroughTheTraceHook)
{
    for (const char* failing : {"nothing", "GetMethodID", "FindClass"}) {
        SCOPED_TRACE(failing);
        jni.fail(failing);
        raise_exception(jni.env(), "text", RAISE_PIM_EXCEPTION, 1);
        EXPECT_THAT(platform.traces, IsEmpty());
        keep_exception("raised on purpose");
        start_over();
    }
}

// ---- Arrays ---------------------------------------------------------------------------------------------------------

TEST_F(NewIntArray, HoldsTheValues)
{
    const jint values[] = {100, -1, 0x7fffffff};
    EXPECT_THAT(jni.values(new_int_array(jni.env(), values)), ElementsAre(100, -1, 0x7fffffff));
}

TEST_F(NewIntArray, CanBeEmpty)
{
    jintArray array = new_int_array(jni.env(), {});
    ASSERT_NE(array, nullptr);
    EXPECT_THAT(jni.values(array), IsEmpty());
}

TEST_F(NewIntArray, IsNullWhenTheMachineIsOutOfMemory)
{
    const jint values[] = {1};
    jni.fail("NewIntArray");
    EXPECT_EQ(new_int_array(jni.env(), values), nullptr);
    EXPECT_THAT(jni.calls_of("SetIntArrayRegion"), IsEmpty());
    keep_exception("the machine's own error goes on to Java");
}

TEST_F(NewStringArray, HoldsTheTextOfEverySlot)
{
    const char slots[3][5] = {"one", "", "four"};
    jobjectArray array = new_string_array(jni.env(), slots[0], sizeof slots[0], 3);
    EXPECT_THAT(jni.texts(array), ElementsAre("one", "", "four"));
    EXPECT_EQ(jni.element_class(array), "java/lang/String");
}

TEST_F(NewStringArray, CanBeEmpty)
{
    jobjectArray array = new_string_array(jni.env(), "", 1, 0);
    ASSERT_NE(array, nullptr);
    EXPECT_THAT(jni.texts(array), IsEmpty());
}

TEST_F(NewStringArray, LetsGoOfEveryElementAtOnce)
{
    const std::vector<char> slots(100, '\0');
    EXPECT_EQ(jni.texts(new_string_array(jni.env(), slots.data(), 1, 100)).size(), 100u);
    EXPECT_LE(jni.local_reference_peak, 3u);
}

TEST_F(NewStringArray, IsNullWithTheMachinesErrorWhenAnyStepFails)
{
    for (const char* failing : {"FindClass", "NewObjectArray", "NewStringUTF"}) {
        SCOPED_TRACE(failing);
        jni.fail(failing);
        EXPECT_EQ(new_string_array(jni.env(), "text", 5, 1), nullptr);
        ASSERT_TRUE(jni.pending);
        EXPECT_EQ(jni.pending->thrown_by, failing);
        EXPECT_THAT(jni.calls.back(), StartsWith(failing));
        keep_exception("the machine's own error goes on to Java");
        start_over();
    }
}

TEST_F(NewStringArray, StopsAtTheElementThatCannotBeMade)
{
    const char slots[3][2] = {"a", "b", "c"};
    jni.fail_call("NewStringUTF", 2);
    EXPECT_EQ(new_string_array(jni.env(), slots[0], 2, 3), nullptr);
    EXPECT_EQ(jni.failed_call(), "NewStringUTF(b)");
    EXPECT_THAT(jni.calls, Not(Contains("NewStringUTF(c)")));
    keep_exception("the machine's own error goes on to Java");
}

} // namespace exception_test
