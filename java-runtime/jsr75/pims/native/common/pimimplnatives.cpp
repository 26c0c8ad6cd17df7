// Natives of com.qvr.zek.pim.PIMImpl: naming and opening the lists. A list is its list type; opening makes nothing.

#include <cstdio>

#include "pimcodes.h"
#include "pimnativeutil.h"
#include "pimtrace.h"

// Each list type has exactly one list.
static const char* list_name(jint listtype)
{
    switch (listtype) {
    case LIST_CONTACT: return "Contacts";
    case LIST_EVENT: return "Calendar";
    case LIST_TODO: return "Tasks";
    default: return "";
    }
}

extern "C" {

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMImpl_openPIMListN(JNIEnv*, jobject, jint listtype, jint /*mode*/)
{
    PIM_TRACE(TRACE_STEP, ">>>>>>> %s\n", __func__);
    if (*list_name(listtype) == '\0') {
        // Kept: an unknown list type is told to the console, under this line number, and opens all the same.
        std::printf(":%-3d line, ", 71);
        std::puts("It is invalid list type");
    }
    return 0;
}

JNIEXPORT jobjectArray JNICALL Java_com_qvr_zek_pim_PIMImpl_listPIMListsN(JNIEnv* env, jobject, jint listtype)
{
    PIM_TRACE(TRACE_STEP, ">>>>>>> %s\n", __func__);
    const char* name = list_name(listtype);
    PIM_TRACE(TRACE_STEP, "%s \n", name);
    return new_string_array(env, name, 0, 1);
}

} // extern "C"
