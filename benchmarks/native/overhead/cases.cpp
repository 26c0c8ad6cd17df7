#include "cases.h"

#include <cstdint>

#include "fast_jni.h"
#include "fast_platform.h"
#include "minimum.h"
#include "natives.h"
#include "pimcodes.h"

// ---- Arguments ------------------------------------------------------------------------------------------------------

static auto* const group = fast_string(FAST_GROUP);
static auto* const other_group = fast_string("Office");
static auto* const match = fast_string(FAST_MATCH);
static auto* const no_ints = fast_ints({});
static auto* const no_bytes = fast_bytes("");

namespace {

// What a commit takes from Java.
struct committed {
    jintArray stringids;
    jobjectArray strings;
    jlongArray longs;
    jobjectArray categories;
    jint numcats;
};

} // namespace

static const committed contact = {
    fast_ints({5, CONTACT_NAME, 0, 0, CONTACT_NOTE, 0, 0, CONTACT_TEL, 0, ATTR_WORK, CONTACT_EMAIL, 0,
               ATTR_EMAIL_PRIVATE, CONTACT_ADDR, 0, ATTR_HOME}),
    fast_objects({fast_bytes("Hopper"), fast_bytes("Grace"), fast_bytes("Met at the conference"),
                  fast_bytes("+49 30 1234567"), fast_bytes("grace@example.org"), fast_bytes("Box 1"),
                  fast_bytes("Third floor"), fast_bytes("Main Street 1"), fast_bytes("Arlington"),
                  fast_bytes("Virginia"), fast_bytes("22201"), fast_bytes("USA")}),
    fast_longs({1, CONTACT_BIRTHDAY, 0, 0, -1990000000000}),
    fast_objects({fast_string("1"), group}),
    1,
};

static const committed event = {
    fast_ints({2, EVENT_SUMMARY, 0, 0, EVENT_LOCATION, 0, 0}),
    fast_objects({fast_bytes("Stand-up meeting"), fast_bytes("Second floor")}),
    fast_longs({2, EVENT_START, 0, 0, 1577934245000, EVENT_END, 0, 0, 1577937845000}),
    fast_objects({fast_string("0")}),
    0,
};

static const committed todo = {
    fast_ints({1, TODO_SUMMARY, 0, 0}),
    fast_objects({fast_bytes("Write the report")}),
    fast_longs({2, TODO_DUE, 0, 0, 1577934245000, TODO_PRIORITY, 0, 0, 1}),
    fast_objects({fast_string("0")}),
    0,
};

static jint commit(decltype(minimum_PIMItemImpl_commitN) native, JNIEnv* env, jint listtype, jint recindex,
                   const committed& values)
{
    return native(env, nullptr, listtype, 0, recindex, values.stringids, values.strings, no_ints, no_bytes,
                  values.longs, values.categories, values.numcats);
}

// ---- Cases ----------------------------------------------------------------------------------------------------------

template <typename Native, typename... Arguments>
static jlong result_of(Native native, JNIEnv* env, Arguments... arguments)
{
    using result = decltype(native(env, nullptr, arguments...));
    if constexpr (std::is_void_v<result>) {
        native(env, nullptr, arguments...);
        return 0;
    } else if constexpr (std::is_pointer_v<result>) {
        return reinterpret_cast<intptr_t>(native(env, nullptr, arguments...));
    } else {
        return native(env, nullptr, arguments...);
    }
}

