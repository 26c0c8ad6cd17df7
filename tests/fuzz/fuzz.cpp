#include "fuzz.h"

#include <cstdio>
#include <cstdlib>

#include "allocation_faults.h"

static bool open_connection_allowed;

void allow_open_connection()
{
    open_connection_allowed = true;
}

std::string some_text(FuzzedDataProvider& input, size_t longest)
{
    std::string text = input.ConsumeRandomLengthString(longest);
    std::erase(text, '\0');
    return text;
}

std::optional<std::string> some_text_or_null(FuzzedDataProvider& input, size_t longest)
{
    if (input.ConsumeIntegralInRange(0, 7) == 0) return std::nullopt;
    return some_text(input, longest);
}

static void require(bool holds, const char* otherwise)
{
    if (holds) return;
    std::fprintf(stderr, "fuzz: %s\n", otherwise);
    std::abort();
}

// The library tells some of what it does to the console.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    fake_platform& platform = fake_platform::instance();
    platform.reset();
    release_all_blocks();
    reset_allocations();
    open_connection_allowed = false;
    {
        FuzzedDataProvider input(data, size);
        fake_jni jni;
        jni.accept_invalid_text();
        fuzz(input, platform, jni);
        require(jni.unreleased() == 0, "characters or elements of the virtual machine left behind");
        for (const std::string& violation : jni.violations) require(false, violation.c_str());
    }
    for (const std::string& violation : platform.violations) require(false, violation.c_str());
    require(platform.unreleased_contacts.empty(), "a contact record left behind");
    require(unreleased_blocks() == 0, "memory left behind");
    require(open_connection_allowed || platform.open_contact_connections + platform.open_organizer_connections == 0,
            "a connection left open");
    return 0;
}
