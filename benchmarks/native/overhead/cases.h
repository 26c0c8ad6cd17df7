// cases.h: what is measured: every native with arguments that take it through the whole of its work, beside its
// minimum.
#ifndef JSR75_PIM_BENCHMARKS_CASES_H
#define JSR75_PIM_BENCHMARKS_CASES_H

#include <span>
#include <string>

#include <jni.h>

// Gives the native's result; references as numbers.
using measured_call = jlong (*)(JNIEnv*);

struct overhead_case {
    const char* native; // For instance "PIMItemImpl.getDateN".
    const char* when;   // What sets it apart from others of the same native; may be empty.
    measured_call of_library;
    measured_call of_minimum;

    std::string name() const { return *when == '\0' ? native : std::string(native) + ", " + when; }
};

std::span<const overhead_case> overhead_cases();

#endif
