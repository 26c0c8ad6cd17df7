#include "minimum.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "contact_db_service.h"
#include "org_db_service.h"
#include "pimcodes.h"
#include "pimtrace.h"

// Code for the case that all goes well. A step that fails ends a native at once: what a failure costs is not measured,
// but every result is looked at. What the platform is handed is the same to the byte, so blocks are cleared that it
// might read. What only the library sees is neither cleared nor copied for longer than it takes.

#define STEP(...)                 PIM_TRACE(TRACE_STEP, __VA_ARGS__)
#define ENTERED(class_and_method) STEP("%s ***\n", "Java_com_qvr_zek_pim_" #class_and_method)

extern "C" {

// ---- Connections ----------------------------------------------------------------------------------------------------

static void open_contacts(int* error)
{
    STEP("%s CONTACT ***\n", "native_function_initialize");
    if (!contact_db_service_connect(error)) *error = 10003;
}

static bool close_contacts()
{
    int error = 0;
    STEP("%s ***\n", "native_function_finalize");
    return contact_db_service_disconnect(&error) != 0;
}

// Quicker than calloc() for small blocks, and than the code that a known size gets in place of memset().
__attribute__((noinline)) static void* new_zeroed(size_t size)
{
    void* block = malloc(size);
    if (block != nullptr) memset(block, 0, size);
    return block;
}

static bool open_organizer(const char* list, org_full_record* record, int* error)
{
    memset(record, 0, sizeof *record);
    STEP("%s %s ***\n", "native_function_initialize", list);
    if (!org_db_service_connect_database(error) || !org_db_service_init_full_record(record, error)) return false;
    record->summary = static_cast<char*>(new_zeroed(ORG_SUMMARY_MAX + 1));
    record->description = static_cast<char*>(new_zeroed(ORG_DESCRIPTION_MAX + 1));
    record->location = static_cast<char*>(new_zeroed(ORG_LOCATION_MAX + 1));
    record->text_172 = static_cast<char*>(new_zeroed(ORG_TEXT_172_MAX + 1));
    record->text_340 = static_cast<char*>(new_zeroed(ORG_TEXT_340_MAX + 1));
    record->text_344 = static_cast<char*>(new_zeroed(ORG_TEXT_344_MAX + 1));
    record->text_348 = static_cast<char*>(new_zeroed(ORG_TEXT_348_MAX + 1));
    return true;
}

static bool close_organizer(const char* list, org_full_record* record)
{
    int error = 0;
    STEP("%s ***\n", "native_function_finalize");
    STEP("%s %s ***\n", "native_function_finalize", list);
    return org_db_service_disconnect_database(&error) && org_db_service_free_full_record(record, &error);
}

// Opens the contacts and fetches one.
static bool open_contact(int recindex, contact_record* contact)
{
    int error = 0;
    memset(contact, 0, sizeof *contact);
    open_contacts(&error);
    return contact_db_service_contact_get(0, recindex, 0, contact, &error) != 0;
}

static bool close_contact(contact_record* contact)
{
    contact_db_service_contact_free(contact);
    return close_contacts();
}

// Opens the events or to-dos and fetches one.
static bool open_item(const char* list, int recindex, org_full_record* record)
{
    int error = 0;
    return open_organizer(list, record, &error) &&
           org_db_service_get_record_full_field_by_index(recindex, record, &error);
}

// The same for readers that prepare their record once more.
static bool open_prepared_item(const char* list, int recindex, org_full_record* record)
{
    int error = 0;
    return open_organizer(list, record, &error) && org_db_service_init_full_record(record, &error) &&
           org_db_service_get_record_full_field_by_index(recindex, record, &error);
}

// ---- Dates ----------------------------------------------------------------------------------------------------------

// Seconds since the epoch, or -1.
static int64_t seconds_of_words(tm* words)
{
    const int64_t seconds = mktime(words);
    return seconds < INT32_MIN || seconds > INT32_MAX ? -1 : seconds;
}

static int64_t seconds_of(const broken_down_time* time)
{
    tm words = {};
    memcpy(&words, time, sizeof *time);
    return seconds_of_words(&words);
}

// The same for a time in a record that the store sees again.
static int64_t normalise(broken_down_time* time)
{
    tm words = {};
    memcpy(&words, time, sizeof *time);
    const int64_t seconds = seconds_of_words(&words);
    if (seconds != -1) memcpy(time, &words, sizeof *time);
    return seconds;
}

static void put_local_time(broken_down_time* time, int64_t milliseconds)
{
    const time_t seconds = static_cast<int32_t>(milliseconds / 1000);
    tm words;
    tzset();
    localtime_r(&seconds, &words);
    memcpy(time, &words, sizeof *time);
}

// ---- Java -----------------------------------------------------------------------------------------------------------

static jintArray int_array(JNIEnv* env, const jint* values, jsize count)
{
    jintArray array = env->NewIntArray(count);
    if (array != nullptr && count > 0) env->SetIntArrayRegion(array, 0, count, values);
    return array;
}

// A String[], to be filled with append_string.
static jobjectArray string_array(JNIEnv* env, jsize count)
{
    jclass string_class = env->FindClass("java/lang/String");
    return string_class != nullptr ? env->NewObjectArray(count, string_class, nullptr) : nullptr;
}

static bool set_string(JNIEnv* env, jobjectArray array, jsize index, const char* text)
{
    jstring string = env->NewStringUTF(text);
    if (string == nullptr) return false;
    env->SetObjectArrayElement(array, index, string);
    env->DeleteLocalRef(string);
    return true;
}

// ---- PIMImpl --------------------------------------------------------------------------------------------------------

jint minimum_PIMImpl_openPIMListN(JNIEnv*, jobject, jint listtype, jint)
{
    STEP(">>>>>>> %s\n", "Java_com_qvr_zek_pim_PIMImpl_openPIMListN");
    if (listtype < LIST_CONTACT || listtype > LIST_TODO) puts(":71  line, It is invalid list type");
    return 0;
}

jobjectArray minimum_PIMImpl_listPIMListsN(JNIEnv* env, jobject, jint listtype)
{
    const char* name = listtype == LIST_CONTACT ? "Contacts"
                       : listtype == LIST_EVENT ? "Calendar"
                       : listtype == LIST_TODO  ? "Tasks"
                                                : "";
    STEP(">>>>>>> %s\n", "Java_com_qvr_zek_pim_PIMImpl_listPIMListsN");
    STEP("%s \n", name);
    jobjectArray array = string_array(env, 1);
    return array != nullptr && set_string(env, array, 0, name) ? array : nullptr;
}

// ---- PIMListImpl: walks ---------------------------------------------------------------------------------------------

void minimum_PIMListImpl_closePIMListN(JNIEnv*, jobject, jint, jint)
{
    ENTERED(PIMListImpl_closePIMListN);
}

static int* new_indices(int count)
{
    const size_t size = static_cast<size_t>(count > 0 ? count : 1) * sizeof(int);
    auto* indices = static_cast<int*>(malloc(size));
    if (indices != nullptr) memset(indices, -1, size);
    return indices;
}

// The position behind `after`.
static int position_after(const int* indices, int count, int after)
{
    if (count < 1 || after == -1) return 0;
    if (after == indices[count - 1]) return count;
    for (int i = 0; i < count; ++i)
        if (indices[i] == after) return i + 1;
    return 0;
}

static int index_after(const int* indices, int count, int after)
{
    const int position = position_after(indices, count, after);
    return position < count ? indices[position] : -1;
}

// Counts and lists the contacts.
static int* list_contacts(int* count, int* error)
{
    if (!contact_db_service_contact_get_count(0, count, error) || *count < 1) return nullptr;
    int listed = *count;
    int* indices = new_indices(listed);
    if (indices == nullptr || !contact_db_service_contact_get_all_indices(0, indices, &listed, error)) return nullptr;
    if (listed < *count) *count = listed;
    return indices;
}

static int* list_items(int type, int* count, int* error)
{
    org_db_service_get_record_count(0, type, count, error);
    int* indices = new_indices(*count);
    if (indices == nullptr || !org_db_service_get_records_id(0, type, *count, 0, indices, error)) return nullptr;
    return indices;
}

static int next_contact(int recindex)
{
    int count = 0;
    int error = 0;
    open_contacts(&error);
    int* indices = list_contacts(&count, &error);
    if (indices == nullptr) return -1;
    const int next = index_after(indices, count, recindex);
    const bool closed = close_contacts();
    free(indices);
    return closed ? next : -1;
}

static int next_item(const char* list, int type, int recindex)
{
    org_full_record record;
    int count = 0;
    int error = 0;
    if (!open_organizer(list, &record, &error)) return -1;
    int* indices = list_items(type, &count, &error);
    if (indices == nullptr) return -1;
    const int next = index_after(indices, count, recindex);
    const bool closed = close_organizer(list, &record);
    free(indices);
    return closed ? next : -1;
}

jint minimum_PIMListImpl_nextRecordN(JNIEnv*, jobject, jint listtype, jint, jint recindex)
{
    int next;
    ENTERED(PIMListImpl_nextRecordN);
    STEP("%s, recindex = %d\n", "pimlistimpl_nextRecordN", recindex);
    switch (listtype) {
    case LIST_CONTACT: next = next_contact(recindex); break;
    case LIST_EVENT: next = next_item("EVENT", ORG_TYPE_EVENT, recindex); break;
    case LIST_TODO: next = next_item("TODO", ORG_TYPE_TODO, recindex); break;
    default: return -1;
    }
    STEP("index: %d \n", next);
    return next;
}

static int next_in_category(const char* name, int recindex, int* error)
{
    contact_group_record group;
    int key = 0;
    int count = CONTACT_RECORD_MAX;
    memset(&group, 0, sizeof group);
    if (!contact_db_service_group_get_id_by_name(0, name, &key, error) ||
        !contact_db_service_group_get(0, key, &group, error))
        return -1;
    int* members = new_indices(CONTACT_RECORD_MAX);
    if (members == nullptr || !contact_db_service_group_get_members(0, key, members, &count, error)) return -1;
    if (count > CONTACT_RECORD_MAX) count = CONTACT_RECORD_MAX;
    const int next = index_after(members, count, recindex);
    free(members);
    return next;
}

static int next_without_category(int recindex, int* error)
{
    constexpr size_t WORK_BLOCK_SIZE = 1496;
    void* work_block = calloc(WORK_BLOCK_SIZE, 1); // Promised: without memory for it the walk ends.
    if (work_block == nullptr) return -1;
    GList* contacts = nullptr;
    if (!contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, &contacts, error)) return -1;
    int next = -1;
    if (contacts != nullptr && recindex == -1) next = *static_cast<int*>(contacts->data);
    for (GList* node = contacts; node != nullptr && node->next != nullptr; node = node->next) {
        if (recindex == -1 || *static_cast<int*>(node->data) != recindex) continue;
        next = *static_cast<int*>(node->next->data);
        break;
    }
    g_list_free_full(contacts, free);
    free(work_block);
    return next;
}

jint minimum_PIMListImpl_nextRecordInCategoryN(JNIEnv* env, jobject, jint listtype, jint, jint recindex,
                                               jstring category)
{
    int error = 0;
    const char* name = nullptr;
    ENTERED(PIMListImpl_nextRecordInCategoryN);
    if (category != nullptr && (name = env->GetStringUTFChars(category, nullptr)) == nullptr) return -1;
    STEP("%s, recindex = %d\n", "pimlistimpl_nextRecordInCategoryN", recindex);
    if (listtype != LIST_CONTACT) return -1;
    open_contacts(&error);
    int next = name != nullptr ? next_in_category(name, recindex, &error) : next_without_category(recindex, &error);
    if (!close_contacts()) next = -1;
    STEP("index: %d \n", next);
    if (name != nullptr) env->ReleaseStringUTFChars(category, name);
    return next;
}

// ---- PIMListImpl: search --------------------------------------------------------------------------------------------

static void fold(char* text, size_t length)
{
    for (size_t i = 0; i < length; ++i)
        if (text[i] >= 'A' && text[i] <= 'Z') text[i] = static_cast<char>(text[i] + 32);
}

static bool contains(char* text, size_t limit, char* match)
{
    const size_t length = strnlen(text, limit);
    if (length == 0) return true;
    const size_t match_length = strlen(match);
    fold(match, match_length);
    fold(text, length);
    return memmem(text, length, match, match_length) != nullptr;
}

