// pimnativeutil.h: what both layers share: raising Java exceptions, building Java arrays, ASCII and UTF-8
// text helpers, owners for heap blocks.
#ifndef JSR75_PIM_PIMNATIVEUTIL_H
#define JSR75_PIM_PIMNATIVEUTIL_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>

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
    if (count > SIZE_MAX / sizeof(T)) return nullptr; // GCOV_EXCL_LINE: a size_t of 64 bits is never too small.
    // Not calloc, which leaves aside the freed blocks that glibc keeps for a thread.
    void* block = std::malloc(count * sizeof(T));
    if (block != nullptr) std::memset(block, 0, count * sizeof(T));
    return heap_array<T>(static_cast<T*>(block));
}

// Room for a text, which is the empty one to begin with. What stands behind its end is left as it was.
template <size_t size>
struct text_slot {
    char text[size];

    text_slot() { text[0] = '\0'; }
};

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

// What both maxCategoriesN natives answer: `of_contacts` for contacts, 0 for events and to-dos; another list type
// raises.
int32_t max_categories(JNIEnv* env, int32_t listtype, int32_t of_contacts);

// ---- Java arrays ----------------------------------------------------------------------------------------------------

// A new int[] of `values`, or null with an exception pending.
jintArray new_int_array(JNIEnv* env, std::span<const jint> values);

// A new String[] of `count` texts, each a NUL-terminated one at the start of a slot of `slot_size` bytes; or null
// with an exception pending.
jobjectArray new_string_array(JNIEnv* env, const char* slots, size_t slot_size, jsize count);

// ---- Java strings ---------------------------------------------------------------------------------------------------

// Calls `use` with the characters of a string that is not null, in modified UTF-8, and gives its result; the
// characters are released afterwards. Gives `failed` with an exception pending when they cannot be had.
template <typename Result, typename Use>
Result with_characters(JNIEnv* env, jstring string, Result failed, Use use)
{
    const char* characters = env->GetStringUTFChars(string, nullptr);
    if (characters == nullptr) return failed;
    const Result result = use(characters);
    env->ReleaseStringUTFChars(string, characters);
    return result;
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

bool is_ascii_upper(char c);

// Lower-cases the 26 letters A-Z of a text in place; every other byte stays. The text ends at its terminator or
// after `text_size` bytes.
void fold_to_lower_case(char* text, size_t text_size = SIZE_MAX);

// 1 when `match` occurs in `text` with ASCII letters compared without case, else 0. Both are lower-cased in
// place. An empty `text` contains everything, and then nothing is folded. `text` ends at its terminator or after
// `text_size` bytes.
int32_t contains(char* match, char* text, size_t text_size = SIZE_MAX);

// The number of leading bytes of `text`, at most `limit`, that end with a whole character of modified UTF-8; a
// surrogate pair counts as one.
size_t whole_characters(std::string_view text, size_t limit);

// Copies `text` into `target` and terminates it. What does not fit is cut at a character boundary.
void copy_text(std::span<char> target, std::string_view text);

// The text in a field of a record; one that fills its field whole has no terminator inside it.
template <size_t size>
std::string_view text_of(const char (&field)[size])
{
    return {field, strnlen(field, size)};
}

#endif
