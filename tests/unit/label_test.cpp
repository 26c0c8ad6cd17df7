// The labels of fields, attributes and array elements.
#include <algorithm>
#include <array>
#include <string>

#include "pimlistimpl_limo_arm.h"
#include "unit_test.h"

namespace label_test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr jint HANDLE = 77; // No function reads it.

class Label : public unit_test {
protected:
    // Constants need no store.
    void TearDown() override
    {
        EXPECT_THAT(platform.calls, IsEmpty());
        unit_test::TearDown();
    }
};

class FieldLabel : public Label {};
class AttributeLabel : public Label {};
class ArrayElementLabel : public Label {};

// A buffer that tells which bytes were written.
template <size_t size>
std::array<char, size> untouched()
{
    std::array<char, size> buffer;
    buffer.fill('#');
    return buffer;
}

struct field_row {
    jint listtype;
    jint field;
    const char* label;
};

constexpr field_row FIELDS[] = {
    {1, 100, "Address"},  {1, 101, "Birthday"}, {1, 103, "E-mail"},   {1, 106, "Name"},     {1, 107, "Nick name"},
    {1, 108, "Note"},     {1, 109, "Company"},  {1, 114, "Version"},  {1, 115, "Tel"},      {1, 116, "Job title"},
    {1, 118, "Homepage"}, {2, 100, "Alarm"},    {2, 102, "End"},      {2, 103, "Location"}, {2, 104, "Note"},
    {2, 105, "Version"},  {2, 106, "Start"},    {2, 107, "Subject"},  {3, 101, "Status"},   {3, 102, "Completed on"},
    {3, 103, "Due"},      {3, 104, "Note"},     {3, 105, "Priority"}, {3, 106, "Version"},  {3, 107, "Subject"},
};

struct code_row {
    jint code;
    const char* label;
};

constexpr code_row ATTRIBUTES[] = {
    {1, "Assistant"},
    {2, "Car"},
    {4, "Fax"},
    {8, "Home"},
    {12, "Home fax"},
    {16, "Mobile"},
    {32, "Other"},
    {64, "Pager"},
    {256, "SMS"},
    {512, "Work"},
    {516, "Work fax"},
    {0x1000001, "Mobile private"},
    {0x1000002, "Mobile business"},
    {0x1000003, "Line private"},
    {0x1000004, "Line business"},
    {0x1000005, "Video call"},
    {0x1000006, "Voice mail"},
    {0x1000007, "Sim"},
    {0x1000008, "Email Private"},
    {0x1000009, "Email Business"},
    {0x100000a, "Homepage Private"},
    {0x100000b, "Homepage Business"},
};

struct element_row {
    jint field;
    jint element;
    const char* label;
};

constexpr element_row ELEMENTS[] = {
    {100, 0, "Pobox"}, {100, 1, "extra"},   {100, 2, "Street"}, {100, 3, "City"},  {100, 4, "State"},
    {100, 5, "Zip"},   {100, 6, "Country"}, {106, 0, "Last"},   {106, 1, "First"},
};

std::string shown(jint listtype, jint code)
{
    return "list " + std::to_string(listtype) + ", code " + std::to_string(code);
}

} // namespace

// ---- Fields ---------------------------------------------------------------------------------------------------------

TEST_F(FieldLabel, IsTheOneOfTheTable)
{
    for (const field_row& row : FIELDS) {
        SCOPED_TRACE(shown(row.listtype, row.field));
        auto buffer = untouched<LABEL_SIZE>();
        EXPECT_EQ(pimlistimpl_getFieldLabelN(row.listtype, HANDLE, row.field, buffer), 1);
        EXPECT_STREQ(buffer.data(), row.label);

        jstring label =
            Java_com_qvr_zek_pim_PIMListImpl_getFieldLabelN(jni.env(), nullptr, row.listtype, HANDLE, row.field);
        EXPECT_EQ(jni.text(label), row.label);
        EXPECT_THAT(platform.traces, ElementsAre(trace(TRACE_STEP, "%s ***\n",
                                                       "Java_com_qvr_zek_pim_PIMListImpl_getFieldLabelN ***\n")));
        start_over();
    }
}

TEST_F(FieldLabel, IsNullForEveryOtherCode)
{
    for (jint listtype : {1, 2, 3, 0, 4, -1}) {
        for (jint field :
             {-1,  0,   99,  100, 101, 102, 103, 104, 105, 106, 107,       108,       109,       110,
              111, 112, 113, 114, 115, 116, 117, 118, 119, 120, 0x1000000, 0x1000001, 0x1000002, 0x1000004}) {
            const bool labelled = std::any_of(std::begin(FIELDS), std::end(FIELDS), [&](const field_row& row) {
                return row.listtype == listtype && row.field == field;
            });
            if (labelled) continue;
            SCOPED_TRACE(shown(listtype, field));
            auto buffer = untouched<LABEL_SIZE>();
            EXPECT_EQ(pimlistimpl_getFieldLabelN(listtype, HANDLE, field, buffer), 0);
            EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_getFieldLabelN(jni.env(), nullptr, listtype, HANDLE, field),
                      nullptr);
        }
    }
    EXPECT_THAT(jni.calls, IsEmpty());
}

// ---- Attributes -----------------------------------------------------------------------------------------------------

