// Natives of com.qvr.zek.pim.PIMItemImpl: the values of one stored item, and committing one.

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "pimcodes.h"
#include "pimitemimpl_limo_arm.h"
#include "pimnativeutil.h"
#include "pimtrace.h"

extern "C" {

// ---- Item values ----------------------------------------------------------------------------------------------------
//
// Each calls the reader of its list type. An unknown list type calls none and yields the native's neutral result.

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMItemImpl_isRecordDeletedN(JNIEnv*, jobject, jint listtype,
                                                                         jint /*handle*/, jint recindex)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return pimItemImpl_isRecordDeletedN(listtype, recindex);
}

JNIEXPORT jbyteArray JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getBinaryN(JNIEnv* env, jobject, jint /*listtype*/,
                                                                         jint /*handle*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    raise_exception(env, "No binary fields available", RAISE_PIM_EXCEPTION, PIM_FEATURE_NOT_SUPPORTED);
    PIM_TRACE(TRACE_STEP, "Not supported Binary value\n");
    return nullptr;
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getAttributesN(JNIEnv*, jobject, jint listtype, jint handle,
                                                                       jint recindex, jint field, jint index)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    // The contact fields that carry attributes; the bare numbers count for every list.
    switch (field) {
    case CONTACT_ADDR:
    case CONTACT_TEL:
    case CONTACT_EMAIL:
    case CONTACT_URL: return pimItemImpl_getAttributesN(listtype, handle, recindex, field, index);
    default: return ATTR_NONE;
    }
}

JNIEXPORT jlong JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getDateN(JNIEnv*, jobject, jint listtype, jint /*handle*/,
                                                                  jint recindex, jint field, jint index)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    switch (listtype) {
    case LIST_CONTACT: return getContactDate(recindex, field, index);
    case LIST_EVENT: return getEventDate(recindex, field, index);
    case LIST_TODO: return getTodoDate(recindex, field, index);
    default: return 0;
    }
}

JNIEXPORT jboolean JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getBooleanN(JNIEnv*, jobject, jint listtype,
                                                                        jint /*handle*/, jint recindex, jint field,
                                                                        jint index)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    switch (listtype) {
    case LIST_CONTACT: return static_cast<jboolean>(getContactBool(recindex, field, index));
    case LIST_EVENT: return static_cast<jboolean>(getEventBool(recindex, field, index));
    case LIST_TODO: return static_cast<jboolean>(getTodoBool(recindex, field, index));
    default: return JNI_FALSE;
    }
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getIntN(JNIEnv*, jobject, jint listtype, jint /*handle*/,
                                                                jint recindex, jint field, jint index)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    switch (listtype) {
    case LIST_CONTACT: return getContactInt(recindex, field, index);
    case LIST_EVENT: return getEventInt(recindex, field, index);
    case LIST_TODO: return getTodoInt(recindex, field, index);
    default: return 0;
    }
}

JNIEXPORT jstring JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getStringN(JNIEnv* env, jobject, jint listtype,
                                                                      jint /*handle*/, jint recindex, jint field,
                                                                      jint index)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    text_slot<ITEM_TEXT_SIZE> value;
    int8_t went_through = 0;
    switch (listtype) {
    case LIST_CONTACT: went_through = getContactString(recindex, field, index, value.text); break;
    case LIST_EVENT: went_through = getEventString(recindex, field, index, value.text); break;
    case LIST_TODO: went_through = getTodoString(recindex, field, index, value.text); break;
    default: break;
    }
    return went_through == 1 ? env->NewStringUTF(value.text) : nullptr;
}

