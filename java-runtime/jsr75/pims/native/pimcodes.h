// pimcodes.h: the published JSR 75 constants that cross the native interface, and this system's extended ones.
#ifndef JSR75_PIM_PIMCODES_H
#define JSR75_PIM_PIMCODES_H

#include <cstdint>

// PIM.CONTACT_LIST and its siblings.
enum list_type : int32_t { LIST_CONTACT = 1, LIST_EVENT = 2, LIST_TODO = 3 };

// Fields of Contact, Event and ToDo that some native answers for.
enum contact_field : int32_t {
    CONTACT_ADDR = 100,
    CONTACT_BIRTHDAY = 101,
    CONTACT_EMAIL = 103,
    CONTACT_NAME = 106,
    CONTACT_NICKNAME = 107,
    CONTACT_NOTE = 108,
    CONTACT_ORG = 109,
    CONTACT_REVISION = 114,
    CONTACT_TEL = 115,
    CONTACT_TITLE = 116,
    CONTACT_URL = 118
};

enum event_field : int32_t {
    EVENT_ALARM = 100,
    EVENT_END = 102,
    EVENT_LOCATION = 103,
    EVENT_NOTE = 104,
    EVENT_REVISION = 105,
    EVENT_START = 106,
    EVENT_SUMMARY = 107
};

enum todo_field : int32_t {
    TODO_COMPLETED = 101,
    TODO_COMPLETION_DATE = 102,
    TODO_DUE = 103,
    TODO_NOTE = 104,
    TODO_PRIORITY = 105,
    TODO_REVISION = 106,
    TODO_SUMMARY = 107
};

// Elements of Contact.ADDR and Contact.NAME.
enum address_element : int32_t {
    ADDR_POBOX,
    ADDR_EXTRA,
    ADDR_STREET,
    ADDR_LOCALITY,
    ADDR_REGION,
    ADDR_POSTALCODE,
    ADDR_COUNTRY,
    ADDR_ELEMENTS
};

// The natives serve the first two; NAME_OTHER only as the place where a reader puts the nickname.
enum name_element : int32_t { NAME_FAMILY, NAME_GIVEN, NAME_OTHER, NAME_ELEMENTS = 2 };

// Attribute bits of Contact, then the extended attributes from EXTENDED_ATTRIBUTE_MIN_VALUE + 1 up.
enum contact_attribute : int32_t {
    ATTR_NONE = 0,
    ATTR_ASST = 1,
    ATTR_AUTO = 2,
    ATTR_FAX = 4,
    ATTR_HOME = 8,
    ATTR_MOBILE = 16,
    ATTR_OTHER = 32,
    ATTR_PAGER = 64,
    ATTR_SMS = 256,
    ATTR_WORK = 512,
    ATTR_MOBILE_PRIVATE = 0x1000001,
    ATTR_MOBILE_BUSINESS = 0x1000002,
    ATTR_LINE_PRIVATE = 0x1000003,
    ATTR_LINE_BUSINESS = 0x1000004,
    ATTR_VIDEO_CALL = 0x1000005,
    ATTR_VOICE_MAIL = 0x1000006,
    ATTR_SIM = 0x1000007,
    ATTR_EMAIL_PRIVATE = 0x1000008,
    ATTR_EMAIL_BUSINESS = 0x1000009,
    ATTR_URL_PRIVATE = 0x100000a,
    ATTR_URL_BUSINESS = 0x100000b
};

// The first extended fields, from PIMItem.EXTENDED_FIELD_MIN_VALUE up. To-do lists order by the first as by the start.
enum extended_field : int32_t { EXTENDED_FIELD_0 = 0x1000000, EXTENDED_FIELD_1 = 0x1000001 };

// The fields of RepeatRule in the alphabetical order of their names: how they are called between Java and the library.
enum repeat_field : int32_t {
    REPEAT_COUNT,
    REPEAT_DAY_IN_MONTH,
    REPEAT_DAY_IN_WEEK,
    REPEAT_DAY_IN_YEAR,
    REPEAT_END,
    REPEAT_FREQUENCY,
    REPEAT_INTERVAL,
    REPEAT_MONTH_IN_YEAR,
    REPEAT_WEEK_IN_MONTH
};

// Frequencies of RepeatRule.
enum repeat_frequency : int32_t {
    FREQUENCY_DAILY = 16,
    FREQUENCY_WEEKLY = 17,
    FREQUENCY_MONTHLY = 18,
    FREQUENCY_YEARLY = 19
};

// Reasons of PIMException.
enum pim_exception_reason : int32_t { PIM_FEATURE_NOT_SUPPORTED = 0, PIM_GENERAL_ERROR = 1 };

// A record index that names no record: the start of a walk and its end.
inline constexpr int32_t NO_RECORD = -1;

// The highest record index a commit may return; anything above is a failure code.
inline constexpr int32_t RECORD_INDEX_MAX = 10000;

// What a commit function returns when a value does not fit the record.
inline constexpr int32_t COMMIT_VALUE_REFUSED = 10001;

// Bytes of the buffer that a string reader fills, terminator included.
inline constexpr int32_t ITEM_TEXT_SIZE = 1024;

// Bytes of one element of a string array value, terminator included.
inline constexpr int32_t ITEM_ELEMENT_SIZE = 129;

// The categories that a list may have, and the number of key indexes looked at.
inline constexpr int32_t LIST_CATEGORIES_MAX = 30;

#endif
