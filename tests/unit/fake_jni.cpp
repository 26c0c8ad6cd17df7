#include "fake_jni.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "jni_function_names.h"

// ---- Modified UTF-8 -------------------------------------------------------------------------------------------------

static bool is_continuation(unsigned char byte)
{
    return (byte & 0xc0) == 0x80;
}

// The bytes of the well-formed character at `c`, 0 when it is none.
static size_t character_size(const unsigned char* c)
{
    if (c[0] < 0x80) return 1;
    if (c[0] == 0xc0) return c[1] == 0x80 ? 2 : 0; // The character NUL.
    if (c[0] >= 0xc2 && c[0] <= 0xdf) return is_continuation(c[1]) ? 2 : 0;
    if (c[0] >= 0xe0 && c[0] <= 0xef) {
        if (!is_continuation(c[1]) || !is_continuation(c[2])) return 0;
        return c[0] == 0xe0 && c[1] < 0xa0 ? 0 : 3;
    }
    return 0; // A lone continuation, or a lead byte of the four-byte form, which modified UTF-8 does not have.
}

// The bytes of the whole character at `c`: both halves of a surrogate pair, 0 for half of one and for no character.
static size_t whole_character_size(const unsigned char* c)
{
    const size_t size = character_size(c);
    if (size != 3 || c[0] != 0xed || c[1] < 0xa0) return size;
    const bool high = c[1] < 0xb0;
    const bool followed_by_low = high && c[3] == 0xed && c[4] >= 0xb0 && c[4] <= 0xbf && is_continuation(c[5]);
    return followed_by_low ? 6 : 0;
}

bool is_modified_utf8(const char* text)
{
    const auto* c = reinterpret_cast<const unsigned char*>(text);
    while (*c != 0) {
        const size_t size = whole_character_size(c);
        if (size == 0) return false;
        c += size;
    }
    return true;
}

// ---- The function table ---------------------------------------------------------------------------------------------

struct fake_jni::environment : JNIEnv_ {
    JNINativeInterface_ table;
    fake_jni* owner;
};

template <size_t N>
static void unexpected_call()
{
    std::fprintf(stderr, "The fake JNIEnv has no %s\n",
                 N < std::size(JNI_FUNCTION_NAMES) ? JNI_FUNCTION_NAMES[N] : "such function");
    std::abort();
}

template <size_t... N>
static void fill_with_unexpected(JNINativeInterface_* table, std::index_sequence<N...>)
{
    using entry = void (*)();
    const entry entries[] = {unexpected_call<N>...};
    static_assert(sizeof entries == sizeof *table);
    std::memcpy(static_cast<void*>(table), entries, sizeof entries);
}

static std::string number(int64_t value)
{
    return std::to_string(value);
}

// The functions that natives use. A failing one leaves pending what a real machine would.
struct fake_jni::functions {
    static fake_jni& of(JNIEnv* env) { return *static_cast<environment*>(env)->owner; }

    static java_value make(std::string class_name)
    {
        auto object = std::make_shared<java_object>();
        object->class_name = std::move(class_name);
        return object;
    }

    // The object behind a reference of the named kind; a null or foreign reference is a violation.
    static java_value resolve(fake_jni& jni, jobject reference, const char* function)
    {
        java_value value = jni.value_of(reference);
        if (value == nullptr) jni.violations.push_back(std::string(function) + " on null or a dead reference");
        return value;
    }

    static jclass JNICALL FindClass(JNIEnv* env, const char* name)
    {
        fake_jni& jni = of(env);
        if (!jni.enter("FindClass", name)) {
            jni.throw_new("java/lang/NoClassDefFoundError", name, "FindClass");
            return nullptr;
        }
        java_value object = make("java/lang/Class");
        object->text = name;
        return static_cast<jclass>(jni.local(object));
    }

