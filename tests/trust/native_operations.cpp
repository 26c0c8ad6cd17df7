#include <java_printf_handler.h>

#include "commit_values.h"
#include "natives.h"
#include "pimcodes.h"
#include "store_operations.h"

namespace {

bool traced = false;

int note_failures(const char*, int, const char*, int, int severity, const char*, ...)
{
    traced |= severity != JAVA_PRINTF_ORDINARY;
    return 0;
}

// Runs `call(jni)`, which gives its native's result as a text.
template <typename Call>
answer answer_of_native(Call&& call)
{
    java_printf_handler = note_failures;
    traced = false;
    fake_jni jni;
    const std::string result = call(jni);
    return {traced ? TRACED : 0, result};
}

template <typename Call>
store_operation native(std::string name, Call&& call)
{
    return {std::move(name), [=] { return answer_of_native(call); }};
}

void fill()
{
    contact_operations().fill();
    organizer_operations().fill();
}

std::string state()
{
    return contact_operations().state() + organizer_operations().state();
}

bool works()
{
    return contact_operations().works() && organizer_operations().works();
}

} // namespace

store_operations native_operations()
{
    const auto commit = [](commit_values values, int listtype, int recindex) {
        return [=](fake_jni& jni) { return as_text(commit_values(values).commit(jni, listtype, recindex)); };
    };
    const auto remove = [](int listtype, int recindex) {
        return [=](fake_jni& jni) {
            return as_text(Java_com_qvr_zek_pim_PIMListImpl_removeItemN(jni.env(), nullptr, listtype, 0, recindex));
        };
    };
    const auto next = [](int listtype) {
        return [=](fake_jni& jni) {
            return as_text(Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, listtype, 0, 1));
        };
    };
    const auto text = [](int listtype, int field) {
        return [=](fake_jni& jni) -> std::string {
            jstring read = Java_com_qvr_zek_pim_PIMItemImpl_getStringN(jni.env(), nullptr, listtype, 0, 1, field, 0);
            return read ? jni.text(read) : "null";
        };
    };
    // The moment of a save is given, so that it is always the same.
    const commit_values contact =
        commit_values().text(CONTACT_NOTE, "n").texts(CONTACT_NAME, {"a", "b"}).number(CONTACT_REVISION, 86400000);
    const commit_values event = commit_values().text(EVENT_SUMMARY, "s").number(EVENT_REVISION, 86400000);
    return {
        .files = {"address.db3", "organizer.db3"},
        .fill = fill,
        .state = state,
        .works = works,
        .told_by = report::trace,
        .operations =
            {
                native("commitN of a new contact", commit(contact, LIST_CONTACT, -1)),
                native("commitN of a contact", commit(contact, LIST_CONTACT, 2)),
                native("removeItemN of a contact", remove(LIST_CONTACT, 2)),
                native("nextRecordN of contacts", next(LIST_CONTACT)),
                native("getStringN of a contact", text(LIST_CONTACT, CONTACT_NICKNAME)),
                native("addCategoryN",
                       [](fake_jni& jni) {
                           Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0,
                                                                         jni.string("Club"));
                           return std::string();
                       }),
                native("commitN of a new event", commit(event, LIST_EVENT, -1)),
                native("commitN of an event", commit(event, LIST_EVENT, 1)),
                native("removeItemN of an event", remove(LIST_EVENT, 1)),
                native("nextRecordN of events", next(LIST_EVENT)),
                native("getStringN of an event", text(LIST_EVENT, EVENT_SUMMARY)),
            },
    };
}
