// Natives of com.qvr.zek.pim.ContactImpl.

#include <cstdio>

#include "contactimp_limo_arm.h"
#include "pimnativeutil.h"

extern "C" JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN(JNIEnv*, jobject, jint handle,
                                                                                      jint recindex, jint field)
{
    // Kept: the two lines go to the console, not through the trace hook.
    std::printf("[ %30s() / %3d ]", __func__, __LINE__);
    std::puts("A-Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN()");
    const int32_t preferred = ContactImp_getPreferredIndexN(handle, recindex, field);
    std::printf("[ %30s() / %3d ]", __func__, __LINE__);
    std::puts("B-Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN");
    return preferred;
}
