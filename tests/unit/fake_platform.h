// fake_platform.h: the three platform libraries in memory. Small real stores with the contract of the platform headers,
// a journal of every call and every trace message, and a script of failures and odd answers.
#ifndef JSR75_PIM_TESTS_FAKE_PLATFORM_H
#define JSR75_PIM_TESTS_FAKE_PLATFORM_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "contact_db_service.h"
#include "java_printf_handler.h"
#include "org_db_service.h"

// One message as the trace hook received it.
struct trace_message {
    std::string path;
    int line;
    std::string function;
    int component;
    int severity;
    std::string format;
    std::string text;    // The format with its arguments.
    size_t calls_before; // Length of the journal of platform calls when the message came.
};

// A contact at rest: the record's own pointers and counts are unused, the vectors hold what they lead to.
struct stored_contact {
    contact_record record = {};
    std::vector<contact_phone> phones;
    std::vector<contact_email> emails;
    std::vector<contact_address> addresses;
    std::optional<std::string> note;
};

// An event or to-do at rest: the record's own pointers are unused.
struct stored_item {
    int32_t type = ORG_TYPE_EVENT;
    org_full_record record = {};
    std::string summary, description, location, text_172, text_340, text_344, text_348;
};

class fake_platform {
public:
    static fake_platform& instance();

    // Empty stores, an empty journal, no script, the recording trace hook.
    void reset();

    // ---- What the stores hold ----
    //
    // Enumeration order is the order of the vectors, so that a test may list indexes in any order.
    std::vector<stored_contact> contacts;
    std::map<int32_t, contact_group_record> groups; // By key index.
    std::vector<stored_item> items;

    // Each adds one and hands it back for the test to fill; it is valid until the next is added.
    stored_contact& add_contact(int32_t index, std::string_view first_name = "First",
                                std::string_view last_name = "Last");
    stored_item& add_item(int32_t type, int32_t index, std::string_view summary = "");
    // A name above the limit runs on into the bytes behind the field, as a hostile store's would.
    void add_group(int32_t key, std::string_view name);
    // Makes contacts members of a group.
    void add_members(int32_t key, const std::vector<int32_t>& indexes);

    stored_contact* find_contact(int32_t index);
    stored_item* find_item(int32_t index);
    std::vector<int32_t> contact_indexes() const;
    std::vector<std::string> group_names() const;

    // ---- The script ----

    // Every call of `function` fails with `error`.
    void fail(const std::string& function, int error);
    // The `nth` call of `function` fails, counted from 1 since the reset.
    void fail_call(const std::string& function, int nth, int error);
    // The `nth` call of any function that can fail does, counted from 1 since the reset.
    void fail_nth_call(int nth, int error);
    // Calls of `function` succeed and leave `error` in the error word all the same.
    void succeed_with_error(const std::string& function, int error);
    // The journal entry of the last call that the script made fail; empty when none did.
    const std::string& failed_call() const { return failed_call_; }

    // What `function` writes to its count, in place of the truth, whether it succeeds or fails.
    std::map<std::string, int> reported_counts;
    // The members of a group by its key, in place of the truth.
    std::map<int32_t, std::vector<int32_t>> reported_members;
    // The contacts without a group, in place of the truth.
    std::optional<std::vector<int32_t>> reported_groupless;
    // What the same-name test writes to its flag, in place of the truth.
    std::optional<unsigned char> reported_same_name;
    // Called on every record that a successful fetch hands out, to make it hostile.
    std::function<void(contact_record&)> alter_contact;
    std::function<void(contact_group_record&)> alter_group;
    std::function<void(org_full_record&)> alter_item;
    // Called at the start of every platform call with its journal entry.
    std::function<void(const std::string& call)> before_call;

    // ---- What happened ----

    std::vector<std::string> calls; // For instance "contact_db_service_contact_get(7)".
    std::vector<trace_message> traces;

    // The calls whose function bears this name.
    std::vector<std::string> calls_of(std::string_view function) const;
    // The journal without connects, disconnects, and record set-up and release.
    std::vector<std::string> calls_between_connections() const;

    int open_contact_connections = 0;
    int open_organizer_connections = 0;
    // Contact records that were fetched and not released, by their addresses.
    std::set<const contact_record*> unreleased_contacts;
    // Lists of contacts without a group whose nodes were not released.
    std::set<const GList*> unreleased_lists;
    // What the library did against the platform's contract.
    std::vector<std::string> violations;

    // ---- For the platform functions ----

    int perform(const std::string& function, const std::string& arguments, int* error, int* count,
                const std::function<int()>& work);
    void record(const trace_message& message);
    std::optional<int32_t>& scope() { return scopes_[std::this_thread::get_id()]; }
    std::recursive_mutex& mutex() { return mutex_; }

private:
    std::optional<int> scripted_failure(const std::string& function);

    std::recursive_mutex mutex_;
    std::map<std::string, int> failures_;
    std::map<std::pair<std::string, int>, int> call_failures_;
    std::map<int, int> nth_failures_;
    std::map<std::string, int> errors_on_success_;
    std::map<std::string, int> call_counts_;
    int call_count_ = 0;
    std::string failed_call_;
    std::map<std::thread::id, std::optional<int32_t>> scopes_;
};

#endif
