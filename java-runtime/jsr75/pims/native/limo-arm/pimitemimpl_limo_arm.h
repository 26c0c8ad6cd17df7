// pimitemimpl_limo_arm.h: the port side of PIMItemImpl: reading the values of one stored item, and committing one.
//
// Every reader opens a connection of its own and reads a fresh copy of the record. The failure values differ
// from reader to reader and are part of what each promises.
#ifndef JSR75_PIM_PIMITEMIMPL_LIMO_ARM_H
#define JSR75_PIM_PIMITEMIMPL_LIMO_ARM_H

#include <cstdint>
#include <span>

#include "pimcodes.h"
#include "pimlistimpl_limo_arm.h"

// Fields that a lister may write: the candidates of the contact list.
inline constexpr int32_t LISTED_FIELDS_MAX = 11;

// A string value, in a buffer that holds the empty text.
using item_text = std::span<char, ITEM_TEXT_SIZE>;

// One element of a string array value.
using item_element = text_slot<ITEM_ELEMENT_SIZE>;

// ---- Any list -------------------------------------------------------------------------------------------------------

// 1 when the record no longer exists or the store cannot be asked, else 0.
int32_t pimItemImpl_isRecordDeletedN(int32_t listtype, int32_t recindex);

// The JSR 75 attribute of one value of a contact; 0 for other lists. -1 when the store cannot be opened or closed.
int32_t pimItemImpl_getAttributesN(int32_t listtype, int32_t handle, int32_t recindex, int32_t field, int32_t index);

// The categories of contact `recindex`, whatever the list type: how many names were written, 0 when the contact
// cannot be read, -1 on other failures.
int32_t pimItemImpl_getCategoriesN(int32_t listtype, int32_t handle, int32_t recindex,
                                   std::span<category_name, LIST_CATEGORIES_MAX> names);

// ---- Readers --------------------------------------------------------------------------------------------------------
//
// Strings: 1 when the reader went through, with the value in `text` or `text` left empty; 0 when the record
// could not be fetched.
int8_t getContactString(int32_t recindex, int32_t field, int32_t index, item_text text);
int8_t getEventString(int32_t recindex, int32_t field, int32_t index, item_text text);
int8_t getTodoString(int32_t recindex, int32_t field, int32_t index, item_text text);

// A contact's ADDR (7 elements) or NAME (2 elements, and the nickname as the third), as getContactString does.
int8_t getContactStringArray(int32_t recindex, int32_t field, int32_t index,
                             std::span<item_element, ADDR_ELEMENTS> elements);

// Milliseconds since the epoch.
int64_t getContactDate(int32_t recindex, int32_t field, int32_t index);
int64_t getEventDate(int32_t recindex, int32_t field, int32_t index);
int64_t getTodoDate(int32_t recindex, int32_t field, int32_t index);

int32_t getContactInt(int32_t recindex, int32_t field, int32_t index);
int32_t getEventInt(int32_t recindex, int32_t field, int32_t index);
int32_t getTodoInt(int32_t recindex, int32_t field, int32_t index);

// 0 or 1.
int8_t getContactBool(int32_t recindex, int32_t field, int32_t index);
int8_t getEventBool(int32_t recindex, int32_t field, int32_t index);
int8_t getTodoBool(int32_t recindex, int32_t field, int32_t index);

// The number of values that the record holds in a field.
int32_t count_values_contact(int32_t recindex, int32_t field);
int32_t count_values_event(int32_t recindex, int32_t field);
int32_t count_values_todo(int32_t recindex, int32_t field);

// Writes the codes of the fields whose count is not 0, in a fixed order, and returns their number. Each field costs
// a connection of its own.
int32_t getField_contact(int32_t recindex, std::span<int32_t, LISTED_FIELDS_MAX> fields);
int32_t getField_event(int32_t recindex, std::span<int32_t, LISTED_FIELDS_MAX> fields);
int32_t getField_todo(int32_t recindex, std::span<int32_t, LISTED_FIELDS_MAX> fields);

// ---- Commits --------------------------------------------------------------------------------------------------------

// The most texts that one triple of `stringids` consumes.
inline constexpr int32_t TEXTS_PER_ENTRY_MAX = ADDR_ELEMENTS;

// What Java hands over to be stored. Everything behind the pointers belongs to the caller, who also vouches for the
// shape: the counts lie within their arrays, and `stringvaluess` has TEXTS_PER_ENTRY_MAX texts for each triple.
struct CommitRequest {
    int32_t recindex;                 // The record to update; below 1 for a new one.
    const int32_t* stringids;         // n, then n triples of field, value index, attribute.
    const char* const* stringvaluess; // The texts that the triples consume in order; null for a null Java value.
    const int32_t* intvalue;          // Handed through; no commit reads them.
    const int8_t* bytevalue;          // Handed through; no commit reads them.
    const int64_t* longvalue;         // m, then m quadruples of field, value index, attribute, value.
    const char* const* categories;    // Names, null when there are none.
    int32_t categorycount;
};

// All three return the record index (1..RECORD_INDEX_MAX), or -1, or COMMIT_VALUE_REFUSED; 0 when an event's add was
// refused.
int32_t pimItemImpl_contact_commitN(const CommitRequest& request);
int32_t pimItemImpl_event_commitN(const CommitRequest& request);
int32_t pimItemImpl_todo_commitN(const CommitRequest& request);

#endif
