// The natives that read one value of one stored item: which reader each calls, and what it makes of the answer.
#include <functional>
#include <string>
#include <vector>

#include "pimitemimpl_limo_arm.h"
#include "stored_records.h"
#include "time_zone.h"
#include "unit_test.h"

namespace item_value_test {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

namespace {

constexpr jint HANDLE = 77;
constexpr jint CONTACT = 1, EVENT = 2, TODO = 3; // The records below, which bear the numbers of their lists.

constexpr int64_t NEW_YEAR = INT64_C(1262304000000);

// One contact, one event and one to-do.
class ItemValue : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        stored_contact& contact = platform.add_contact(CONTACT, "Ada", "Lovelace");
        put_into(contact.record.nickname, "Countess");
        contact.record.birthday = local_time(2010, 1, 1);
        contact.record.save_time = local_time(1970, 1, 2);
        contact.phones = {a_phone("1", CONTACT_PHONE_WORK), a_phone("2", CONTACT_PHONE_MOBILE_PRIVATE)};
        contact.addresses = {an_address(CONTACT_ENTRY_BUSINESS)};

        stored_item& event = platform.add_item(ORG_TYPE_EVENT, EVENT, "Lunch");
        event.description = "with Ada";
        event.record.alarm_time.time = local_time(2010, 1, 1);
        event.record.start_date_time.time = local_time(1970, 1, 3);

        stored_item& todo = platform.add_item(ORG_TYPE_TODO, TODO, "Buy");
        todo.description = "milk";
        todo.record.priority = 2;
        todo.record.completed = 1;
        todo.record.repeat_end_or_due.time = local_time(1970, 1, 4);
    }

    // The native was entered, and this port function answered.
    void expect_answered_by(const std::string& native, const std::string& reader)
    {
        const std::string name = "Java_com_qvr_zek_pim_PIMItemImpl_" + native;
        EXPECT_THAT(platform.traces, Contains(AllOf(trace(TRACE_STEP, "%s ***\n", name + " ***\n"),
                                                    Field(&trace_message::function, name))));
        EXPECT_THAT(platform.traces, Contains(Field(&trace_message::function, reader)));
    }

    void expect_no_store_call() { EXPECT_THAT(platform.calls, IsEmpty()); }

    std::string string_of(jint listtype, jint recindex, jint field, jint index = 0)
    {
        jstring text =
            Java_com_qvr_zek_pim_PIMItemImpl_getStringN(jni.env(), nullptr, listtype, HANDLE, recindex, field, index);
        return text == nullptr ? "null" : jni.text(text);
    }
    std::vector<std::string> array_of(jint recindex, jint field, jint index = 0)
    {
        return jni.texts(Java_com_qvr_zek_pim_PIMItemImpl_getStringArrayN(jni.env(), nullptr, LIST_CONTACT, HANDLE,
                                                                          recindex, field, index));
    }

    time_zone utc{UTC};
};

using GetStringNative = ItemValue;
using GetStringArrayNative = ItemValue;
using GetFieldsNative = ItemValue;
using GetAttributesNative = ItemValue;
using GetBinaryNative = ItemValue;
using GetPreferredIndexNative = ItemValue;

// A native that gives a number, for each list.
struct number_row {
    const char* native;
    std::function<int64_t(fake_jni&, jint listtype, jint recindex, jint field)> call;
    const char* reader[3];
    jint field[3];
    int64_t expected[3];
};