    static jmethodID JNICALL GetMethodID(JNIEnv* env, jclass type, const char* name, const char* signature)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, type, "GetMethodID");
        const std::string described = object ? object->text : "null";
        if (!jni.enter("GetMethodID", described + ", " + name + ", " + signature)) {
            jni.throw_new("java/lang/NoSuchMethodError", name, "GetMethodID");
            return nullptr;
        }
        // The only method that natives look up: all constructors share one identity.
        static char constructor;
        return reinterpret_cast<jmethodID>(&constructor);
    }

    static jobject JNICALL NewObjectV(JNIEnv* env, jclass type, jmethodID, va_list arguments)
    {
        fake_jni& jni = of(env);
        const java_value object = make(resolve(jni, type, "NewObject")->text);
        const java_value message = jni.value_of(va_arg(arguments, jobject));
        object->text = message ? message->text : "null";
        object->reason = va_arg(arguments, jint);
        if (!jni.enter("NewObject", object->class_name + ", " + object->text + ", " + number(*object->reason))) {
            jni.out_of_memory("NewObject");
            return nullptr;
        }
        jni.constructed.push_back(object);
        return jni.local(object);
    }

    static jint JNICALL Throw(JNIEnv* env, jthrowable exception)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, exception, "Throw");
        if (!jni.enter("Throw", object->class_name + ", " + object->text)) {
            jni.out_of_memory("Throw");
            return JNI_ERR;
        }
        jni.throw_new(object->class_name, object->text, "Throw");
        return JNI_OK;
    }

    static jint JNICALL ThrowNew(JNIEnv* env, jclass type, const char* message)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, type, "ThrowNew");
        // The one function that natives may call on top of a pending exception: it replaces it.
        if (!jni.enter("ThrowNew", object->text + ", " + message, true)) {
            jni.out_of_memory("ThrowNew");
            return JNI_ERR;
        }
        jni.throw_new(object->text, message, "ThrowNew");
        return JNI_OK;
    }

    static jboolean JNICALL ExceptionCheck(JNIEnv* env) { return of(env).pending ? JNI_TRUE : JNI_FALSE; }

    static void JNICALL DeleteLocalRef(JNIEnv* env, jobject reference)
    {
        fake_jni& jni = of(env);
        if (reference != nullptr && jni.locals_.erase(reference) == 0)
            jni.violations.emplace_back("DeleteLocalRef of a reference that is no live local one");
    }

    static jstring JNICALL NewStringUTF(JNIEnv* env, const char* bytes)
    {
        fake_jni& jni = of(env);
        if (bytes == nullptr) {
            jni.violations.emplace_back("NewStringUTF of null");
            return nullptr;
        }
        if (!jni.accepts_invalid_text_ && !is_modified_utf8(bytes))
            jni.violations.push_back(std::string("NewStringUTF of no modified UTF-8: ") + bytes);
        if (!jni.enter("NewStringUTF", bytes)) {
            jni.out_of_memory("NewStringUTF");
            return nullptr;
        }
        java_value object = make("java/lang/String");
        object->text = bytes;
        return static_cast<jstring>(jni.local(object));
    }

    static const char* JNICALL GetStringUTFChars(JNIEnv* env, jstring string, jboolean* is_copy)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, string, "GetStringUTFChars");
        if (!object || !jni.enter("GetStringUTFChars", object->text)) {
            jni.out_of_memory("GetStringUTFChars");
            return nullptr;
        }
        if (is_copy != nullptr) *is_copy = JNI_TRUE;
        return jni.lend(object, "chars", object->text.c_str(), object->text.size() + 1);
    }

    static void JNICALL ReleaseStringUTFChars(JNIEnv* env, jstring string, const char* chars)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, string, "ReleaseStringUTFChars");
        jni.calls.push_back("ReleaseStringUTFChars(" + (object ? object->text : "null") + ")");
        jni.take_back("chars", chars, JNI_ABORT);
    }

    static jsize JNICALL GetArrayLength(JNIEnv* env, jarray array)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, array, "GetArrayLength");
        if (!object) return 0;
        // Never fails by the script: a machine has no way to.
        if (jni.pending) jni.violations.emplace_back("GetArrayLength with an exception pending");
        const size_t length = object->class_name == "[I"   ? object->ints.size()
                              : object->class_name == "[J" ? object->longs.size()
                              : object->class_name == "[B" ? object->bytes.size()
                                                           : object->elements.size();
        jni.calls.push_back("GetArrayLength(" + object->class_name + ")");
        return static_cast<jsize>(length);
    }

    static bool in_range(fake_jni& jni, size_t size, jsize start, jsize length, const char* function)
    {
        if (start >= 0 && length >= 0 && static_cast<size_t>(start) + static_cast<size_t>(length) <= size) return true;
        jni.throw_new("java/lang/ArrayIndexOutOfBoundsException", number(start), function);
        return false;
    }

    static jobject JNICALL GetObjectArrayElement(JNIEnv* env, jobjectArray array, jsize index)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, array, "GetObjectArrayElement");
        if (jni.pending) jni.violations.emplace_back("GetObjectArrayElement with an exception pending");
        jni.calls.push_back("GetObjectArrayElement(" + number(index) + ")");
        if (!object || !in_range(jni, object->elements.size(), index, 1, "GetObjectArrayElement")) return nullptr;
        const java_value element = object->elements[static_cast<size_t>(index)];
        return element ? jni.local(element) : nullptr;
    }

    // A new array object, or null with what a machine leaves pending.
    static java_value new_array(fake_jni& jni, const char* function, jsize length, const std::string& arguments,
                                const char* class_name)
    {
        if (!jni.enter(function, arguments)) {
            jni.out_of_memory(function);
            return nullptr;
        }
        if (length < 0) {
            jni.throw_new("java/lang/NegativeArraySizeException", number(length), function);
            return nullptr;
        }
        return make(class_name);
    }

    static jobjectArray JNICALL NewObjectArray(JNIEnv* env, jsize length, jclass type, jobject initial)
    {
        fake_jni& jni = of(env);
        const java_value element = resolve(jni, type, "NewObjectArray");
        const std::string element_name = element ? element->text : "null";
        const java_value object = new_array(jni, "NewObjectArray", length, number(length) + ", " + element_name, "[L");
        if (!object) return nullptr;
        object->text = element_name;
        object->elements.assign(static_cast<size_t>(length), jni.value_of(initial));
        return static_cast<jobjectArray>(jni.local(object));
    }

    static void JNICALL SetObjectArrayElement(JNIEnv* env, jobjectArray array, jsize index, jobject value)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, array, "SetObjectArrayElement");
        const java_value element = jni.value_of(value);
        if (jni.pending) jni.violations.emplace_back("SetObjectArrayElement with an exception pending");
        if (value != nullptr && !element) jni.violations.emplace_back("SetObjectArrayElement of a dead reference");
        jni.calls.push_back("SetObjectArrayElement(" + number(index) + ", " + (element ? element->text : "null") + ")");
        if (!object || !in_range(jni, object->elements.size(), index, 1, "SetObjectArrayElement")) return;
        object->elements[static_cast<size_t>(index)] = element;
    }

    static jintArray JNICALL NewIntArray(JNIEnv* env, jsize length)
    {
        fake_jni& jni = of(env);
        const java_value object = new_array(jni, "NewIntArray", length, number(length), "[I");
        if (!object) return nullptr;
        object->ints.assign(static_cast<size_t>(length), 0);
        return static_cast<jintArray>(jni.local(object));
    }

    static jlongArray JNICALL NewLongArray(JNIEnv* env, jsize length)
    {
        fake_jni& jni = of(env);
        const java_value object = new_array(jni, "NewLongArray", length, number(length), "[J");
        if (!object) return nullptr;
        object->longs.assign(static_cast<size_t>(length), 0);
        return static_cast<jlongArray>(jni.local(object));
    }

    template <typename T>
    static void set_region(JNIEnv* env, const char* function, jarray array, std::vector<T> java_object::*member,
                           jsize start, jsize length, const T* source)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, array, function);
        if (jni.pending) jni.violations.push_back(std::string(function) + " with an exception pending");
        jni.calls.push_back(std::string(function) + "(" + number(start) + ", " + number(length) + ")");
        if (!object || !in_range(jni, (*object.*member).size(), start, length, function)) return;
        std::copy_n(source, length, (*object.*member).begin() + start);
    }

    static void JNICALL SetIntArrayRegion(JNIEnv* env, jintArray array, jsize start, jsize length, const jint* source)
    {
        set_region(env, "SetIntArrayRegion", array, &java_object::ints, start, length, source);
    }

    static void JNICALL SetLongArrayRegion(JNIEnv* env, jlongArray array, jsize start, jsize length,
                                           const jlong* source)
    {
        set_region(env, "SetLongArrayRegion", array, &java_object::longs, start, length, source);
    }

    template <typename T>
    static void get_region(JNIEnv* env, const char* function, jarray array, std::vector<T> java_object::*member,
                           jsize start, jsize length, T* target)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, array, function);
        if (jni.pending) jni.violations.push_back(std::string(function) + " with an exception pending");
        jni.calls.push_back(std::string(function) + "(" + number(start) + ", " + number(length) + ")");
        if (!object || !in_range(jni, (*object.*member).size(), start, length, function)) return;
        std::copy_n((*object.*member).begin() + start, length, target);
    }

    static void JNICALL GetByteArrayRegion(JNIEnv* env, jbyteArray array, jsize start, jsize length, jbyte* target)
    {
        get_region(env, "GetByteArrayRegion", array, &java_object::bytes, start, length, target);
    }

    static void JNICALL GetIntArrayRegion(JNIEnv* env, jintArray array, jsize start, jsize length, jint* target)
    {
        get_region(env, "GetIntArrayRegion", array, &java_object::ints, start, length, target);
    }

    static void JNICALL GetLongArrayRegion(JNIEnv* env, jlongArray array, jsize start, jsize length, jlong* target)
    {
        get_region(env, "GetLongArrayRegion", array, &java_object::longs, start, length, target);
    }

    template <typename T>
    static T* get_elements(JNIEnv* env, const char* function, const char* kind, jarray array,
                           std::vector<T> java_object::*member, jboolean* is_copy)
    {
        fake_jni& jni = of(env);
        const java_value object = resolve(jni, array, function);
        if (!object || !jni.enter(function, "")) {
            jni.out_of_memory(function);
            return nullptr;
        }
        if (is_copy != nullptr) *is_copy = JNI_TRUE;
        const std::vector<T>& values = *object.*member;
        // A malloc() block, so aligned for any element.
        return static_cast<T*>(static_cast<void*>(jni.lend(object, kind, values.data(), values.size() * sizeof(T))));
    }

    static jbyte* JNICALL GetByteArrayElements(JNIEnv* env, jbyteArray array, jboolean* is_copy)
    {
        return get_elements(env, "GetByteArrayElements", "bytes", array, &java_object::bytes, is_copy);
    }

    static jint* JNICALL GetIntArrayElements(JNIEnv* env, jintArray array, jboolean* is_copy)
    {
        return get_elements(env, "GetIntArrayElements", "ints", array, &java_object::ints, is_copy);
    }

    static jlong* JNICALL GetLongArrayElements(JNIEnv* env, jlongArray array, jboolean* is_copy)
    {
        return get_elements(env, "GetLongArrayElements", "longs", array, &java_object::longs, is_copy);
    }

    static void release_elements(JNIEnv* env, const char* function, const char* kind, jarray array, const void* block,
                                 jint mode)
    {
        fake_jni& jni = of(env);
        resolve(jni, array, function);
        jni.calls.push_back(std::string(function) + "(" + (mode == JNI_ABORT ? "JNI_ABORT" : number(mode)) + ")");
        jni.take_back(kind, block, mode);
    }

    static void JNICALL ReleaseByteArrayElements(JNIEnv* env, jbyteArray array, jbyte* block, jint mode)
    {
        release_elements(env, "ReleaseByteArrayElements", "bytes", array, block, mode);
    }

    static void JNICALL ReleaseIntArrayElements(JNIEnv* env, jintArray array, jint* block, jint mode)
    {
        release_elements(env, "ReleaseIntArrayElements", "ints", array, block, mode);
    }

    static void JNICALL ReleaseLongArrayElements(JNIEnv* env, jlongArray array, jlong* block, jint mode)
    {
        release_elements(env, "ReleaseLongArrayElements", "longs", array, block, mode);
    }
};

