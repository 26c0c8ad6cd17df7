// commit_values.h: the values of an item to commit, handed to a commit function as a request or to the native as
// Java arrays.
#ifndef JSR75_PIM_TESTS_COMMIT_VALUES_H
#define JSR75_PIM_TESTS_COMMIT_VALUES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fake_jni.h"
#include "natives.h"
#include "pimitemimpl_limo_arm.h"

class commit_values {
public:
    using text_value = std::optional<std::string>; // Nothing is a null of Java's.

    // One string entry and the texts it consumes.
    commit_values& texts(int32_t field, const std::vector<text_value>& values, int32_t attribute = 0, int32_t index = 0)
    {
        triples_.insert(triples_.end(), {field, index, attribute});
        texts_.insert(texts_.end(), values.begin(), values.end());
        return *this;
    }
    commit_values& text(int32_t field, const text_value& value, int32_t attribute = 0, int32_t index = 0)
    {
        return texts(field, {value}, attribute, index);
    }
    commit_values& number(int32_t field, int64_t value, int32_t index = 0)
    {
        quadruples_.insert(quadruples_.end(), {field, index, 0, value});
        return *this;
    }
    commit_values& category(const text_value& name)
    {
        categories_.push_back(name);
        return *this;
    }

    // The counts leave the last string entry and the last number out, which stay in the arrays.
    commit_values& without_counting_the_last()
    {
        uncounted_ = 1;
        return *this;
    }

    // The values as a commit function takes them; valid until the next value is added.
    CommitRequest request(int32_t recindex)
    {
        stringids_ = {static_cast<int32_t>(triples_.size() / 3) - uncounted_};
        stringids_.insert(stringids_.end(), triples_.begin(), triples_.end());
        longvalue_ = {static_cast<int64_t>(quadruples_.size() / 4) - uncounted_};
        longvalue_.insert(longvalue_.end(), quadruples_.begin(), quadruples_.end());
        text_pointers_ = pointers_to(texts_);
        // What the caller of a commit function vouches for: no entry runs out of texts.
        text_pointers_.resize(text_pointers_.size() + triples_.size() / 3 * TEXTS_PER_ENTRY_MAX, nullptr);
        category_pointers_ = pointers_to(categories_);
        return {.recindex = recindex,
                .stringids = stringids_.data(),
                .stringvaluess = text_pointers_.data(),
                .intvalue = nullptr,
                .bytevalue = nullptr,
                .longvalue = longvalue_.data(),
                .categories = categories_.empty() ? nullptr : category_pointers_.data(),
                .categorycount = static_cast<int32_t>(categories_.size())};
    }

    // The values through PIMItemImpl.commitN.
    jint commit(fake_jni& jni, jint listtype, jint recindex)
    {
        const CommitRequest values = request(recindex);
        std::vector<text_value> categories = {std::to_string(categories_.size())};
        categories.insert(categories.end(), categories_.begin(), categories_.end());
        return Java_com_qvr_zek_pim_PIMItemImpl_commitN(
            jni.env(), nullptr, listtype, 0, recindex, jni.ints({stringids_.begin(), stringids_.end()}),
            jni.byte_arrays(texts_), jni.ints({}), jni.bytes({}), jni.longs({longvalue_.begin(), longvalue_.end()}),
            jni.strings(categories), values.categorycount);
    }

private:
    static std::vector<const char*> pointers_to(const std::vector<text_value>& values)
    {
        std::vector<const char*> pointers;
        for (const text_value& value : values) pointers.push_back(value ? value->c_str() : nullptr);
        return pointers;
    }

    int32_t uncounted_ = 0;
    std::vector<int32_t> triples_, stringids_;
    std::vector<int64_t> quadruples_, longvalue_;
    std::vector<text_value> texts_, categories_;
    std::vector<const char*> text_pointers_, category_pointers_;
};

#endif
