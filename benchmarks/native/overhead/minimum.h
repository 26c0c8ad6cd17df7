// minimum.h: for each native a function that does the same for the platform, the trace hook and the virtual machine,
// and nothing that these do not see.
#ifndef JSR75_PIM_BENCHMARKS_MINIMUM_H
#define JSR75_PIM_BENCHMARKS_MINIMUM_H

#include "natives.h"

#define MINIMUM_OF(class_and_method) \
    extern "C" JNIEXPORT decltype(Java_com_qvr_zek_pim_##class_and_method) minimum_##class_and_method

MINIMUM_OF(PIMImpl_openPIMListN);
MINIMUM_OF(PIMImpl_listPIMListsN);

MINIMUM_OF(PIMListImpl_closePIMListN);
MINIMUM_OF(PIMListImpl_nextRecordN);
MINIMUM_OF(PIMListImpl_nextRecordInCategoryN);
MINIMUM_OF(PIMListImpl_nextRecordWithMatchStrN);
MINIMUM_OF(PIMListImpl_removeItemN);
MINIMUM_OF(PIMListImpl_getSupportedFieldsN);
MINIMUM_OF(PIMListImpl_maxValuesN);
MINIMUM_OF(PIMListImpl_getSupportedAttributesN);
MINIMUM_OF(PIMListImpl_getAllSupportedAttributesN);
MINIMUM_OF(PIMListImpl_getSupportedArrayElementsN);
MINIMUM_OF(PIMListImpl_getExtendedFieldsN);
MINIMUM_OF(PIMListImpl_getExtendedFieldDataTypeN);
MINIMUM_OF(PIMListImpl_extendedStringArraySizeN);
MINIMUM_OF(PIMListImpl_getFieldLabelN);
MINIMUM_OF(PIMListImpl_getAttributeLabelN);
MINIMUM_OF(PIMListImpl_getArrayElementLabelN);
MINIMUM_OF(PIMListImpl_maxCategoriesN);
MINIMUM_OF(PIMListImpl_getCategoriesN);
MINIMUM_OF(PIMListImpl_addCategoryN);
MINIMUM_OF(PIMListImpl_renameCategoryN);
MINIMUM_OF(PIMListImpl_deleteCategoryN);
MINIMUM_OF(PIMListImpl_isCategoryN);

MINIMUM_OF(PIMItemImpl_isRecordDeletedN);
MINIMUM_OF(PIMItemImpl_getBinaryN);
MINIMUM_OF(PIMItemImpl_getAttributesN);
MINIMUM_OF(PIMItemImpl_getDateN);
MINIMUM_OF(PIMItemImpl_getBooleanN);
MINIMUM_OF(PIMItemImpl_getIntN);
MINIMUM_OF(PIMItemImpl_getStringN);
MINIMUM_OF(PIMItemImpl_getStringArrayN);
MINIMUM_OF(PIMItemImpl_getFieldsN);
MINIMUM_OF(PIMItemImpl_countValuesN);
MINIMUM_OF(PIMItemImpl_maxCategoriesN);
MINIMUM_OF(PIMItemImpl_getCategoriesN);
MINIMUM_OF(PIMItemImpl_commitN);

MINIMUM_OF(EventListImpl_nextSortedEventN);
MINIMUM_OF(EventListImpl_getSupportedRepeatRuleFrequenciesN);
MINIMUM_OF(EventListImpl_getSupportedRepeatRuleFieldsN);

MINIMUM_OF(EventImpl_getRepeatIntN);
MINIMUM_OF(EventImpl_getRepeatDateN);
MINIMUM_OF(EventImpl_getRepeatFieldsN);
MINIMUM_OF(EventImpl_getRepeatExceptDatesN);

MINIMUM_OF(ToDoListImpl_nextSortedToDoN);

MINIMUM_OF(ContactImpl_getPreferredIndexN);

#undef MINIMUM_OF

#endif
