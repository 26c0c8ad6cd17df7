#include "unit_test.h"

#include <memory>

using testing::AllOf;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

void unit_test::SetUp()
{
    release_all_blocks();
    reset_allocations();
    accept_connections();
    platform.reset();
}

void unit_test::TearDown()
{
    check_what_is_left();
    accept_connections();
    platform.reset();
    release_all_blocks();
}

void unit_test::start_over()
{
    check_what_is_left();
    kept_connection_.reset();
    kept_blocks_.reset();
    kept_exception_.reset();
    SetUp();
    // A machine is cheap: what the last turn made of this one is of no interest to the next.
    std::destroy_at(&jni);
    std::construct_at(&jni);
}

// A resource is left behind exactly when the test says so.
static void check_left(size_t count, const char* what, const std::optional<std::string>& kept)
{
    if (kept) {
        EXPECT_GT(count, 0u) << "nothing left behind of " << what << ", though: " << *kept;
    } else {
        EXPECT_EQ(count, 0u) << what << " left behind";
    }
}

void unit_test::check_what_is_left()
{
    const int open = platform.open_contact_connections + platform.open_organizer_connections;
    check_left(static_cast<size_t>(open), "connections", kept_connection_);
    check_left(unreleased_blocks() + platform.unreleased_contacts.size() + platform.unreleased_lists.size(),
               "blocks, contact records or lists", kept_blocks_);
    check_left(jni.pending ? 1 : 0, "a Java exception", kept_exception_);
    EXPECT_EQ(jni.unreleased(), 0u) << "characters or elements of the virtual machine left behind";
    EXPECT_LE(jni.local_reference_peak, 32u) << "a checked virtual machine complains above 32 local references";
    EXPECT_THAT(jni.violations, IsEmpty());
    EXPECT_THAT(platform.violations, IsEmpty());

    for (const trace_message& message : platform.traces) {
        EXPECT_EQ(message.component, 0x1d000022) << message.format;
        EXPECT_GT(message.line, 0) << message.format;
        EXPECT_TRUE(message.severity == 0x1000000 || message.severity == 0x2000000 || message.severity == 0x4000000)
            << message.severity << " of " << message.format;
        EXPECT_THAT(message.path, AllOf(StartsWith("java-runtime/jsr75/pims/native/"), EndsWith(".cpp")))
            << message.format;
    }
}

std::string console_of(const std::function<void()>& work)
{
    testing::internal::CaptureStdout();
    work();
    return testing::internal::GetCapturedStdout();
}

void PrintTo(const trace_message& message, std::ostream* out)
{
    *out << message.function << " [" << std::hex << message.severity << std::dec << "] "
         << testing::PrintToString(message.text);
}

void PrintTo(const pending_exception& exception, std::ostream* out)
{
    *out << exception.class_name << ": " << exception.message << " (" << exception.thrown_by << ")";
}
