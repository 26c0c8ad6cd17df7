// Which fields, attributes and array elements each list supports.
#include <array>
#include <vector>

#include "pimlistimpl_limo_arm.h"
#include "unit_test.h"

namespace schema_test {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr jint HANDLE = 77;       // No function reads it.
constexpr int32_t UNTOUCHED = -7; // What stands in a buffer before.

class Schema : public unit_test {
protected:
    // Constants need no store.
    void TearDown() override
    {
        EXPECT_THAT(platform.calls, IsEmpty());
        unit_test::TearDown();
    }
};

class SupportedFields : public Schema {};
class MaxValues : public Schema {};
class SupportedAttributes : public Schema {};
class AllSupportedAttributes : public Schema {};
class SupportedArrayElements : public Schema {};
class ExtendedFields : public Schema {};

template <size_t size>
std::array<int32_t, size> untouched()
{
    std::array<int32_t, size> buffer;
    buffer.fill(UNTOUCHED);
    return buffer;
}

// The buffer as it must be after `expected` was written to its front.
template <size_t size>
std::vector<int32_t> front_of(const std::array<int32_t, size>&, std::vector<int32_t> expected)
{
    expected.resize(size, UNTOUCHED);
    return expected;
}

struct list_row {
    const char* when;
    jint listtype;
    std::vector<jint> expected;
};

const list_row FIELDS[] = {
    {"contacts", 1, {100, 101, 103, 106, 107, 108, 109, 114, 115, 116, 118}},
    {"events", 2, {100, 102, 103, 104, 105, 106, 107}},
    {"to-dos", 3, {101, 102, 103, 104, 105, 106, 107}},
};

const list_row EXTENDED[] = {
    {"contacts, the last one twice", 1, {0x1000000, 0x1000001, 0x1000002, 0x1000003, 0x1000004, 0x1000004}},
    {"events", 2, {0x1000000}},
    {"to-dos", 3, {0x1000000, 0x1000001}},
};

struct field_row {
    const char* when;
    jint listtype;
    jint field;
    std::vector<jint> expected;
};

const field_row ATTRIBUTES[] = {
    {"ADDR", 1, 100, {8, 512}},
    {"EMAIL", 1, 103, {0x1000008, 0x1000009}},
    {"TEL",
     1,
     115,
     {0x1000001, 0x1000002, 0x1000003, 0x1000004, 8, 512, 0x1000005, 4, 0x1000006, 0x1000007, 1, 64, 32}},
    {"URL", 1, 118, {0x100000a, 0x100000b}},
};

constexpr jint UNKNOWN_LISTS[] = {0, 4, -1, 1000};

} // namespace

// ---- Fields ---------------------------------------------------------------------------------------------------------

TEST_F(SupportedFields, AreNamedInTheOrderOfTheirList)
{
    for (const list_row& row : FIELDS) {
        SCOPED_TRACE(row.when);
        auto buffer = untouched<SUPPORTED_FIELDS_MAX>();
        EXPECT_EQ(pimlistimpl_getSupportedFieldsN(row.listtype, HANDLE, buffer), 1);
        EXPECT_THAT(buffer, ElementsAreArray(front_of(buffer, row.expected)));

        jintArray array =
            Java_com_qvr_zek_pim_PIMListImpl_getSupportedFieldsN(jni.env(), nullptr, row.listtype, HANDLE);
        EXPECT_EQ(jni.values(array), row.expected);
        EXPECT_THAT(platform.traces, IsEmpty());
    }
}

TEST_F(SupportedFields, OfAnUnknownListAreNull)
{
    for (jint listtype : UNKNOWN_LISTS) {
        SCOPED_TRACE(listtype);
        auto buffer = untouched<SUPPORTED_FIELDS_MAX>();
        EXPECT_EQ(pimlistimpl_getSupportedFieldsN(listtype, HANDLE, buffer), 0);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_getSupportedFieldsN(jni.env(), nullptr, listtype, HANDLE), nullptr);
    }
}

