// fuzz.h: what every fuzz target stands on. A target makes a call of the input; what it then leaves behind, or does
// against the rules of the virtual machine or the platform, ends the process as a crash does.
#ifndef JSR75_PIM_TESTS_FUZZ_H
#define JSR75_PIM_TESTS_FUZZ_H

#include <optional>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "fake_jni.h"
#include "fake_platform.h"
#include "natives.h"
#include "pimcodes.h"

// Written by each target.
void fuzz(FuzzedDataProvider& input, fake_platform& platform, fake_jni& jni);

// What a native leaves behind on purpose; of this input only.
void allow_open_connection();

// Bytes without NUL, as Java strings hand them over and as arrays of bytes do.
std::string some_text(FuzzedDataProvider& input, size_t longest = 300);
std::optional<std::string> some_text_or_null(FuzzedDataProvider& input, size_t longest = 300);

#endif
