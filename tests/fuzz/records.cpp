// Records of a hostile store: any bytes in every field, texts without an end, counts negative or huge. An array is as
// long as its count says, or null: that it is shorter is something nobody could tell.
#include <algorithm>
#include <cstring>

#include "fuzz.h"
#include "stored_records.h"

template <typename Record>
static void overwrite(const std::string& bytes, Record& record, size_t from, size_t to)
{
    for (size_t i = from; i < to && !bytes.empty(); ++i) reinterpret_cast<char*>(&record)[i] = bytes[i % bytes.size()];
}

static void make_hostile(FuzzedDataProvider& input, fake_platform& platform)
{
    const std::string bytes = input.ConsumeRandomLengthString(200);
    const auto phones = input.ConsumeIntegral<int32_t>(), emails = input.ConsumeIntegral<int32_t>();
    const auto addresses = input.ConsumeIntegral<int32_t>(), note = input.ConsumeIntegral<int32_t>();
    const bool null_arrays = input.ConsumeBool();
    platform.alter_contact = [=](contact_record& contact) {
        contact_record hostile = contact;
        overwrite(bytes, hostile, 0, sizeof hostile);
        hostile.phone_info = contact.phone_info;
        hostile.email_info = contact.email_info;
        hostile.address_info = contact.address_info;
        hostile.note = contact.note;
        hostile.phone_count = contact.phone_count;
        hostile.email_count = contact.email_count;
        hostile.postal_count = contact.postal_count;
        hostile.note_size = contact.note_size;
        for (int32_t i = 0; i < contact.phone_count; ++i)
            overwrite(bytes, contact.phone_info[i], 0, sizeof(contact_phone));
        for (int32_t i = 0; i < contact.email_count; ++i)
            overwrite(bytes, contact.email_info[i], 0, sizeof(contact_email));
        for (int32_t i = 0; i < contact.postal_count; ++i)
            overwrite(bytes, contact.address_info[i], 0, sizeof(contact_address));
        // A note of any bytes fills the block of its size, with an end or without.
        for (int32_t i = 0; i < contact.note_size && !bytes.empty(); ++i)
            contact.note[i] = bytes[static_cast<size_t>(i) % bytes.size()];
        if (null_arrays) {
            std::free(std::exchange(hostile.phone_info, nullptr));
            std::free(std::exchange(hostile.email_info, nullptr));
            std::free(std::exchange(hostile.address_info, nullptr));
            std::free(std::exchange(hostile.note, nullptr));
            hostile.phone_count = phones;
            hostile.email_count = emails;
            hostile.postal_count = addresses;
            hostile.note_size = note;
        }
        contact = hostile;
    };
    platform.alter_group = [=](contact_group_record& group) { overwrite(bytes, group, 8, sizeof group); };
    platform.alter_item = [=](org_full_record& item) {
        org_full_record hostile = item;
        overwrite(bytes, hostile, 0, sizeof hostile);
        hostile.summary = item.summary;
        hostile.description = item.description;
        hostile.location = item.location;
        hostile.text_172 = item.text_172;
        hostile.text_340 = item.text_340;
        hostile.text_344 = item.text_344;
        hostile.text_348 = item.text_348;
        item = hostile;
    };
}

void fuzz(FuzzedDataProvider& input, fake_platform& platform, fake_jni& jni)
{
    stored_contact& contact = platform.add_contact(1);
    contact.phones.resize(2);
    contact.emails.resize(2);
    contact.addresses.resize(2);
    contact.note = "A note";
    platform.add_group(0, "Work");
    platform.add_item(ORG_TYPE_EVENT, 1, "Event");
    platform.add_item(ORG_TYPE_TODO, 2, "To-do");
    make_hostile(input, platform);

    JNIEnv* env = jni.env();
    for (const jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO}) {
        const jint index = listtype == LIST_TODO ? 2 : 1;
        const auto field = input.ConsumeIntegralInRange<jint>(99, 119);
        const auto value = input.ConsumeIntegralInRange<jint>(-2, 6);
        Java_com_qvr_zek_pim_PIMItemImpl_getStringN(env, nullptr, listtype, 0, index, field, value);
        Java_com_qvr_zek_pim_PIMItemImpl_getStringArrayN(env, nullptr, listtype, 0, index, field, value);
        Java_com_qvr_zek_pim_PIMItemImpl_getDateN(env, nullptr, listtype, 0, index, field, value);
        Java_com_qvr_zek_pim_PIMItemImpl_getIntN(env, nullptr, listtype, 0, index, field, value);
        Java_com_qvr_zek_pim_PIMItemImpl_getBooleanN(env, nullptr, listtype, 0, index, field, value);
        Java_com_qvr_zek_pim_PIMItemImpl_getAttributesN(env, nullptr, listtype, 0, index, field, value);
        Java_com_qvr_zek_pim_PIMItemImpl_countValuesN(env, nullptr, listtype, 0, index, field);
        Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN(env, nullptr, listtype, 0, index);
        Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(env, nullptr, listtype, 0, -1,
                                                                 jni.string(some_text(input, 20)));
    }
    Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN(env, nullptr, 0, 1,
                                                        input.ConsumeIntegralInRange<jint>(99, 119));
    Java_com_qvr_zek_pim_PIMItemImpl_getCategoriesN(env, nullptr, LIST_CONTACT, 0, 1);
    Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN(env, nullptr, LIST_CONTACT, 0);
    Java_com_qvr_zek_pim_EventImpl_getRepeatIntN(env, nullptr, 0, 1, input.ConsumeIntegralInRange<jint>(-1, 9));
    Java_com_qvr_zek_pim_EventImpl_getRepeatFieldsN(env, nullptr, 0, 1);
    if (input.ConsumeIntegralInRange(0, 63) == 63) // Looks at 2000 positions.
        Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN(env, nullptr, 0, 103, input.ConsumeIntegral<jlong>());
    allow_open_connection(); // A group name that is too long ends the listing, and neither is closed nor freed then.
}