static bool contact_text_matches(const char* field, char* text, size_t size, char* match)
{
    STEP("contact_record->%s ------%.*s\tmatching str:%s\n", field, static_cast<int>(size), text, match);
    return contains(text, size, match);
}

#define MATCHES(name, text) contact_text_matches(name, text, sizeof(text), match)

static bool address_matches(contact_address* address, char* match)
{
    return MATCHES("address_info[i].street", address->street) ||
           MATCHES("address_info[i].additional_info", address->additional_info) ||
           MATCHES("address_info[i].city", address->city) ||
           MATCHES("address_info[i].postal_code", address->postal_code) ||
           MATCHES("address_info[i].state", address->state) || MATCHES("address_info[i].country", address->country) ||
           MATCHES("address_info[i].pobox", address->pobox);
}

static bool contact_matches(contact_record* contact, char* match)
{
    if (MATCHES("name_info.first_name", contact->name_info.first_name)) return true;
    if (MATCHES("name_info.last_name", contact->name_info.last_name)) return true;
    if (contact->address_info != nullptr)
        for (int i = 0; i < contact->postal_count; ++i)
            if (address_matches(&contact->address_info[i], match)) return true;
    if (contact->email_info != nullptr)
        for (int i = 0; i < contact->email_count; ++i)
            if (MATCHES("email_info[i].email", contact->email_info[i].email)) return true;
    if (contact->note != nullptr && contact->note_size > 0 &&
        contact_text_matches("note", contact->note, static_cast<size_t>(contact->note_size), match))
        return true;
    if (MATCHES("company_name", contact->company_name)) return true;
    if (contact->phone_info != nullptr)
        for (int i = 0; i < contact->phone_count; ++i)
            if (MATCHES("phone_info[i].number", contact->phone_info[i].number)) return true;
    if (MATCHES("job_title", contact->job_title)) return true;
    STEP("contact_record->homepage_info[0].homepage------%.*s\tmatching str:%s\n",
         static_cast<int>(sizeof contact->homepage_info[0].homepage), contact->homepage_info[0].homepage, match);
    return false;
}

static int next_matching_contact(int recindex, char* match)
{
    contact_record contact;
    int count = 0;
    int error = 0;
    int next = -1;
    open_contacts(&error);
    int* indices = list_contacts(&count, &error);
    if (indices == nullptr) return -1;
    for (int i = position_after(indices, count, recindex); i < count && next == -1; ++i) {
        memset(&contact, 0, sizeof contact);
        if (contact_db_service_contact_get_by_index(0, indices[i], 0, &contact, &error) &&
            contact_matches(&contact, match))
            next = indices[i];
        contact_db_service_contact_free(&contact);
    }
    free(indices);
    return close_contacts() ? next : -1;
}

static bool item_text_matches(const char* field, char* text, size_t limit, char* match)
{
    STEP("org_sch_record.%s ------%s\tmatching str:%s\n", field, text != nullptr ? text : "", match);
    return text == nullptr || contains(text, limit, match);
}

static int next_matching_item(const char* list, int listtype, int recindex, char* match)
{
    org_full_record record;
    int count = 0;
    int error = 0;
    int next = -1;
    if (!open_organizer(list, &record, &error)) return -1;
    int* indices = list_items(listtype == LIST_EVENT ? ORG_TYPE_EVENT : ORG_TYPE_TODO, &count, &error);
    if (indices == nullptr) return -1;
    for (int i = position_after(indices, count, recindex); i < count && next == -1; ++i)
        if (org_db_service_get_record_full_field_by_index(indices[i], &record, &error) &&
            ((listtype == LIST_EVENT && item_text_matches("location", record.location, ORG_LOCATION_MAX, match)) ||
             item_text_matches("description", record.description, ORG_DESCRIPTION_MAX, match) ||
             item_text_matches("summary", record.summary, ORG_SUMMARY_MAX, match)))
            next = indices[i];
    free(indices);
    return close_organizer(list, &record) ? next : -1;
}

jint minimum_PIMListImpl_nextRecordWithMatchStrN(JNIEnv* env, jobject, jint listtype, jint, jint recindex,
                                                 jstring match)
{
    jint next = -1;
    ENTERED(PIMListImpl_nextRecordWithMatchStrN);
    const char* characters = match != nullptr ? env->GetStringUTFChars(match, nullptr) : nullptr;
    char* folded = characters != nullptr ? strdup(characters) : nullptr;
    if (folded == nullptr) return -1;
    STEP("%s, recindex = %d, matching str:%s\n", "pimlistimpl_nextRecordWithMatchStrN", recindex, folded);
    switch (listtype) {
    case LIST_CONTACT: next = next_matching_contact(recindex, folded); break;
    case LIST_EVENT: next = next_matching_item("EVENT", listtype, recindex, folded); break;
    case LIST_TODO: next = next_matching_item("TODO", listtype, recindex, folded); break;
    default: break;
    }
    free(folded);
    env->ReleaseStringUTFChars(match, characters);
    return next;
}

// ---- PIMListImpl: removal -------------------------------------------------------------------------------------------

static jint remove_contact(jint recindex)
{
    int error = 0;
    open_contacts(&error);
    STEP("###########################\n");
    if (contact_db_service_contact_delete(0, recindex, 0, 0, &error))
        STEP("contact_db_service_contact_delete %d is succeed\n", recindex);
    return close_contacts() ? 1 : 0;
}

static jint remove_item(const char* list, jint recindex)
{
    org_full_record record;
    int error = 0;
    if (!open_organizer(list, &record, &error)) return 0;
    STEP("###########################\n");
    if (org_db_service_delete_record(recindex, &error)) STEP("org_db_service_delete_record %d is succeed\n", recindex);
    return close_organizer(list, &record) ? 1 : 0;
}

jint minimum_PIMListImpl_removeItemN(JNIEnv*, jobject, jint listtype, jint handle, jint recindex)
{
    ENTERED(PIMListImpl_removeItemN);
    STEP("pimlistimpl_removeItemN handle : %d recindex :%d\n", handle, recindex);
    switch (listtype) {
    case LIST_CONTACT: return remove_contact(recindex);
    case LIST_EVENT: return remove_item("EVENT", recindex);
    case LIST_TODO: return remove_item("TODO", recindex);
    default: return 0;
    }
}

// ---- PIMListImpl: schema --------------------------------------------------------------------------------------------

#define INT_ARRAY(env, values) int_array(env, values, sizeof(values) / sizeof *(values))

static const jint CONTACT_FIELDS[] = {100, 101, 103, 106, 107, 108, 109, 114, 115, 116, 118};
static const jint EVENT_FIELDS[] = {100, 102, 103, 104, 105, 106, 107};
static const jint TODO_FIELDS[] = {101, 102, 103, 104, 105, 106, 107};

jintArray minimum_PIMListImpl_getSupportedFieldsN(JNIEnv* env, jobject, jint listtype, jint)
{
    switch (listtype) {
    case LIST_CONTACT: return INT_ARRAY(env, CONTACT_FIELDS);
    case LIST_EVENT: return INT_ARRAY(env, EVENT_FIELDS);
    case LIST_TODO: return INT_ARRAY(env, TODO_FIELDS);
    default: return nullptr;
    }
}

jint minimum_PIMListImpl_maxValuesN(JNIEnv*, jobject, jint listtype, jint, jint field)
{
    if (listtype < LIST_CONTACT || listtype > LIST_TODO) return -1;
    if (listtype != LIST_CONTACT) return 1;
    switch (field) {
    case CONTACT_ADDR:
    case CONTACT_URL: return 5;
    case CONTACT_EMAIL:
    case CONTACT_TEL: return 15;
    default: return 1;
    }
}

// The attributes of phones, e-mails and homepages; the places in the first are the stored types.
static const jint ATTRIBUTES[] = {
    ATTR_MOBILE_PRIVATE, ATTR_MOBILE_BUSINESS, ATTR_LINE_PRIVATE, ATTR_LINE_BUSINESS, ATTR_HOME,
    ATTR_WORK,           ATTR_VIDEO_CALL,      ATTR_FAX,          ATTR_VOICE_MAIL,    ATTR_SIM,
    ATTR_ASST,           ATTR_PAGER,           ATTR_OTHER,        ATTR_EMAIL_PRIVATE, ATTR_EMAIL_BUSINESS,
    ATTR_URL_PRIVATE,    ATTR_URL_BUSINESS};
static const jint PHONE_ATTRIBUTES = 13;
static const jint* const EMAIL_ATTRIBUTES = ATTRIBUTES + PHONE_ATTRIBUTES;
static const jint* const URL_ATTRIBUTES = EMAIL_ATTRIBUTES + 2;
static const jint ADDRESS_ATTRIBUTES[] = {ATTR_HOME, ATTR_WORK};

jintArray minimum_PIMListImpl_getSupportedAttributesN(JNIEnv* env, jobject, jint listtype, jint, jint field)
{
    if (listtype != LIST_CONTACT) return int_array(env, nullptr, 0);
    switch (field) {
    case CONTACT_ADDR: return INT_ARRAY(env, ADDRESS_ATTRIBUTES);
    case CONTACT_EMAIL: return int_array(env, EMAIL_ATTRIBUTES, 2);
    case CONTACT_TEL: return int_array(env, ATTRIBUTES, PHONE_ATTRIBUTES);
    case CONTACT_URL: return int_array(env, URL_ATTRIBUTES, 2);
    default: return int_array(env, nullptr, 0);
    }
}

jintArray minimum_PIMListImpl_getAllSupportedAttributesN(JNIEnv* env, jobject, jint listtype, jint)
{
    ENTERED(PIMListImpl_getAllSupportedAttributesN);
    return listtype == LIST_CONTACT ? INT_ARRAY(env, ATTRIBUTES) : int_array(env, nullptr, 0);
}

jintArray minimum_PIMListImpl_getSupportedArrayElementsN(JNIEnv* env, jobject, jint listtype, jint, jint field)
{
    static const jint ELEMENTS[] = {ADDR_POBOX,  ADDR_EXTRA,      ADDR_STREET, ADDR_LOCALITY,
                                    ADDR_REGION, ADDR_POSTALCODE, ADDR_COUNTRY};
    static const jint NONE[ADDR_ELEMENTS] = {};
    const jint* elements = listtype == LIST_CONTACT ? ELEMENTS : NONE;
    return int_array(env, elements, field == CONTACT_ADDR ? 7 : field == CONTACT_NAME ? 2 : 0);
}

jintArray minimum_PIMListImpl_getExtendedFieldsN(JNIEnv* env, jobject, jint listtype, jint)
{
    static const jint FIELDS[] = {0x1000000, 0x1000001, 0x1000002, 0x1000003, 0x1000004, 0x1000004};
    ENTERED(PIMListImpl_getExtendedFieldsN);
    switch (listtype) {
    case LIST_CONTACT: return int_array(env, FIELDS, 6);
    case LIST_EVENT: return int_array(env, FIELDS, 1);
    case LIST_TODO: return int_array(env, FIELDS, 2);
    default: return nullptr;
    }
}

jint minimum_PIMListImpl_getExtendedFieldDataTypeN(JNIEnv*, jobject, jint, jint)
{
    ENTERED(PIMListImpl_getExtendedFieldDataTypeN);
    return -1;
}

jint minimum_PIMListImpl_extendedStringArraySizeN(JNIEnv*, jobject, jint, jint)
{
    ENTERED(PIMListImpl_extendedStringArraySizeN);
    return 0;
}

// ---- PIMListImpl: labels --------------------------------------------------------------------------------------------

static const char* contact_field_label(jint field)
{
    switch (field) {
    case CONTACT_ADDR: return "Address";
    case CONTACT_BIRTHDAY: return "Birthday";
    case CONTACT_EMAIL: return "E-mail";
    case CONTACT_NAME: return "Name";
    case CONTACT_NICKNAME: return "Nick name";
    case CONTACT_NOTE: return "Note";
    case CONTACT_ORG: return "Company";
    case CONTACT_REVISION: return "Version";
    case CONTACT_TEL: return "Tel";
    case CONTACT_TITLE: return "Job title";
    case CONTACT_URL: return "Homepage";
    default: return nullptr;
    }
}

