// The failure matrix: every native, every platform call that it makes, and what comes of it when that one call fails.
// Printed as a table; a call without a row and a row without a call are failures, too.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "every_native.h"
#include "time_zone.h"
#include "unit_test.h"

namespace {

// What stands in a row for the result of an undisturbed call, and for the calls it makes from there on.
constexpr const char* EVER = "as ever";
constexpr const char* REST = "the rest";
constexpr const char* NOTHING = "";

// What is left behind on purpose.
constexpr const char* CONNECTION = "connection"; // A refused opening, or a failure that ends the walk, closes nothing.
constexpr const char* BUFFERS = "7 blocks";      // The text buffers of a record are the store's to release.

// What opening and closing trace.
constexpr const char* CONNECT_C = "native_function_initialize contact_db_service_connect is failed (99) ***";
constexpr const char* CLOSE_C =
    "native_function_finalize contact_db_service_disconnect is failed (error_code : 99) *** | final fail(0)";
constexpr const char* CONNECT_O =
    "native_function_initialize org_db_service_connect_database is failed (99) *** | initialize fail(10007)";
constexpr const char* INIT_O =
    "native_function_initialize ***, org_db_service_init_full_record is failed (99) | initialize fail(10008)";
constexpr const char* CLOSE_O =
    "native_function_finalize org_db_service_disconnect_database is failed (error_code : 99) *** | final fail(0)";
constexpr const char* FREE_O =
    "native_function_finalize ***, org_db_service_free_full_record is failed (99) | final fail(0)";

constexpr const char* RELEASE = "contact_free disconnect";
constexpr const char* CLOSE = "disconnect_database free_full_record";
constexpr const char* GET = "get_record_full_field_by_index";

struct row {
    std::vector<std::string> natives; // A native, or one with what sets its case apart.
    std::string call;                 // Without its prefix. "opening" is the record's preparation by the opening.
    std::string result;
    std::string messages;   // What is traced as a failure, in order; where the check was made is left out.
    std::string afterwards; // The platform calls that follow.
    std::string left = NOTHING;
};

// Natives whose organizer readers share a result for each step of their frame.
const std::vector<std::string> MINUS_ONE = {
    "PIMListImpl.nextRecordN",  "PIMListImpl.nextRecordWithMatchStrN",
    "PIMItemImpl.getDateN",     "PIMItemImpl.getIntN",
    "PIMItemImpl.countValuesN", "EventImpl.getRepeatIntN",
    "EventImpl.getRepeatDateN",
};
const std::vector<std::string> DELETED_OR_DONE = {"PIMItemImpl.isRecordDeletedN", "PIMItemImpl.getBooleanN"};

const row ROWS[] = {
    // ---- Opening ----
    // A refused contact store is traced and otherwise found out by the calls that follow.
    {{"PIMListImpl.nextRecordInCategoryN, a category"},
     "connect",
     "-1",
     std::string(CONNECT_C) + " | Error occured!",
     "group_get_id_by_name group_get group_get_members"},
    {{"any"}, "connect", EVER, CONNECT_C, REST},

    {{"PIMListImpl.removeItemN"},
     "connect_database",
     "0",
     std::string(CONNECT_O) + " | recoverable: pimlistimpl_removeItemN Fail",
     ""},
    {{"PIMListImpl.removeItemN"},
     "opening",
     "0",
     std::string(INIT_O) + " | recoverable: pimlistimpl_removeItemN Fail",
     "",
     CONNECTION},
    {{"PIMItemImpl.commitN"},
     "connect_database",
     "-1",
     std::string(CONNECT_O) + " | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     ""},
    {{"PIMItemImpl.commitN"},
     "opening",
     "-1",
     std::string(INIT_O) + " | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     "",
     CONNECTION},
    {MINUS_ONE, "connect_database", "-1", CONNECT_O, ""},
    {MINUS_ONE, "opening", "-1", INIT_O, "", CONNECTION},
    {DELETED_OR_DONE, "connect_database", "1", CONNECT_O, ""},
    {DELETED_OR_DONE, "opening", "1", INIT_O, "", CONNECTION},
    {{"PIMItemImpl.getStringN"}, "connect_database", "\"\"", CONNECT_O, ""},
    {{"PIMItemImpl.getStringN"}, "opening", "\"\"", INIT_O, "", CONNECTION},
    // A count of -1 is not 0, so a field whose count failed is listed.
    {{"PIMItemImpl.getFieldsN"}, "connect_database", EVER, CONNECT_O, "from the next field on"},
    {{"PIMItemImpl.getFieldsN"}, "opening", EVER, INIT_O, "from the next field on", CONNECTION},
    {{"EventImpl.getRepeatFieldsN"}, "connect_database", "[]", CONNECT_O, ""},
    {{"EventImpl.getRepeatFieldsN"}, "opening", "[]", INIT_O, "", CONNECTION},
    // The count goes to NewIntArray as it is.
    {{"EventListImpl.nextSortedEventN"},
     "connect_database",
     "null, java/lang/NegativeArraySizeException",
     CONNECT_O,
     ""},
    {{"EventListImpl.nextSortedEventN"},
     "opening",
     "null, java/lang/NegativeArraySizeException",
     INIT_O,
     "",
     CONNECTION},

    // ---- Closing: a failure overrides the result ----
    {{"PIMListImpl.nextRecordN", "PIMListImpl.nextRecordInCategoryN", "PIMListImpl.nextRecordWithMatchStrN",
      "PIMItemImpl.getAttributesN", "PIMItemImpl.getDateN", "PIMItemImpl.getIntN", "PIMItemImpl.countValuesN",
      "ContactImpl.getPreferredIndexN"},
     "disconnect",
     "-1",
     CLOSE_C,
     ""},
    {{"PIMListImpl.removeItemN"},
     "disconnect",
     "0",
     std::string(CLOSE_C) + " | recoverable: pimlistimpl_removeItemN Fail",
     ""},
    {{"PIMItemImpl.commitN"},
     "disconnect",
     "-1",
     std::string(CLOSE_C) + " | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     ""},
    {{"PIMListImpl.getCategoriesN", "PIMItemImpl.getCategoriesN"}, "disconnect", "[]", CLOSE_C, ""},
    {{"PIMListImpl.addCategoryN", "PIMListImpl.deleteCategoryN", "PIMListImpl.renameCategoryN"},
     "disconnect",
     "void",
     CLOSE_C,
     ""},
    // A store that cannot be reached reads as a category that is there and a record that is gone.
    {{"PIMListImpl.isCategoryN", "PIMItemImpl.isRecordDeletedN"}, "disconnect", "1", CLOSE_C, ""},
    // These answer 1 whenever the record was fetched.
    {{"PIMItemImpl.getStringN", "PIMItemImpl.getStringArrayN"}, "disconnect", EVER, CLOSE_C, ""},
    {{"PIMItemImpl.getFieldsN"}, "disconnect", EVER, CLOSE_C, "from the next field on"},

    {{"PIMListImpl.removeItemN"},
     "disconnect_database",
     "0",
     std::string(CLOSE_O) + " | recoverable: pimlistimpl_removeItemN Fail",
     "",
     BUFFERS},
    {{"PIMListImpl.removeItemN"},
     "free_full_record",
     "0",
     std::string(FREE_O) + " | recoverable: pimlistimpl_removeItemN Fail",
     "",
     BUFFERS},
    {{"PIMItemImpl.commitN"},
     "disconnect_database",
     "-1",
     std::string(CLOSE_O) + " | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     "",
     BUFFERS},
    {{"PIMItemImpl.commitN"},
     "free_full_record",
     "-1",
     std::string(FREE_O) + " | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     "",
     BUFFERS},
    {MINUS_ONE, "disconnect_database", "-1", CLOSE_O, "", BUFFERS},
    {MINUS_ONE, "free_full_record", "-1", FREE_O, "", BUFFERS},
    {DELETED_OR_DONE, "disconnect_database", "1", CLOSE_O, "", BUFFERS},
    {DELETED_OR_DONE, "free_full_record", "1", FREE_O, "", BUFFERS},
    {{"PIMItemImpl.getStringN"}, "disconnect_database", EVER, CLOSE_O, "", BUFFERS},
    {{"PIMItemImpl.getStringN"}, "free_full_record", EVER, FREE_O, "", BUFFERS},
    {{"PIMItemImpl.getFieldsN"}, "disconnect_database", EVER, CLOSE_O, "from the next field on", BUFFERS},
    {{"PIMItemImpl.getFieldsN"}, "free_full_record", EVER, FREE_O, "from the next field on", BUFFERS},
    {{"EventImpl.getRepeatFieldsN"}, "disconnect_database", "[]", CLOSE_O, "", BUFFERS},
    {{"EventImpl.getRepeatFieldsN"}, "free_full_record", "[]", FREE_O, "", BUFFERS},
    // The indexes found are not released either.
    {{"EventListImpl.nextSortedEventN"},
     "disconnect_database",
     "null, java/lang/NegativeArraySizeException",
     CLOSE_O,
     "",
     "8 blocks"},
    {{"EventListImpl.nextSortedEventN"},
     "free_full_record",
     "null, java/lang/NegativeArraySizeException",
     FREE_O,
     "",
     "8 blocks"},
    // Closes first and last, and has no buffers.
    {{"ToDoListImpl.nextSortedToDoN"}, "disconnect_database#1", "[]", CLOSE_O, ""},
    {{"ToDoListImpl.nextSortedToDoN"}, "free_full_record#1", "[]", FREE_O, ""},
    {{"ToDoListImpl.nextSortedToDoN"},
     "disconnect_database#2",
     "[]",
     "native_function_finalize org_db_service_disconnect_database is failed (error_code : 99) *** | final fail(6)",
     ""},
    {{"ToDoListImpl.nextSortedToDoN"},
     "free_full_record#2",
     "[]",
     "native_function_finalize ***, org_db_service_free_full_record is failed (99) | final fail(6)",
     ""},

    // ---- Walks ----
    {{"PIMListImpl.nextRecordN, contacts"},
     "contact_get_count",
     "-1",
     "contact_db_service_contact_get_count fail(99)",
     "",
     CONNECTION},
    // The search goes on with the count that the call leaves, none.
    {{"PIMListImpl.nextRecordWithMatchStrN, contacts"}, "contact_get_count", "-1", NOTHING, "disconnect"},
    {{"PIMListImpl.nextRecordN", "PIMListImpl.nextRecordWithMatchStrN"},
     "contact_get_all_indices",
     "-1",
     "contact_db_service_contact_get_all_indices return error(99)",
     "disconnect"},
    {{"PIMListImpl.nextRecordN", "PIMListImpl.nextRecordWithMatchStrN"},
     "get_record_count",
     "-1",
     "org_db_service_get_record_count is fail.....(99)",
     "get_records_id disconnect_database free_full_record"},
    {{"PIMListImpl.nextRecordN", "PIMListImpl.nextRecordWithMatchStrN"},
     "get_records_id",
     "-1",
     "org_db_service_get_records_id fail(99)",
     CLOSE},
    // A record that cannot be read is passed over.
    {{"PIMListImpl.nextRecordWithMatchStrN"}, "contact_get_by_index#3", "-1", NOTHING, REST},
    {{"PIMListImpl.nextRecordWithMatchStrN"}, "contact_get_by_index", EVER, NOTHING, REST},
    {{"PIMListImpl.nextRecordWithMatchStrN"}, "get_record_full_field_by_index#2", "-1", NOTHING, REST},
    {{"PIMListImpl.nextRecordWithMatchStrN"}, GET, EVER, NOTHING, REST},
    {{"PIMListImpl.nextRecordInCategoryN"},
     "search_contacts_of_no_group",
     "-1",
     "contact_db_service_search_contacts_of_no_group FAIL(99)",
     "disconnect"},
    // An error word that is set ends the walk and leaves the connection open.
    {{"PIMListImpl.nextRecordInCategoryN"},
     "group_get_id_by_name",
     "-1",
     "contact_db_service_group_get_id_by_name FAIL(99) | Error occured!",
     "",
     CONNECTION},
    {{"PIMListImpl.nextRecordInCategoryN"},
     "group_get",
     "-1",
     "contact_db_service_group_get FAIL(99) | Error occured!",
     "",
     CONNECTION},
    {{"PIMListImpl.nextRecordInCategoryN"},
     "group_get_members",
     "-1",
     "contact_db_service_group_get_members FAIL | Error occured!",
     "",
     CONNECTION},
    {{"EventListImpl.nextSortedEventN"},
     "get_record_count",
     "null, java/lang/NegativeArraySizeException",
     "org_db_service_get_record_count() error occured [error_code:99]",
     CLOSE},
    // Position 0 holds no record. Two events at one time are two candidates, whatever the second pass can read.
    {{"EventListImpl.nextSortedEventN"}, "get_record_full_field_by_index#1", EVER, NOTHING, REST, "1 block"},
    {{"EventListImpl.nextSortedEventN"},
     "get_record_full_field_by_index#2",
     "[0]",
     NOTHING,
     "to position 1999",
     "1 block"},
    {{"EventListImpl.nextSortedEventN"},
     "get_record_full_field_by_index#3",
     "[0]",
     NOTHING,
     "to position 1999",
     "1 block"},
    {{"EventListImpl.nextSortedEventN"},
     GET,
     EVER,
     "org_db_service_get_record_full_field_by_index() error occured [error_code:99]",
     REST,
     "1 block"},
    {{"ToDoListImpl.nextSortedToDoN"},
     "get_record_count",
     "[]",
     "org_db_service_get_record_count() return error: 99",
     CLOSE},
    {{"ToDoListImpl.nextSortedToDoN"},
     "init_full_record",
     "[]",
     "ToDoListImpl_nextSortedToDoN ***, org_db_service_init_org_full_record is failed (errorCode = 99)",
     ""},
    // Positions 0 to 2 hold no to-do.
    {{"ToDoListImpl.nextSortedToDoN"}, "get_record_full_field_by_index#4", "[4]", NOTHING, "to position 1999"},
    {{"ToDoListImpl.nextSortedToDoN"}, "get_record_full_field_by_index#5", "[3]", NOTHING, "to position 1999"},
    {{"ToDoListImpl.nextSortedToDoN"}, GET, EVER, NOTHING, REST},

    // ---- Removal: the result says that the connection was opened and closed ----
    {{"PIMListImpl.removeItemN"}, "contact_delete", EVER, "contact_db_service_contact_delete fail(99)", "disconnect"},
    {{"PIMListImpl.removeItemN"}, "delete_record", EVER, "org_db_service_delete_record fail(99)", CLOSE},

    // ---- Categories ----
    {{"PIMListImpl.getCategoriesN"},
     "group_get_count",
     "[]",
     "contact_db_service_group_get_all_records:group_count = 0",
     "disconnect"},
    {{"PIMListImpl.getCategoriesN"},
     "group_get_all_records",
     "[]",
     "contact_db_service_group_get_all_records fail(99)",
     "disconnect"},
    {{"PIMListImpl.addCategoryN"},
     "group_exist_same_name",
     "void",
     "contact_db_service_group_exist_same_name false - same name exist",
     "disconnect"},
    {{"PIMListImpl.addCategoryN"},
     "group_add",
     "void",
     "recoverable: contact_db_service_group_add fail..(99) | pimlistImpl_addCategoryN fail..",
     "disconnect"},
    {{"PIMListImpl.addCategoryN"}, "group_get_count", "void", NOTHING, "disconnect"},
    {{"PIMListImpl.renameCategoryN"}, "group_get_count", "void", NOTHING, "disconnect"},
    {{"PIMListImpl.renameCategoryN"}, "group_get", "void", "contact_db_service_group_get is fail..", "to key 29"},
    {{"PIMListImpl.renameCategoryN"},
     "group_update",
     "void",
     "contact_db_service_group_update is failed error_code = 99",
     "disconnect"},
    {{"PIMListImpl.deleteCategoryN"}, "group_get_count", "void", NOTHING, "disconnect"},
    {{"PIMListImpl.deleteCategoryN"},
     "group_search",
     "void",
     "contact_db_service_group_search fail..(99)",
     "disconnect"},
    {{"PIMListImpl.deleteCategoryN"}, "group_get_members", "void", NOTHING, "group_delete disconnect"},
    {{"PIMListImpl.deleteCategoryN"}, "contact_delete", "void", NOTHING, REST},
    {{"PIMListImpl.deleteCategoryN"},
     "group_delete",
     "void",
     "recoverable: contact_db_service_group_delete is failed(error_code :99)",
     "disconnect"},
    {{"PIMListImpl.isCategoryN"}, "group_exist_same_name", "0", NOTHING, "disconnect"},
    {{"PIMItemImpl.getCategoriesN"},
     "contact_get",
     "[]",
     "contact_db_service_contact_get is failed (error code :99)",
     RELEASE},
    {{"PIMItemImpl.getCategoriesN"}, "group_get_count", "[]", NOTHING, RELEASE},
    {{"PIMItemImpl.getCategoriesN"},
     "group_get",
     "[]",
     "contact_db_service_group_get is failed (error code :99)",
     RELEASE},

    // ---- Values of one record ----
    {{"PIMItemImpl.isRecordDeletedN"}, "contact_is_exist", "1", NOTHING, "disconnect"},
    // Gone is what the store says is gone: error 6, and no other.
    {{"PIMItemImpl.isRecordDeletedN"}, GET, "0", NOTHING, CLOSE},
    {{"PIMItemImpl.getAttributesN", "PIMItemImpl.getDateN", "PIMItemImpl.getIntN", "PIMItemImpl.countValuesN"},
     "contact_get",
     "0",
     "contact_db_service_contact_get fail : 99",
     RELEASE},
    {{"ContactImpl.getPreferredIndexN"}, "contact_get", "-1", "contact_db_service_contact_get fail : 99", RELEASE},
    {{"PIMItemImpl.getStringN"}, "contact_get", "null", "contact_db_service_contact_get fail : 99", RELEASE},
    {{"PIMItemImpl.getStringArrayN"}, "contact_get", "[, ]", "contact_db_service_contact_get fail : 99", RELEASE},
    {{"PIMItemImpl.getFieldsN"},
     "contact_get",
     "all but this field",
     "contact_db_service_contact_get fail : 99",
     "contact_free disconnect, from the next field on"},
    {{"PIMItemImpl.getDateN, an event"},
     "init_full_record",
     "-1",
     "getEventDate ***, org_db_service_init_org_full_record is failed (error_code = 99)",
     CLOSE},
    {{"PIMItemImpl.getDateN, a to-do"},
     "init_full_record",
     "-1",
     "getTodoDate ***, org_db_service_init_org_full_record is failed (error_code = 99)",
     CLOSE},
    {{"PIMItemImpl.getIntN, a to-do"},
     "init_full_record",
     "-1",
     "getTodoInt ***, org_db_service_init_org_full_record is failed (error_code = 99)",
     CLOSE},
    // A to-do reads as completed when the store cannot be reached.
    {{"PIMItemImpl.getBooleanN"},
     "init_full_record",
     "1",
     "getTodoBool ***, org_db_service_init_org_full_record is failed (error_code = 99)",
     CLOSE},
    {{"PIMItemImpl.getStringN, a to-do"},
     GET,
     "null",
     "org_db_service_get_record_full_field_by_index() failed...",
     CLOSE},
    {{"PIMItemImpl.getStringN, an event"},
     GET,
     "null",
     "org_db_service_get_record_full_field_by_index fail(99)",
     CLOSE},
    {{"PIMItemImpl.getDateN", "PIMItemImpl.getBooleanN", "PIMItemImpl.getIntN", "PIMItemImpl.countValuesN, a to-do",
      "EventImpl.getRepeatIntN", "EventImpl.getRepeatDateN"},
     GET,
     "0",
     "org_db_service_get_record_full_field_by_index fail(99)",
     CLOSE},
    {{"PIMItemImpl.countValuesN, an event"}, GET, "0", "org_db_service_get_record_full_field_by_index Fail..", CLOSE},
    {{"PIMItemImpl.getFieldsN, an event"},
     GET,
     "all but this field",
     "org_db_service_get_record_full_field_by_index Fail..",
     "disconnect_database free_full_record, from the next field on"},
    {{"PIMItemImpl.getFieldsN, a to-do"},
     GET,
     "all but this field",
     "org_db_service_get_record_full_field_by_index fail(99)",
     "disconnect_database free_full_record, from the next field on"},
    {{"EventImpl.getRepeatFieldsN"}, GET, "[]", "org_db_service_get_record_full_field_by_index fail(99)", CLOSE},

    // ---- Commits ----
    {{"PIMItemImpl.commitN"},
     "contact_get",
     "-1",
     "contact_db_service_contact_get is failed error_code : 99 | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     RELEASE},
    // Without groups a contact is saved without changes to its memberships.
    {{"PIMItemImpl.commitN"}, "group_get_count", EVER, "contact_db_service_group_get_count Fail..(99)", REST},
    {{"PIMItemImpl.commitN"}, "group_search", EVER, "contact_db_service_group_get_all_records Fail..", REST},
    {{"PIMItemImpl.commitN"},
     "contact_add",
     "-1",
     "contact_db_service_contact_add is failed (error : 99) | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     RELEASE},
    {{"PIMItemImpl.commitN"},
     "contact_update",
     "-1",
     "contact_db_service_contact_update is failed (error : 99) | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     RELEASE},
    // An event that the store refuses is closed twice and answered as if it were stored.
    {{"PIMItemImpl.commitN, a new event"},
     "add_record_full_field",
     "0",
     "org_db_service_add_record_full_field is failed (error : 0x63)",
     "disconnect_database free_full_record disconnect_database free_full_record"},
    {{"PIMItemImpl.commitN, an event"},
     "update_record_full_field",
     EVER,
     "org_db_service_update_record_full_field is failed (error : 99)",
     "disconnect_database free_full_record disconnect_database free_full_record"},
    {{"PIMItemImpl.commitN, a new to-do"},
     "add_record_full_field",
     "-1",
     "org_db_service_add_record_full_field is failed (error : 99) | Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)",
     CLOSE},
    {{"PIMItemImpl.commitN, a to-do"},
     "update_record_full_field",
     "-1",
     "org_db_service_update_record_full_field is failed (error : 99) | Java_com_qvr_zek_pim_PIMItemImpl_commitN "
     "FAIL(-1)",
     CLOSE},
};

using names = std::vector<std::string>;

std::string joined(const names& parts, const char* separator)
{
    std::string text;
    for (const std::string& part : parts) text += (&part == &parts.front() ? "" : separator) + part;
    return text;
}

// The journal by the functions' own names.
names functions_of(const std::vector<std::string>& calls)
{
    names functions;
    for (const std::string& call : calls) {
        const std::string function = call.substr(0, call.find('('));
        for (const std::string prefix : {"contact_db_service_", "org_db_service_"})
            if (function.starts_with(prefix)) functions.push_back(function.substr(prefix.size()));
    }
    return functions;
}

// What was traced as a failure. A message that repeats itself counts once, and a check's place is nobody's business.
std::string failures_in(const std::vector<trace_message>& traces)
{
    static const std::regex place(R"(^>>\[ASSERT\]\[\w+\]\[\d+\])");
    names messages;
    for (const trace_message& trace : traces) {
        if (trace.severity == TRACE_STEP) continue;
        std::string text = std::regex_replace(trace.text, place, "");
        text.erase(text.find_last_not_of(" \n") + 1);
        if (trace.severity == JAVA_PRINTF_RECOVERABLE) text.insert(0, "recoverable: ");
        if (messages.empty() || messages.back() != text) messages.push_back(text);
    }
    return joined(messages, " | ");
}

class FailureMatrix : public unit_test {
protected:
    // One call of a native and all that came of it.
    struct outcome {
        std::string result;
        names functions;
        std::string messages;
        std::string left;
    };

    outcome run(const native_case& native, int failing)
    {
        fill_stores(platform);
        if (failing > 0) platform.fail_nth_call(failing, 99);
        outcome seen;
        console_of([&] { seen.result = native.call(jni); });
        if (jni.pending) {
            seen.result += ", " + jni.pending->class_name;
            keep_exception("part of the result");
        }
        seen.functions = functions_of(platform.calls);
        seen.messages = failures_in(platform.traces);
        if (platform.open_contact_connections + platform.open_organizer_connections > 0) {
            seen.left = CONNECTION;
            keep_connection("part of the outcome");
        }
        if (const size_t blocks = unreleased_blocks(); blocks > 0) {
            seen.left = std::to_string(blocks) + (blocks == 1 ? " block" : " blocks");
            keep_blocks("part of the outcome");
        }
        return seen;
    }
};

// The call that failed, as rows name it.
std::string label_of(const names& functions, size_t failed)
{
    const bool opening =
        functions[failed] == "init_full_record" && failed > 0 && functions[failed - 1] == "connect_database";
    return opening ? "opening" : functions[failed];
}

const row* row_of(const native_case& native, const std::string& call, int nth)
{
    const std::string numbered = call + "#" + std::to_string(nth);
    for (const row& candidate : ROWS)
        for (const std::string& name : candidate.natives)
            if ((name == native.name() || name == native.native || name == "any") &&
                (candidate.call == numbered || candidate.call == call))
                return &candidate;
    return nullptr;
}

// Puts what a row says in words into calls.
std::string calls_of(const std::string& afterwards, const names& undisturbed, size_t failed)
{
    const auto behind = undisturbed.begin() + static_cast<ptrdiff_t>(failed) + 1;
    if (afterwards == REST) return joined(names(behind, undisturbed.end()), " ");
    const std::string next_field = "from the next field on";
    if (afterwards.ends_with(next_field)) {
        const auto opening =
            std::find_if(behind, undisturbed.end(), [](const auto& call) { return call.starts_with("connect"); });
        const std::string own =
            afterwards.substr(0, afterwards.find_last_of(',') + 1 == 0 ? 0 : afterwards.find_last_of(','));
        const std::string later = joined(names(opening, undisturbed.end()), " ");
        return own + (own.empty() || later.empty() ? "" : " ") + later;
    }
    return afterwards;
}

// How far a walk goes that one failure keeps from finding all records: the position of its last read.
bool reaches_the_end(const std::string& afterwards, const std::vector<std::string>& calls)
{
    const std::string last = afterwards == "to key 29" ? "contact_db_service_group_get(29)"
                                                       : "org_db_service_get_record_full_field_by_index(1999)";
    return std::find(calls.begin(), calls.end(), last) != calls.end();
}

// The list of fields without the one that the nth reading was for.
std::string without_field(const std::string& fields, int nth)
{
    const std::regex separator(", ");
    const std::string inner = fields.substr(1, fields.size() - 2);
    names codes(std::sregex_token_iterator(inner.begin(), inner.end(), separator, -1), std::sregex_token_iterator());
    codes.erase(codes.begin() + nth - 1);
    return '[' + joined(codes, ", ") + ']';
}

} // namespace

TEST_F(FailureMatrix, IsAsStated)
{
    const time_zone zone(UTC);
    std::set<const row*> used;
    std::set<std::string> natives;
    int cells = 0;
    std::printf("%-52s | %-32s | result | messages | afterwards | left behind\n", "native", "failing call");
    for (const native_case& native : every_native()) {
        natives.insert(native.native);
        const outcome undisturbed = run(native, 0);
        EXPECT_EQ(undisturbed.messages, "") << native.name();
        start_over();
        if (undisturbed.functions.empty()) std::printf("%-52s | none\n", native.name().c_str());

        for (int failing = 1;; ++failing) {
            const outcome seen = run(native, failing);
            const std::string failed_call = platform.failed_call();
            const std::vector<std::string> calls = platform.calls;
            start_over();
            if (failed_call.empty()) break;

            // Calls that cannot fail are not counted by the script.
            size_t failed = 0;
            for (int counted = 0; failed < seen.functions.size(); ++failed) {
                if (seen.functions[failed] != "contact_free") ++counted;
                if (counted == failing) break;
            }
            ASSERT_LT(failed, undisturbed.functions.size()) << native.name();
            const std::string call = label_of(seen.functions, failed);
            int nth = 0;
            for (size_t i = 0; i <= failed; ++i) nth += label_of(seen.functions, i) == call;

            SCOPED_TRACE(native.name() + ", failing call " + std::to_string(failing) + ", " + call + "#" +
                         std::to_string(nth));
            const row* expected = row_of(native, call, nth);
            if (expected == nullptr) {
                ADD_FAILURE() << "no row says what comes of it";
                continue;
            }
            used.insert(expected);
            ++cells;
            EXPECT_EQ(seen.result, expected->result == EVER                   ? undisturbed.result
                                   : expected->result == "all but this field" ? without_field(undisturbed.result, nth)
                                                                              : expected->result);
            EXPECT_EQ(seen.messages, expected->messages);
            EXPECT_EQ(seen.left, expected->left);
            const std::string after =
                joined(names(seen.functions.begin() + static_cast<ptrdiff_t>(failed) + 1, seen.functions.end()), " ");
            if (expected->afterwards.starts_with("to ")) {
                EXPECT_TRUE(reaches_the_end(expected->afterwards, calls)) << after;
            } else {
                EXPECT_EQ(after, calls_of(expected->afterwards, undisturbed.functions, failed));
            }
            std::printf("%-52s | %-32s | %s | %s | %s | %s\n", native.name().c_str(), call.c_str(), seen.result.c_str(),
                        seen.messages.c_str(), expected->afterwards.c_str(), seen.left.c_str());
        }
    }
    for (const row& candidate : ROWS)
        EXPECT_TRUE(used.contains(&candidate))
            << "no call for the row " << candidate.natives.front() << ", " << candidate.call;
    EXPECT_EQ(natives.size(), 46u);
    std::printf("failure matrix: %d cells of %zu natives, %s\n", cells, natives.size(),
                HasFailure() ? "NOT as stated" : "all as stated");
}
