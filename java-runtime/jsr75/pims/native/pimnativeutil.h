// pimnativeutil.h: what both layers share: raising Java exceptions, building Java arrays, ASCII and UTF-8
// text helpers, owners for heap blocks.
#ifndef JSR75_PIM_PIMNATIVEUTIL_H
#define JSR75_PIM_PIMNATIVEUTIL_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include <jni.h>

// ---- Heap blocks ----------------------------------------------------------------------------------------------------

struct free_block {
    void operator()(void* block) const { std::free(block); }
};

// A malloc() block that is freed with its owner. Null when the allocation failed.
template <typename T>
using heap_array = std::unique_ptr<T[], free_block>;

// `count` zeroed elements, or null. A count of 0 may give null too, so callers who accept it ask for at least 1.
template <typename T>
heap_array<T> allocate_zeroed(size_t count)
{
    return heap_array<T>(static_cast<T*>(std::calloc(count, sizeof(T))));
}

// ---- Java exceptions ------------------------------------------------------------------------------------------------

// Codes of raise_exception. Any other code raises java/lang/Exception.
enum exception_code : int32_t {
    RAISE_PIM_EXCEPTION = 601,
    RAISE_ILLEGAL_ARGUMENT = 602,
    RAISE_UNSUPPORTED_FIELD = 603,
    RAISE_SECURITY = 604,
    RAISE_NULL_POINTER = 605,
    RAISE_FIELD_FULL = 606,
    RAISE_RUNTIME = 607
};

// Leaves a Java exception of the class that `code` names pending, with `message` (modified UTF-8). `reason` counts for
// RAISE_PIM_EXCEPTION (a PIMException reason) and RAISE_FIELD_FULL (a field) only. When the class cannot be found the
// look-up's own error is pending instead. The caller releases what it holds and returns to Java at once.
void raise_exception(JNIEnv* env, const char* message, int32_t code, int32_t reason);

// ---- Java arrays ----------------------------------------------------------------------------------------------------

// A new int[] of `values`, or null with an exception pending.
jintArray new_int_array(JNIEnv* env, std::span<const jint> values);

// A new String[] of `count` texts, each a NUL-terminated one at the start of a slot of `slot_size` bytes; or null
// with an exception pending.
jobjectArray new_string_array(JNIEnv* env, const char* slots, size_t slot_size, jsize count);

// ---- Texts ----------------------------------------------------------------------------------------------------------

bool is_ascii_upper(char c);

// Lower-cases the 26 letters A-Z of a NUL-terminated text in place; every other byte stays.
void fold_to_lower_case(char* text);

// 1 when `match` occurs in `text` with ASCII letters compared without case, else 0. Both are lower-cased in
// place. An empty `text` contains everything, and then nothing is folded.
int32_t contains(char* match, char* text);

// The number of leading bytes of `text`, at most `limit`, that end with a whole character of modified UTF-8; a
// surrogate pair counts as one. `length` is the length of `text`.
size_t whole_characters(const char* text, size_t length, size_t limit);

// Copies `text`, of which at most `source_size` bytes are looked at, into `target` and terminates it. What does not
// fit is cut at a character boundary.
void copy_text(std::span<char> target, const char* text, size_t source_size = SIZE_MAX);

#endif