TEST_F(SupportedFields, AreNullWhenTheMachineHasNoArray)
{
    jni.fail("NewIntArray");
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_getSupportedFieldsN(jni.env(), nullptr, 1, HANDLE), nullptr);
    EXPECT_THAT(jni.calls_of("SetIntArrayRegion"), IsEmpty());
    keep_exception("the machine's own, for want of memory");
}

// ---- Maximum number of values ---------------------------------------------------------------------------------------

TEST_F(MaxValues, GoByTheFieldOfAContact)
{
    for (jint field = 90; field <= 130; ++field) {
        SCOPED_TRACE(field);
        const jint expected = field == 100 || field == 118 ? 5 : field == 103 || field == 115 ? 15 : 1;
        EXPECT_EQ(pimlistimpl_maxValuesN(1, HANDLE, field), expected);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxValuesN(jni.env(), nullptr, 1, HANDLE, field), expected);
    }
    for (jint field : {0, -1, 999, 0x1000000})
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxValuesN(jni.env(), nullptr, 1, HANDLE, field), 1) << field;
}

TEST_F(MaxValues, AreOneForAnyCodeOfEventsAndToDos)
{
    for (jint listtype : {2, 3}) {
        for (jint field : {100, 101, 103, 115, 118, 999, 0, -1, 0x1000000}) {
            SCOPED_TRACE(field);
            EXPECT_EQ(pimlistimpl_maxValuesN(listtype, HANDLE, field), 1);
            EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxValuesN(jni.env(), nullptr, listtype, HANDLE, field), 1);
        }
    }
}

TEST_F(MaxValues, AreMinusOneForAnUnknownList)
{
    for (jint listtype : UNKNOWN_LISTS) {
        for (jint field : {100, 106, 999}) {
            SCOPED_TRACE(listtype);
            EXPECT_EQ(pimlistimpl_maxValuesN(listtype, HANDLE, field), -1);
            EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxValuesN(jni.env(), nullptr, listtype, HANDLE, field), -1);
        }
    }
}

TEST_F(MaxValues, WriteNoTrace)
{
    Java_com_qvr_zek_pim_PIMListImpl_maxValuesN(jni.env(), nullptr, 1, HANDLE, 100);
    EXPECT_THAT(platform.traces, IsEmpty());
}

// ---- Attributes -----------------------------------------------------------------------------------------------------

TEST_F(SupportedAttributes, AreThoseOfTheField)
{
    for (const field_row& row : ATTRIBUTES) {
        SCOPED_TRACE(row.when);
        auto buffer = untouched<FIELD_ATTRIBUTES_MAX>();
        EXPECT_EQ(pimlistimpl_getSupportedAttributesN(row.listtype, HANDLE, row.field, buffer),
                  static_cast<int32_t>(row.expected.size()));
        EXPECT_THAT(buffer, ElementsAreArray(front_of(buffer, row.expected)));

        jintArray array = Java_com_qvr_zek_pim_PIMListImpl_getSupportedAttributesN(jni.env(), nullptr, row.listtype,
                                                                                   HANDLE, row.field);
        EXPECT_EQ(jni.values(array), row.expected);
        EXPECT_THAT(platform.traces, IsEmpty());
    }
}

TEST_F(SupportedAttributes, AreAnEmptyArrayWhereThereAreNone)
{
    for (jint listtype : {1, 2, 3, 0, 4, -1}) {
        for (jint field = 95; field <= 120; ++field) {
            if (listtype == 1 && (field == 100 || field == 103 || field == 115 || field == 118)) continue;
            SCOPED_TRACE(testing::Message() << "list " << listtype << ", field " << field);
            auto buffer = untouched<FIELD_ATTRIBUTES_MAX>();
            EXPECT_EQ(pimlistimpl_getSupportedAttributesN(listtype, HANDLE, field, buffer), 0);
            EXPECT_EQ(buffer, untouched<FIELD_ATTRIBUTES_MAX>());

            jintArray array =
                Java_com_qvr_zek_pim_PIMListImpl_getSupportedAttributesN(jni.env(), nullptr, listtype, HANDLE, field);
            ASSERT_NE(array, nullptr);
            EXPECT_THAT(jni.values(array), IsEmpty());
        }
        start_over();
    }
}

