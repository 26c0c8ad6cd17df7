// Names of categories, of any bytes and length, through all that takes one.
#include "fuzz.h"

void fuzz(FuzzedDataProvider& input, fake_platform& platform, fake_jni& jni)
{
    platform.add_contact(1);
    for (int key = input.ConsumeIntegralInRange(0, 3); key > 0; --key) platform.add_group(key, some_text(input, 64));
    const std::string name = some_text(input), other = some_text(input);
    for (int steps = 0; steps < 8; ++steps) {
        const std::string& chosen = input.ConsumeBool() ? name : other;
        auto* text = input.ConsumeIntegralInRange(0, 15) == 0 ? nullptr : jni.string(chosen);
        switch (input.ConsumeIntegralInRange(0, 6)) {
        case 0: Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, text); break;
        case 1:
            Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, text,
                                                             jni.string(other));
            break;
        case 2:
            Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, text,
                                                             static_cast<jboolean>(input.ConsumeBool()));
            break;
        case 3: Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, text); break;
        case 4: Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN(jni.env(), nullptr, LIST_CONTACT, 0); break;
        case 5: Java_com_qvr_zek_pim_PIMItemImpl_getCategoriesN(jni.env(), nullptr, LIST_CONTACT, 0, 1); break;
        default:
            Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, -1, text);
            allow_open_connection(); // A category that is not there ends the walk without closing.
            break;
        }
    }
}
