#include "every_native.h"

#include <sstream>

#include "commit_values.h"
#include "natives.h"
#include "pimcodes.h"
#include "stored_records.h"

// Whether an argument is taken as it is, or made on the machine that the call runs on.
#define CALL(native, ...)                                                                                \
    [](fake_jni& jni) {                                                                                  \
        return shown(jni, Java_com_qvr_zek_pim_##native(jni.env(), nullptr __VA_OPT__(, ) __VA_ARGS__)); \
    }
#define CALL_VOID(native, ...)                                                        \
    [](fake_jni& jni) {                                                               \
        Java_com_qvr_zek_pim_##native(jni.env(), nullptr __VA_OPT__(, ) __VA_ARGS__); \
        return std::string("void");                                                   \
    }

static std::string shown(fake_jni& /*jni*/, jlong value)
{
    return std::to_string(value);
}

static std::string shown(fake_jni& jni, jstring value)
{
    return value == nullptr ? "null" : '"' + jni.text(value) + '"';
}

template <typename Element>
static std::string listed(const std::vector<Element>& elements)
{
    std::ostringstream list;
    for (size_t i = 0; i < elements.size(); ++i) list << (i == 0 ? "" : ", ") << elements[i];
    return '[' + list.str() + ']';
}

static std::string shown(fake_jni& jni, jintArray value)
{
    return value == nullptr ? "null" : listed(jni.values(value));
}

static std::string shown(fake_jni& jni, jlongArray value)
{
    return value == nullptr ? "null" : listed(jni.values(value));
}

static std::string shown(fake_jni& jni, jobjectArray value)
{
    return value == nullptr ? "null" : listed(jni.texts(value));
}

static std::string shown(fake_jni& /*jni*/, jbyteArray value)
{
    return value == nullptr ? "null" : "bytes";
}

static const commit_values CONTACT = commit_values()
                                         .texts(CONTACT_NAME, {"Hopper", "Grace"})
                                         .text(CONTACT_NOTE, "Note")
                                         .text(CONTACT_TEL, "1", ATTR_WORK)
                                         .text(CONTACT_EMAIL, "a@b", ATTR_EMAIL_PRIVATE)
                                         .texts(CONTACT_ADDR, {"1", "2", "3", "4", "5", "6", "7"}, ATTR_HOME)
                                         .number(CONTACT_BIRTHDAY, 0)
                                         .category("Work");
static const commit_values EVENT =
    commit_values().text(EVENT_SUMMARY, "New").number(EVENT_START, 86400000).number(EVENT_END, 90000000);
static const commit_values TODO = commit_values().text(TODO_SUMMARY, "New").number(TODO_DUE, 86400000);

static std::function<std::string(fake_jni&)> commit(const commit_values& values, jint listtype, jint recindex)
{
    return [=](fake_jni& jni) { return std::to_string(commit_values(values).commit(jni, listtype, recindex)); };
}

const std::vector<native_case>& every_native()
{
    static const std::vector<native_case> cases = {
        {"PIMImpl.openPIMListN", "", CALL(PIMImpl_openPIMListN, LIST_CONTACT, 1)},
        {"PIMImpl.listPIMListsN", "", CALL(PIMImpl_listPIMListsN, LIST_CONTACT)},

        {"PIMListImpl.closePIMListN", "", CALL_VOID(PIMListImpl_closePIMListN, LIST_CONTACT, 0)},
        {"PIMListImpl.nextRecordN", "contacts", CALL(PIMListImpl_nextRecordN, LIST_CONTACT, 0, 1)},
        {"PIMListImpl.nextRecordN", "events", CALL(PIMListImpl_nextRecordN, LIST_EVENT, 0, 1)},
        {"PIMListImpl.nextRecordN", "to-dos", CALL(PIMListImpl_nextRecordN, LIST_TODO, 0, 3)},
        {"PIMListImpl.nextRecordInCategoryN", "a category",
         CALL(PIMListImpl_nextRecordInCategoryN, LIST_CONTACT, 0, 1, jni.string("Work"))},
        {"PIMListImpl.nextRecordInCategoryN", "none",
         CALL(PIMListImpl_nextRecordInCategoryN, LIST_CONTACT, 0, -1, nullptr)},
        {"PIMListImpl.nextRecordWithMatchStrN", "contacts",
         CALL(PIMListImpl_nextRecordWithMatchStrN, LIST_CONTACT, 0, -1, jni.string("third"))},
        {"PIMListImpl.nextRecordWithMatchStrN", "events",
         CALL(PIMListImpl_nextRecordWithMatchStrN, LIST_EVENT, 0, -1, jni.string("two"))},
        {"PIMListImpl.nextRecordWithMatchStrN", "to-dos",
         CALL(PIMListImpl_nextRecordWithMatchStrN, LIST_TODO, 0, -1, jni.string("four"))},
        {"PIMListImpl.removeItemN", "a contact", CALL(PIMListImpl_removeItemN, LIST_CONTACT, 0, 1)},
        {"PIMListImpl.removeItemN", "an event", CALL(PIMListImpl_removeItemN, LIST_EVENT, 0, 1)},
        {"PIMListImpl.removeItemN", "a to-do", CALL(PIMListImpl_removeItemN, LIST_TODO, 0, 3)},
        {"PIMListImpl.getSupportedFieldsN", "", CALL(PIMListImpl_getSupportedFieldsN, LIST_EVENT, 0)},
        {"PIMListImpl.maxValuesN", "", CALL(PIMListImpl_maxValuesN, LIST_CONTACT, 0, CONTACT_TEL)},
        {"PIMListImpl.getSupportedAttributesN", "",
         CALL(PIMListImpl_getSupportedAttributesN, LIST_CONTACT, 0, CONTACT_EMAIL)},
        {"PIMListImpl.getAllSupportedAttributesN", "", CALL(PIMListImpl_getAllSupportedAttributesN, LIST_CONTACT, 0)},
        {"PIMListImpl.getSupportedArrayElementsN", "",
         CALL(PIMListImpl_getSupportedArrayElementsN, LIST_CONTACT, 0, CONTACT_NAME)},
        {"PIMListImpl.getExtendedFieldsN", "", CALL(PIMListImpl_getExtendedFieldsN, LIST_TODO, 0)},
        {"PIMListImpl.getExtendedFieldDataTypeN", "", CALL(PIMListImpl_getExtendedFieldDataTypeN, LIST_TODO, 0)},
        {"PIMListImpl.extendedStringArraySizeN", "", CALL(PIMListImpl_extendedStringArraySizeN, LIST_TODO, 0)},
        {"PIMListImpl.getFieldLabelN", "", CALL(PIMListImpl_getFieldLabelN, LIST_CONTACT, 0, CONTACT_TEL)},
        {"PIMListImpl.getAttributeLabelN", "", CALL(PIMListImpl_getAttributeLabelN, LIST_CONTACT, 0, ATTR_FAX)},
        {"PIMListImpl.getArrayElementLabelN", "",
         CALL(PIMListImpl_getArrayElementLabelN, LIST_CONTACT, 0, CONTACT_NAME, NAME_GIVEN)},
        {"PIMListImpl.maxCategoriesN", "", CALL(PIMListImpl_maxCategoriesN, LIST_CONTACT, 0)},
        {"PIMListImpl.getCategoriesN", "", CALL(PIMListImpl_getCategoriesN, LIST_CONTACT, 0)},
        {"PIMListImpl.addCategoryN", "", CALL_VOID(PIMListImpl_addCategoryN, LIST_CONTACT, 0, jni.string("Club"))},
        {"PIMListImpl.renameCategoryN", "",
         CALL_VOID(PIMListImpl_renameCategoryN, LIST_CONTACT, 0, jni.string("Work"), jni.string("Office"))},
        {"PIMListImpl.deleteCategoryN", "",
         CALL_VOID(PIMListImpl_deleteCategoryN, LIST_CONTACT, 0, jni.string("Work"), JNI_TRUE)},
        {"PIMListImpl.isCategoryN", "", CALL(PIMListImpl_isCategoryN, LIST_CONTACT, 0, jni.string("Play"))},

        {"PIMItemImpl.isRecordDeletedN", "a contact", CALL(PIMItemImpl_isRecordDeletedN, LIST_CONTACT, 0, 1)},
        {"PIMItemImpl.isRecordDeletedN", "an event", CALL(PIMItemImpl_isRecordDeletedN, LIST_EVENT, 0, 1)},
        {"PIMItemImpl.isRecordDeletedN", "a to-do", CALL(PIMItemImpl_isRecordDeletedN, LIST_TODO, 0, 3)},
        {"PIMItemImpl.getBinaryN", "", CALL(PIMItemImpl_getBinaryN, LIST_CONTACT, 0)},
        {"PIMItemImpl.getAttributesN", "", CALL(PIMItemImpl_getAttributesN, LIST_CONTACT, 0, 1, CONTACT_TEL, 0)},
        {"PIMItemImpl.getDateN", "a contact", CALL(PIMItemImpl_getDateN, LIST_CONTACT, 0, 1, CONTACT_BIRTHDAY, 0)},
        {"PIMItemImpl.getDateN", "an event", CALL(PIMItemImpl_getDateN, LIST_EVENT, 0, 1, EVENT_START, 0)},
        {"PIMItemImpl.getDateN", "a to-do", CALL(PIMItemImpl_getDateN, LIST_TODO, 0, 3, TODO_DUE, 0)},
        {"PIMItemImpl.getBooleanN", "a contact", CALL(PIMItemImpl_getBooleanN, LIST_CONTACT, 0, 1, CONTACT_TEL, 0)},
        {"PIMItemImpl.getBooleanN", "an event", CALL(PIMItemImpl_getBooleanN, LIST_EVENT, 0, 1, EVENT_START, 0)},
        {"PIMItemImpl.getBooleanN", "a to-do", CALL(PIMItemImpl_getBooleanN, LIST_TODO, 0, 3, TODO_COMPLETED, 0)},
        {"PIMItemImpl.getIntN", "a contact", CALL(PIMItemImpl_getIntN, LIST_CONTACT, 0, 1, CONTACT_TEL, 0)},
        {"PIMItemImpl.getIntN", "an event", CALL(PIMItemImpl_getIntN, LIST_EVENT, 0, 1, EVENT_ALARM, 0)},
        {"PIMItemImpl.getIntN", "a to-do", CALL(PIMItemImpl_getIntN, LIST_TODO, 0, 3, TODO_PRIORITY, 0)},
        {"PIMItemImpl.getStringN", "a contact", CALL(PIMItemImpl_getStringN, LIST_CONTACT, 0, 1, CONTACT_NOTE, 0)},
        {"PIMItemImpl.getStringN", "an event", CALL(PIMItemImpl_getStringN, LIST_EVENT, 0, 1, EVENT_SUMMARY, 0)},
        {"PIMItemImpl.getStringN", "a to-do", CALL(PIMItemImpl_getStringN, LIST_TODO, 0, 3, TODO_SUMMARY, 0)},
        {"PIMItemImpl.getStringArrayN", "", CALL(PIMItemImpl_getStringArrayN, LIST_CONTACT, 0, 1, CONTACT_NAME, 0)},
        {"PIMItemImpl.getFieldsN", "a contact", CALL(PIMItemImpl_getFieldsN, LIST_CONTACT, 0, 1)},
        {"PIMItemImpl.getFieldsN", "an event", CALL(PIMItemImpl_getFieldsN, LIST_EVENT, 0, 1)},
        {"PIMItemImpl.getFieldsN", "a to-do", CALL(PIMItemImpl_getFieldsN, LIST_TODO, 0, 3)},
        {"PIMItemImpl.countValuesN", "a contact", CALL(PIMItemImpl_countValuesN, LIST_CONTACT, 0, 1, CONTACT_TEL)},
        {"PIMItemImpl.countValuesN", "an event", CALL(PIMItemImpl_countValuesN, LIST_EVENT, 0, 1, EVENT_SUMMARY)},
        {"PIMItemImpl.countValuesN", "a to-do", CALL(PIMItemImpl_countValuesN, LIST_TODO, 0, 3, TODO_SUMMARY)},
        {"PIMItemImpl.maxCategoriesN", "", CALL(PIMItemImpl_maxCategoriesN, LIST_CONTACT, 0)},
        {"PIMItemImpl.getCategoriesN", "", CALL(PIMItemImpl_getCategoriesN, LIST_CONTACT, 0, 1)},
        {"PIMItemImpl.commitN", "a new contact", commit(CONTACT, LIST_CONTACT, -1)},
        {"PIMItemImpl.commitN", "a contact", commit(CONTACT, LIST_CONTACT, 1)},
        {"PIMItemImpl.commitN", "a new event", commit(EVENT, LIST_EVENT, -1)},
        {"PIMItemImpl.commitN", "an event", commit(EVENT, LIST_EVENT, 1)},
        {"PIMItemImpl.commitN", "a new to-do", commit(TODO, LIST_TODO, -1)},
        {"PIMItemImpl.commitN", "a to-do", commit(TODO, LIST_TODO, 3)},

        {"ContactImpl.getPreferredIndexN", "", CALL(ContactImpl_getPreferredIndexN, 0, 1, CONTACT_TEL)},
        {"EventImpl.getRepeatIntN", "", CALL(EventImpl_getRepeatIntN, 0, 1, REPEAT_INTERVAL)},
        {"EventImpl.getRepeatDateN", "", CALL(EventImpl_getRepeatDateN, 0, 1, REPEAT_END)},
        {"EventImpl.getRepeatFieldsN", "", CALL(EventImpl_getRepeatFieldsN, 0, 1)},
        {"EventImpl.getRepeatExceptDatesN", "", CALL(EventImpl_getRepeatExceptDatesN, 0, 1)},
        {"EventListImpl.nextSortedEventN", "", CALL(EventListImpl_nextSortedEventN, 0, 0)},
        {"EventListImpl.getSupportedRepeatRuleFrequenciesN", "",
         CALL(EventListImpl_getSupportedRepeatRuleFrequenciesN)},
        {"EventListImpl.getSupportedRepeatRuleFieldsN", "", CALL(EventListImpl_getSupportedRepeatRuleFieldsN, 16)},
        {"ToDoListImpl.nextSortedToDoN", "", CALL(ToDoListImpl_nextSortedToDoN, 0, TODO_DUE, 0)},
    };
    return cases;
}

void fill_stores(fake_platform& platform)
{
    static const char* const LAST_NAMES[] = {"One", "Two", "Third"};
    for (const int32_t index : {1, 2, 3}) {
        stored_contact& contact = platform.add_contact(index, "First", LAST_NAMES[index - 1]);
        contact.phones.push_back(a_phone("1", CONTACT_PHONE_MOBILE_PRIVATE));
        contact.emails.push_back(an_email("a@b"));
        contact_address& address = contact.addresses.emplace_back();
        for (char* part : {address.street, address.additional_info, address.city, address.postal_code, address.state,
                           address.country, address.pobox})
            *part = 'x';
        contact.note = "Note";
        put_into(contact.record.nickname, "Nick");
        put_into(contact.record.company_name, "Company");
        put_into(contact.record.job_title, "Title");
        put_into(contact.record.homepage_info[0].homepage, "Page");
        contact.record.birthday = contact.record.save_time = local_time(1970, 1, 2);
    }
    platform.add_group(0, "Work");
    platform.add_group(1, "Home");
    platform.add_members(0, {1, 2});
    static const char* const SUMMARIES[] = {"One", "Two", "Three", "Four"};
    for (const int32_t index : {1, 2, 3, 4}) {
        stored_item& item = platform.add_item(index <= 2 ? ORG_TYPE_EVENT : ORG_TYPE_TODO, index, SUMMARIES[index - 1]);
        item.description = "Description";
        item.location = "Location";
        for (org_date_time* date : {&item.record.start_date_time, &item.record.end_date_time, &item.record.alarm_time,
                                    &item.record.repeat_end_or_due, &item.record.last_modified_time})
            date->time = local_time(1970, 1, 2);
        item.record.repeat_term = ORG_REPEAT_WEEKLY;
        item.record.repeat_interval = 2;
        item.record.completed = 1;
        item.record.priority = ORG_PRIORITY_MIDDLE;
    }
}
