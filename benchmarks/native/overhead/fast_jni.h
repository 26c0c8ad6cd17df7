// fast_jni.h: a virtual machine that does the least it can: references lead to constant objects, and what a native
// makes is thrown away.
#ifndef JSR75_PIM_BENCHMARKS_FAST_JNI_H
#define JSR75_PIM_BENCHMARKS_FAST_JNI_H

#include <vector>

#include <jni.h>

JNIEnv* fast_env();

// Arguments, which live as long as the process.
jstring fast_string(const char* modified_utf8);
jintArray fast_ints(std::vector<jint> values);
jlongArray fast_longs(std::vector<jlong> values);
jbyteArray fast_bytes(const char* text);
jobjectArray fast_objects(const std::vector<jobject>& elements);

#endif