const number_row NUMBERS[] = {
    {"getDateN",
     [](fake_jni& jni, jint listtype, jint recindex, jint field) -> int64_t {
         return Java_com_qvr_zek_pim_PIMItemImpl_getDateN(jni.env(), nullptr, listtype, HANDLE, recindex, field, 0);
     },
     {"getContactDate", "getEventDate", "getTodoDate"},
     {CONTACT_REVISION, EVENT_START, TODO_DUE},
     {86400000, 2 * 86400000, 3 * 86400000}},
    {"getBooleanN",
     [](fake_jni& jni, jint listtype, jint recindex, jint field) -> int64_t {
         return Java_com_qvr_zek_pim_PIMItemImpl_getBooleanN(jni.env(), nullptr, listtype, HANDLE, recindex, field, 0);
     },
     {"getContactBool", "getEventBool", "getTodoBool"},
     {TODO_COMPLETED, TODO_COMPLETED, TODO_COMPLETED},
     {0, 0, 1}},
    {"getIntN",
     [](fake_jni& jni, jint listtype, jint recindex, jint field) -> int64_t {
         return Java_com_qvr_zek_pim_PIMItemImpl_getIntN(jni.env(), nullptr, listtype, HANDLE, recindex, field, 0);
     },
     {"getContactInt", "getEventInt", "getTodoInt"},
     {TODO_PRIORITY, EVENT_ALARM, TODO_PRIORITY},
     {0, -416385024, 2}},
    {"countValuesN",
     [](fake_jni& jni, jint listtype, jint recindex, jint field) -> int64_t {
         return Java_com_qvr_zek_pim_PIMItemImpl_countValuesN(jni.env(), nullptr, listtype, HANDLE, recindex, field);
     },
     {"count_values_contact", "count_values_event", "count_values_todo"},
     {CONTACT_TEL, EVENT_NOTE, TODO_COMPLETED},
     {2, 1, 1}},
};

constexpr jint UNKNOWN_LISTS[] = {0, 4, -1, 1000};

} // namespace

// ---- Numbers --------------------------------------------------------------------------------------------------------

TEST_F(ItemValue, NumbersComeFromTheReaderOfTheList)
{
    for (const number_row& row : NUMBERS) {
        for (jint listtype = 1; listtype <= 3; ++listtype) {
            SCOPED_TRACE(testing::Message() << row.native << " of list " << listtype);
            const int list = listtype - 1;
            EXPECT_EQ(row.call(jni, listtype, listtype, row.field[list]), row.expected[list]);
            expect_answered_by(row.native, row.reader[list]);
            start_over();
        }
    }
}

TEST_F(ItemValue, NumbersOfAnUnknownListAreZeroWithoutAReader)
{
    for (const number_row& row : NUMBERS) {
        for (jint listtype : UNKNOWN_LISTS) {
            SCOPED_TRACE(testing::Message() << row.native << " of list " << listtype);
            EXPECT_EQ(row.call(jni, listtype, 1, 100), 0);
            expect_no_store_call();
        }
    }
}

TEST_F(ItemValue, DatesPassUnchangedWithAllTheirBits)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getDateN(jni.env(), nullptr, LIST_CONTACT, HANDLE, CONTACT,
                                                        CONTACT_BIRTHDAY, 0),
              NEW_YEAR);
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getDateN(jni.env(), nullptr, LIST_TODO, HANDLE, TODO, TODO_REVISION, 0),
              -1000);
}

// ---- Strings --------------------------------------------------------------------------------------------------------

TEST_F(GetStringNative, ReadsTheTextOfEachList)
{
    struct row {
        jint listtype;
        jint field;
        const char* expected;
        const char* reader;
    };
    const row rows[] = {
        {LIST_CONTACT, CONTACT_NICKNAME, "Countess", "getContactString"},
        {LIST_EVENT, EVENT_SUMMARY, "Lunch", "getEventString"},
        {LIST_TODO, TODO_NOTE, "milk", "getTodoString"},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.reader);
        EXPECT_EQ(string_of(row.listtype, row.listtype, row.field), row.expected);
        expect_answered_by("getStringN", row.reader);
        start_over();
    }
}

TEST_F(GetStringNative, GivesAnEmptyStringForAFieldWithoutText)
{
    EXPECT_EQ(string_of(LIST_CONTACT, CONTACT, CONTACT_NOTE), "");
    EXPECT_EQ(string_of(LIST_CONTACT, CONTACT, CONTACT_EMAIL), "");
    EXPECT_EQ(string_of(LIST_CONTACT, CONTACT, 999), "");
    EXPECT_EQ(string_of(LIST_EVENT, EVENT, EVENT_LOCATION), "");
    EXPECT_EQ(string_of(LIST_EVENT, EVENT, EVENT_START), "");
    EXPECT_EQ(string_of(LIST_TODO, TODO, 108), "");
}