static const char* event_field_label(jint field)
{
    switch (field) {
    case EVENT_ALARM: return "Alarm";
    case EVENT_END: return "End";
    case EVENT_LOCATION: return "Location";
    case EVENT_NOTE: return "Note";
    case EVENT_REVISION: return "Version";
    case EVENT_START: return "Start";
    case EVENT_SUMMARY: return "Subject";
    default: return nullptr;
    }
}

static const char* todo_field_label(jint field)
{
    switch (field) {
    case TODO_COMPLETED: return "Status";
    case TODO_COMPLETION_DATE: return "Completed on";
    case TODO_DUE: return "Due";
    case TODO_NOTE: return "Note";
    case TODO_PRIORITY: return "Priority";
    case TODO_REVISION: return "Version";
    case TODO_SUMMARY: return "Subject";
    default: return nullptr;
    }
}

jstring minimum_PIMListImpl_getFieldLabelN(JNIEnv* env, jobject, jint listtype, jint, jint field)
{
    ENTERED(PIMListImpl_getFieldLabelN);
    const char* label = listtype == LIST_CONTACT ? contact_field_label(field)
                        : listtype == LIST_EVENT ? event_field_label(field)
                        : listtype == LIST_TODO  ? todo_field_label(field)
                                                 : nullptr;
    return label != nullptr ? env->NewStringUTF(label) : nullptr;
}

static const char* attribute_label(jint attribute)
{
    switch (attribute) {
    case ATTR_ASST: return "Assistant";
    case ATTR_AUTO: return "Car";
    case ATTR_FAX: return "Fax";
    case ATTR_HOME: return "Home";
    case ATTR_HOME | ATTR_FAX: return "Home fax";
    case ATTR_MOBILE: return "Mobile";
    case ATTR_OTHER: return "Other";
    case ATTR_PAGER: return "Pager";
    case ATTR_SMS: return "SMS";
    case ATTR_WORK: return "Work";
    case ATTR_WORK | ATTR_FAX: return "Work fax";
    case ATTR_MOBILE_PRIVATE: return "Mobile private";
    case ATTR_MOBILE_BUSINESS: return "Mobile business";
    case ATTR_LINE_PRIVATE: return "Line private";
    case ATTR_LINE_BUSINESS: return "Line business";
    case ATTR_VIDEO_CALL: return "Video call";
    case ATTR_VOICE_MAIL: return "Voice mail";
    case ATTR_SIM: return "Sim";
    case ATTR_EMAIL_PRIVATE: return "Email Private";
    case ATTR_EMAIL_BUSINESS: return "Email Business";
    case ATTR_URL_PRIVATE: return "Homepage Private";
    case ATTR_URL_BUSINESS: return "Homepage Business";
    default: return "";
    }
}

jstring minimum_PIMListImpl_getAttributeLabelN(JNIEnv* env, jobject, jint listtype, jint, jint attribute)
{
    ENTERED(PIMListImpl_getAttributeLabelN);
    return env->NewStringUTF(listtype == LIST_CONTACT ? attribute_label(attribute) : "");
}

static const char* element_label(jint field, jint element)
{
    static const char* const ADDRESS[] = {"Pobox", "extra", "Street", "City", "State", "Zip", "Country"};
    static const char* const NAME[] = {"Last", "First"};
    if (element < 0) return "";
    if (field == CONTACT_ADDR && element < 7) return ADDRESS[element];
    if (field == CONTACT_NAME && element < 2) return NAME[element];
    return "";
}

jstring minimum_PIMListImpl_getArrayElementLabelN(JNIEnv* env, jobject, jint listtype, jint, jint field, jint element)
{
    ENTERED(PIMListImpl_getArrayElementLabelN);
    STEP("%s is called\n", "pimlistimpl_getArrayElementLabelN");
    return env->NewStringUTF(listtype == LIST_CONTACT ? element_label(field, element) : "");
}

// ---- PIMListImpl: categories ----------------------------------------------------------------------------------------

jint minimum_PIMListImpl_maxCategoriesN(JNIEnv*, jobject, jint listtype, jint)
{
    ENTERED(PIMListImpl_maxCategoriesN);
    return listtype == LIST_CONTACT ? LIST_CATEGORIES_MAX : 0;
}

static contact_group_record* new_groups(int count)
{
    return static_cast<contact_group_record*>(
        calloc(static_cast<size_t>(count > 0 ? count : 1), sizeof(contact_group_record)));
}

jobjectArray minimum_PIMListImpl_getCategoriesN(JNIEnv* env, jobject, jint, jint)
{
    int count = 0;
    int error = 0;
    ENTERED(PIMListImpl_getCategoriesN);
    STEP("%s\n", "pimlistImpl_getCategoriesN");
    open_contacts(&error);
    if (!contact_db_service_group_get_count(0, &count, &error)) return nullptr;
    STEP("contact_db_service_group_get_count = %d\n", count);
    contact_group_record* groups = new_groups(count);
    if (groups == nullptr || !contact_db_service_group_get_all_records(0, groups, count, &error)) return nullptr;
    STEP("contact_db_service_group_get_all_records:group_count = %d\n", count);
    if (count > LIST_CATEGORIES_MAX) count = LIST_CATEGORIES_MAX;
    for (int i = 0; i < count; ++i)
        if (memchr(groups[i].name, '\0', sizeof groups[i].name) == nullptr) return nullptr;
    if (!close_contacts()) return nullptr;
    STEP("return group count is %d\n", count);

    jobjectArray array = string_array(env, count);
    if (array == nullptr) return nullptr;
    for (int i = 0; i < count; ++i)
        if (!set_string(env, array, i, groups[i].name)) return nullptr;
    free(groups);
    return array;
}

static bool add_group(const char* name, int* error)
{
    contact_group_record group;
    unsigned char exists = 0;
    int count = 0;
    if (!contact_db_service_group_exist_same_name(0, name, &exists, error) || exists != 0) return true;
    const size_t length = strlen(name);
    if (length > CONTACT_GROUP_NAME_MAX) return false;
    memset(&group, 0, sizeof group);
    memcpy(group.name, name, length);
    if (!contact_db_service_group_add(&group, error)) return false;
    STEP("contact_db_service_group_add succeed\n");
    contact_db_service_group_get_count(0, &count, error);
    STEP("group total count : %d\n", count);
    return true;
}

void minimum_PIMListImpl_addCategoryN(JNIEnv* env, jobject, jint listtype, jint, jstring category)
{
    int error = 0;
    ENTERED(PIMListImpl_addCategoryN);
    const char* name = category != nullptr ? env->GetStringUTFChars(category, nullptr) : nullptr;
    if (name == nullptr) return;
    STEP("%s, addCategoryName = %s\n", "pimlistImpl_addCategoryN", name);
    if (listtype != LIST_CONTACT || strchr(name, ',') != nullptr) return;
    open_contacts(&error);
    const bool added = add_group(name, &error);
    if (close_contacts() && added) STEP("%s return TRUE\n", "pimlistImpl_addCategoryN");
    env->ReleaseStringUTFChars(category, name);
}

static void rename_groups(const char* old_name, const char* new_name, int* error)
{
    contact_group_record group;
    int count = 0;
    contact_db_service_group_get_count(0, &count, error);
    for (int key = 0, seen = 0; seen < count && key < CONTACT_GROUP_MAX; ++key) {
        memset(&group, 0, sizeof group);
        if (!contact_db_service_group_get(0, key, &group, error)) continue;
        ++seen;
        STEP("pimlistImpl_renameCategoryN.oldCategory=%s\n", old_name);
        if (strncmp(group.name, old_name, sizeof group.name) != 0) continue;
        const size_t length = strlen(new_name);
        if (length > CONTACT_GROUP_NAME_MAX) continue;
        memcpy(group.name, new_name, length + 1);
        STEP("pimlistImpl_renameCategoryN.contact_group_record.name=%s\n", group.name);
        if (!contact_db_service_group_update(0, key, &group, error)) return;
    }
}

void minimum_PIMListImpl_renameCategoryN(JNIEnv* env, jobject, jint, jint, jstring current_category,
                                         jstring new_category)
{
    int error = 0;
    ENTERED(PIMListImpl_renameCategoryN);
    if (current_category == nullptr || new_category == nullptr) return;
    const char* old_name = env->GetStringUTFChars(current_category, nullptr);
    if (old_name == nullptr) return;
    const char* new_name = env->GetStringUTFChars(new_category, nullptr);
    if (new_name == nullptr) return;
    STEP("%s\n", "pimlistImpl_renameCategoryN");
    open_contacts(&error);
    rename_groups(old_name, new_name, &error);
    close_contacts();
    env->ReleaseStringUTFChars(new_category, new_name);
    env->ReleaseStringUTFChars(current_category, old_name);
}

static void delete_members(int key, int* error)
{
    int count = CONTACT_RECORD_MAX;
    auto* members = static_cast<int*>(calloc(CONTACT_RECORD_MAX, sizeof(int)));
    if (members == nullptr || !contact_db_service_group_get_members(0, key, members, &count, error)) return;
    STEP("contact_get_group_members OK\n");
    if (count > CONTACT_RECORD_MAX) count = CONTACT_RECORD_MAX;
    for (int i = 0; i < count; ++i) {
        STEP("contact_db_service_contact_delete index = %d\n", members[i]);
        contact_db_service_contact_delete(0, members[i], 0, 0, error);
    }
    free(members);
}

static void delete_group(const char* name, bool with_members, int* error)
{
    char query[128];
    int count = 0;
    if (!contact_db_service_group_get_count(0, &count, error)) return;
    STEP("contact_db_service_group_get_count = %d\n", count);
    contact_group_record* groups = new_groups(count);
    const size_t length = strlen(name);
    if (groups == nullptr || count < 1 || length >= sizeof query) return;
    memcpy(query, name, length + 1);
    STEP("DB query [%s]\n", query);
    if (!contact_db_service_group_search(0, query, 30, 0, groups, &count, error, 1)) return;
    STEP("search group_count is %d\n", count);
    if (count < 1) return;

    const int key = groups[0].group_key.index;
    STEP("MATCH!! deleteCategoryName & contact_group_array[i].name (%.*s)\n", static_cast<int>(sizeof groups[0].name),
         groups[0].name);
    STEP("contact_db_service_group_get.contact_group_array[i].group_key.index = %d\n", key);
    if (with_members) {
        STEP("deleteUnassignedItems TRUE, \n");
        delete_members(key, error);
    }
    STEP("deleting group name= %.*s\n", static_cast<int>(sizeof groups[0].name), groups[0].name);
    if (contact_db_service_group_delete(0, key, error)) STEP("contact_db_service_group_delete succeed\n");
    free(groups);
}

void minimum_PIMListImpl_deleteCategoryN(JNIEnv* env, jobject, jint listtype, jint, jstring category,
                                         jboolean delete_unassigned_items)
{
    int error = 0;
    STEP("%s ***, deleteUnassignedItems : %d\n", "Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN",
         delete_unassigned_items != JNI_FALSE ? 1 : 0);
    const char* name = category != nullptr ? env->GetStringUTFChars(category, nullptr) : nullptr;
    if (name == nullptr) return;
    STEP("delete category name is %s\n", name);
    STEP("%s\n", "pimlistImpl_deleteCategoryN");
    if (listtype != LIST_CONTACT || strchr(name, ',') != nullptr || *name == '\0') return;
    open_contacts(&error);
    delete_group(name, delete_unassigned_items != JNI_FALSE, &error);
    close_contacts();
    env->ReleaseStringUTFChars(category, name);
}

jboolean minimum_PIMListImpl_isCategoryN(JNIEnv* env, jobject, jint listtype, jint, jstring category)
{
    unsigned char exists = 0;
    int error = 0;
    ENTERED(PIMListImpl_isCategoryN);
    const char* name = category != nullptr ? env->GetStringUTFChars(category, nullptr) : nullptr;
    if (name == nullptr) return JNI_FALSE;
    STEP("%s, CategoryName = %s\n", "pimlistImpl_isCategoryN", name);
    if (listtype != LIST_CONTACT || strchr(name, ',') != nullptr || *name == '\0') return JNI_FALSE;
    open_contacts(&error);
    if (!contact_db_service_group_exist_same_name(0, name, &exists, &error)) return JNI_FALSE;
    if (!close_contacts()) exists = 1;
    env->ReleaseStringUTFChars(category, name);
    return exists;
}

