// Natives of com.qvr.zek.pim.EventListImpl: events in date order, and the repeat rules that the list supports.

#include <span>

#include "eventimpl_limo_arm.h"
#include "pimcodes.h"
#include "pimnativeutil.h"
#include "pimtrace.h"

// RepeatRule's bits for the fields that a rule may set together.
enum repeat_rule_field : jint {
    DAY_IN_MONTH = 1,
    DAY_IN_WEEK = 2,
    DAY_IN_YEAR = 4,
    MONTH_IN_YEAR = 8,
    WEEK_IN_MONTH = 16,
    COUNT = 32,
    END = 64,
    INTERVAL = 128,
    ANY_RULE = COUNT | END | INTERVAL
};

static std::span<const jint> field_combinations(jint frequency)
{
    static constexpr jint DAILY[] = {ANY_RULE};
    static constexpr jint WEEKLY[] = {ANY_RULE | DAY_IN_WEEK};
    static constexpr jint MONTHLY[] = {ANY_RULE | DAY_IN_MONTH, ANY_RULE | WEEK_IN_MONTH | DAY_IN_WEEK};
    static constexpr jint YEARLY[] = {ANY_RULE | DAY_IN_YEAR, ANY_RULE | MONTH_IN_YEAR | DAY_IN_MONTH,
                                      ANY_RULE | MONTH_IN_YEAR | WEEK_IN_MONTH | DAY_IN_WEEK};
    static constexpr jint UNKNOWN[] = {0};
    switch (frequency) {
    case FREQUENCY_DAILY: return DAILY;
    case FREQUENCY_WEEKLY: return WEEKLY;
    case FREQUENCY_MONTHLY: return MONTHLY;
    case FREQUENCY_YEARLY: return YEARLY;
    default: return UNKNOWN;
    }
}

extern "C" {

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(JNIEnv* env, jobject, jint /*handle*/,
                                                                                jlong after)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    int32_t* found = nullptr; // Kept: the scan's block is not released here.
    const int32_t count = EventListImpl_nextSortedEventN(after, &found);

    // Kept: a negative count goes to the virtual machine as it is, and what it makes of it goes to Java.
    jintArray array = env->NewIntArray(count);
    if (array != nullptr && count > 0) env->SetIntArrayRegion(array, 0, count, found);
    return array;
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_EventListImpl_getSupportedRepeatRuleFrequenciesN(JNIEnv* env, jobject)
{
    static constexpr jint FREQUENCIES[] = {FREQUENCY_DAILY, FREQUENCY_WEEKLY, FREQUENCY_MONTHLY, FREQUENCY_YEARLY};
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return new_int_array(env, FREQUENCIES);
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_EventListImpl_getSupportedRepeatRuleFieldsN(JNIEnv* env, jobject,
                                                                                             jint frequency)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return new_int_array(env, field_combinations(frequency));
}

} // extern "C"
