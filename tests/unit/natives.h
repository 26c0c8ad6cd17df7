// natives.h: the native methods as the virtual machine calls them.
#ifndef JSR75_PIM_TESTS_NATIVES_H
#define JSR75_PIM_TESTS_NATIVES_H

#include <jni.h>

extern "C" {

#define PIM_NATIVE(result, class_and_method) JNIEXPORT result JNICALL Java_com_qvr_zek_pim_##class_and_method

PIM_NATIVE(jint, PIMImpl_openPIMListN)(JNIEnv*, jobject, jint listtype, jint mode);
PIM_NATIVE(jobjectArray, PIMImpl_listPIMListsN)(JNIEnv*, jobject, jint listtype);

PIM_NATIVE(void, PIMListImpl_closePIMListN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jint, PIMListImpl_nextRecordN)(JNIEnv*, jobject, jint listtype, jint handle, jint recindex);
PIM_NATIVE(jint, PIMListImpl_nextRecordInCategoryN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jstring category);
PIM_NATIVE(jint, PIMListImpl_nextRecordWithMatchStrN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jstring match);
PIM_NATIVE(jint, PIMListImpl_removeItemN)(JNIEnv*, jobject, jint listtype, jint handle, jint recindex);
PIM_NATIVE(jintArray, PIMListImpl_getSupportedFieldsN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jint, PIMListImpl_maxValuesN)(JNIEnv*, jobject, jint listtype, jint handle, jint field);
PIM_NATIVE(jintArray, PIMListImpl_getSupportedAttributesN)(JNIEnv*, jobject, jint listtype, jint handle, jint field);
PIM_NATIVE(jintArray, PIMListImpl_getAllSupportedAttributesN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jintArray, PIMListImpl_getSupportedArrayElementsN)
(JNIEnv*, jobject, jint listtype, jint handle, jint field);
PIM_NATIVE(jintArray, PIMListImpl_getExtendedFieldsN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jint, PIMListImpl_getExtendedFieldDataTypeN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jint, PIMListImpl_extendedStringArraySizeN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jstring, PIMListImpl_getFieldLabelN)(JNIEnv*, jobject, jint listtype, jint handle, jint field);
PIM_NATIVE(jstring, PIMListImpl_getAttributeLabelN)(JNIEnv*, jobject, jint listtype, jint handle, jint attribute);
PIM_NATIVE(jstring, PIMListImpl_getArrayElementLabelN)
(JNIEnv*, jobject, jint listtype, jint handle, jint field, jint element);
PIM_NATIVE(jint, PIMListImpl_maxCategoriesN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jobjectArray, PIMListImpl_getCategoriesN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(void, PIMListImpl_addCategoryN)(JNIEnv*, jobject, jint listtype, jint handle, jstring category);
PIM_NATIVE(void, PIMListImpl_renameCategoryN)
(JNIEnv*, jobject, jint listtype, jint handle, jstring current_category, jstring new_category);
PIM_NATIVE(void, PIMListImpl_deleteCategoryN)
(JNIEnv*, jobject, jint listtype, jint handle, jstring category, jboolean delete_unassigned_items);
PIM_NATIVE(jboolean, PIMListImpl_isCategoryN)(JNIEnv*, jobject, jint listtype, jint handle, jstring category);

PIM_NATIVE(jint, PIMItemImpl_isRecordDeletedN)(JNIEnv*, jobject, jint listtype, jint handle, jint recindex);
PIM_NATIVE(jbyteArray, PIMItemImpl_getBinaryN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jint, PIMItemImpl_getAttributesN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field, jint index);
PIM_NATIVE(jlong, PIMItemImpl_getDateN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field, jint index);
PIM_NATIVE(jboolean, PIMItemImpl_getBooleanN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field, jint index);
PIM_NATIVE(jint, PIMItemImpl_getIntN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field, jint index);
PIM_NATIVE(jstring, PIMItemImpl_getStringN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field, jint index);
PIM_NATIVE(jobjectArray, PIMItemImpl_getStringArrayN)
(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field, jint index);
PIM_NATIVE(jintArray, PIMItemImpl_getFieldsN)(JNIEnv*, jobject, jint listtype, jint handle, jint recindex);
PIM_NATIVE(jint, PIMItemImpl_countValuesN)(JNIEnv*, jobject, jint listtype, jint handle, jint recindex, jint field);
PIM_NATIVE(jint, PIMItemImpl_maxCategoriesN)(JNIEnv*, jobject, jint listtype, jint handle);
PIM_NATIVE(jobjectArray, PIMItemImpl_getCategoriesN)(JNIEnv*, jobject, jint listtype, jint handle, jint recindex);
PIM_NATIVE(jint, PIMItemImpl_commitN)
(JNIEnv*, jobject, jint listtype, jint unused, jint recindex, jintArray stringids, jobjectArray strings, jintArray ints,
 jbyteArray bytes, jlongArray longs, jobjectArray categories, jint numcats);

PIM_NATIVE(jintArray, EventListImpl_nextSortedEventN)(JNIEnv*, jobject, jint handle, jlong after);
PIM_NATIVE(jintArray, EventListImpl_getSupportedRepeatRuleFrequenciesN)(JNIEnv*, jobject);
PIM_NATIVE(jintArray, EventListImpl_getSupportedRepeatRuleFieldsN)(JNIEnv*, jobject, jint frequency);

PIM_NATIVE(jint, EventImpl_getRepeatIntN)(JNIEnv*, jobject, jint handle, jint recindex, jint field);
PIM_NATIVE(jlong, EventImpl_getRepeatDateN)(JNIEnv*, jobject, jint handle, jint recindex, jint field);
PIM_NATIVE(jintArray, EventImpl_getRepeatFieldsN)(JNIEnv*, jobject, jint handle, jint recindex);
PIM_NATIVE(jlongArray, EventImpl_getRepeatExceptDatesN)(JNIEnv*, jobject, jint handle, jint recindex);

PIM_NATIVE(jintArray, ToDoListImpl_nextSortedToDoN)(JNIEnv*, jobject, jint handle, jint field, jlong current_date);

PIM_NATIVE(jint, ContactImpl_getPreferredIndexN)(JNIEnv*, jobject, jint handle, jint recindex, jint field);

#undef PIM_NATIVE
}

#endif