// ---- The machine ----------------------------------------------------------------------------------------------------

fake_jni::fake_jni() : environment_(std::make_unique<environment>())
{
    JNINativeInterface_& table = environment_->table;
    fill_with_unexpected(&table, std::make_index_sequence<sizeof(JNINativeInterface_) / sizeof(void*)>());
    table.FindClass = functions::FindClass;
    table.GetMethodID = functions::GetMethodID;
    table.NewObjectV = functions::NewObjectV;
    table.Throw = functions::Throw;
    table.ThrowNew = functions::ThrowNew;
    table.ExceptionCheck = functions::ExceptionCheck;
    table.DeleteLocalRef = functions::DeleteLocalRef;
    table.NewStringUTF = functions::NewStringUTF;
    table.GetStringUTFChars = functions::GetStringUTFChars;
    table.ReleaseStringUTFChars = functions::ReleaseStringUTFChars;
    table.GetArrayLength = functions::GetArrayLength;
    table.GetObjectArrayElement = functions::GetObjectArrayElement;
    table.NewObjectArray = functions::NewObjectArray;
    table.SetObjectArrayElement = functions::SetObjectArrayElement;
    table.NewIntArray = functions::NewIntArray;
    table.NewLongArray = functions::NewLongArray;
    table.SetIntArrayRegion = functions::SetIntArrayRegion;
    table.SetLongArrayRegion = functions::SetLongArrayRegion;
    table.GetByteArrayRegion = functions::GetByteArrayRegion;
    table.GetIntArrayRegion = functions::GetIntArrayRegion;
    table.GetLongArrayRegion = functions::GetLongArrayRegion;
    table.GetByteArrayElements = functions::GetByteArrayElements;
    table.GetIntArrayElements = functions::GetIntArrayElements;
    table.GetLongArrayElements = functions::GetLongArrayElements;
    table.ReleaseByteArrayElements = functions::ReleaseByteArrayElements;
    table.ReleaseIntArrayElements = functions::ReleaseIntArrayElements;
    table.ReleaseLongArrayElements = functions::ReleaseLongArrayElements;
    environment_->functions = &table;
    environment_->owner = this;
}