TEST_F(GetStringNative, GivesNullForARecordThatIsNotThere)
{
    EXPECT_EQ(string_of(LIST_CONTACT, 4711, CONTACT_NICKNAME), "null");
    EXPECT_EQ(string_of(LIST_EVENT, 4711, EVENT_SUMMARY), "null");
    EXPECT_EQ(string_of(LIST_TODO, 4711, TODO_SUMMARY), "null");
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(GetStringNative, GivesNullForAnUnknownList)
{
    for (jint listtype : UNKNOWN_LISTS) EXPECT_EQ(string_of(listtype, 1, 107), "null") << listtype;
    expect_no_store_call();
}

TEST_F(GetStringNative, GivesAnEmptyStringWhenTheStoreCannotBeOpened)
{
    platform.fail("org_db_service_connect_database", 1);
    EXPECT_EQ(string_of(LIST_EVENT, EVENT, EVENT_SUMMARY), "");
    EXPECT_EQ(string_of(LIST_TODO, TODO, TODO_SUMMARY), "");
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(string_of(LIST_CONTACT, CONTACT, CONTACT_NICKNAME), "");
}

TEST_F(GetStringNative, CutsATextAt1023BytesWithWholeCharacters)
{
    const std::string a_umlaut = "\xc3\xa4", euro = "\xe2\x82\xac", pair = "\xed\xa0\xbd\xed\xb8\x80";
    const auto xs = [](size_t count) { return std::string(count, 'x'); };
    struct row {
        const char* when;
        std::string text;
        std::string expected;
    };
    const row rows[] = {
        {"fits", xs(1023), xs(1023)},
        {"one byte over", xs(1024), xs(1023)},
        {"far over", xs(5000), xs(1023)},
        {"two bytes that fit", xs(1021) + a_umlaut, xs(1021) + a_umlaut},
        {"two bytes that do not", xs(1022) + a_umlaut, xs(1022)},
        {"three bytes that fit", xs(1020) + euro + "x", xs(1020) + euro},
        {"three bytes of which one fits", xs(1022) + euro, xs(1022)},
        {"three bytes of which two fit", xs(1021) + euro, xs(1021)},
        {"a pair that fits", xs(1017) + pair, xs(1017) + pair},
        {"a pair of which one half fits", xs(1020) + pair, xs(1020)},
        {"a pair of which five bytes fit", xs(1018) + pair, xs(1018)},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        platform.find_contact(CONTACT)->note = row.text;
        EXPECT_EQ(string_of(LIST_CONTACT, CONTACT, CONTACT_NOTE), row.expected);
        if (row.text.size() > ORG_DESCRIPTION_MAX) continue;
        platform.find_item(EVENT)->description = row.text;
        EXPECT_EQ(string_of(LIST_EVENT, EVENT, EVENT_NOTE), row.expected);
        platform.find_item(TODO)->description = row.text;
        EXPECT_EQ(string_of(LIST_TODO, TODO, TODO_NOTE), row.expected);
    }
}

// ---- String arrays --------------------------------------------------------------------------------------------------

TEST_F(GetStringArrayNative, GivesSevenElementsOfAnAddress)
{
    contact_address& address = platform.find_contact(CONTACT)->addresses[0];
    put_into(address.street, "Street 1");
    put_into(address.country, "Country");
    EXPECT_THAT(array_of(CONTACT, CONTACT_ADDR), ElementsAre("", "", "Street 1", "", "", "", "Country"));
    EXPECT_THAT(jni.calls_of("NewObjectArray"), ElementsAre("NewObjectArray(7, java/lang/String)"));
    expect_answered_by("getStringArrayN", "getContactStringArray");
}

TEST_F(GetStringArrayNative, GivesTwoElementsOfANameWithoutTheNickname)
{
    EXPECT_THAT(array_of(CONTACT, CONTACT_NAME), ElementsAre("Lovelace", "Ada"));
    EXPECT_THAT(jni.calls_of("NewObjectArray"), ElementsAre("NewObjectArray(2, java/lang/String)"));
}

TEST_F(GetStringArrayNative, GivesEmptyElementsForARecordThatIsNotThere)
{
    EXPECT_EQ(array_of(4711, CONTACT_ADDR), std::vector<std::string>(7, ""));
    EXPECT_EQ(array_of(4711, CONTACT_NAME), std::vector<std::string>(2, ""));
}

TEST_F(GetStringArrayNative, IsNullForOtherFieldsAndOtherLists)
{
    const auto is_null = [&](jint listtype, jint field) {
        return Java_com_qvr_zek_pim_PIMItemImpl_getStringArrayN(jni.env(), nullptr, listtype, HANDLE, 1, field, 0) ==
               nullptr;
    };
    for (jint field : {99, 101, 103, 105, 107, 115, 118, 0, -1}) EXPECT_TRUE(is_null(LIST_CONTACT, field)) << field;
    for (jint listtype : {2, 3, 0, 4, -1})
        for (jint field : {100, 106}) EXPECT_TRUE(is_null(listtype, field)) << listtype;
    expect_no_store_call();
}

TEST_F(GetStringArrayNative, IsNullWhenTheMachineHasNoClassArrayOrString)
{
    for (const char* function : {"FindClass", "NewObjectArray", "NewStringUTF"}) {
        SCOPED_TRACE(function);
        jni.fail(function);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getStringArrayN(jni.env(), nullptr, LIST_CONTACT, HANDLE, CONTACT,
                                                                   CONTACT_NAME, 0),
                  nullptr);
        keep_exception("the machine's own");
        start_over();
    }
}

