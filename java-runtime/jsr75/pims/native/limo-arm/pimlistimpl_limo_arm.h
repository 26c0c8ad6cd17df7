// pimlistimpl_limo_arm.h: the port side of PIMListImpl: walking, searching and removing records, the field schema
// and its labels, the categories of the contact list. `handle` is a list handle that no function reads.
#ifndef JSR75_PIM_PIMLISTIMPL_LIMO_ARM_H
#define JSR75_PIM_PIMLISTIMPL_LIMO_ARM_H

#include <cstdint>
#include <span>

#include "contact_db_service.h"
#include "org_db_service.h"
#include "pimcodes.h"
#include "pimnativeutil.h"

// ---- Enumeration ----------------------------------------------------------------------------------------------------
//
// All walks give the record index after `recindex`, which is NO_RECORD before the first record, and NO_RECORD at the
// end of the list and on every failure.

// The entry listed after `after`: the first when `after` is NO_RECORD, NO_RECORD at the end of the list.
int32_t index_after(std::span<const int32_t> indices, int32_t after);

int32_t pimlistimpl_nextRecordN(int32_t listtype, int32_t handle, int32_t recindex);

// Contacts only: the members of the category `name`, or for a null name the contacts without any category.
int32_t pimlistimpl_nextRecordInCategoryN(int32_t listtype, int32_t handle, int32_t recindex, const char* name);

// The next record whose text fields contain `match`, which is lower-cased in place. Never wraps around.
int32_t pimlistimpl_nextRecordWithMatchStrN(int32_t listtype, int32_t handle, int32_t recindex, char* match);

// 1 when a text of the record contains `match`, else 0. The match string and the texts tested are lower-cased in
// place.
int32_t matchingContact(char* match, contact_record* contact);
int32_t matchingEvent(char* match, org_full_record* record);
int32_t matchingTodo(char* match, org_full_record* record);

// Deletes a record. 1 when the connection was opened and closed, whatever became of the deletion; else 0.
int32_t pimlistimpl_removeItemN(int32_t listtype, int32_t handle, int32_t recindex);

// ---- Schema and labels ----------------------------------------------------------------------------------------------

// The values a getter of the schema has room for.
inline constexpr int32_t SUPPORTED_FIELDS_MAX = 11;
inline constexpr int32_t FIELD_ATTRIBUTES_MAX = 13;
inline constexpr int32_t ALL_ATTRIBUTES_MAX = 17;
inline constexpr int32_t ARRAY_ELEMENTS_MAX = 7;
inline constexpr int32_t EXTENDED_FIELDS_MAX = 6;

// Bytes of the buffers that labels are copied to, terminator included.
inline constexpr int32_t LABEL_SIZE = 100;
inline constexpr int32_t ELEMENT_LABEL_SIZE = 64;

// 1 for a known list type, whose field codes are written; else 0.
int32_t pimlistimpl_getSupportedFieldsN(int32_t listtype, int32_t handle,
                                        std::span<int32_t, SUPPORTED_FIELDS_MAX> fields);

// How many values a field holds; -1 for an unknown list type. Codes that are no field of the list hold 1.
int32_t pimlistimpl_maxValuesN(int32_t listtype, int32_t handle, int32_t field);

// The number of attributes written; 0 for lists and fields without attributes.
int32_t pimlistimpl_getSupportedAttributesN(int32_t listtype, int32_t handle, int32_t field,
                                            std::span<int32_t, FIELD_ATTRIBUTES_MAX> attributes);
int32_t pimlistimpl_getAllSupportedAttributesN(int32_t listtype, int32_t handle,
                                               std::span<int32_t, ALL_ATTRIBUTES_MAX> attributes);

// 1 when the elements of a contact's `field` were written. Nothing is written otherwise: 0 for another field
// of contacts and for events and to-dos, 1 for unknown list types.
int32_t pimlistimpl_getSupportedArrayElementsN(int32_t listtype, int32_t handle, int32_t field,
                                               std::span<int32_t, ARRAY_ELEMENTS_MAX> elements);

// 1 for a known list type, whose extended fields are written; else 0.
int32_t pimlistimpl_getExtendedFieldsN(int32_t listtype, int32_t handle,
                                       std::span<int32_t, EXTENDED_FIELDS_MAX> fields);

int32_t pimlistimpl_getExtendedFieldDataTypeN();
int32_t pimlistimpl_extendedStringArraySizeN();

// 1 with the label in `label`, or 0 for a field without one.
int32_t pimlistimpl_getFieldLabelN(int32_t listtype, int32_t handle, int32_t field, std::span<char, LABEL_SIZE> label);

// Always 1. What has no label leaves the buffer as it was.
int32_t pimlistimpl_getAttributeLabelN(int32_t listtype, int32_t handle, int32_t attribute,
                                       std::span<char, LABEL_SIZE> label);
int32_t pimlistimpl_getArrayElementLabelN(int32_t listtype, int32_t handle, int32_t field, int32_t element,
                                          std::span<char, ELEMENT_LABEL_SIZE> label);

// ---- Categories -----------------------------------------------------------------------------------------------------

// A category name on its way from port to entry layer: one byte more than its limit, for the terminator.
using category_name = text_slot<CONTACT_GROUP_NAME_MAX + 1>;

// The categories of the contact store, whatever the list type: how many names were written, or -1.
int32_t pimlistImpl_getCategoriesN(int32_t listtype, int32_t handle,
                                   std::span<category_name, LIST_CATEGORIES_MAX> names);

// 1 when the category is there now or the store could not be opened or closed, 0 when it was refused.
int32_t pimlistImpl_addCategoryN(int32_t listtype, int32_t handle, const char* name);

// Renames every category called `old_name`. 0 when the store refused a group, else 1.
int32_t pimlistImpl_renameCategoryN(int32_t listtype, int32_t handle, const char* old_name, const char* new_name);

// Deletes the first category called `name`, and with `delete_unassigned_items` set every contact in it. 0 when
// the name is refused or the store fails, else 1.
int32_t pimlistImpl_deleteCategoryN(int32_t listtype, int32_t handle, const char* name,
                                    int32_t delete_unassigned_items);

// 1 when there is such a category, and also when the store could not be opened or closed; else 0.
int8_t pimlistImpl_isCategoryN(int32_t listtype, int32_t handle, const char* name);

#endif
