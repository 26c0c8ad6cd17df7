#include "fast_jni.h"

#include <deque>
#include <string>

#include "journal.h"

// ---- Objects --------------------------------------------------------------------------------------------------------

namespace {

struct fast_object {
    jsize length;
    void* elements;
};

} // namespace

template <typename Reference>
static Reference reference_to(fast_object* object)
{
    return reinterpret_cast<Reference>(object);
}

static const fast_object& object_at(jobject reference)
{
    return *reinterpret_cast<const fast_object*>(reference);
}

// Of whatever the natives make there is one.
static fast_object made_string, made_int_array, made_long_array, made_object_array, made_exception, found_class;

template <typename Reference, typename Element>
static Reference lasting(std::vector<Element> values)
{
    static std::deque<std::vector<Element>> contents;
    static std::deque<fast_object> objects;
    std::vector<Element>& kept = contents.emplace_back(std::move(values));
    kept.reserve(1); // Elements that lead nowhere would be a failure.
    objects.push_back({static_cast<jsize>(kept.size()), kept.data()});
    return reference_to<Reference>(&objects.back());
}

static std::vector<jbyte> bytes_of(const std::string& text)
{
    return {text.begin(), text.end()};
}

jstring fast_string(const char* modified_utf8)
{
    std::vector<jbyte> characters = bytes_of(modified_utf8);
    characters.push_back(0);
    return lasting<jstring>(std::move(characters));
}

jintArray fast_ints(std::vector<jint> values)
{
    return lasting<jintArray>(std::move(values));
}

jlongArray fast_longs(std::vector<jlong> values)
{
    return lasting<jlongArray>(std::move(values));
}

jbyteArray fast_bytes(const char* text)
{
    return lasting<jbyteArray>(bytes_of(text));
}

jobjectArray fast_objects(const std::vector<jobject>& elements)
{
    return lasting<jobjectArray>(elements);
}

// ---- Functions ------------------------------------------------------------------------------------------------------

static jclass JNICALL find_class(JNIEnv*, const char* name)
{
    NOTE("FindClass(%s)", name);
    return reference_to<jclass>(&found_class);
}

static jmethodID JNICALL get_method_id(JNIEnv*, jclass, const char* name, const char* signature)
{
    NOTE("GetMethodID(%s, %s)", name, signature);
    return reinterpret_cast<jmethodID>(&found_class);
}

static jobject JNICALL new_object(JNIEnv*, jclass, jmethodID, va_list)
{
    NOTE("NewObject");
    return reference_to<jobject>(&made_exception);
}

static jint JNICALL throw_object(JNIEnv*, jthrowable)
{
    NOTE("Throw");
    return JNI_OK;
}

static jint JNICALL throw_new(JNIEnv*, jclass, const char* message)
{
    NOTE("ThrowNew(%s)", message);
    return JNI_OK;
}

static void JNICALL delete_local_ref(JNIEnv*, jobject reference)
{
    NOTE("DeleteLocalRef(%p)", static_cast<void*>(reference));
}

static jstring JNICALL new_string_utf(JNIEnv*, const char* text)
{
    NOTE("NewStringUTF(%s)", text);
    return reference_to<jstring>(&made_string);
}

static const char* JNICALL get_string_utf_chars(JNIEnv*, jstring string, jboolean*)
{
    const auto* characters = static_cast<const char*>(object_at(string).elements);
    NOTE("GetStringUTFChars(%s)", characters);
    return characters;
}

static void JNICALL release_string_utf_chars(JNIEnv*, jstring, const char* characters)
{
    NOTE("ReleaseStringUTFChars(%s)", characters);
}

static jsize JNICALL get_array_length(JNIEnv*, jarray array)
{
    NOTE("GetArrayLength(%p)", static_cast<void*>(array));
    return object_at(array).length;
}

static jobject JNICALL get_object_array_element(JNIEnv*, jobjectArray array, jsize index)
{
    NOTE("GetObjectArrayElement(%p, %d)", static_cast<void*>(array), index);
    return static_cast<jobject*>(object_at(array).elements)[index];
}

static jobjectArray JNICALL new_object_array(JNIEnv*, jsize length, jclass, jobject)
{
    NOTE("NewObjectArray(%d)", length);
    return reference_to<jobjectArray>(&made_object_array);
}

static void JNICALL set_object_array_element(JNIEnv*, jobjectArray, jsize index, jobject)
{
    NOTE("SetObjectArrayElement(%d)", index);
}

static jintArray JNICALL new_int_array(JNIEnv*, jsize length)
{
    NOTE("NewIntArray(%d)", length);
    return reference_to<jintArray>(&made_int_array);
}

static void JNICALL set_int_array_region(JNIEnv*, jintArray, jsize start, jsize length, const jint* values)
{
    NOTE("SetIntArrayRegion(%d, %d, %lx)", start, length, digest(values, static_cast<size_t>(length) * sizeof *values));
}

static jlongArray JNICALL new_long_array(JNIEnv*, jsize length)
{
    NOTE("NewLongArray(%d)", length);
    return reference_to<jlongArray>(&made_long_array);
}

template <typename Array, typename Element>
static Element* JNICALL get_elements(JNIEnv*, Array array, jboolean*)
{
    NOTE("Get...ArrayElements(%p)", static_cast<void*>(array));
    return static_cast<Element*>(object_at(array).elements);
}

template <typename Array, typename Element>
static void JNICALL release_elements(JNIEnv*, Array array, Element*, jint mode)
{
    NOTE("Release...ArrayElements(%p, %d)", static_cast<void*>(array), mode);
}

static JNINativeInterface_ function_table()
{
    JNINativeInterface_ table = {}; // Natives ask for no more than this.
    table.FindClass = find_class;
    table.GetMethodID = get_method_id;
    table.NewObjectV = new_object;
    table.Throw = throw_object;
    table.ThrowNew = throw_new;
    table.DeleteLocalRef = delete_local_ref;
    table.NewStringUTF = new_string_utf;
    table.GetStringUTFChars = get_string_utf_chars;
    table.ReleaseStringUTFChars = release_string_utf_chars;
    table.GetArrayLength = get_array_length;
    table.GetObjectArrayElement = get_object_array_element;
    table.NewObjectArray = new_object_array;
    table.SetObjectArrayElement = set_object_array_element;
    table.NewIntArray = new_int_array;
    table.SetIntArrayRegion = set_int_array_region;
    table.NewLongArray = new_long_array;
    table.GetIntArrayElements = get_elements<jintArray, jint>;
    table.GetLongArrayElements = get_elements<jlongArray, jlong>;
    table.GetByteArrayElements = get_elements<jbyteArray, jbyte>;
    table.ReleaseIntArrayElements = release_elements<jintArray, jint>;
    table.ReleaseLongArrayElements = release_elements<jlongArray, jlong>;
    table.ReleaseByteArrayElements = release_elements<jbyteArray, jbyte>;
    return table;
}

JNIEnv* fast_env()
{
    static const JNINativeInterface_ table = function_table();
    static JNIEnv env = {&table};
    return &env;
}
