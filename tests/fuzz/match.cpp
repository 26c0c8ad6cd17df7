// Match strings and texts of records, of any bytes.
#include "fuzz.h"
#include "stored_records.h"

template <size_t size>
static void fill(FuzzedDataProvider& input, char (&field)[size])
{
    put_into(field, some_text(input, size - 1));
}

void fuzz(FuzzedDataProvider& input, fake_platform& platform, fake_jni& jni)
{
    for (const int32_t index : {1, 2}) {
        stored_contact& contact = platform.add_contact(index);
        fill(input, contact.record.name_info.first_name);
        fill(input, contact.record.name_info.last_name);
        fill(input, contact.record.company_name);
        contact.phones.push_back(a_phone(some_text(input, 41)));
        contact.emails.push_back(an_email(some_text(input, 129)));
        contact.note = some_text(input);
        stored_item& item =
            platform.add_item(index == 1 ? ORG_TYPE_EVENT : ORG_TYPE_TODO, index, some_text(input, 256));
        item.description = some_text(input, 1024);
        item.location = some_text(input, 160);
    }
    const std::string match = some_text(input);
    const jint start = input.ConsumeIntegralInRange<jint>(-1, 3);
    for (const jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO})
        Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, listtype, 0, start,
                                                                 jni.string(match));
}
