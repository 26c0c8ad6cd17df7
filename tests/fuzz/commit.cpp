// commitN with arrays of any shape: counts that the arrays hold and counts that they do not, nulls, over-long texts.
#include "fuzz.h"

void fuzz(FuzzedDataProvider& input, fake_platform& platform, fake_jni& jni)
{
    platform.add_contact(1).note = "Note";
    platform.add_item(ORG_TYPE_EVENT, 2, "Event");
    platform.add_item(ORG_TYPE_TODO, 3, "To-do");
    platform.add_group(0, "Work");

    std::vector<jint> ids;
    std::vector<std::optional<std::string>> texts, categories;
    std::vector<jlong> longs;
    const int entries = input.ConsumeIntegralInRange(0, 20);
    ids.push_back(input.ConsumeBool() ? entries : input.ConsumeIntegral<jint>());
    for (int i = 0; i < entries; ++i) {
        ids.push_back(input.ConsumeBool() ? input.ConsumeIntegralInRange<jint>(99, 119)
                                          : input.ConsumeIntegral<jint>());
        ids.push_back(input.ConsumeIntegralInRange<jint>(-2, 7));
        ids.push_back(input.ConsumeBool() ? input.ConsumeIntegralInRange<jint>(0, 512)
                                          : input.ConsumeIntegralInRange<jint>(0x1000000, 0x1000010));
    }
    for (int i = input.ConsumeIntegralInRange(0, 40); i > 0; --i) texts.push_back(some_text_or_null(input, 1100));
    const int numbers = input.ConsumeIntegralInRange(0, 12);
    longs.push_back(input.ConsumeBool() ? numbers : input.ConsumeIntegral<jlong>());
    for (int i = 0; i < numbers; ++i) {
        longs.push_back(input.ConsumeBool() ? input.ConsumeIntegralInRange<jlong>(0, 8)
                                            : input.ConsumeIntegralInRange<jlong>(99, 119));
        longs.insert(longs.end(), {0, 0, input.ConsumeIntegral<jlong>()});
    }
    const jint numcats = input.ConsumeIntegralInRange<jint>(-1, 6);
    categories.emplace_back(input.ConsumeBool() ? std::to_string(numcats) : some_text(input, 12));
    for (int i = input.ConsumeIntegralInRange(0, 6); i > 0; --i) categories.push_back(some_text_or_null(input, 80));
    // Cuts off what was promised.
    if (input.ConsumeBool()) ids.resize(input.ConsumeIntegralInRange<size_t>(0, ids.size()));
    if (input.ConsumeBool()) longs.resize(input.ConsumeIntegralInRange<size_t>(0, longs.size()));
    if (input.ConsumeBool()) categories.resize(input.ConsumeIntegralInRange<size_t>(0, categories.size()));

    const auto listtype = input.ConsumeIntegralInRange<jint>(0, 4);
    const auto recindex = input.ConsumeIntegralInRange<jint>(-1, 5);
    const bool nulls = input.ConsumeIntegralInRange(0, 9) == 0;
    Java_com_qvr_zek_pim_PIMItemImpl_commitN(jni.env(), nullptr, listtype, 0, recindex, nulls ? nullptr : jni.ints(ids),
                                             nulls ? nullptr : jni.byte_arrays(texts), jni.ints({}), jni.bytes({}),
                                             nulls ? nullptr : jni.longs(longs),
                                             nulls ? nullptr : jni.strings(categories), numcats);
}
