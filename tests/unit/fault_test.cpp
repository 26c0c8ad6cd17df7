// Everything that can fail made to fail in turn: what every native leaves behind then.
#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "unit_test.h"

using testing::IsEmpty;

namespace {

struct native_row {
    const char* when;
    std::function<void(fake_jni&)> call;
};

const native_row NATIVES[] = {
    {"names of lists", [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMImpl_listPIMListsN(jni.env(), nullptr, 1); }},
    {"next contact",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, LIST_CONTACT, 0, 1); }},
    {"next event",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, LIST_EVENT, 0, 1); }},
    {"next to-do",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, LIST_TODO, 0, 3); }},
    {"next member of a category",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, 1,
                                                                jni.string("Work"));
     }},
    {"next contact without category",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, 1, nullptr);
     }},
    {"search of contacts",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, LIST_CONTACT, 0, 1,
                                                                  jni.string("needle"));
     }},
    {"search of events",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, LIST_EVENT, 0, 1,
                                                                  jni.string("needle"));
     }},
    {"search of to-dos",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, LIST_TODO, 0, -1,
                                                                  jni.string("needle"));
     }},
    {"removal of a contact",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_removeItemN(jni.env(), nullptr, LIST_CONTACT, 0, 1); }},
    {"removal of an event",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_removeItemN(jni.env(), nullptr, LIST_EVENT, 0, 1); }},
    {"categories of the list",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN(jni.env(), nullptr, LIST_CONTACT, 0); }},
    {"category limit of a list that is none",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN(jni.env(), nullptr, 0, 0); }},
    {"category limit of an item that is none",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMItemImpl_maxCategoriesN(jni.env(), nullptr, 0, 0); }},
    {"categories of an item",
     [](fake_jni& jni) { Java_com_qvr_zek_pim_PIMItemImpl_getCategoriesN(jni.env(), nullptr, LIST_CONTACT, 0, 1); }},
    {"adding a category",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Club"));
     }},
    {"renaming a category",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"),
                                                          jni.string("Office"));
     }},
    {"deleting a category",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"),
                                                          JNI_TRUE);
     }},
    {"testing a category",
     [](fake_jni& jni) {
         Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"));
     }},
};

class EveryNative : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        for (int32_t index : {1, 2, 3}) {
            stored_contact& contact = platform.add_contact(index);
            contact.phones.emplace_back().number[0] = '1';
            contact.note = "Note";
            std::copy_n("x", 1, contact.record.company_name);
            std::copy_n("x", 1, contact.record.job_title);
        }
        platform.add_group(0, "Work");
        platform.add_group(3, "Home");
        platform.add_members(0, {1, 2});
        for (int32_t index : {1, 2, 3, 4}) {
            stored_item& item = platform.add_item(index <= 2 ? ORG_TYPE_EVENT : ORG_TYPE_TODO, index, "Summary");
            item.description = "Description";
            item.location = "Location";
        }
    }

    // Accepts what one turn of a sweep leaves behind.
    void accept_what_is_left(const char* reason)
    {
        if (platform.open_contact_connections + platform.open_organizer_connections > 0) keep_connection(reason);
        if (unreleased_blocks() > 0) keep_blocks(reason);
    }
};

// The platform calls after whose failure a native leaves something behind on purpose.
bool keeps_something(const std::string& when, const std::string& failed)
{
    const std::string function = failed.substr(0, failed.find('('));
    // A refused opening is not followed by a closing; a connection that would not close keeps its record, and a
    // record is the store's to release.
    if (function == "org_db_service_init_full_record" || function == "org_db_service_disconnect_database" ||
        function == "org_db_service_free_full_record")
        return true;
    // A failed count returns at once.
    if (when == "next contact") return function == "contact_db_service_contact_get_count";
    // An error word that is not clear ends the walk before the closing.
    if (when == "next member of a category")
        return function == "contact_db_service_group_get_id_by_name" || function == "contact_db_service_group_get" ||
               function == "contact_db_service_group_get_members";
    return false;
}

} // namespace

TEST_F(EveryNative, LeavesNothingBehindWhicheverPlatformCallFails)
{
    for (const native_row& native : NATIVES) {
        for (int nth = 1;; ++nth) {
            platform.fail_nth_call(nth, 99);
            native.call(jni);
            const std::string failed = platform.failed_call();
            SCOPED_TRACE(std::string(native.when) + ", failing " + failed);
            if (keeps_something(native.when, failed)) {
                const bool kept = platform.open_contact_connections + platform.open_organizer_connections > 0 ||
                                  unreleased_blocks() > 0;
                EXPECT_TRUE(kept);
                accept_what_is_left("on purpose, as listed");
            }
            if (jni.pending) keep_exception("a limit of no list is raised with or without failures");
            start_over();
            if (failed.empty()) break; // Fewer calls than that: each has had its turn.
        }
    }
}

TEST_F(EveryNative, LeavesNothingBehindWhicheverAllocationFails)
{
    // An item list that cannot be allocated closes the contact store in place of the organizer.
    const std::set<std::string> closing_the_wrong_store = {"next event", "next to-do", "search of events",
                                                           "search of to-dos"};
    for (const native_row& native : NATIVES) {
        for (int nth = 1;; ++nth) {
            fail_allocation(nth);
            native.call(jni);
            const bool failed = allocation_failed();
            SCOPED_TRACE(std::string(native.when) + ", failing allocation " + std::to_string(nth));
            if (failed && closing_the_wrong_store.contains(native.when) && !platform.calls.empty() &&
                platform.calls.back() == "contact_db_service_disconnect()")
                accept_what_is_left("the item list could not be allocated");
            if (jni.pending) keep_exception("a limit of no list is raised with or without failures");
            start_over();
            if (!failed) break;
        }
    }
}

TEST_F(EveryNative, ReleasesEverythingWhicheverJavaCallFails)
{
    for (const native_row& native : NATIVES) {
        for (int nth = 1;; ++nth) {
            jni.fail_nth_call(nth);
            native.call(jni);
            const std::string failed = jni.failed_call();
            SCOPED_TRACE(std::string(native.when) + ", failing " + failed);
            if (!failed.empty()) {
                EXPECT_TRUE(jni.pending) << "the machine's own error goes on to Java";
            }
            if (jni.pending) keep_exception("the machine's own, or the one raised");
            start_over();
            if (failed.empty()) break;
        }
    }
}

TEST_F(EveryNative, RunsSideBySideOnSeveralThreads)
{
    std::vector<std::unique_ptr<fake_jni>> machines;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) machines.push_back(std::make_unique<fake_jni>());
    for (const auto& machine : machines)
        threads.emplace_back([&machine] {
            for (int round = 0; round < 20; ++round)
                for (const native_row& native : NATIVES) {
                    native.call(*machine);
                    machine->pending.reset();
                    machine->leave_native();
                }
        });
    for (std::thread& thread : threads) thread.join();
    for (const auto& machine : machines) {
        EXPECT_THAT(machine->violations, IsEmpty());
        EXPECT_EQ(machine->unreleased(), 0u);
        EXPECT_LE(machine->local_reference_peak, 32u);
    }
    // A category walk leaves its connection open once its category is gone.
    keep_connection("another thread deleted the category");
}