// clang-format off
#define CASE(class_name, method, when, ...)                                                                           \
    {#class_name "." #method, when,                                                                                   \
     [](JNIEnv* env) { return result_of(Java_com_qvr_zek_pim_##class_name##_##method, env __VA_OPT__(,) __VA_ARGS__); }, \
     [](JNIEnv* env) { return result_of(minimum_##class_name##_##method, env __VA_OPT__(,) __VA_ARGS__); }}

#define COMMIT(when, ...)                                                                                   \
    {"PIMItemImpl.commitN", when,                                                                           \
     [](JNIEnv* env) { return jlong{commit(Java_com_qvr_zek_pim_PIMItemImpl_commitN, env, __VA_ARGS__)}; }, \
     [](JNIEnv* env) { return jlong{commit(minimum_PIMItemImpl_commitN, env, __VA_ARGS__)}; }}
// clang-format on

static constexpr overhead_case CASES[] = {
    CASE(PIMImpl, openPIMListN, "", LIST_CONTACT, 1),
    CASE(PIMImpl, listPIMListsN, "", LIST_CONTACT),

    CASE(PIMListImpl, closePIMListN, "", LIST_CONTACT, 0),
    CASE(PIMListImpl, nextRecordN, "contacts", LIST_CONTACT, 0, FAST_CURRENT),
    CASE(PIMListImpl, nextRecordN, "events", LIST_EVENT, 0, FAST_CURRENT),
    CASE(PIMListImpl, nextRecordN, "to-dos", LIST_TODO, 0, FAST_CURRENT),
    CASE(PIMListImpl, nextRecordInCategoryN, "a category", LIST_CONTACT, 0, FAST_CURRENT, group),
    CASE(PIMListImpl, nextRecordInCategoryN, "none", LIST_CONTACT, 0, -1, nullptr),
    CASE(PIMListImpl, nextRecordWithMatchStrN, "contacts", LIST_CONTACT, 0, FAST_CURRENT, match),
    CASE(PIMListImpl, nextRecordWithMatchStrN, "events", LIST_EVENT, 0, FAST_CURRENT, match),
    CASE(PIMListImpl, nextRecordWithMatchStrN, "to-dos", LIST_TODO, 0, FAST_CURRENT, match),
    CASE(PIMListImpl, removeItemN, "a contact", LIST_CONTACT, 0, 1),
    CASE(PIMListImpl, removeItemN, "an event", LIST_EVENT, 0, 1),
    CASE(PIMListImpl, removeItemN, "a to-do", LIST_TODO, 0, 1),
    CASE(PIMListImpl, getSupportedFieldsN, "", LIST_CONTACT, 0),
    CASE(PIMListImpl, maxValuesN, "", LIST_CONTACT, 0, CONTACT_TEL),
    CASE(PIMListImpl, getSupportedAttributesN, "", LIST_CONTACT, 0, CONTACT_TEL),
    CASE(PIMListImpl, getAllSupportedAttributesN, "", LIST_CONTACT, 0),
    CASE(PIMListImpl, getSupportedArrayElementsN, "", LIST_CONTACT, 0, CONTACT_ADDR),
    CASE(PIMListImpl, getExtendedFieldsN, "", LIST_CONTACT, 0),
    CASE(PIMListImpl, getExtendedFieldDataTypeN, "", LIST_TODO, 0),
    CASE(PIMListImpl, extendedStringArraySizeN, "", LIST_TODO, 0),
    CASE(PIMListImpl, getFieldLabelN, "", LIST_CONTACT, 0, CONTACT_TEL),
    CASE(PIMListImpl, getAttributeLabelN, "", LIST_CONTACT, 0, ATTR_SIM),
    CASE(PIMListImpl, getArrayElementLabelN, "", LIST_CONTACT, 0, CONTACT_ADDR, ADDR_COUNTRY),
    CASE(PIMListImpl, maxCategoriesN, "", LIST_CONTACT, 0),
    CASE(PIMListImpl, getCategoriesN, "", LIST_CONTACT, 0),
    CASE(PIMListImpl, addCategoryN, "", LIST_CONTACT, 0, other_group),
    CASE(PIMListImpl, renameCategoryN, "", LIST_CONTACT, 0, group, other_group),
    CASE(PIMListImpl, deleteCategoryN, "", LIST_CONTACT, 0, group, jboolean{JNI_TRUE}),
    CASE(PIMListImpl, isCategoryN, "", LIST_CONTACT, 0, group),

    CASE(PIMItemImpl, isRecordDeletedN, "a contact", LIST_CONTACT, 0, 1),
    CASE(PIMItemImpl, isRecordDeletedN, "an event", LIST_EVENT, 0, 1),
    CASE(PIMItemImpl, isRecordDeletedN, "a to-do", LIST_TODO, 0, 1),
    CASE(PIMItemImpl, getBinaryN, "", LIST_CONTACT, 0),
    CASE(PIMItemImpl, getAttributesN, "", LIST_CONTACT, 0, 1, CONTACT_TEL, 1),
    CASE(PIMItemImpl, getDateN, "a contact", LIST_CONTACT, 0, 1, CONTACT_BIRTHDAY, 0),
    CASE(PIMItemImpl, getDateN, "an event", LIST_EVENT, 0, 1, EVENT_START, 0),
    CASE(PIMItemImpl, getDateN, "a to-do", LIST_TODO, 0, 1, TODO_DUE, 0),
    CASE(PIMItemImpl, getBooleanN, "a contact", LIST_CONTACT, 0, 1, CONTACT_TEL, 0),
    CASE(PIMItemImpl, getBooleanN, "an event", LIST_EVENT, 0, 1, EVENT_START, 0),
    CASE(PIMItemImpl, getBooleanN, "a to-do", LIST_TODO, 0, 1, TODO_COMPLETED, 0),
    CASE(PIMItemImpl, getIntN, "a contact", LIST_CONTACT, 0, 1, CONTACT_TEL, 0),
    CASE(PIMItemImpl, getIntN, "an event", LIST_EVENT, 0, 1, EVENT_ALARM, 0),
    CASE(PIMItemImpl, getIntN, "a to-do", LIST_TODO, 0, 1, TODO_PRIORITY, 0),
    CASE(PIMItemImpl, getStringN, "a contact", LIST_CONTACT, 0, 1, CONTACT_EMAIL, 1),
    CASE(PIMItemImpl, getStringN, "an event", LIST_EVENT, 0, 1, EVENT_SUMMARY, 0),
    CASE(PIMItemImpl, getStringN, "a to-do", LIST_TODO, 0, 1, TODO_SUMMARY, 0),
    CASE(PIMItemImpl, getStringArrayN, "a name", LIST_CONTACT, 0, 1, CONTACT_NAME, 0),
    CASE(PIMItemImpl, getStringArrayN, "an address", LIST_CONTACT, 0, 1, CONTACT_ADDR, 0),
    CASE(PIMItemImpl, getFieldsN, "a contact", LIST_CONTACT, 0, 1),
    CASE(PIMItemImpl, getFieldsN, "an event", LIST_EVENT, 0, 1),
    CASE(PIMItemImpl, getFieldsN, "a to-do", LIST_TODO, 0, 1),
    CASE(PIMItemImpl, countValuesN, "a contact", LIST_CONTACT, 0, 1, CONTACT_TEL),
    CASE(PIMItemImpl, countValuesN, "an event", LIST_EVENT, 0, 1, EVENT_SUMMARY),
    CASE(PIMItemImpl, countValuesN, "a to-do", LIST_TODO, 0, 1, TODO_SUMMARY),
    CASE(PIMItemImpl, maxCategoriesN, "", LIST_CONTACT, 0),
    CASE(PIMItemImpl, getCategoriesN, "", LIST_CONTACT, 0, 1),
    COMMIT("a new contact", LIST_CONTACT, -1, contact),
    COMMIT("a contact", LIST_CONTACT, FAST_UPDATED, contact),
    COMMIT("a new event", LIST_EVENT, -1, event),
    COMMIT("an event", LIST_EVENT, 1, event),
    COMMIT("a new to-do", LIST_TODO, -1, todo),
    COMMIT("a to-do", LIST_TODO, 1, todo),

    CASE(ContactImpl, getPreferredIndexN, "", 0, 1, CONTACT_TEL),
    CASE(EventImpl, getRepeatIntN, "", 0, 1, REPEAT_INTERVAL),
    CASE(EventImpl, getRepeatDateN, "", 0, 1, REPEAT_END),
    CASE(EventImpl, getRepeatFieldsN, "", 0, 1),
    CASE(EventImpl, getRepeatExceptDatesN, "", 0, 1),
    CASE(EventListImpl, nextSortedEventN, "", 0, 0),
    CASE(EventListImpl, getSupportedRepeatRuleFrequenciesN, ""),
    CASE(EventListImpl, getSupportedRepeatRuleFieldsN, "", FREQUENCY_YEARLY),
    CASE(ToDoListImpl, nextSortedToDoN, "", 0, TODO_DUE, 0),
};

std::span<const overhead_case> overhead_cases()
{
    return CASES;
}