// ---- Field lists ----------------------------------------------------------------------------------------------------

TEST_F(GetFieldsNative, GivesAnArrayOfExactlyTheFieldsThere)
{
    struct row {
        jint listtype;
        const char* lister;
        std::vector<jint> expected;
    };
    const row rows[] = {
        {LIST_CONTACT, "getField_contact", {106, 107, 115, 101, 114}},
        {LIST_EVENT, "getField_event", {104, 107, 100, 106}},
        {LIST_TODO, "getField_todo", {104, 107, 101, 103, 105}},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.lister);
        jintArray fields =
            Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN(jni.env(), nullptr, row.listtype, HANDLE, row.listtype);
        EXPECT_EQ(jni.values(fields), row.expected);
        expect_answered_by("getFieldsN", row.lister);
        // The native's own line comes after the lister.
        EXPECT_EQ(platform.traces.back().function, "Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN");
        start_over();
    }
}

TEST_F(GetFieldsNative, IsNullWhereThereIsNoField)
{
    for (jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO})
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN(jni.env(), nullptr, listtype, HANDLE, 4711), nullptr)
            << listtype;
}

TEST_F(GetFieldsNative, IsAnArrayOfTheOnlyField)
{
    platform.add_item(ORG_TYPE_EVENT, 5000, "Lunch");
    jintArray fields = Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN(jni.env(), nullptr, LIST_EVENT, HANDLE, 5000);
    ASSERT_NE(fields, nullptr);
    EXPECT_THAT(jni.values(fields), ElementsAre(EVENT_SUMMARY));
}

TEST_F(GetFieldsNative, IsNullForAnUnknownList)
{
    for (jint listtype : UNKNOWN_LISTS) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN(jni.env(), nullptr, listtype, HANDLE, 1), nullptr);
        expect_no_store_call();
        EXPECT_THAT(platform.traces,
                    ElementsAre(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMItemImpl_getFieldsN ***\n")));
        start_over();
    }
}

// ---- Attributes -----------------------------------------------------------------------------------------------------

TEST_F(GetAttributesNative, AsksTheReaderForTheFourFieldsThatCarryAttributes)
{
    for (jint field : {100, 103, 115, 118}) {
        SCOPED_TRACE(field);
        Java_com_qvr_zek_pim_PIMItemImpl_getAttributesN(jni.env(), nullptr, LIST_CONTACT, HANDLE, CONTACT, field, 0);
        expect_answered_by("getAttributesN", "pimItemImpl_getAttributesN");
        start_over();
    }
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getAttributesN(jni.env(), nullptr, LIST_CONTACT, HANDLE, CONTACT,
                                                              CONTACT_TEL, 0),
              512);
}