fake_jni::~fake_jni() = default;

JNIEnv* fake_jni::env()
{
    return environment_.get();
}

// A handle is the address of a byte of its own, so that no two references ever look alike.
jobject fake_jni::argument(java_value value)
{
    handles_.push_back(std::make_unique<char>());
    const auto reference = reinterpret_cast<jobject>(handles_.back().get());
    arguments_[reference] = std::move(value);
    return reference;
}

jobject fake_jni::local(java_value value)
{
    handles_.push_back(std::make_unique<char>());
    const auto reference = reinterpret_cast<jobject>(handles_.back().get());
    locals_[reference] = std::move(value);
    local_reference_peak = std::max(local_reference_peak, locals_.size());
    return reference;
}

void fake_jni::leave_native()
{
    arguments_.merge(locals_);
    locals_.clear();
}

java_value fake_jni::value_of(jobject reference) const
{
    if (const auto found = locals_.find(reference); found != locals_.end()) return found->second;
    if (const auto found = arguments_.find(reference); found != arguments_.end()) return found->second;
    return nullptr;
}

// Enters a call in the journal; false when the script makes it fail.
bool fake_jni::enter(const std::string& function, const std::string& arguments, bool allowed_while_pending)
{
    calls.push_back(function + "(" + arguments + ")");
    if (pending && !allowed_while_pending) violations.push_back(calls.back() + " with an exception pending");
    if (!scripted_failure(function)) return true;
    failed_call_ = calls.back();
    return false;
}