// ---- PIMItemImpl: any list ------------------------------------------------------------------------------------------

static jint is_contact_deleted(jint recindex)
{
    unsigned char exists = 0;
    int error = 0;
    open_contacts(&error);
    contact_db_service_contact_is_exist(0, recindex, &exists, &error);
    return !close_contacts() || exists == 0 ? 1 : 0;
}

static jint is_item_deleted(const char* list, jint recindex)
{
    org_full_record record;
    int error = 0;
    if (!open_organizer(list, &record, &error)) return 1;
    const bool deleted =
        !org_db_service_get_record_full_field_by_index(recindex, &record, &error) && error == ORG_ERR_RECORD_NOT_FOUND;
    return !close_organizer(list, &record) || deleted ? 1 : 0;
}

jint minimum_PIMItemImpl_isRecordDeletedN(JNIEnv*, jobject, jint listtype, jint, jint recindex)
{
    ENTERED(PIMItemImpl_isRecordDeletedN);
    STEP("%s listtype:%d, recindex:%d\n", "pimItemImpl_isRecordDeletedN", listtype, recindex);
    const jint deleted = listtype == LIST_CONTACT ? is_contact_deleted(recindex)
                         : listtype == LIST_EVENT ? is_item_deleted("EVENT", recindex)
                         : listtype == LIST_TODO  ? is_item_deleted("TODO", recindex)
                                                  : 0;
    STEP("ret_val:%d\n", deleted);
    return deleted;
}

jbyteArray minimum_PIMItemImpl_getBinaryN(JNIEnv* env, jobject, jint, jint)
{
    static const char MESSAGE[] = "No binary fields available";
    ENTERED(PIMItemImpl_getBinaryN);
    jclass exception_class = env->FindClass("javax/microedition/pim/PIMException");
    if (exception_class == nullptr) return nullptr;
    jmethodID constructor = env->GetMethodID(exception_class, "<init>", "(Ljava/lang/String;I)V");
    jstring text = constructor != nullptr ? env->NewStringUTF(MESSAGE) : nullptr;
    jobject exception =
        text != nullptr ? env->NewObject(exception_class, constructor, text, PIM_FEATURE_NOT_SUPPORTED) : nullptr;
    if (exception != nullptr) env->Throw(static_cast<jthrowable>(exception));
    env->ThrowNew(exception_class, MESSAGE);
    STEP("Not supported Binary value\n");
    return nullptr;
}

static jint email_attribute(jint type, jint out_of_range)
{
    return type == 0 || type == 1 ? EMAIL_ATTRIBUTES[type] : out_of_range;
}

static jint attribute_at(const contact_record* contact, jint field, jint index)
{
    switch (field) {
    case CONTACT_ADDR: {
        if (contact->address_info == nullptr || contact->postal_count < 1 || index > contact->postal_count) return 0;
        const int type = contact->address_info[index].type;
        return type == 0 || type == 1 ? ADDRESS_ATTRIBUTES[type] : 0;
    }
    case CONTACT_TEL: {
        if (contact->phone_info == nullptr || contact->phone_count < 1 || index > contact->phone_count) return 0;
        const int type = contact->phone_info[index].type;
        return type >= 0 && type < PHONE_ATTRIBUTES ? ATTRIBUTES[type] : 0;
    }
    case CONTACT_EMAIL:
        if (contact->email_info == nullptr || contact->email_count < 1 || index > contact->email_count)
            return ATTR_EMAIL_PRIVATE;
        return email_attribute(contact->email_info[index].type, 0);
    default: {
        if (index >= CONTACT_HOMEPAGE_MAX) return 0;
        const int type = contact->homepage_info[index].type;
        return type == 0 || type == 1 ? URL_ATTRIBUTES[type] : 0;
    }
    }
}

jint minimum_PIMItemImpl_getAttributesN(JNIEnv*, jobject, jint listtype, jint, jint recindex, jint field, jint index)
{
    contact_record contact;
    ENTERED(PIMItemImpl_getAttributesN);
    if (field != CONTACT_ADDR && field != CONTACT_TEL && field != CONTACT_EMAIL && field != CONTACT_URL) return 0;
    STEP("pimItemImpl_getAttributesN recindex = %d, field = %d, attrindex = %d\n", recindex, field, index);
    if (listtype != LIST_CONTACT || index < 0 || !open_contact(recindex, &contact)) return 0;
    const jint attribute = attribute_at(&contact, field, index);
    return close_contact(&contact) ? attribute : -1;
}

// ---- PIMItemImpl: values --------------------------------------------------------------------------------------------