TEST_F(GetAttributesNative, GivesZeroForOtherFieldsOfAnyListWithoutAStore)
{
    for (jint listtype : {1, 2, 3, 0, 4}) {
        for (jint field : {99, 101, 102, 104, 105, 106, 107, 108, 109, 114, 116, 117, 119, 0, -1}) {
            EXPECT_EQ(
                Java_com_qvr_zek_pim_PIMItemImpl_getAttributesN(jni.env(), nullptr, listtype, HANDLE, 1, field, 0), 0)
                << listtype << ", " << field;
        }
    }
    expect_no_store_call();
    EXPECT_THAT(platform.traces, Each(Field(&trace_message::function, Not("pimItemImpl_getAttributesN"))));
}

TEST_F(GetAttributesNative, HandsEveryListToTheReader)
{
    for (jint listtype : {2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getAttributesN(jni.env(), nullptr, listtype, HANDLE, 1, 100, 0), 0);
        expect_answered_by("getAttributesN", "pimItemImpl_getAttributesN");
        start_over();
    }
}

// ---- Existence ------------------------------------------------------------------------------------------------------

TEST_F(ItemValue, IsRecordDeletedHandsEveryListToItsReader)
{
    struct row {
        jint listtype;
        jint recindex;
        jint expected;
    };
    for (const row& row : {row{1, 1, 0}, {1, 4711, 1}, {2, 2, 0}, {2, 4711, 1}, {3, 3, 0}, {3, 4711, 1}, {4, 1, 0}}) {
        SCOPED_TRACE(testing::Message() << "list " << row.listtype << ", record " << row.recindex);
        EXPECT_EQ(
            Java_com_qvr_zek_pim_PIMItemImpl_isRecordDeletedN(jni.env(), nullptr, row.listtype, HANDLE, row.recindex),
            row.expected);
        EXPECT_THAT(platform.traces.front(),
                    trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMItemImpl_isRecordDeletedN ***\n"));
        EXPECT_THAT(platform.traces, Contains(Field(&trace_message::function, "pimItemImpl_isRecordDeletedN")));
        start_over();
    }
}

// ---- Binary values --------------------------------------------------------------------------------------------------

TEST_F(GetBinaryNative, RaisesThatTheFeatureIsNotSupported)
{
    for (jint listtype : {1, 2, 3, 4}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_getBinaryN(jni.env(), nullptr, listtype, HANDLE), nullptr);
        ASSERT_TRUE(jni.pending);
        EXPECT_THAT(*jni.pending, exception("javax/microedition/pim/PIMException", "No binary fields available"));
        ASSERT_EQ(jni.constructed.size(), 1u);
        EXPECT_EQ(jni.constructed[0]->reason, 0);
        expect_no_store_call();
        EXPECT_THAT(platform.traces,
                    ElementsAre(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMItemImpl_getBinaryN ***\n"),
                                traced("Not supported Binary value\n", "Not supported Binary value\n")));
        keep_exception("what the native is for");
        start_over();
    }
}

// ---- Preferred index ------------------------------------------------------------------------------------------------

TEST_F(GetPreferredIndexNative, PassesItsResultThrough)
{
    const auto preferred = [&](jint recindex, jint field) {
        jint index = 0;
        console_of([&] {
            index = Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN(jni.env(), nullptr, HANDLE, recindex, field);
        });
        return index;
    };
    EXPECT_EQ(preferred(CONTACT, CONTACT_TEL), 1);
    EXPECT_EQ(preferred(CONTACT, CONTACT_ADDR), -1);
    EXPECT_EQ(preferred(4711, CONTACT_TEL), -1);
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_get"), Contains("contact_db_service_contact_get(4711)"));
}

TEST_F(GetPreferredIndexNative, PrintsALineBeforeAndOneAfterTheCall)
{
    platform.before_call = [](const std::string& call) {
        if (call == "contact_db_service_contact_get(1)") std::printf("fetch\n");
    };
    const std::string console = console_of(
        [&] { Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN(jni.env(), nullptr, HANDLE, CONTACT, CONTACT_TEL); });
    const std::string name = "Java_com_qvr_zek_pim_ContactImpl_getPreferredIndexN";
    EXPECT_THAT(console, MatchesRegex("\\[ " + name + "\\(\\) / +[0-9]+ \\]A-" + name +
                                      "\\(\\)\n"
                                      "fetch\n"
                                      "\\[ " +
                                      name + "\\(\\) / +[0-9]+ \\]B-" + name + "\n"));
}

} // namespace item_value_test
