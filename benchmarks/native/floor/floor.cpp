// Natives of com.qvr.zek.pim.bench.Floor: what no native can do without.
#include <ctime>

#include <jni.h>

extern "C" JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_bench_Floor_emptyN(JNIEnv*, jobject, jint, jint, jint recindex)
{
    return recindex;
}

// `times` are mktime()'s nine words, one time after the other. Returns the sum of their seconds.
extern "C" JNIEXPORT jlong JNICALL Java_com_qvr_zek_pim_bench_Floor_mktimesN(JNIEnv* env, jobject, jintArray times)
{
    constexpr jsize WORDS = 9;
    const jsize size = env->GetArrayLength(times);
    jint* words = env->GetIntArrayElements(times, nullptr);
    if (words == nullptr) return -1;

    jlong sum = 0;
    for (const jint* time = words; time + WORDS <= words + size; time += WORDS) {
        tm broken_down = {};
        broken_down.tm_sec = time[0];
        broken_down.tm_min = time[1];
        broken_down.tm_hour = time[2];
        broken_down.tm_mday = time[3];
        broken_down.tm_mon = time[4];
        broken_down.tm_year = time[5];
        broken_down.tm_wday = time[6];
        broken_down.tm_yday = time[7];
        broken_down.tm_isdst = time[8];
        sum += mktime(&broken_down);
    }
    env->ReleaseIntArrayElements(times, words, JNI_ABORT);
    return sum;
}
