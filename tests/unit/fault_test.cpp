// Allocations and calls of the virtual machine made to fail in turn, under every native: what it answers then, and that
// it leaves nothing behind. What failing platform calls do is in failure_matrix.cpp.
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "every_native.h"
#include "time_zone.h"
#include "unit_test.h"

namespace fault_test {

using testing::IsEmpty;

namespace {

// The text buffers of an organizer record, in the order in which an opening allocates them.
constexpr std::array<size_t, 7> BUFFERS = {257, 1025, 161, 356, 257, 257, 257};
enum buffer { NO_BUFFER = -1, SUMMARY, DESCRIPTION, LOCATION };

struct allocation {
    int buffer = NO_BUFFER; // Which of the buffers it is for.
    int opening = 0;        // And of which opening, counted from 0.
    size_t size = 0;
};

std::vector<allocation> allocations_of(const std::vector<size_t>& sizes)
{
    std::vector<allocation> allocations;
    int opening = 0;
    for (size_t i = 0; i < sizes.size();) {
        if (sizes.size() - i >= BUFFERS.size() &&
            std::equal(BUFFERS.begin(), BUFFERS.end(), sizes.begin() + static_cast<ptrdiff_t>(i))) {
            for (size_t buffer = 0; buffer < BUFFERS.size(); ++buffer)
                allocations.push_back({static_cast<int>(buffer), opening, BUFFERS[buffer]});
            i += BUFFERS.size();
            ++opening;
        } else {
            allocations.push_back({.size = sizes[i++]});
        }
    }
    return allocations;
}

// The answer of a native whose text buffer could not be allocated: the text reads as empty.
std::string without_buffer(const native_case& native, const allocation& failing, const std::string& undisturbed)
{
    const bool event = native.name().find("event") != std::string::npos;
    if (native.native == "PIMItemImpl.getStringN" && failing.buffer == SUMMARY) return "\"\"";
    if (native.native == "PIMItemImpl.countValuesN" && failing.buffer == SUMMARY) return "0";
    // An empty text contains any match string, so the first record is found.
    if (native.native == "PIMListImpl.nextRecordWithMatchStrN" && failing.buffer <= (event ? LOCATION : DESCRIPTION))
        return event ? "1" : "3";
    // Each field has an opening of its own.
    if (native.native == "PIMItemImpl.getFieldsN") {
        if (event && failing.opening == 0 && failing.buffer == LOCATION) return "[104, 107, 100, 102, 105, 106]";
        if (event && failing.opening == 1 && failing.buffer == DESCRIPTION) return "[103, 107, 100, 102, 105, 106]";
        if (event && failing.opening == 2 && failing.buffer == SUMMARY) return "[103, 104, 100, 102, 105, 106]";
        if (!event && failing.opening == 0 && failing.buffer == DESCRIPTION) return "[107, 101, 102, 103, 106, 105]";
        if (!event && failing.opening == 1 && failing.buffer == SUMMARY) return "[104, 101, 102, 103, 106, 105]";
    }
    return undisturbed;
}

// The answer of a native that could not allocate what it works with.
std::string without_memory(const native_case& native)
{
    const struct {
        const char* native;
        const char* answer;
    } rows[] = {
        {"PIMListImpl.nextRecordN", "-1"},
        {"PIMListImpl.nextRecordInCategoryN", "-1"},
        {"PIMListImpl.nextRecordWithMatchStrN", "-1"},
        {"PIMListImpl.getCategoriesN", "[]"},
        {"PIMListImpl.deleteCategoryN", "void"},
        {"PIMItemImpl.commitN", "-1"},
        {"EventListImpl.nextSortedEventN", "null"}, // The count of -1 goes to NewIntArray as it is.
    };
    for (const auto& row : rows)
        if (native.native == row.native) return row.answer;
    return "no row says what comes of it";
}

class EveryNative : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        fill_stores(platform);
    }

    std::string call(const native_case& native)
    {
        std::string result;
        console_of([&] { result = native.call(jni); });
        return result;
    }

    // Whether the stores were asked to change anything.
    bool changed_a_store() const
    {
        return std::any_of(platform.calls.begin(), platform.calls.end(), [](const std::string& call) {
            return call.find("_add") != std::string::npos || call.find("_update") != std::string::npos ||
                   call.find("_delete") != std::string::npos;
        });
    }