TEST_F(AllSupportedAttributes, OfContactsAreSeventeen)
{
    const std::vector<jint> expected = {0x1000001, 0x1000002, 0x1000003, 0x1000004, 8,        512,
                                        0x1000005, 4,         0x1000006, 0x1000007, 1,        64,
                                        32,        0x1000008, 0x1000009, 0x100000a, 0x100000b};
    auto buffer = untouched<ALL_ATTRIBUTES_MAX>();
    EXPECT_EQ(pimlistimpl_getAllSupportedAttributesN(1, HANDLE, buffer), 17);
    EXPECT_THAT(buffer, ElementsAreArray(expected));

    jintArray array = Java_com_qvr_zek_pim_PIMListImpl_getAllSupportedAttributesN(jni.env(), nullptr, 1, HANDLE);
    EXPECT_EQ(jni.values(array), expected);
    EXPECT_THAT(platform.traces,
                ElementsAre(trace(TRACE_STEP, "%s ***\n",
                                  "Java_com_qvr_zek_pim_PIMListImpl_getAllSupportedAttributesN ***\n")));
}

TEST_F(AllSupportedAttributes, OfOtherListsAreAnEmptyArray)
{
    for (jint listtype : {2, 3, 0, 4, -1}) {
        SCOPED_TRACE(listtype);
        auto buffer = untouched<ALL_ATTRIBUTES_MAX>();
        EXPECT_EQ(pimlistimpl_getAllSupportedAttributesN(listtype, HANDLE, buffer), 0);
        EXPECT_EQ(buffer, untouched<ALL_ATTRIBUTES_MAX>());

        jintArray array =
            Java_com_qvr_zek_pim_PIMListImpl_getAllSupportedAttributesN(jni.env(), nullptr, listtype, HANDLE);
        ASSERT_NE(array, nullptr);
        EXPECT_THAT(jni.values(array), IsEmpty());
    }
}

// ---- Array elements -------------------------------------------------------------------------------------------------

TEST_F(SupportedArrayElements, OfContactsAreThoseOfAddressAndName)
{
    const field_row rows[] = {{"ADDR", 1, 100, {0, 1, 2, 3, 4, 5, 6}}, {"NAME", 1, 106, {0, 1}}};
    for (const field_row& row : rows) {
        SCOPED_TRACE(row.when);
        auto buffer = untouched<ARRAY_ELEMENTS_MAX>();
        EXPECT_EQ(pimlistimpl_getSupportedArrayElementsN(row.listtype, HANDLE, row.field, buffer), 1);
        EXPECT_THAT(buffer, ElementsAreArray(front_of(buffer, row.expected)));

        jintArray array = Java_com_qvr_zek_pim_PIMListImpl_getSupportedArrayElementsN(jni.env(), nullptr, row.listtype,
                                                                                      HANDLE, row.field);
        EXPECT_EQ(jni.values(array), row.expected);
        EXPECT_THAT(platform.traces, IsEmpty());
    }
}

TEST_F(SupportedArrayElements, OfOtherFieldsAreAnEmptyArray)
{
    for (jint listtype : {1, 2, 3, 0, 4}) {
        for (jint field : {99, 101, 103, 105, 107, 118, 0, -1, 0x1000000}) {
            SCOPED_TRACE(testing::Message() << "list " << listtype << ", field " << field);
            jintArray array = Java_com_qvr_zek_pim_PIMListImpl_getSupportedArrayElementsN(jni.env(), nullptr, listtype,
                                                                                          HANDLE, field);
            ASSERT_NE(array, nullptr);
            EXPECT_THAT(jni.values(array), IsEmpty());
        }
        start_over();
    }
}