JNIEXPORT jobjectArray JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getStringArrayN(JNIEnv* env, jobject, jint listtype,
                                                                                jint /*handle*/, jint recindex,
                                                                                jint field, jint index)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    if (listtype != LIST_CONTACT || (field != CONTACT_ADDR && field != CONTACT_NAME)) return nullptr;

    item_element elements[ADDR_ELEMENTS];
    getContactStringArray(recindex, field, index, elements);
    return new_string_array(env, elements->text, sizeof *elements,
                            field == CONTACT_ADDR ? jsize{ADDR_ELEMENTS} : jsize{NAME_ELEMENTS});
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN(JNIEnv* env, jobject, jint listtype,
                                                                        jint /*handle*/, jint recindex)
{
    jint fields[LISTED_FIELDS_MAX] = {};
    int32_t count = 0;
    switch (listtype) {
    case LIST_CONTACT: count = getField_contact(recindex, fields); break;
    case LIST_EVENT: count = getField_event(recindex, fields); break;
    case LIST_TODO: count = getField_todo(recindex, fields); break;
    default: break;
    }
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return count > 0 ? new_int_array(env, std::span(fields).first(static_cast<size_t>(count))) : nullptr;
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMItemImpl_countValuesN(JNIEnv*, jobject, jint listtype, jint /*handle*/,
                                                                     jint recindex, jint field)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    switch (listtype) {
    case LIST_CONTACT: return count_values_contact(recindex, field);
    case LIST_EVENT: return count_values_event(recindex, field);
    case LIST_TODO: return count_values_todo(recindex, field);
    default: return 0;
    }
}