TEST_F(AttributeLabel, IsTheOneOfTheTable)
{
    for (const code_row& row : ATTRIBUTES) {
        SCOPED_TRACE(row.label);
        auto buffer = untouched<LABEL_SIZE>();
        EXPECT_EQ(pimlistimpl_getAttributeLabelN(1, HANDLE, row.code, buffer), 1);
        EXPECT_STREQ(buffer.data(), row.label);

        jstring label = Java_com_qvr_zek_pim_PIMListImpl_getAttributeLabelN(jni.env(), nullptr, 1, HANDLE, row.code);
        EXPECT_EQ(jni.text(label), row.label);
        EXPECT_THAT(platform.traces, ElementsAre(trace(TRACE_STEP, "%s ***\n",
                                                       "Java_com_qvr_zek_pim_PIMListImpl_getAttributeLabelN ***\n")));
        start_over();
    }
}

// Combinations other than 12 and 516 are not taken apart into their bits.
TEST_F(AttributeLabel, IsEmptyAndReportedFoundForEveryOtherValue)
{
    for (jint attribute : {0, 3, 5, 6, 9, 10, 20, 128, 136, 260, 520, 528, -1, 0x1000000, 0x100000c, 0x1000009 | 8}) {
        const bool labelled = std::any_of(std::begin(ATTRIBUTES), std::end(ATTRIBUTES),
                                          [&](const code_row& row) { return row.code == attribute; });
        if (labelled) continue;
        SCOPED_TRACE(attribute);
        auto buffer = untouched<LABEL_SIZE>();
        EXPECT_EQ(pimlistimpl_getAttributeLabelN(1, HANDLE, attribute, buffer), 1);
        EXPECT_EQ(buffer, untouched<LABEL_SIZE>());

        jstring label = Java_com_qvr_zek_pim_PIMListImpl_getAttributeLabelN(jni.env(), nullptr, 1, HANDLE, attribute);
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(jni.text(label), "");
    }
}

TEST_F(AttributeLabel, IsEmptyAndReportedFoundForEveryListButContacts)
{
    for (jint listtype : {2, 3, 0, 4, -1}) {
        SCOPED_TRACE(listtype);
        auto buffer = untouched<LABEL_SIZE>();
        EXPECT_EQ(pimlistimpl_getAttributeLabelN(listtype, HANDLE, 8, buffer), 1);
        EXPECT_EQ(buffer, untouched<LABEL_SIZE>());

        jstring label = Java_com_qvr_zek_pim_PIMListImpl_getAttributeLabelN(jni.env(), nullptr, listtype, HANDLE, 8);
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(jni.text(label), "");
    }
}

// ---- Array elements -------------------------------------------------------------------------------------------------

TEST_F(ArrayElementLabel, IsTheOneOfTheTable)
{
    for (const element_row& row : ELEMENTS) {
        SCOPED_TRACE(row.label);
        auto buffer = untouched<ELEMENT_LABEL_SIZE>();
        EXPECT_EQ(pimlistimpl_getArrayElementLabelN(1, HANDLE, row.field, row.element, buffer), 1);
        EXPECT_STREQ(buffer.data(), row.label);
        start_over();

        jstring label = Java_com_qvr_zek_pim_PIMListImpl_getArrayElementLabelN(jni.env(), nullptr, 1, HANDLE, row.field,
                                                                               row.element);
        EXPECT_EQ(jni.text(label), row.label);
        EXPECT_THAT(
            platform.traces,
            ElementsAre(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_getArrayElementLabelN ***\n"),
                        trace(TRACE_STEP, "%s is called\n", "pimlistimpl_getArrayElementLabelN is called\n")));
        start_over();
    }
}

TEST_F(ArrayElementLabel, IsEmptyAndReportedFoundForEveryOtherElement)
{
    struct row {
        const char* when;
        jint listtype;
        jint field;
        jint element;
    };
    const row rows[] = {
        {"past the elements of ADDR", 1, 100, 7},
        {"before the elements of ADDR", 1, 100, -1},
        {"NAME_OTHER", 1, 106, 2},
        {"NAME_PREFIX", 1, 106, 3},
        {"NAME_SUFFIX", 1, 106, 4},
        {"before the elements of NAME", 1, 106, -1},
        {"a field without elements", 1, 103, 0},
        {"no field", 1, 999, 0},
        {"events, ADDR's code", 2, 100, 0},
        {"events, NAME's code", 2, 106, 1},
        {"to-dos, NAME's code", 3, 106, 0},
        {"unknown list 0", 0, 100, 0},
        {"unknown list 4", 4, 106, 0},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        auto buffer = untouched<ELEMENT_LABEL_SIZE>();
        EXPECT_EQ(pimlistimpl_getArrayElementLabelN(row.listtype, HANDLE, row.field, row.element, buffer), 1);
        EXPECT_EQ(buffer, untouched<ELEMENT_LABEL_SIZE>());

        jstring label = Java_com_qvr_zek_pim_PIMListImpl_getArrayElementLabelN(jni.env(), nullptr, row.listtype, HANDLE,
                                                                               row.field, row.element);
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(jni.text(label), "");
    }
}

TEST_F(Label, IsNullWhenTheMachineHasNoString)
{
    jni.fail("NewStringUTF");
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_getFieldLabelN(jni.env(), nullptr, 1, HANDLE, 100), nullptr);
    keep_exception("the machine's own, for want of memory");
}

} // namespace label_test