static jlong contact_date(jint recindex, jint field, jint index)
{
    contact_record contact;
    jlong date = 0;
    STEP("getContactDate recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_contact(recindex, &contact)) return 0;
    if (field == CONTACT_BIRTHDAY) {
        const broken_down_time* day = &contact.birthday;
        const int64_t seconds = seconds_of(day);
        STEP("birthday year:%d mon:%d mday:%d hour:%d min:%d sec:%d toUTCtime = %lld\n", day->year, day->mon, day->mday,
             day->hour, day->min, day->sec, static_cast<long long>(seconds));
        date = seconds * 1000;
    } else if (field == CONTACT_REVISION) {
        date = seconds_of(&contact.save_time) * 1000;
    }
    return close_contact(&contact) ? date : -1;
}

static jlong event_date(jint recindex, jint field, jint index)
{
    org_full_record record;
    jlong date = 0;
    STEP("getEventDate recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_prepared_item("EVENT", recindex, &record)) return 0;
    switch (field) {
    case EVENT_END: date = seconds_of(&record.end_date_time.time) * 1000; break;
    case EVENT_REVISION: date = seconds_of(&record.last_modified_time.time) * 1000; break;
    case EVENT_START: date = seconds_of(&record.start_date_time.time) * 1000; break;
    default: break;
    }
    return close_organizer("EVENT", &record) ? date : -1;
}

static jlong todo_date(jint recindex, jint field, jint index)
{
    org_full_record record;
    jlong date = 0;
    STEP("getTodoDate recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_prepared_item("TODO", recindex, &record)) return 0;
    switch (field) {
    case TODO_COMPLETION_DATE: date = seconds_of(&record.end_date_time.time) * 1000; break;
    case TODO_DUE: date = seconds_of(&record.repeat_end_or_due.time) * 1000; break;
    case TODO_REVISION: date = seconds_of(&record.last_modified_time.time) * 1000; break;
    default: break;
    }
    return close_organizer("TODO", &record) ? date : -1;
}

jlong minimum_PIMItemImpl_getDateN(JNIEnv*, jobject, jint listtype, jint, jint recindex, jint field, jint index)
{
    ENTERED(PIMItemImpl_getDateN);
    switch (listtype) {
    case LIST_CONTACT: return contact_date(recindex, field, index);
    case LIST_EVENT: return event_date(recindex, field, index);
    case LIST_TODO: return todo_date(recindex, field, index);
    default: return 0;
    }
}

static jboolean is_todo_completed(jint recindex, jint field, jint index)
{
    org_full_record record;
    STEP("getTodoBool recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_prepared_item("TODO", recindex, &record)) return 0;
    const bool completed = field == TODO_COMPLETED && record.completed != 0;
    return !close_organizer("TODO", &record) || completed ? 1 : 0;
}

jboolean minimum_PIMItemImpl_getBooleanN(JNIEnv*, jobject, jint listtype, jint, jint recindex, jint field, jint index)
{
    ENTERED(PIMItemImpl_getBooleanN);
    switch (listtype) {
    case LIST_CONTACT: STEP("%s ***\n", "getContactBool"); return 0;
    case LIST_EVENT: STEP("%s ***\n", "getEventBool"); return 0;
    case LIST_TODO: return is_todo_completed(recindex, field, index);
    default: return 0;
    }
}

static jint contact_int(jint recindex, jint field, jint index)
{
    contact_record contact;
    STEP("getContactInt recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_contact(recindex, &contact)) return 0;
    return close_contact(&contact) ? 0 : -1;
}

static jint event_int(jint recindex, jint field, jint index)
{
    org_full_record record;
    STEP("getEventInt recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_item("EVENT", recindex, &record)) return 0;
    const int64_t alarm = field == EVENT_ALARM ? seconds_of(&record.alarm_time.time) * 1000 : 0;
    return close_organizer("EVENT", &record) ? static_cast<jint>(alarm) : -1;
}

static jint todo_int(jint recindex, jint field, jint index)
{
    org_full_record record;
    STEP("getTodoInt ORG_PRIORITY_LOW %d and ORG_PRIORITY_HIGH %d ", ORG_PRIORITY_LOW, ORG_PRIORITY_HIGH);
    STEP("getTodoInt recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_prepared_item("TODO", recindex, &record)) return 0;
    const int priority = record.priority;
    const bool known = field == TODO_PRIORITY && priority >= ORG_PRIORITY_LOW && priority <= ORG_PRIORITY_HIGH;
    return !close_organizer("TODO", &record) ? -1 : known ? priority : 0;
}

jint minimum_PIMItemImpl_getIntN(JNIEnv*, jobject, jint listtype, jint, jint recindex, jint field, jint index)
{
    ENTERED(PIMItemImpl_getIntN);
    switch (listtype) {
    case LIST_CONTACT: return contact_int(recindex, field, index);
    case LIST_EVENT: return event_int(recindex, field, index);
    case LIST_TODO: return todo_int(recindex, field, index);
    default: return 0;
    }
}

// Where in a character a text would be cut is not looked at: no text here is that long.
static void take_text(char* target, size_t target_size, const char* text, size_t limit)
{
    size_t length = strnlen(text, limit);
    if (length >= target_size) length = target_size - 1;
    memcpy(target, text, length);
    target[length] = '\0';
}

static void take_contact_text(const contact_record* contact, jint field, jint index, char* target)
{
    switch (field) {
    case CONTACT_NICKNAME: take_text(target, ITEM_TEXT_SIZE, contact->nickname, sizeof contact->nickname); break;
    case CONTACT_NOTE:
        if (contact->note != nullptr && contact->note_size > 0)
            take_text(target, ITEM_TEXT_SIZE, contact->note, static_cast<size_t>(contact->note_size));
        break;
    case CONTACT_ORG: take_text(target, ITEM_TEXT_SIZE, contact->company_name, sizeof contact->company_name); break;
    case CONTACT_TITLE: take_text(target, ITEM_TEXT_SIZE, contact->job_title, sizeof contact->job_title); break;
    case CONTACT_EMAIL:
        if (contact->email_info != nullptr && index >= 0 && index <= contact->email_count)
            take_text(target, ITEM_TEXT_SIZE, contact->email_info[index].email, sizeof contact->email_info->email);
        break;
    case CONTACT_TEL:
        if (contact->phone_info != nullptr && index >= 0 && index <= contact->phone_count)
            take_text(target, ITEM_TEXT_SIZE, contact->phone_info[index].number, sizeof contact->phone_info->number);
        break;
    case CONTACT_URL:
        if (index >= 0 && index < CONTACT_HOMEPAGE_MAX)
            take_text(target, ITEM_TEXT_SIZE, contact->homepage_info[index].homepage,
                      sizeof contact->homepage_info->homepage);
        break;
    default: break;
    }
}

static bool contact_string(jint recindex, jint field, jint index, char* text)
{
    contact_record contact;
    STEP("getContactString\n");
    if (!open_contact(recindex, &contact)) return false;
    take_contact_text(&contact, field, index, text);
    close_contact(&contact);
    STEP("field : %d strData = %s\n", field, text);
    return true;
}

static void take_item_text(char* target, const char* text, size_t limit)
{
    if (text != nullptr) take_text(target, ITEM_TEXT_SIZE, text, limit);
}

static bool event_string(jint recindex, jint field, jint index, char* text)
{
    org_full_record record;
    STEP("getEventString recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_item("EVENT", recindex, &record)) return false;
    switch (field) {
    case EVENT_NOTE: take_item_text(text, record.description, ORG_DESCRIPTION_MAX); break;
    case EVENT_SUMMARY: take_item_text(text, record.summary, ORG_SUMMARY_MAX); break;
    case EVENT_LOCATION: take_item_text(text, record.location, ORG_LOCATION_MAX); break;
    default: break;
    }
    close_organizer("EVENT", &record);
    return true;
}

static bool todo_string(jint recindex, jint field, jint index, char* text)
{
    org_full_record record;
    STEP("getTodoString recindex = %d field = %d index = %d\n", recindex, field, index);
    if (!open_item("TODO", recindex, &record)) return false;
    switch (field) {
    case TODO_NOTE: take_item_text(text, record.description, ORG_DESCRIPTION_MAX); break;
    case TODO_SUMMARY: take_item_text(text, record.summary, ORG_SUMMARY_MAX); break;
    default: break;
    }
    close_organizer("TODO", &record);
    return true;
}

jstring minimum_PIMItemImpl_getStringN(JNIEnv* env, jobject, jint listtype, jint, jint recindex, jint field, jint index)
{
    char text[ITEM_TEXT_SIZE];
    text[0] = '\0';
    ENTERED(PIMItemImpl_getStringN);
    const bool read = listtype == LIST_CONTACT ? contact_string(recindex, field, index, text)
                      : listtype == LIST_EVENT ? event_string(recindex, field, index, text)
                      : listtype == LIST_TODO  ? todo_string(recindex, field, index, text)
                                               : false;
    return read ? env->NewStringUTF(text) : nullptr;
}

// A text that would fill its element reads as empty.
static void take_element(char* target, const char* text, size_t size, size_t limit)
{
    const size_t length = strnlen(text, size);
    if (length >= limit) return;
    memcpy(target, text, length + 1);
}

#define TAKE_ELEMENT(element, text, limit) take_element(elements[element], text, sizeof(text), limit)

static jobjectArray name_array(JNIEnv* env, jint recindex)
{
    constexpr size_t NAME_LIMIT = 65;
    contact_record contact;
    char elements[2][ITEM_ELEMENT_SIZE];
    elements[0][0] = elements[1][0] = '\0';
    if (open_contact(recindex, &contact)) {
        TAKE_ELEMENT(NAME_FAMILY, contact.name_info.last_name, NAME_LIMIT);
        TAKE_ELEMENT(NAME_GIVEN, contact.name_info.first_name, NAME_LIMIT);
    }
    close_contact(&contact);
    STEP("C_NAME, stringvaluess[currStringArrayIndex + C_NAME_FAMILY] = %s\n", elements[NAME_FAMILY]);
    STEP("C_NAME, stringvaluess[currStringArrayIndex + C_NAME_GIVEN] = %s\n", elements[NAME_GIVEN]);
    jobjectArray array = string_array(env, 2);
    if (array == nullptr) return nullptr;
    for (int i = 0; i < 2; ++i)
        if (!set_string(env, array, i, elements[i])) return nullptr;
    return array;
}

static jobjectArray address_array(JNIEnv* env, jint recindex, jint index)
{
    contact_record contact;
    char elements[ADDR_ELEMENTS][ITEM_ELEMENT_SIZE];
    for (auto& element : elements) element[0] = '\0';
    if (open_contact(recindex, &contact) && contact.address_info != nullptr && index >= 0 &&
        index <= contact.postal_count) {
        const contact_address* address = &contact.address_info[index];
        TAKE_ELEMENT(ADDR_POBOX, address->pobox, ITEM_ELEMENT_SIZE);
        TAKE_ELEMENT(ADDR_EXTRA, address->additional_info, ITEM_ELEMENT_SIZE);
        TAKE_ELEMENT(ADDR_STREET, address->street, ITEM_ELEMENT_SIZE);
        TAKE_ELEMENT(ADDR_LOCALITY, address->city, ITEM_ELEMENT_SIZE);
        TAKE_ELEMENT(ADDR_REGION, address->state, ITEM_ELEMENT_SIZE);
        TAKE_ELEMENT(ADDR_POSTALCODE, address->postal_code, ITEM_ELEMENT_SIZE);
        TAKE_ELEMENT(ADDR_COUNTRY, address->country, ITEM_ELEMENT_SIZE);
    }
    close_contact(&contact);
    for (int i = 0; i < ADDR_ELEMENTS; ++i) STEP("strData[%d] = %s", i, elements[i]);
    jobjectArray array = string_array(env, ADDR_ELEMENTS);
    if (array == nullptr) return nullptr;
    for (int i = 0; i < ADDR_ELEMENTS; ++i)
        if (!set_string(env, array, i, elements[i])) return nullptr;
    return array;
}

jobjectArray minimum_PIMItemImpl_getStringArrayN(JNIEnv* env, jobject, jint listtype, jint, jint recindex, jint field,
                                                 jint index)
{
    ENTERED(PIMItemImpl_getStringArrayN);
    if (listtype != LIST_CONTACT || (field != CONTACT_ADDR && field != CONTACT_NAME)) return nullptr;
    STEP("getContactStringArray\n");
    return field == CONTACT_NAME ? name_array(env, recindex) : address_array(env, recindex, index);
}

// ---- PIMItemImpl: counts and fields ---------------------------------------------------------------------------------

static jint count_addresses(const contact_record* contact)
{
    jint count = 0;
    for (int i = 0; contact->address_info != nullptr && i < contact->postal_count; ++i) {
        const contact_address* address = &contact->address_info[i];
        if (address->pobox[0] != '\0' || address->additional_info[0] != '\0' || address->street[0] != '\0' ||
            address->city[0] != '\0' || address->state[0] != '\0' || address->country[0] != '\0')
            ++count;
    }
    return count;
}

static jint count_contact_values(const contact_record* contact, jint field)
{
    jint count = 0;
    switch (field) {
    case CONTACT_ADDR: return count_addresses(contact);
    case CONTACT_EMAIL:
        for (int i = 0; contact->email_info != nullptr && i < contact->email_count; ++i)
            if (contact->email_info[i].email[0] != '\0') ++count;
        return count;
    case CONTACT_TEL:
        for (int i = 0; contact->phone_info != nullptr && i < contact->phone_count; ++i)
            if (contact->phone_info[i].number[0] != '\0') ++count;
        return count;
    case CONTACT_URL:
        for (const contact_homepage& slot : contact->homepage_info)
            if (slot.homepage[0] != '\0') ++count;
        return count;
    case CONTACT_NAME:
        return contact->name_info.last_name[0] != '\0' || contact->name_info.first_name[0] != '\0' ? 1 : 0;
    case CONTACT_NICKNAME: return contact->nickname[0] != '\0' ? 1 : 0;
    case CONTACT_NOTE: return contact->note != nullptr && contact->note_size > 0 && contact->note[0] != '\0' ? 1 : 0;
    case CONTACT_ORG: return contact->company_name[0] != '\0' ? 1 : 0;
    case CONTACT_TITLE: return contact->job_title[0] != '\0' ? 1 : 0;
    case CONTACT_BIRTHDAY: return seconds_of(&contact->birthday) != -1 ? 1 : 0;
    case CONTACT_REVISION: return contact->save_time.sec != -1 ? 1 : 0;
    default: return 0;
    }
}

static jint count_contact(jint recindex, jint field)
{
    contact_record contact;
    STEP("count_values_contact (field : %d, recindex : %d)\n", field, recindex);
    if (!open_contact(recindex, &contact)) return 0;
    jint count = count_contact_values(&contact, field);
    if (!close_contact(&contact)) count = -1;
    STEP("return count = %d\n", count);
    return count;
}

static jint holds_text(const char* text)
{
    return text != nullptr && *text != '\0' ? 1 : 0;
}

static jint holds_date(const org_date_time* date)
{
    return seconds_of(&date->time) != -1 ? 1 : 0;
}

static jint count_event_values(const org_full_record* record, jint field)
{
    switch (field) {
    case EVENT_NOTE: return holds_text(record->description);
    case EVENT_SUMMARY: return holds_text(record->summary);
    case EVENT_LOCATION: return holds_text(record->location);
    case EVENT_ALARM: return holds_date(&record->alarm_time);
    case EVENT_END: return holds_date(&record->end_date_time);
    case EVENT_REVISION: return holds_date(&record->last_modified_time);
    case EVENT_START: return holds_date(&record->start_date_time);
    default: return 0;
    }
}

static jint count_event(jint recindex, jint field)
{
    org_full_record record;
    STEP("count_values_event, recindex=%d, field = %d\n", recindex, field);
    if (!open_item("EVENT", recindex, &record)) return 0;
    const jint count = count_event_values(&record, field);
    return close_organizer("EVENT", &record) ? count : -1;
}

static jint count_todo_values(const org_full_record* record, jint field)
{
    switch (field) {
    case TODO_COMPLETED: return 1;
    case TODO_PRIORITY: return record->priority >= ORG_PRIORITY_LOW && record->priority <= ORG_PRIORITY_HIGH ? 1 : 0;
    case TODO_NOTE: return holds_text(record->description);
    case TODO_SUMMARY: return holds_text(record->summary);
    case TODO_COMPLETION_DATE: return holds_date(&record->end_date_time);
    case TODO_DUE: return holds_date(&record->repeat_end_or_due);
    case TODO_REVISION: return holds_date(&record->last_modified_time);
    default: return 0;
    }
}

static jint count_todo(jint recindex, jint field)
{
    org_full_record record;
    STEP("count_values_todo recindex = %d field = %d\n", recindex, field);
    if (!open_item("TODO", recindex, &record)) return 0;
    const jint count = count_todo_values(&record, field);
    return close_organizer("TODO", &record) ? count : -1;
}

jint minimum_PIMItemImpl_countValuesN(JNIEnv*, jobject, jint listtype, jint, jint recindex, jint field)
{
    ENTERED(PIMItemImpl_countValuesN);
    switch (listtype) {
    case LIST_CONTACT: return count_contact(recindex, field);
    case LIST_EVENT: return count_event(recindex, field);
    case LIST_TODO: return count_todo(recindex, field);
    default: return 0;
    }
}

static const jint CONTACT_CANDIDATES[] = {100, 106, 103, 107, 108, 109, 115, 116, 118, 101, 114};
static const jint EVENT_CANDIDATES[] = {103, 104, 107, 100, 102, 105, 106};
static const jint TODO_CANDIDATES[] = {104, 107, 101, 102, 103, 106, 105};

static jsize list_fields(const char* lister, jint (*count)(jint, jint), const jint* candidates, size_t candidate_count,
                         jint recindex, jint* fields)
{
    jsize listed = 0;
    STEP("%s\n", lister);
    for (size_t i = 0; i < candidate_count; ++i) {
        const jint values = count(recindex, candidates[i]);
        STEP("%s return count :%d\n", lister, values);
        if (values != 0) fields[listed++] = candidates[i];
    }
    STEP("%s return %d\n", lister, listed);
    return listed;
}

#define LIST_FIELDS(list, candidates)                                                                             \
    list_fields("getField_" #list, count_##list, candidates, sizeof(candidates) / sizeof *(candidates), recindex, \
                fields)

jintArray minimum_PIMItemImpl_getFieldsN(JNIEnv* env, jobject, jint listtype, jint, jint recindex)
{
    jint fields[sizeof CONTACT_CANDIDATES / sizeof *CONTACT_CANDIDATES];
    jsize count = 0;
    switch (listtype) {
    case LIST_CONTACT: count = LIST_FIELDS(contact, CONTACT_CANDIDATES); break;
    case LIST_EVENT: count = LIST_FIELDS(event, EVENT_CANDIDATES); break;
    case LIST_TODO: count = LIST_FIELDS(todo, TODO_CANDIDATES); break;
    default: break;
    }
    ENTERED(PIMItemImpl_getFieldsN);
    return count > 0 ? int_array(env, fields, count) : nullptr;
}

// ---- PIMItemImpl: categories ----------------------------------------------------------------------------------------

jint minimum_PIMItemImpl_maxCategoriesN(JNIEnv*, jobject, jint listtype, jint)
{
    ENTERED(PIMItemImpl_maxCategoriesN);
    return listtype == LIST_CONTACT ? 1 : 0;
}

// Returns the number of names.
static int take_category_names(const contact_record* contact, char (*names)[CONTACT_GROUP_NAME_MAX])
{
    contact_group_record group;
    int count = 0;
    int found = 0;
    int error = 0;
    contact_db_service_group_get_count(0, &count, &error);
    for (int key = 0; count > 0 && key < CONTACT_GROUP_MAX && found < count; ++key) {
        if (contact->membership[key] == 0) continue;
        memset(&group, 0, sizeof group);
        if (!contact_db_service_group_get(0, key, &group, &error)) continue;
        const size_t length = strnlen(group.name, sizeof group.name);
        if (length == 0) continue;
        if (length >= CONTACT_GROUP_NAME_MAX) return -1;
        memcpy(names[found], group.name, length + 1);
        STEP("contact_group_record.name : %s\n", names[found]);
        ++found;
    }
    return found;
}

jobjectArray minimum_PIMItemImpl_getCategoriesN(JNIEnv* env, jobject, jint, jint, jint recindex)
{
    contact_record contact;
    char names[CONTACT_GROUP_MAX][CONTACT_GROUP_NAME_MAX];
    ENTERED(PIMItemImpl_getCategoriesN);
    STEP("pimItemImpl_getCategoriesN\n");
    int count = open_contact(recindex, &contact) ? take_category_names(&contact, names) : 0;
    if (!close_contact(&contact) || count < 0) count = 0;
    jobjectArray array = string_array(env, count);
    if (array == nullptr) return nullptr;
    for (int i = 0; i < count; ++i)
        if (!set_string(env, array, i, names[i])) return nullptr;
    return array;
}

// ---- PIMItemImpl: commit --------------------------------------------------------------------------------------------

static const int REFUSED = COMMIT_VALUE_REFUSED;

// What a commit works with.
struct commit_input {
    const jint* stringids;
    char** texts;
    const jlong* longs;
    char** categories;
    int category_count;
};

static int put_text(char* field, const char* text, size_t limit)
{
    const size_t length = strlen(text);
    if (length > limit) return REFUSED;
    memcpy(field, text, length + 1);
    return 0;
}

static jint stored_type(const jint* attributes, jint count, jint attribute)
{
    for (jint i = 0; i < count; ++i)
        if (attributes[i] == attribute) return i;
    return -1;
}

static void append(char* full_text, size_t* length, const char* text)
{
    constexpr size_t FULL_TEXT_MAX = 512;
    size_t added = strlen(text);
    if (added > FULL_TEXT_MAX - *length) added = FULL_TEXT_MAX - *length;
    memcpy(full_text + *length, text, added);
    *length += added;
    full_text[*length] = '\0';
}

static int put_address(contact_record* contact, char* const* texts, jint attribute)
{
    constexpr int ADDRESS_MAX = 5;
    bool empty = true;
    for (int i = 0; i < ADDR_ELEMENTS; ++i)
        if (texts[i] != nullptr && *texts[i] != '\0') empty = false;
    if (empty || contact->postal_count >= ADDRESS_MAX) return 0;

    const int position = contact->postal_count++;
    auto* all = static_cast<contact_address*>(
        realloc(contact->address_info, static_cast<size_t>(position + 1) * sizeof(contact_address)));
    if (all == nullptr) abort();
    contact->address_info = all;
    contact_address* address = &all[position];
    memset(address, 0, sizeof *address);
    STEP("current_address_count : %d contact_record.postal_count : %d\n", position, position + 1);

    const struct {
        const char* text;
        char* field;
        size_t limit;
    } parts[] = {
        {texts[ADDR_POBOX], address->pobox, sizeof address->pobox},
        {texts[ADDR_EXTRA], address->additional_info, sizeof address->additional_info},
        {texts[ADDR_STREET], address->street, sizeof address->street},
        {texts[ADDR_LOCALITY], address->city, sizeof address->city},
        {texts[ADDR_REGION], address->state, sizeof address->state},
        {texts[ADDR_POSTALCODE], address->postal_code, sizeof address->postal_code},
        {texts[ADDR_COUNTRY], address->country, sizeof address->country},
    };
    size_t length = 0;
    for (const auto& part : parts) {
        if (part.text == nullptr) continue;
        if (put_text(part.field, part.text, part.limit) != 0) return REFUSED;
        append(address->full_text, &length, part.text);
        if (&part != parts) append(address->full_text, &length, " ");
    }
    address->type = stored_type(ADDRESS_ATTRIBUTES, 2, attribute);
    address->position = position;
    return 0;
}

static int put_email(contact_record* contact, const char* text, jint attribute)
{
    constexpr int EMAIL_MAX = 15;
    if (text == nullptr || contact->email_count >= EMAIL_MAX) return 0;
    const int position = contact->email_count++;
    auto* all = static_cast<contact_email*>(
        realloc(contact->email_info, static_cast<size_t>(position + 1) * sizeof(contact_email)));
    if (all == nullptr) abort();
    contact->email_info = all;
    memset(&all[position], 0, sizeof *all);
    STEP("current_email_count = %d contact_record.email_count = %d\n", position, position + 1);
    if (put_text(all[position].email, text, 129) != 0) return REFUSED;
    all[position].type = stored_type(EMAIL_ATTRIBUTES, 2, attribute);
    all[position].position = position;
    return 0;
}

static int put_phone(contact_record* contact, const char* text, jint attribute)
{
    constexpr int PHONE_MAX = 15;
    if (text == nullptr || contact->phone_count >= PHONE_MAX) return 0;
    const int position = contact->phone_count++;
    auto* all = static_cast<contact_phone*>(
        realloc(contact->phone_info, static_cast<size_t>(position + 1) * sizeof(contact_phone)));
    if (all == nullptr) abort();
    contact->phone_info = all;
    memset(&all[position], 0, sizeof *all);
    STEP("current_phone_count : %d contact_record.phone_count = %d\n", position, position + 1);
    if (put_text(all[position].number, text, 41) != 0) return REFUSED;
    all[position].type = stored_type(ATTRIBUTES, PHONE_ATTRIBUTES, attribute);
    all[position].position = position;
    return 0;
}

static int put_name(contact_record* contact, const char* family, const char* given)
{
    constexpr size_t NAME_MAX_BYTES = 65;
    if (family != nullptr) {
        STEP("C_NAME, stringvaluess[currStringArrayIndex + C_NAME_FAMILY] = %s\n", family);
        if (put_text(contact->name_info.last_name, family, NAME_MAX_BYTES) != 0) return REFUSED;
    }
    if (given != nullptr) {
        STEP("C_NAME, stringvaluess[currStringArrayIndex + C_NAME_GIVEN] = %s\n", given);
        if (put_text(contact->name_info.first_name, given, NAME_MAX_BYTES) != 0) return REFUSED;
    }
    return 0;
}

static int put_note(contact_record* contact, const char* text)
{
    if (text == nullptr) return 0;
    const size_t size = strlen(text) + 1;
    auto* note = static_cast<char*>(malloc(size));
    if (note == nullptr) return REFUSED;
    memcpy(note, text, size);
    free(contact->note);
    contact->note = note;
    contact->note_size = static_cast<int>(size);
    return 0;
}

static int put_homepage(contact_record* contact, const char* text, jint index, jint attribute)
{
    if (index >= CONTACT_HOMEPAGE_MAX) return REFUSED;
    contact_homepage* slot = &contact->homepage_info[index];
    if (text != nullptr && put_text(slot->homepage, text, 257) != 0) return REFUSED;
    slot->type = stored_type(URL_ATTRIBUTES, 2, attribute);
    return 0;
}

static int put_optional_text(char* field, const char* text, size_t limit)
{
    return text != nullptr ? put_text(field, text, limit) : 0;
}

static int put_title(contact_record* contact, const char* text)
{
    if (text == nullptr)
        puts("\n\n!!!!!!!!!!!!!!!!!!!!!!!!!!!");
    else
        printf("\n\nstrlen(stringvaluess[currStringArrayIndex]) = %dsizeof(contact_record.job_title) = %d\n",
               static_cast<int>(strlen(text)), static_cast<int>(sizeof contact->job_title));
    return put_optional_text(contact->job_title, text, 65);
}

// Works one value into the contact and moves on over its texts.
static int put_contact_text(contact_record* contact, const jint* triple, char*** texts)
{
    char** value = *texts;
    *texts += 1;
    if (triple[1] < 0) return REFUSED;
    switch (triple[0]) {
    case CONTACT_ADDR: *texts = value + ADDR_ELEMENTS; return put_address(contact, value, triple[2]);
    case CONTACT_EMAIL: return put_email(contact, *value, triple[2]);
    case CONTACT_NAME:
        if (value[0] != nullptr && value[1] != nullptr) *texts = value + 2;
        return put_name(contact, value[0], value[1]);
    case CONTACT_NICKNAME: return put_optional_text(contact->nickname, *value, 196);
    case CONTACT_NOTE: return put_note(contact, *value);
    case CONTACT_ORG: return put_optional_text(contact->company_name, *value, 65);
    case CONTACT_TEL: return put_phone(contact, *value, triple[2]);
    case CONTACT_TITLE: return put_title(contact, *value);
    case CONTACT_URL: return put_homepage(contact, *value, triple[1], triple[2]);
    default: return 0;
    }
}

static int put_memberships(contact_record* contact, const commit_input* input, jint recindex)
{
    static const char ALL_GROUPS[] = "id >= 0";
    int count = 0;
    int error = 0;
    contact_db_service_group_get_count(0, &count, &error);
    STEP("SOON COMMIT!!  categorycount= %d recindex = %d\n", count, recindex);
    if (input->categories == nullptr || input->category_count == 0) return 0;
    contact_group_record* groups = new_groups(count);
    if (groups == nullptr) return -1;
    STEP("DB query [%s]\n", ALL_GROUPS);
    int found = count;
    if (!contact_db_service_group_search(0, ALL_GROUPS, 20, 0, groups, &found, &error, 0)) return 0;
    for (int i = 0; i < found && i < count; ++i) {
        const int key = groups[i].group_key.index;
        if (groups[i].name[0] == '\0') return REFUSED;
        for (int k = 0; k < input->category_count; ++k) {
            const char* name = input->categories[k];
            if (name == nullptr || strncmp(groups[i].name, name, sizeof groups[i].name) != 0) continue;
            if (key >= 0 && key < CONTACT_MEMBERSHIP_SIZE) contact->membership[key] = 1;
            break;
        }
    }
    free(groups);
    return 0;
}

static int fill_contact(contact_record* contact, const commit_input* input, jint recindex)
{
    int refused = 0;
    char** texts = input->texts;
    for (jint i = 0; i < input->stringids[0]; ++i) {
        const jint* triple = input->stringids + 1 + 3 * static_cast<ptrdiff_t>(i);
        STEP("curField : %d currStringArrayIndex : %d currAtrrib : %d\n", triple[0],
             static_cast<int>(texts - input->texts), triple[2]);
        refused |= put_contact_text(contact, triple, &texts);
    }
    for (int i = 0; contact->phone_info != nullptr && i < contact->phone_count; ++i)
        STEP("The valuse of contact_record.phone_info[%d].number %.*s and attri_value %d\n ---------->",
             contact->phone_info[i].position, static_cast<int>(sizeof contact->phone_info[i].number),
             contact->phone_info[i].number, contact->phone_info[i].type);
    for (jlong i = 0; i < input->longs[0]; ++i) {
        const jlong* quadruple = input->longs + 1 + 4 * i;
        const auto field = static_cast<int>(quadruple[0]);
        const auto index = static_cast<int>(quadruple[1]);
        STEP("value = %lld, time = %lld\n", static_cast<long long>(quadruple[3]),
             static_cast<long long>(quadruple[3] / 1000));
        STEP("curField : %d currIndex : %d currAttrib : %d\n", field, index, static_cast<int>(quadruple[2]));
        if (index < 0) refused = REFUSED;
        if (field == CONTACT_BIRTHDAY) put_local_time(&contact->birthday, quadruple[3]);
        if (field == CONTACT_REVISION) contact->save_time.sec = static_cast<int32_t>(quadruple[3] / 1000);
    }
    return refused != 0 ? REFUSED : put_memberships(contact, input, recindex);
}

static int commit_contact(const commit_input* input, jint recindex)
{
    contact_record contact;
    int error = 0;
    memset(&contact, 0, sizeof contact);
    STEP("pimItemImpl_contact_commitN\n");
    STEP("stringids[0] : %d, longvalue[0] : %lld\n", input->stringids[0], static_cast<long long>(input->longs[0]));
    open_contacts(&error);
    if (recindex >= 1) {
        STEP("It's update\n");
        if (!contact_db_service_contact_get(0, recindex, 0, &contact, &error)) return -1;
        if (contact.address_info == nullptr || contact.postal_count < 0) contact.postal_count = 0;
        if (contact.email_info == nullptr || contact.email_count < 0) contact.email_count = 0;
        if (contact.phone_info == nullptr || contact.phone_count < 0) contact.phone_count = 0;
    }
    int result = fill_contact(&contact, input, recindex);
    if (result != 0) return result;
    if (recindex < 1) {
        STEP("---- contact_db_service_contact_add ----\n");
        result = contact_db_service_contact_add(&contact, &error) ? contact.index : -1;
    } else {
        contact.index = recindex;
        STEP("---- contact_db_service_contact_update ----\n");
        result = contact_db_service_contact_update(0, recindex, &contact, &error) ? recindex : -1;
    }
    return close_contact(&contact) ? result : -1;
}

static int put_item_text(char* buffer, const char* text, size_t limit)
{
    return buffer != nullptr ? put_text(buffer, text, limit) : 0;
}

static int put_event_text(org_full_record* record, jint field, const char* text)
{
    switch (field) {
    case EVENT_NOTE: return put_item_text(record->description, text, ORG_DESCRIPTION_MAX);
    case EVENT_SUMMARY: return put_item_text(record->summary, text, ORG_SUMMARY_MAX);
    case EVENT_LOCATION: return put_item_text(record->location, text, ORG_LOCATION_MAX);
    default: STEP("unknown field:%d\n", field); return 0;
    }
}

static void put_event_long(org_full_record* record, jlong field, jlong value)
{
    switch (field) {
    case EVENT_ALARM: put_local_time(&record->alarm_time.time, value); break;
    case EVENT_END: put_local_time(&record->end_date_time.time, value); break;
    case EVENT_REVISION:
        put_local_time(&record->last_modified_time.time, value);
        normalise(&record->last_modified_time.time);
        break;
    case EVENT_START: put_local_time(&record->start_date_time.time, value); break;
    case REPEAT_END: put_local_time(&record->repeat_end_or_due.time, value); break;
    case REPEAT_FREQUENCY:
        if (value >= FREQUENCY_DAILY && value <= FREQUENCY_YEARLY)
            record->repeat_term = static_cast<int>(value) - FREQUENCY_DAILY + ORG_REPEAT_DAILY;
        record->repeat_interval = 1;
        break;
    case REPEAT_INTERVAL: record->repeat_interval = static_cast<int>(value); break;
    default: STEP("unknown long field:%d\n", static_cast<int>(field)); break;
    }
}

static int commit_event(const commit_input* input, jint recindex)
{
    org_full_record record;
    int error = 0;
    int refused = 0;
    int result = recindex;
    STEP("pimItemImpl_event_commitN recindex = %d\n", recindex);
    if (!open_organizer("EVENT", &record, &error)) return -1;
    for (jint i = 0; i < input->stringids[0]; ++i)
        if (input->texts[i] != nullptr)
            refused |= put_event_text(&record, input->stringids[1 + 3 * static_cast<ptrdiff_t>(i)], input->texts[i]);
    for (jlong i = 0; i < input->longs[0]; ++i)
        put_event_long(&record, input->longs[1 + 4 * i], input->longs[4 + 4 * i]);
    if (refused != 0) return REFUSED;

    record.kind = ORG_KIND_EVENT;
    STEP("Before add in event----->recindex %d\n", recindex);
    STEP("start year %d, end year %d\n", record.start_date_time.time.year, record.end_date_time.time.year);
    if (record.end_date_time.time.year < record.start_date_time.time.year) record.start_date_time.time.year = 0;
    if (recindex < 1) {
        if (!org_db_service_add_record_full_field(ORG_TYPE_EVENT, &record, &result, &error)) return -1;
    } else {
        record.index = recindex;
        if (!org_db_service_update_record_full_field(recindex, &record, &error)) return -1;
    }
    STEP("org_sch_record.index=%d, index=%d\n", record.index, result);
    return close_organizer("EVENT", &record) ? result : -1;
}

static int put_todo_text(org_full_record* record, jint field, const char* text)
{
    switch (field) {
    case TODO_NOTE: return put_item_text(record->description, text, ORG_DESCRIPTION_MAX);
    case TODO_SUMMARY: return put_item_text(record->summary, text, ORG_SUMMARY_MAX);
    default: STEP("unknown field:%d\n", field); return 0;
    }
}

static void put_todo_long(org_full_record* record, jlong field, jlong value)
{
    switch (field) {
    case TODO_COMPLETION_DATE: put_local_time(&record->end_date_time.time, value); break;
    case TODO_DUE: put_local_time(&record->repeat_end_or_due.time, value); break;
    case TODO_REVISION: put_local_time(&record->last_modified_time.time, value); break;
    case TODO_COMPLETED: record->completed = value == 1 ? 1 : 0; break;
    case TODO_PRIORITY: record->priority = static_cast<int>(value); break;
    default: break;
    }
}

static int commit_todo(const commit_input* input, jint recindex)
{
    org_full_record record;
    int error = 0;
    int refused = 0;
    int result = recindex;
    STEP("pimItemImpl_todo_commitN recindex = %d\n", recindex);
    if (!open_organizer("TODO", &record, &error)) return -1;
    for (jint i = 0; i < input->stringids[0]; ++i)
        if (input->texts[i] != nullptr)
            refused |= put_todo_text(&record, input->stringids[1 + 3 * static_cast<ptrdiff_t>(i)], input->texts[i]);
    for (jlong i = 0; i < input->longs[0]; ++i)
        put_todo_long(&record, input->longs[1 + 4 * i], input->longs[4 + 4 * i]);
    if (refused != 0) return REFUSED;

    record.kind = ORG_KIND_TODO;
    if (recindex < 1) {
        if (!org_db_service_add_record_full_field(ORG_TYPE_TODO, &record, &result, &error)) result = -1;
    } else {
        record.index = recindex;
        if (!org_db_service_update_record_full_field(recindex, &record, &error)) result = -1;
    }
    return close_organizer("TODO", &record) ? result : -1;
}

static char* text_of_bytes(JNIEnv* env, jbyteArray array)
{
    const auto length = static_cast<size_t>(env->GetArrayLength(array));
    auto* text = static_cast<char*>(malloc(length + 1));
    if (text == nullptr) return nullptr;
    jbyte* bytes = env->GetByteArrayElements(array, nullptr);
    if (bytes == nullptr) return nullptr;
    memcpy(text, bytes, length);
    text[length] = '\0';
    env->ReleaseByteArrayElements(array, bytes, JNI_ABORT);
    return text;
}

static char** take_texts(JNIEnv* env, jobjectArray strings, jsize* count, jint entries)
{
    *count = strings != nullptr ? env->GetArrayLength(strings) : 0;
    const jsize consumed = entries * ADDR_ELEMENTS;
    auto** texts = static_cast<char**>(
        new_zeroed((static_cast<size_t>(*count > consumed ? *count : consumed) + 1) * sizeof(char*)));
    if (texts == nullptr) return nullptr;
    for (jsize i = 0; i < *count; ++i) {
        jobject bytes = env->GetObjectArrayElement(strings, i);
        if (bytes == nullptr) {
            printf("\n\n jbarray=0 is number %d\n\n\n", i);
            continue;
        }
        texts[i] = text_of_bytes(env, static_cast<jbyteArray>(bytes));
        env->DeleteLocalRef(bytes);
        if (texts[i] == nullptr) return nullptr;
    }
    return texts;
}

static char** take_categories(JNIEnv* env, jobjectArray categories, jsize count, jint wanted)
{
    auto** names = static_cast<char**>(new_zeroed(static_cast<size_t>(count) * sizeof(char*)));
    auto number = static_cast<jstring>(names != nullptr ? env->GetObjectArrayElement(categories, 0) : nullptr);
    const char* digits = number != nullptr ? env->GetStringUTFChars(number, nullptr) : nullptr;
    if (digits == nullptr || strtol(digits, nullptr, 10) != wanted) return nullptr;
    env->ReleaseStringUTFChars(number, digits);
    env->DeleteLocalRef(number);
    for (jint i = 0; i < wanted; ++i) {
        auto name = static_cast<jstring>(env->GetObjectArrayElement(categories, i + 1));
        if (name == nullptr) continue;
        const char* characters = env->GetStringUTFChars(name, nullptr);
        if (characters == nullptr) return nullptr;
        names[i] = strdup(characters);
        env->ReleaseStringUTFChars(name, characters);
        env->DeleteLocalRef(name);
        if (names[i] == nullptr) return nullptr;
        STEP("category[%d] = %s\n", i, names[i]);
    }
    return names;
}

static void free_texts(char** texts, jsize count)
{
    if (texts == nullptr) return;
    for (jsize i = 0; i < count; ++i) free(texts[i]);
    free(texts);
}

jint minimum_PIMItemImpl_commitN(JNIEnv* env, jobject, jint listtype, jint, jint recindex, jintArray stringids,
                                 jobjectArray strings, jintArray ints, jbyteArray bytes, jlongArray longs,
                                 jobjectArray categories, jint numcats)
{
    commit_input input = {};
    jsize text_count = 0;
    jint* ints_taken = nullptr;
    jbyte* bytes_taken = nullptr;
    jlong* longs_taken = nullptr;
    ENTERED(PIMItemImpl_commitN);
    if (stringids == nullptr || longs == nullptr) return -1; // Callers always pass both.

    const jsize ids_length = env->GetArrayLength(stringids);
    jint* ids_taken = env->GetIntArrayElements(stringids, nullptr);
    if (ids_taken == nullptr || ids_length < 1) return -1;
    input.stringids = ids_taken;
    STEP("stringsize = %d stringid = %d\n", strings != nullptr ? env->GetArrayLength(strings) : 0, ids_taken[0]);
    if (ids_taken[0] < 0 || ids_taken[0] > (ids_length - 1) / 3) return -1;

    input.texts = take_texts(env, strings, &text_count, ids_taken[0]);
    if (input.texts == nullptr) return -1;
    if (ints != nullptr && (ints_taken = env->GetIntArrayElements(ints, nullptr)) == nullptr) return -1;
    if (bytes != nullptr && (bytes_taken = env->GetByteArrayElements(bytes, nullptr)) == nullptr) return -1;
    if ((longs_taken = env->GetLongArrayElements(longs, nullptr)) == nullptr) return -1;

    const jsize category_size = categories != nullptr ? env->GetArrayLength(categories) : 0;
    STEP("categorysize = %d\n", category_size);
    STEP("numbcat = %d\n", numcats);
    if (numcats > 0) {
        if (category_size - 1 < numcats) return -1;
        input.categories = take_categories(env, categories, category_size, numcats);
        if (input.categories == nullptr) return -1;
        input.category_count = numcats;
    }
    const jsize longs_length = env->GetArrayLength(longs);
    if (longs_length < 1 || longs_taken[0] < 0 || longs_taken[0] > (longs_length - 1) / 4) return -1;
    input.longs = longs_taken;

    const int result = listtype == LIST_CONTACT ? commit_contact(&input, recindex)
                       : listtype == LIST_EVENT ? commit_event(&input, recindex)
                       : listtype == LIST_TODO  ? commit_todo(&input, recindex)
                                                : 0;
    if (result < 0 || result > RECORD_INDEX_MAX) return -1;
    const jsize taken_categories = numcats > 0 ? category_size : 0;
    STEP("free memory start stringsize = %d realcategorysize = %d\n", text_count, taken_categories);
    env->ReleaseIntArrayElements(stringids, ids_taken, JNI_ABORT);
    if (ints != nullptr) env->ReleaseIntArrayElements(ints, ints_taken, JNI_ABORT);
    env->ReleaseLongArrayElements(longs, longs_taken, JNI_ABORT);
    if (bytes != nullptr) env->ReleaseByteArrayElements(bytes, bytes_taken, JNI_ABORT);
    free_texts(input.texts, text_count);
    free_texts(input.categories, taken_categories);

    STEP("returnindex : %d\n", result);
    const time_t now = time(nullptr);
    tm utc;
    gmtime_r(&now, &utc);
    STEP("66 #########################################\n");
    STEP("hour : %d min : %d sec : %d\n", utc.tm_hour, utc.tm_min, utc.tm_sec);
    return result;
}

// ---- EventListImpl and ToDoListImpl ---------------------------------------------------------------------------------

static const int POSITIONS_MAX = 2000;

struct earliest {
    int* entries;
    int count;
    int64_t best;
};

static void offer(struct earliest* earliest, int64_t after, int64_t date, int entry)
{
    if (date <= after) {
        STEP("Ignore item:%lld\n", static_cast<long long>(date));
        return;
    }
    STEP("pass 1 %lld\n", static_cast<long long>(date));
    if (date > earliest->best) return;
    if (date < earliest->best) {
        STEP("pass 2 %lld\n", static_cast<long long>(date));
        earliest->best = date;
        earliest->count = 0;
    }
    earliest->entries[earliest->count++] = entry;
}

jintArray minimum_EventListImpl_nextSortedEventN(JNIEnv* env, jobject, jint, jlong after)
{
    org_full_record record;
    int positions[POSITIONS_MAX];
    earliest earliest = {positions, 0, INT64_MAX};
    int count = 0;
    int error = 0;
    ENTERED(EventListImpl_nextSortedEventN);
    STEP("%s, after = %lld\n", "EventListImpl_nextSortedEventN", static_cast<long long>(after));
    if (!open_organizer("EVENT", &record, &error) ||
        !org_db_service_get_record_count(0, ORG_TYPE_EVENT, &count, &error))
        return nullptr;
    for (int position = 0, remaining = count; remaining > 0 && position < POSITIONS_MAX; ++position) {
        if (!org_db_service_get_record_full_field_by_index(position, &record, &error)) continue;
        offer(&earliest, after, seconds_of(&record.start_date_time.time) * 1000, position);
        --remaining;
    }
    if (earliest.count == 0) return nullptr;

    const auto wanted = static_cast<int32_t>(earliest.best);
    int kept = 0;
    for (int i = 0; i < earliest.count; ++i) {
        if (!org_db_service_get_record_full_field_by_index(positions[i], &record, &error)) continue;
        if (normalise(&record.start_date_time.time) == wanted) positions[kept++] = record.index;
    }
    while (kept < earliest.count) positions[kept++] = 0;
    if (!close_organizer("EVENT", &record)) return nullptr;
    STEP("qm4ruv  : EventListImpl_nextSortedEventN.nextEventsCount is %d\n", earliest.count);
    return int_array(env, positions, earliest.count);
}

jintArray minimum_ToDoListImpl_nextSortedToDoN(JNIEnv* env, jobject, jint, jint field, jlong current_date)
{
    org_full_record record;
    int found[POSITIONS_MAX];
    earliest earliest = {found, 0, INT64_MAX};
    int count = 0;
    int error = 0;
    int64_t date = 0;
    ENTERED(ToDoListImpl_nextSortedToDoN);
    memset(&record, 0, sizeof record);
    STEP("ToDoListImpl_nextSortedToDoN {\n");
    STEP("field:%d, current_date:%lld\n", field, static_cast<long long>(current_date));
    STEP("Size of int:%d\n", 4);
    STEP("Size of long:%d\n", 4);
    STEP("Size of jlong:%d\n", 8);
    STEP("Size of long long:%d\n", 8);
    if (!close_organizer("TODO", &record) || !org_db_service_get_record_count(0, ORG_TYPE_TODO, &count, &error) ||
        count < 1)
        return nullptr;
    STEP("ORG_RECORD_CNT_MAX:%d\n", POSITIONS_MAX);
    for (int position = 0, remaining = count; remaining > 0 && position < POSITIONS_MAX; ++position) {
        const broken_down_time* time;
        const char* name;
        if (!org_db_service_init_full_record(&record, &error)) return nullptr;
        if (!org_db_service_get_record_full_field_by_index(position, &record, &error)) continue;
        switch (field) {
        case TODO_COMPLETION_DATE:
            name = "T_COMPLETION_DATE";
            time = &record.end_date_time.time;
            break;
        case TODO_DUE:
            name = "T_DUE";
            time = &record.repeat_end_or_due.time;
            break;
        case TODO_REVISION:
            name = "T_REVISION";
            time = &record.last_modified_time.time;
            break;
        case EXTENDED_FIELD_0:
            name = "T_START";
            time = &record.start_date_time.time;
            break;
        default: return nullptr;
        }
        date = seconds_of(time) * 1000;
        STEP("mktime of %s:%lld\n", name, static_cast<long long>(date));
        offer(&earliest, current_date, date, record.index);
        --remaining;
    }
    if (!close_organizer("TODO", &record)) return nullptr;
    STEP("return count:%d\n", earliest.count);
    STEP("ToDoListImpl_nextSortedToDoN }\n");
    return int_array(env, found, earliest.count);
}

jintArray minimum_EventListImpl_getSupportedRepeatRuleFrequenciesN(JNIEnv* env, jobject)
{
    static const jint FREQUENCIES[] = {FREQUENCY_DAILY, FREQUENCY_WEEKLY, FREQUENCY_MONTHLY, FREQUENCY_YEARLY};
    ENTERED(EventListImpl_getSupportedRepeatRuleFrequenciesN);
    return INT_ARRAY(env, FREQUENCIES);
}

jintArray minimum_EventListImpl_getSupportedRepeatRuleFieldsN(JNIEnv* env, jobject, jint frequency)
{
    static const jint DAILY[] = {224};
    static const jint WEEKLY[] = {226};
    static const jint MONTHLY[] = {225, 242};
    static const jint YEARLY[] = {228, 233, 250};
    static const jint UNKNOWN[] = {0};
    ENTERED(EventListImpl_getSupportedRepeatRuleFieldsN);
    switch (frequency) {
    case FREQUENCY_DAILY: return INT_ARRAY(env, DAILY);
    case FREQUENCY_WEEKLY: return INT_ARRAY(env, WEEKLY);
    case FREQUENCY_MONTHLY: return INT_ARRAY(env, MONTHLY);
    case FREQUENCY_YEARLY: return INT_ARRAY(env, YEARLY);
    default: return INT_ARRAY(env, UNKNOWN);
    }
}

// ---- EventImpl ------------------------------------------------------------------------------------------------------

static jint repeat_value(const org_full_record* record, jint field)
{
    broken_down_time time;
    switch (field) {
    case REPEAT_COUNT: {
        memcpy(&time, &record->repeat_term, sizeof time);
        const int64_t seconds = seconds_of(&time);
        return seconds < 0 ? 0 : static_cast<jint>(seconds);
    }
    case REPEAT_FREQUENCY:
        return record->repeat_term >= ORG_REPEAT_DAILY && record->repeat_term <= ORG_REPEAT_YEARLY
                   ? FREQUENCY_DAILY + record->repeat_term - ORG_REPEAT_DAILY
                   : (record->repeat_term == ORG_REPEAT_NONE ? -1 : 0);
    case REPEAT_INTERVAL: return record->repeat_interval;
    case REPEAT_END: return 0;
    default: return field >= REPEAT_COUNT && field <= REPEAT_WEEK_IN_MONTH ? 1 : 0;
    }
}

jint minimum_EventImpl_getRepeatIntN(JNIEnv*, jobject, jint, jint recindex, jint field)
{
    org_full_record record;
    ENTERED(EventImpl_getRepeatIntN);
    STEP("%s, recindex = %d, field = %d\n", "EventImpl_getRepeatIntN", recindex, field);
    if (!open_item("EVENT", recindex, &record)) return 0;
    const jint value = repeat_value(&record, field);
    return close_organizer("EVENT", &record) ? value : -1;
}

jlong minimum_EventImpl_getRepeatDateN(JNIEnv*, jobject, jint, jint recindex, jint field)
{
    org_full_record record;
    ENTERED(EventImpl_getRepeatDateN);
    STEP("%s, recindex = %d, field = %d\n", "EventImpl_getRepeatDateN", recindex, field);
    if (!open_item("EVENT", recindex, &record)) return 0;
    const jlong end = field == REPEAT_END ? seconds_of(&record.repeat_end_or_due.time) : 0;
    return close_organizer("EVENT", &record) ? end : -1;
}

jintArray minimum_EventImpl_getRepeatFieldsN(JNIEnv* env, jobject, jint, jint recindex)
{
    // With the end of the repetition in front, which not every rule has.
    static const jint DAILY[] = {REPEAT_END, REPEAT_INTERVAL};
    static const jint WEEKLY[] = {REPEAT_END, REPEAT_INTERVAL, REPEAT_DAY_IN_WEEK};
    static const jint MONTHLY[] = {REPEAT_END, REPEAT_INTERVAL, REPEAT_DAY_IN_MONTH, REPEAT_WEEK_IN_MONTH,
                                   REPEAT_DAY_IN_WEEK};
    static const jint YEARLY[] = {REPEAT_END,           REPEAT_INTERVAL,    REPEAT_DAY_IN_YEAR, REPEAT_MONTH_IN_YEAR,
                                  REPEAT_WEEK_IN_MONTH, REPEAT_DAY_IN_WEEK, REPEAT_DAY_IN_MONTH};
    org_full_record record;
    const jint* fields = nullptr;
    jsize count = 0;
    ENTERED(EventImpl_getRepeatFieldsN);
    if (!open_item("EVENT", recindex, &record)) return nullptr;
    STEP("qm4ruv : EventImpl_getRepeatFieldsN.org_sch_record.repeat_term is %d\n", record.repeat_term);
    switch (record.repeat_term) {
    case ORG_REPEAT_DAILY:
        fields = DAILY;
        count = 2;
        break;
    case ORG_REPEAT_WEEKLY:
        fields = WEEKLY;
        count = 3;
        break;
    case ORG_REPEAT_MONTHLY:
        fields = MONTHLY;
        count = 5;
        break;
    case ORG_REPEAT_YEARLY:
        fields = YEARLY;
        count = 7;
        break;
    default: break;
    }
    if (fields != nullptr && seconds_of(&record.repeat_end_or_due.time) <= 0) ++fields, --count;
    if (!close_organizer("EVENT", &record)) return nullptr;
    STEP("qm4ruv : EventImpl_getRepeatFieldsN.numFieldsSet %d\n", count);
    return int_array(env, fields, count);
}

jlongArray minimum_EventImpl_getRepeatExceptDatesN(JNIEnv* env, jobject, jint, jint)
{
    ENTERED(EventImpl_getRepeatExceptDatesN);
    return env->NewLongArray(0);
}

// ---- ContactImpl ----------------------------------------------------------------------------------------------------

static jint preferred_index(const contact_record* contact, jint field)
{
    switch (field) {
    case CONTACT_ADDR:
        for (int i = 0; contact->address_info != nullptr && i < contact->postal_count; ++i)
            if (contact->address_info[i].type == 0) return i;
        return -1;
    case CONTACT_EMAIL:
        for (int i = 0; contact->email_info != nullptr && i < contact->email_count; ++i)
            if (contact->email_info[i].type == 0) return i;
        return -1;
    case CONTACT_TEL:
        for (int i = 0; contact->phone_info != nullptr && i < contact->phone_count; ++i)
            if (contact->phone_info[i].type == 0) return i;
        return -1;
    case CONTACT_URL:
        for (int i = 0; i < CONTACT_HOMEPAGE_MAX; ++i)
            if (contact->homepage_info[i].type == 0) return i;
        return -1;
    default: return -1;
    }
}

jint minimum_ContactImpl_getPreferredIndexN(JNIEnv*, jobject, jint, jint recindex, jint field)
{
    // The line numbers are the native's own.
    static const char NATIVE[] = "Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN";
    contact_record contact;
    jint preferred = -1;
    printf("[ %30s() / %3d ]", NATIVE, 12);
    puts("A-Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN()");
    STEP("%s, recindex = %d\n", "ContactImp_getPreferredIndexN", recindex);
    if (open_contact(recindex, &contact)) preferred = preferred_index(&contact, field);
    if (!close_contact(&contact)) preferred = -1;
    printf("[ %30s() / %3d ]", NATIVE, 15);
    puts("B-Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN");
    return preferred;
}

} // extern "C"
