// Natives of com.qvr.zek.pim.EventImpl: the repeat rule of one event.

#include <algorithm>

#include "eventimpl_limo_arm.h"
#include "pimnativeutil.h"
#include "pimtrace.h"

extern "C" {

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_EventImpl_getRepeatIntN(JNIEnv*, jobject, jint /*handle*/, jint recindex,
                                                                    jint field)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return EventImpl_getRepeatIntN(recindex, field);
}

JNIEXPORT jlong JNICALL Java_com_qvr_zek_pim_EventImpl_getRepeatDateN(JNIEnv*, jobject, jint /*handle*/, jint recindex,
                                                                      jint field)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return EventImpl_getRepeatDateN(recindex, field);
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_EventImpl_getRepeatFieldsN(JNIEnv* env, jobject, jint /*handle*/,
                                                                            jint recindex)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    jint fields[REPEAT_FIELDS_MAX] = {};
    const int32_t count = EventImpl_getRepeatFieldsN(recindex, fields);
    return new_int_array(env, std::span(fields).first(static_cast<size_t>(std::max(count, 0))));
}

JNIEXPORT jlongArray JNICALL Java_com_qvr_zek_pim_EventImpl_getRepeatExceptDatesN(JNIEnv* env, jobject, jint /*handle*/,
                                                                                  jint /*recindex*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return env->NewLongArray(0); // Exception dates are not stored.
}

} // extern "C"