bool fake_jni::scripted_failure(const std::string& function)
{
    ++call_count_;
    const int nth = ++call_counts_[function];
    return failures_.contains(function) || call_failures_.contains({function, nth}) ||
           nth_failures_.contains(call_count_);
}

void fake_jni::throw_new(const std::string& class_name, const std::string& message, const std::string& thrown_by)
{
    pending = {class_name, message, thrown_by};
    thrown.push_back(*pending);
}

char* fake_jni::lend(const java_value& owner, const std::string& kind, const void* data, size_t size)
{
    // Exactly as large as the value, so that a sanitizer sees a read past it. Never of size 0.
    auto copy = std::make_unique<char[]>(std::max<size_t>(size, 1));
    if (size > 0) std::memcpy(copy.get(), data, size);
    char* const block = copy.get();
    borrowed_[block] = {owner, kind, std::vector<char>(block, block + size), std::move(copy)};
    return block;
}

void fake_jni::take_back(const std::string& kind, const void* block, jint mode)
{
    const auto found = borrowed_.find(block);
    if (found == borrowed_.end() || found->second.kind != kind) {
        violations.push_back("release of " + kind + " that were not lent");
        return;
    }
    if (mode != JNI_ABORT) violations.push_back(kind + " released with a copy back");
    const borrowed_block& lent = found->second;
    if (!std::equal(lent.original.begin(), lent.original.end(), lent.copy.get()))
        violations.push_back(kind + " of the machine's were changed");
    borrowed_.erase(found);
}

