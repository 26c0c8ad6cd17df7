// Natives of com.qvr.zek.pim.PIMListImpl: walking, searching and removing, the field schema and its labels, categories.

#include <algorithm>
#include <cstring>

#include "pimcodes.h"
#include "pimlistimpl_limo_arm.h"
#include "pimnativeutil.h"
#include "pimtrace.h"

// A label that the port layer wrote, or null where it says that there is none.
static jstring label_string(JNIEnv* env, int32_t has_label, const char* label)
{
    return has_label == 1 ? env->NewStringUTF(label) : nullptr;
}

extern "C" {

// ---- Lists and enumeration ------------------------------------------------------------------------------------------

JNIEXPORT void JNICALL Java_com_qvr_zek_pim_PIMListImpl_closePIMListN(JNIEnv*, jobject, jint /*listtype*/,
                                                                      jint /*handle*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(JNIEnv*, jobject, jint listtype, jint handle,
                                                                    jint recindex)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return pimlistimpl_nextRecordN(listtype, handle, recindex);
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(JNIEnv* env, jobject, jint listtype,
                                                                              jint handle, jint recindex,
                                                                              jstring category)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    if (category == nullptr) return pimlistimpl_nextRecordInCategoryN(listtype, handle, recindex, nullptr);
    return with_characters<jint>(env, category, NO_RECORD, [&](const char* name) {
        return pimlistimpl_nextRecordInCategoryN(listtype, handle, recindex, name);
    });
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(JNIEnv* env, jobject, jint listtype,
                                                                                jint handle, jint recindex,
                                                                                jstring match)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    if (match == nullptr) return NO_RECORD;
    return with_characters<jint>(env, match, NO_RECORD, [&](const char* characters) {
        // The search folds the match string in place, and the characters are the virtual machine's.
        const heap_array<char> own_copy(strdup(characters));
        if (own_copy == nullptr) {
            PIM_TRACE(TRACE_HARD, "memory allocation failed..\n");
            return NO_RECORD;
        }
        return pimlistimpl_nextRecordWithMatchStrN(listtype, handle, recindex, own_copy.get());
    });
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_removeItemN(JNIEnv*, jobject, jint listtype, jint handle,
                                                                    jint recindex)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    const int32_t removed = pimlistimpl_removeItemN(listtype, handle, recindex);
    if ((removed & 0xff) == 1) return removed;
    PIM_TRACE(TRACE_RECOVERABLE, "pimlistimpl_removeItemN Fail\n");
    return 0;
}

// ---- Schema ---------------------------------------------------------------------------------------------------------

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_PIMListImpl_getSupportedFieldsN(JNIEnv* env, jobject, jint listtype,
                                                                                 jint handle)
{
    constexpr size_t ORGANIZER_FIELDS = 7;
    jint fields[SUPPORTED_FIELDS_MAX] = {};
    if (pimlistimpl_getSupportedFieldsN(listtype, handle, fields) != 1) return nullptr;
    return new_int_array(env,
                         std::span(fields).first(listtype == LIST_CONTACT ? SUPPORTED_FIELDS_MAX : ORGANIZER_FIELDS));
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_maxValuesN(JNIEnv*, jobject, jint listtype, jint handle,
                                                                   jint field)
{
    return pimlistimpl_maxValuesN(listtype, handle, field);
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_PIMListImpl_getSupportedAttributesN(JNIEnv* env, jobject,
                                                                                     jint listtype, jint handle,
                                                                                     jint field)
{
    jint attributes[FIELD_ATTRIBUTES_MAX];
    const int32_t count = pimlistimpl_getSupportedAttributesN(listtype, handle, field, attributes);
    return new_int_array(env, std::span(attributes).first(static_cast<size_t>(count)));
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_PIMListImpl_getAllSupportedAttributesN(JNIEnv* env, jobject,
                                                                                        jint listtype, jint handle)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    jint attributes[ALL_ATTRIBUTES_MAX];
    const int32_t count = pimlistimpl_getAllSupportedAttributesN(listtype, handle, attributes);
    return new_int_array(env, std::span(attributes).first(static_cast<size_t>(count)));
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_PIMListImpl_getSupportedArrayElementsN(JNIEnv* env, jobject,
                                                                                        jint listtype, jint handle,
                                                                                        jint field)
{
    // The length goes by the field alone; a list whose elements the port does not fill gives zeros.
    jint elements[ARRAY_ELEMENTS_MAX] = {};
    const size_t length = field == CONTACT_ADDR ? ADDR_ELEMENTS : field == CONTACT_NAME ? NAME_ELEMENTS : 0;
    pimlistimpl_getSupportedArrayElementsN(listtype, handle, field, elements);
    return new_int_array(env, std::span(elements).first(length));
}

JNIEXPORT jintArray JNICALL Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldsN(JNIEnv* env, jobject, jint listtype,
                                                                                jint handle)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    jint fields[EXTENDED_FIELDS_MAX] = {};
    if (pimlistimpl_getExtendedFieldsN(listtype, handle, fields) != 1) return nullptr;
    const size_t count = listtype == LIST_CONTACT ? EXTENDED_FIELDS_MAX : listtype == LIST_EVENT ? 1 : 2;
    return new_int_array(env, std::span(fields).first(count));
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_getExtendedFieldDataTypeN(JNIEnv*, jobject, jint /*listtype*/,
                                                                                  jint /*handle*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return pimlistimpl_getExtendedFieldDataTypeN();
}

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_extendedStringArraySizeN(JNIEnv*, jobject, jint /*listtype*/,
                                                                                 jint /*handle*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return pimlistimpl_extendedStringArraySizeN();
}

// ---- Labels ---------------------------------------------------------------------------------------------------------

JNIEXPORT jstring JNICALL Java_com_qvr_zek_pim_PIMListImpl_getFieldLabelN(JNIEnv* env, jobject, jint listtype,
                                                                          jint handle, jint field)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    text_slot<LABEL_SIZE> label;
    return label_string(env, pimlistimpl_getFieldLabelN(listtype, handle, field, label.text), label.text);
}

JNIEXPORT jstring JNICALL Java_com_qvr_zek_pim_PIMListImpl_getAttributeLabelN(JNIEnv* env, jobject, jint listtype,
                                                                              jint handle, jint attribute)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    text_slot<LABEL_SIZE> label;
    return label_string(env, pimlistimpl_getAttributeLabelN(listtype, handle, attribute, label.text), label.text);
}

JNIEXPORT jstring JNICALL Java_com_qvr_zek_pim_PIMListImpl_getArrayElementLabelN(JNIEnv* env, jobject, jint listtype,
                                                                                 jint handle, jint field, jint element)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    text_slot<ELEMENT_LABEL_SIZE> label;
    return label_string(env, pimlistimpl_getArrayElementLabelN(listtype, handle, field, element, label.text),
                        label.text);
}

// ---- Categories -----------------------------------------------------------------------------------------------------

JNIEXPORT jint JNICALL Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN(JNIEnv* env, jobject, jint listtype,
                                                                       jint /*handle*/)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    return max_categories(env, listtype, LIST_CATEGORIES_MAX);
}