// ---- Item categories ------------------------------------------------------------------------------------------------

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMItemImpl_maxCategoriesN(JNIEnv* env, jobject, jint listtype,
                                                                       jint /*handle*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    // Kept: an item is said to take one category, whatever number its list has and the record holds.
    return max_categories(env, listtype, 1);
}

JNIEXPORT jobjectArray JNICALL Java_com_qvr_zek_pim_PIMItemImpl_getCategoriesN(JNIEnv* env, jobject, jint listtype,
                                                                               jint handle, jint recindex)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    category_name names[LIST_CATEGORIES_MAX];
    const int32_t count = pimItemImpl_getCategoriesN(listtype, handle, recindex, names);
    return new_string_array(env, names->text, sizeof *names, std::max(count, 0));
}

} // extern "C"

// ---- Commit ---------------------------------------------------------------------------------------------------------

namespace {

// What a commit takes from Java, as arguments of commitN.
struct commit_arguments {
    jintArray stringids;
    jobjectArray strings;
    jintArray ints;
    jbyteArray bytes;
    jlongArray longs;
    jobjectArray categories;
    jint numcats;
};

// What a commit holds while it runs, all of it null at first.
struct commit_buffers {
    jint* stringids;
    jint* ints;
    jbyte* bytes;
    jlong* longs;
    char** texts;
    jsize text_count;
    char** categories;
    jsize category_count;
};

} // namespace

// An exception of the virtual machine's own that is pending already stays: nothing more may be asked of it then.
static void raise_general_error(JNIEnv* env, const char* message)
{
    if (!env->ExceptionCheck()) raise_exception(env, message, RAISE_PIM_EXCEPTION, PIM_GENERAL_ERROR);
}

// Null arrays count as empty.
static jsize array_length(JNIEnv* env, jarray array)
{
    return array != nullptr ? env->GetArrayLength(array) : 0;
}

static void free_texts(char** texts, jsize count)
{
    if (texts == nullptr) return;
    std::for_each(texts, texts + count, [](char* text) { std::free(text); });
    std::free(texts);
}

static void release_commit_buffers(JNIEnv* env, const commit_arguments& arguments, const commit_buffers& held)
{
    if (held.stringids != nullptr) env->ReleaseIntArrayElements(arguments.stringids, held.stringids, JNI_ABORT);
    if (held.ints != nullptr) env->ReleaseIntArrayElements(arguments.ints, held.ints, JNI_ABORT);
    if (held.longs != nullptr) env->ReleaseLongArrayElements(arguments.longs, held.longs, JNI_ABORT);
    if (held.bytes != nullptr) env->ReleaseByteArrayElements(arguments.bytes, held.bytes, JNI_ABORT);
    free_texts(held.texts, held.text_count);
    free_texts(held.categories, held.category_count);
}

// The number of entries that element 0 of an array promises, or -1 when the array is too short for them.
template <typename Element>
static Element entry_count(const Element* elements, jsize length, jsize elements_per_entry)
{
    if (length == 0) return 0;
    const Element count = elements[0];
    return count >= 0 && count <= (length - 1) / elements_per_entry ? count : -1;
}

// The bytes of a byte array as a text of its own, or null.
static char* copy_bytes(JNIEnv* env, jbyteArray array)
{
    const auto length = static_cast<size_t>(env->GetArrayLength(array));
    char* text = allocate_zeroed<char>(length + 1).release();
    jbyte* bytes = text != nullptr ? env->GetByteArrayElements(array, nullptr) : nullptr;
    if (bytes == nullptr) {
        std::free(text);
        return nullptr;
    }
    std::memcpy(text, bytes, length);
    env->ReleaseByteArrayElements(array, bytes, JNI_ABORT);
    return text;
}

// Unpacks the string values. Beyond the given ones there are nulls for as many as the entries could consume.
static bool take_texts(JNIEnv* env, const commit_arguments& arguments, jint entries, commit_buffers* held)
{
    const jsize stringsize = array_length(env, arguments.strings);
    const auto consumed = static_cast<size_t>(entries) * TEXTS_PER_ENTRY_MAX;
    if (stringsize == 0 && consumed == 0) return true;

    held->texts = allocate_zeroed<char*>(std::max(static_cast<size_t>(stringsize), consumed)).release();
    if (held->texts == nullptr) {
        PIM_TRACE(TRACE_HARD, "memory allocation failed..\n");
        return false;
    }
    held->text_count = stringsize;
    for (jsize i = 0; i < stringsize; ++i) {
        auto bytes = static_cast<jbyteArray>(env->GetObjectArrayElement(arguments.strings, i));
        if (bytes == nullptr) {
            std::printf("\n\n jbarray=0 is number %d\n\n\n", i); // Kept: a null value is told to the console.
            continue;
        }
        held->texts[i] = copy_bytes(env, bytes);
        env->DeleteLocalRef(bytes);
        if (held->texts[i] == nullptr) {
            PIM_TRACE(TRACE_HARD, "Exception : commit...\n");
            raise_general_error(env, "Error : malloc ERROR");
            return false;
        }
    }
    return true;
}

// The elements of arrays that may be null; false when they cannot be had. Whichever cannot leaves an exception pending,
// with which no others may be asked for.
static bool take_elements(JNIEnv* env, const commit_arguments& arguments, commit_buffers* held)
{
    if (arguments.ints != nullptr) {
        held->ints = env->GetIntArrayElements(arguments.ints, nullptr);
        if (held->ints == nullptr) return false;
    }
    if (arguments.bytes != nullptr) {
        held->bytes = env->GetByteArrayElements(arguments.bytes, nullptr);
        if (held->bytes == nullptr) return false;
    }
    if (arguments.longs != nullptr) {
        held->longs = env->GetLongArrayElements(arguments.longs, nullptr);
        if (held->longs == nullptr) return false;
    }
    return true;
}

// Whether element 0 of the categories says `numcats`, and as many names follow it.
static bool category_count_agrees(JNIEnv* env, const commit_arguments& arguments, jsize categorysize)
{
    if (categorysize - 1 < arguments.numcats) return false;
    auto count = static_cast<jstring>(env->GetObjectArrayElement(arguments.categories, 0));
    if (count == nullptr) return false;
    const bool agrees = with_characters<bool>(
        env, count, false, [&](const char* digits) { return std::strtol(digits, nullptr, 10) == arguments.numcats; });
    env->DeleteLocalRef(count);
    return agrees;
}

static bool take_categories(JNIEnv* env, const commit_arguments& arguments, commit_buffers* held)
{
    const jsize categorysize = array_length(env, arguments.categories);
    PIM_TRACE(TRACE_STEP, "categorysize = %d\n", categorysize);
    PIM_TRACE(TRACE_STEP, "numbcat = %d\n", arguments.numcats);
    if (arguments.numcats <= 0) return true;

    held->categories = allocate_zeroed<char*>(static_cast<size_t>(std::max(categorysize, 1))).release();
    if (held->categories == nullptr) {
        PIM_TRACE(TRACE_HARD, "memory allocation failed..\n");
        return false;
    }
    held->category_count = categorysize;
    if (!category_count_agrees(env, arguments, categorysize)) {
        PIM_TRACE(TRACE_HARD, "Exception : numcats commit...\n");
        raise_general_error(env, "Error : numcat != categorycount");
        return false;
    }
    for (jsize i = 0; i < arguments.numcats; ++i) {
        auto name = static_cast<jstring>(env->GetObjectArrayElement(arguments.categories, i + 1));
        if (name == nullptr) continue;
        held->categories[i] =
            with_characters<char*>(env, name, nullptr, [](const char* characters) { return strdup(characters); });
        env->DeleteLocalRef(name);
        if (held->categories[i] == nullptr) {
            PIM_TRACE(TRACE_HARD, "Exception : numcats commit...\n");
            raise_general_error(env, "Error : malloc ERROR");
            return false;
        }
        PIM_TRACE(TRACE_STEP, "category[%d] = %s\n", i, held->categories[i]);
    }
    return true;
}

static int32_t commit(jint listtype, const CommitRequest& request)
{
    switch (listtype) {
    case LIST_CONTACT: return pimItemImpl_contact_commitN(request);
    case LIST_EVENT: return pimItemImpl_event_commitN(request);
    case LIST_TODO: return pimItemImpl_todo_commitN(request);
    default: return 0;
    }
}

// Unpacks the arguments, leaving what it took in `held`, and commits them. Returns the commit's own result, or -1.
static int32_t unpack_and_commit(JNIEnv* env, jint listtype, jint recindex, const commit_arguments& arguments,
                                 commit_buffers* held)
{
    static constexpr jint NO_STRING_ENTRIES[] = {0};
    static constexpr int64_t NO_LONG_ENTRIES[] = {0};

    const jsize stringids_length = array_length(env, arguments.stringids);
    if (stringids_length > 0) {
        held->stringids = env->GetIntArrayElements(arguments.stringids, nullptr);
        if (held->stringids == nullptr) return -1;
    }
    const jint* stringids = held->stringids != nullptr ? held->stringids : NO_STRING_ENTRIES;
    PIM_TRACE(TRACE_STEP, "stringsize = %d stringid = %d\n", array_length(env, arguments.strings), stringids[0]);

    const jint string_entries = entry_count(stringids, stringids_length, 3);
    if (string_entries < 0) {
        PIM_TRACE(TRACE_HARD, "stringids holds no %d entries\n", stringids[0]);
        return -1;
    }
    if (!take_texts(env, arguments, string_entries, held) || !take_elements(env, arguments, held) ||
        !take_categories(env, arguments, held))
        return -1;

    const jsize longs_length = array_length(env, arguments.longs);
    const int64_t* longvalue = longs_length > 0 ? held->longs : NO_LONG_ENTRIES;
    if (entry_count(longvalue, longs_length, 4) < 0) {
        PIM_TRACE(TRACE_HARD, "longvalue holds no %lld entries\n", static_cast<long long>(longvalue[0]));
        return -1;
    }
    return commit(listtype, {.recindex = recindex,
                             .stringids = stringids,
                             .stringvaluess = held->texts,
                             .intvalue = held->ints,
                             .bytevalue = held->bytes,
                             .longvalue = longvalue,
                             .categories = held->categories,
                             .categorycount = std::max(arguments.numcats, 0)});
}

extern "C" JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMItemImpl_commitN(
    JNIEnv* env, jobject, jint listtype, jint /*unused*/, jint recindex, jintArray stringids, jobjectArray strings,
    jintArray ints, jbyteArray bytes, jlongArray longs, jobjectArray categories, jint numcats)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    const commit_arguments arguments = {stringids, strings, ints, bytes, longs, categories, numcats};
    commit_buffers held = {};

    const int32_t result = unpack_and_commit(env, listtype, recindex, arguments, &held);
    const bool failed = result < 0 || result > RECORD_INDEX_MAX;
    if (failed)
        PIM_TRACE(TRACE_HARD, "Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(%d)\n", result);
    else
        PIM_TRACE(TRACE_STEP, "free memory start stringsize = %d realcategorysize = %d\n", held.text_count,
                  held.category_count);
    release_commit_buffers(env, arguments, held);
    if (failed) return -1;

    PIM_TRACE(TRACE_STEP, "returnindex : %d\n", result);
    const time_t now = time(nullptr);
    tm utc = {};
    gmtime_r(&now, &utc);
    PIM_TRACE(TRACE_STEP, "66 #########################################\n");
    PIM_TRACE(TRACE_STEP, "hour : %d min : %d sec : %d\n", utc.tm_hour, utc.tm_min, utc.tm_sec);
    return result;
}