// ---- Arguments and results ------------------------------------------------------------------------------------------

jstring fake_jni::string(std::string modified_utf8)
{
    java_value object = functions::make("java/lang/String");
    object->text = std::move(modified_utf8);
    return static_cast<jstring>(argument(object));
}

jintArray fake_jni::ints(std::vector<jint> values)
{
    java_value object = functions::make("[I");
    object->ints = std::move(values);
    return static_cast<jintArray>(argument(object));
}

jlongArray fake_jni::longs(std::vector<jlong> values)
{
    java_value object = functions::make("[J");
    object->longs = std::move(values);
    return static_cast<jlongArray>(argument(object));
}

jbyteArray fake_jni::bytes(std::vector<jbyte> values)
{
    java_value object = functions::make("[B");
    object->bytes = std::move(values);
    return static_cast<jbyteArray>(argument(object));
}

jobjectArray fake_jni::strings(const std::vector<std::optional<std::string>>& values)
{
    java_value array = functions::make("[L");
    array->text = "java/lang/String";
    for (const std::optional<std::string>& value : values) {
        java_value element;
        if (value) {
            element = functions::make("java/lang/String");
            element->text = *value;
        }
        array->elements.push_back(element);
    }
    return static_cast<jobjectArray>(argument(array));
}

jobjectArray fake_jni::byte_arrays(const std::vector<std::optional<std::string>>& values)
{
    java_value array = functions::make("[L");
    array->text = "[B";
    for (const std::optional<std::string>& value : values) {
        java_value element;
        if (value) {
            element = functions::make("[B");
            element->bytes.assign(value->begin(), value->end());
        }
        array->elements.push_back(element);
    }
    return static_cast<jobjectArray>(argument(array));
}

std::string fake_jni::text(jstring string) const
{
    const java_value object = value_of(string);
    return object ? object->text : "null";
}

std::vector<std::string> fake_jni::texts(jobjectArray array) const
{
    std::vector<std::string> found;
    const java_value object = value_of(array);
    if (!object) return {"no array"};
    for (const java_value& element : object->elements) found.push_back(element ? element->text : "null");
    return found;
}

std::vector<jint> fake_jni::values(jintArray array) const
{
    const java_value object = value_of(array);
    return object ? object->ints : std::vector<jint>();
}

std::vector<jlong> fake_jni::values(jlongArray array) const
{
    const java_value object = value_of(array);
    return object ? object->longs : std::vector<jlong>();
}

std::string fake_jni::element_class(jobjectArray array) const
{
    const java_value object = value_of(array);
    return object ? object->text : "no array";
}

std::vector<std::string> fake_jni::calls_of(const std::string& function) const
{
    std::vector<std::string> found;
    for (const std::string& call : calls)
        if (call.substr(0, call.find('(')) == function) found.push_back(call);
    return found;
}

void fake_jni::fail(const std::string& function)
{
    failures_.insert(function);
}

void fake_jni::fail_call(const std::string& function, int nth)
{
    call_failures_.insert({function, nth});
}

void fake_jni::fail_nth_call(int nth)
{
    nth_failures_.insert(nth);
}