    time_zone zone{UTC};
};
} // namespace

TEST_F(EveryNative, AnswersAsStatedWhicheverAllocationFails)
{
    int failures = 0;
    for (const native_case& native : every_native()) {
        const std::string undisturbed = call(native);
        const std::vector<allocation> allocations = allocations_of(allocation_sizes());
        if (native.native == "PIMItemImpl.getBinaryN") keep_exception("raised every time");
        const bool keeps_result = native.native == "EventListImpl.nextSortedEventN";
        if (keeps_result) keep_blocks("the indexes found are not released");
        start_over();

        for (size_t nth = 0; nth < allocations.size(); ++nth) {
            SCOPED_TRACE(native.name() + ", failing allocation " + std::to_string(nth + 1) + " of " +
                         std::to_string(allocations[nth].size) + " bytes");
            ++failures;
            const bool growth = nth > 14 && native.native == "PIMItemImpl.commitN" &&
                                native.when.ends_with("contact") && allocations[nth].size != 5 &&
                                allocations[nth].size != size_t{2} * 1352;
            if (growth) {
                EXPECT_DEATH(
                    {
                        fail_allocation(static_cast<int>(nth) + 1);
                        native.call(jni);
                    },
                    "Assertion `contact_record.(address|email|phone)_info != \\(\\(void \\*\\)0\\)' failed");
                continue;
            }
            fail_allocation(static_cast<int>(nth) + 1);
            const std::string result = call(native);
            ASSERT_TRUE(allocation_failed());
            if (allocations[nth].buffer != NO_BUFFER) {
                EXPECT_EQ(result, without_buffer(native, allocations[nth], undisturbed));
                if (keeps_result) keep_blocks("the indexes found are not released");
            } else {
                EXPECT_EQ(result, without_memory(native));
                EXPECT_FALSE(changed_a_store());
                // A text that could not be copied raises; an array of pointers does not.
                const bool raises = std::any_of(platform.traces.begin(), platform.traces.end(), [](const auto& trace) {
                    return trace.text.starts_with("Exception :");
                });
                if (raises || keeps_result) keep_exception("as stated");
                // An item list that cannot be allocated closes the contact store in place of the organizer.
                if (!platform.calls.empty() && platform.calls.front() == "org_db_service_connect_database()" &&
                    !keeps_result) {
                    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
                    keep_connection("the other store was closed");
                    keep_blocks("and the record not released");
                }
            }
            start_over();
        }
    }
    std::printf("allocation failures: %d under %zu cases\n", failures, every_native().size());
}

TEST_F(EveryNative, ReleasesEverythingWhicheverJavaCallFails)
{
    int failures = 0;
    for (const native_case& native : every_native()) {
        for (int nth = 1;; ++nth) {
            jni.fail_nth_call(nth);
            call(native);
            const std::string failed = jni.failed_call();
            SCOPED_TRACE(native.name() + ", failing " + failed);
            if (!failed.empty()) {
                ++failures;
                EXPECT_TRUE(jni.pending) << "the machine's own error goes on to Java";
            }
            if (jni.pending) keep_exception("the machine's own, or the one raised");
            if (native.native == "EventListImpl.nextSortedEventN") keep_blocks("the indexes found are not released");
            start_over();
            if (failed.empty()) break;
        }
    }
    std::printf("failures of the virtual machine: %d under %zu cases\n", failures, every_native().size());
}

TEST_F(EveryNative, RunsSideBySideOnSeveralThreads)
{
    std::vector<std::unique_ptr<fake_jni>> machines;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) machines.push_back(std::make_unique<fake_jni>());
    console_of([&] {
        for (const auto& machine : machines)
            threads.emplace_back([&machine] {
                for (int round = 0; round < 20; ++round)
                    for (const native_case& native : every_native()) {
                        native.call(*machine);
                        machine->pending.reset();
                        machine->leave_native();
                    }
            });
        for (std::thread& thread : threads) thread.join();
    });
    for (const auto& machine : machines) {
        EXPECT_THAT(machine->violations, IsEmpty());
        EXPECT_EQ(machine->unreleased(), 0u);
        EXPECT_LE(machine->local_reference_peak, 32u);
    }
    // A category walk leaves its connection open once its category is gone, and an event walk its indexes.
    keep_connection("another thread deleted the category");
    keep_blocks("the indexes found are not released");
}

} // namespace fault_test
