// Natives of com.qvr.zek.pim.ToDoListImpl.

#include <algorithm>

#include "pimnativeutil.h"
#include "pimtrace.h"
#include "todoimp_limo_arm.h"

extern "C" JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN(JNIEnv* env, jobject,
                                                                                         jint handle, jint field,
                                                                                         jlong current_date)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    jint found[ORG_RECORD_CNT_MAX];
    const int32_t count = ToDoListImpl_nextSortedToDoN(handle, field, current_date, found);
    return new_int_array(env, std::span(found).first(static_cast<size_t>(std::max(count, 0))));
}