TEST_F(SupportedArrayElements, OfOtherListsAreZerosInAnArrayOfTheFieldsLength)
{
    for (jint listtype : {2, 3, 0, 4, -1}) {
        SCOPED_TRACE(listtype);
        jintArray address =
            Java_com_qvr_zek_pim_PIMListImpl_getSupportedArrayElementsN(jni.env(), nullptr, listtype, HANDLE, 100);
        EXPECT_EQ(jni.values(address), std::vector<jint>(7, 0));
        jintArray name =
            Java_com_qvr_zek_pim_PIMListImpl_getSupportedArrayElementsN(jni.env(), nullptr, listtype, HANDLE, 106);
        EXPECT_EQ(jni.values(name), std::vector<jint>(2, 0));
    }
}

TEST_F(SupportedArrayElements, AreReportedFilledForAnUnknownListThoughNothingIsWritten)
{
    struct row {
        const char* when;
        jint listtype;
        jint field;
        bool reported_filled;
    };
    const row rows[] = {
        {"a contact's field without elements", 1, 103, false},
        {"events, ADDR's code", 2, 100, false},
        {"events, NAME's code", 2, 106, false},
        {"to-dos, ADDR's code", 3, 100, false},
        {"to-dos, NAME's code", 3, 106, false},
        {"unknown list 0", 0, 100, true},
        {"unknown list 4", 4, 106, true},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        auto buffer = untouched<ARRAY_ELEMENTS_MAX>();
        EXPECT_EQ(pimlistimpl_getSupportedArrayElementsN(row.listtype, HANDLE, row.field, buffer) != 0,
                  row.reported_filled);
        EXPECT_EQ(buffer, untouched<ARRAY_ELEMENTS_MAX>());
    }
}

// ---- Extended fields ------------------------------------------------------------------------------------------------

TEST_F(ExtendedFields, AreNamedInTheOrderOfTheirList)
{
    for (const list_row& row : EXTENDED) {
        SCOPED_TRACE(row.when);
        std::array<int32_t, EXTENDED_FIELDS_MAX> buffer = {};
        std::vector<int32_t> expected = row.expected;
        expected.resize(EXTENDED_FIELDS_MAX, 0);
        EXPECT_EQ(pimlistimpl_getExtendedFieldsN(row.listtype, HANDLE, buffer), 1);
        EXPECT_THAT(buffer, ElementsAreArray(expected));

        jintArray array = Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldsN(jni.env(), nullptr, row.listtype, HANDLE);
        EXPECT_EQ(jni.values(array), row.expected);
        EXPECT_THAT(platform.traces, ElementsAre(trace(TRACE_STEP, "%s ***\n",
                                                       "Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldsN ***\n")));
        start_over();
    }
}

TEST_F(ExtendedFields, OfAnUnknownListAreNull)
{
    for (jint listtype : UNKNOWN_LISTS) {
        SCOPED_TRACE(listtype);
        auto buffer = untouched<EXTENDED_FIELDS_MAX>();
        EXPECT_EQ(pimlistimpl_getExtendedFieldsN(listtype, HANDLE, buffer), 0);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldsN(jni.env(), nullptr, listtype, HANDLE), nullptr);
    }
}

TEST_F(ExtendedFields, HaveNeitherDataTypeNorArraySize)
{
    EXPECT_EQ(pimlistimpl_getExtendedFieldDataTypeN(), -1);
    for (jint listtype : {1, 2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldDataTypeN(jni.env(), nullptr, listtype, HANDLE), -1);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_extendedStringArraySizeN(jni.env(), nullptr, listtype, HANDLE), 0);
        EXPECT_THAT(
            platform.traces,
            ElementsAre(
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldDataTypeN ***\n"),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_extendedStringArraySizeN ***\n")));
        start_over();
    }
}

} // namespace schema_test
