#include "pimnativeutil.h"

#include <algorithm>
#include <limits>

#include "pimcodes.h"
#include "pimtrace.h"

// ---- Java exceptions ------------------------------------------------------------------------------------------------

static const char* exception_class_name(int32_t code)
{
    switch (code) {
    case RAISE_PIM_EXCEPTION: return "javax/microedition/pim/PIMException";
    case RAISE_ILLEGAL_ARGUMENT: return "java/lang/IllegalArgumentException";
    case RAISE_UNSUPPORTED_FIELD: return "javax/microedition/pim/UnsupportedFieldException";
    case RAISE_SECURITY: return "java/lang/SecurityException";
    case RAISE_NULL_POINTER: return "java/lang/NullPointerException";
    case RAISE_FIELD_FULL: return "javax/microedition/pim/FieldFullException";
    case RAISE_RUNTIME: return "java/lang/RuntimeException";
    default: return "java/lang/Exception";
    }
}

// Throws an exception made by the constructor that takes a reason, where the class has one and all goes well.
static void throw_with_reason(JNIEnv* env, jclass exception_class, const char* message, int32_t reason)
{
    jmethodID constructor = env->GetMethodID(exception_class, "<init>", "(Ljava/lang/String;I)V");
    if (constructor == nullptr) return;

    jstring text = env->NewStringUTF(message);
    if (text == nullptr) return;

    auto exception = static_cast<jthrowable>(env->NewObject(exception_class, constructor, text, reason));
    if (exception != nullptr) env->Throw(exception);
}

void raise_exception(JNIEnv* env, const char* message, int32_t code, int32_t reason)
{
    jclass exception_class = env->FindClass(exception_class_name(code));
    if (exception_class == nullptr) return;

    // Kept: the second throw replaces the first, so that the exception left pending is the one ThrowNew makes,
    // of the same class and with the same message; nothing is cleared between the two.
    if (code == RAISE_PIM_EXCEPTION || code == RAISE_FIELD_FULL)
        throw_with_reason(env, exception_class, message, reason);
    env->ThrowNew(exception_class, message);
}

int32_t max_categories(JNIEnv* env, int32_t listtype, int32_t of_contacts)
{
    switch (listtype) {
    case LIST_CONTACT: return of_contacts;
    case LIST_EVENT:
    case LIST_TODO: return 0;
    default:
        PIM_TRACE(TRACE_HARD, "Not supported listtype\n");
        raise_exception(env, "Not supported list type", RAISE_PIM_EXCEPTION, PIM_GENERAL_ERROR);
        return 0;
    }
}

// ---- Java arrays ----------------------------------------------------------------------------------------------------

jintArray new_int_array(JNIEnv* env, std::span<const jint> values)
{
    const auto length = static_cast<jsize>(values.size());
    jintArray array = env->NewIntArray(length);
    if (array != nullptr && length > 0) env->SetIntArrayRegion(array, 0, length, values.data());
    return array;
}

jobjectArray new_string_array(JNIEnv* env, const char* slots, size_t slot_size, jsize count)
{
    jclass string_class = env->FindClass("java/lang/String");
    if (string_class == nullptr) {
        PIM_TRACE(TRACE_HARD, "Unable to find the class java/lang/String");
        return nullptr;
    }

    jobjectArray array = env->NewObjectArray(count, string_class, nullptr);
    if (array == nullptr) return nullptr;

    for (jsize i = 0; i < count; ++i) {
        jstring text = env->NewStringUTF(slots + static_cast<size_t>(i) * slot_size);
        if (text == nullptr) return nullptr;
        env->SetObjectArrayElement(array, i, text);
        env->DeleteLocalRef(text);
    }
    return array;
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

bool is_ascii_upper(char c)
{
    return c >= 'A' && c <= 'Z';
}

// The bytes of a word, its upper-case letters turned into lower-case ones.
template <typename Word>
static Word folded(Word bytes)
{
    constexpr Word EACH = std::numeric_limits<Word>::max() / 0xff;
    constexpr Word HIGH_BITS = 0x80 * EACH;
    const Word low_bits = bytes & ~HIGH_BITS;
    const Word from_a = low_bits + (0x80 - 'A') * EACH;
    const Word behind_z = low_bits + (0x7f - 'Z') * EACH;
    const Word upper = from_a & ~behind_z & ~bytes & HIGH_BITS;
    return bytes | upper >> 2;
}

template <typename Word>
static Word read_word(const char* text)
{
    Word bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    return bytes;
}

// Needs at least one word. To read what has just been written in other parts stalls a processor, so that the last word,
// which may overlap the one before it, is read first, and what needs no folding stays unwritten.
template <typename Word>
static void fold_words(char* text, size_t length)
{
    const auto fold = [](char* at, Word bytes) {
        if (const Word lower = folded(bytes); lower != bytes) std::memcpy(at, &lower, sizeof lower);
    };
    char* const last = text + length - sizeof(Word);
    const Word last_bytes = read_word<Word>(last);
    for (; text < last; text += sizeof(Word)) fold(text, read_word<Word>(text));
    fold(last, last_bytes);
}

// A search folds every text of every record, so it is done by words.
static void fold_bytes(char* text, size_t length)
{
    if (length >= sizeof(uint64_t))
        fold_words<uint64_t>(text, length);
    else if (length >= sizeof(uint32_t))
        fold_words<uint32_t>(text, length);
    else
        for (char& each : std::span(text, length))
            if (is_ascii_upper(each)) each = static_cast<char>(each + 32);
}

void fold_to_lower_case(char* text, size_t text_size)
{
    fold_bytes(text, strnlen(text, text_size));
}

int32_t contains(char* match, char* text, size_t text_size)
{
    // Kept: an empty field contains any match string, so a record with an empty field is found by every search.
    const size_t length = strnlen(text, text_size);
    if (length == 0) return 1;

    const std::string_view wanted = match;
    fold_bytes(match, wanted.size());
    fold_bytes(text, length);
    return std::string_view(text, length).find(wanted) != std::string_view::npos ? 1 : 0;
}

static bool is_continuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
}

// Whether the three bytes at `position` are one half of a surrogate pair: 0xed, then a byte from `first` to first + 15.
static bool is_surrogate(std::string_view text, size_t position, unsigned char first)
{
    return position + 1 < text.size() && static_cast<unsigned char>(text[position]) == 0xed &&
           (static_cast<unsigned char>(text[position + 1]) & 0xf0) == first;
}

size_t whole_characters(std::string_view text, size_t limit)
{
    if (text.size() <= limit) return text.size();

    size_t end = limit;
    while (end > 0 && is_continuation(text[end])) --end;

    // The cut must not part the high half of a pair, three bytes before it, from the low half behind it.
    if (end >= 3 && is_surrogate(text, end, 0xb0) && is_surrogate(text, end - 3, 0xa0)) end -= 3;
    return end;
}

void copy_text(std::span<char> target, std::string_view text)
{
    const size_t kept = whole_characters(text, target.size() - 1);
    std::copy_n(text.begin(), kept, target.begin());
    target[kept] = '\0';
}