JNIEXPORT jobjectArray JNICALL Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN(JNIEnv* env, jobject, jint listtype,
                                                                               jint handle)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    category_name names[LIST_CATEGORIES_MAX];
    const int32_t count = pimlistImpl_getCategoriesN(listtype, handle, names);
    return new_string_array(env, names->text, sizeof *names, std::max(count, 0));
}

JNIEXPORT void JNICALL Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(JNIEnv* env, jobject, jint listtype, jint handle,
                                                                     jstring category)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    if (category == nullptr) return;
    const int32_t added = with_characters<int32_t>(
        env, category, 0, [&](const char* name) { return pimlistImpl_addCategoryN(listtype, handle, name); });
    if (added <= 0) PIM_TRACE(TRACE_HARD, "pimlistImpl_addCategoryN fail..\n");
}

JNIEXPORT void JNICALL Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(JNIEnv* env, jobject, jint listtype,
                                                                        jint handle, jstring current_category,
                                                                        jstring new_category)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    if (current_category == nullptr || new_category == nullptr) return;
    with_characters<int32_t>(env, current_category, 0, [&](const char* old_name) {
        return with_characters<int32_t>(env, new_category, 0, [&](const char* new_name) {
            return pimlistImpl_renameCategoryN(listtype, handle, old_name, new_name);
        });
    });
}

JNIEXPORT void JNICALL Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN(JNIEnv* env, jobject, jint listtype,
                                                                        jint handle, jstring category,
                                                                        jboolean delete_unassigned_items)
{
    const int32_t delete_items = delete_unassigned_items != JNI_FALSE ? 1 : 0;
    PIM_TRACE(TRACE_STEP, "%s ***, deleteUnassignedItems : %d\n", __func__, delete_items);
    if (category == nullptr) return;
    with_characters<int32_t>(env, category, 0, [&](const char* name) {
        PIM_TRACE(TRACE_STEP, "delete category name is %s\n", name);
        return pimlistImpl_deleteCategoryN(listtype, handle, name, delete_items);
    });
}

JNIEXPORT jboolean JNICALL Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(JNIEnv* env, jobject, jint listtype,
                                                                        jint handle, jstring category)
{
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);
    if (category == nullptr) return JNI_FALSE;
    const int8_t is_category = with_characters<int8_t>(
        env, category, 0, [&](const char* name) { return pimlistImpl_isCategoryN(listtype, handle, name); });
    return static_cast<jboolean>(is_category);
}

} // extern "C"
